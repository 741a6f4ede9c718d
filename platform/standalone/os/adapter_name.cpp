// SPDX-License-Identifier: MIT
#include <net/if.h>

#include <QString>
#include <algorithm>

#include "standalone/network_source.h"

namespace Standalone
{

std::wstring WidenAdapterName(const std::string& name)
{
    const QString text = QString::fromStdString(name);
    if (text.toStdString() == name)
        return text.toStdWString();
    std::wstring wide;
    for (const char byte : name)
        wide.push_back(static_cast<wchar_t>(static_cast<signed char>(byte)));
    return wide;
}

std::string NarrowAdapterName(const std::wstring& name)
{
    const bool hasBytes =
        std::any_of(name.begin(), name.end(), [](wchar_t character) { return character < 0; });
    if (!hasBytes)
        return QString::fromStdWString(name).toStdString();
    std::string bytes;
    for (const wchar_t character : name)
        bytes.push_back(static_cast<char>(static_cast<unsigned char>(character & 0xFF)));
    return bytes;
}

bool IsAdapterName(const std::wstring& name)
{
    const std::string bytes = NarrowAdapterName(name);
    const bool hasOther =
        bytes.find_first_of(std::string("/: \t\n\v\f\r\0", 9)) != std::string::npos;
    return !bytes.empty() && bytes.size() < IFNAMSIZ && bytes != "." && bytes != ".." && !hasOther;
}

} // namespace Standalone
