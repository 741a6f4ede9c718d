// SPDX-License-Identifier: MIT
#include "common/port_name.h"

#include "kel/text_base.h"

namespace Tools
{

std::string NarrowPortName(const std::wstring& name)
{
    kel::text<char, 256> text;
    text << name;
    return std::string(text.view());
}

std::wstring WidenPortName(const std::string& name)
{
    std::wstring wide;
    for (const char byte : name)
        wide.push_back(static_cast<wchar_t>(static_cast<signed char>(byte)));
    return wide;
}

} // namespace Tools
