// SPDX-License-Identifier: MIT
#include "widget/unreadable_reports.h"

namespace Standalone
{

namespace
{

constexpr char SourceFile[] = "widget/unreadable_reports.cpp";

/// The count is logged each time that it has grown by this factor.
constexpr unsigned long Step = 100;

std::string Describe(int code)
{
    return code == -1 ? "without a code" : "of code " + std::to_string(code);
}

} // namespace

void UnreadableReports::Add(const std::wstring& path, const Report::Bytes& report)
{
    const int code = report.empty() ? -1 : report.front();
    Count& count = m_devices[path][code];
    ++count.all;
    if (count.all == 1) {
        count.logged = 1;
        count.next = Step;
        OS_LOG(m_log, Os::Log::Error, SourceFile,
               "A report that cannot be read, from " << path << ": " << Describe(code) << ", "
                                                     << report.size()
                                                     << " bytes; others like it are counted");
    } else if (count.all == count.next) {
        count.next *= Step;
        LogCount(path, code, count);
    }
}

void UnreadableReports::Detached(const std::wstring& path)
{
    const auto device = m_devices.find(path);
    if (device == m_devices.end())
        return;
    for (auto& [code, count] : device->second)
        if (count.all != count.logged)
            LogCount(path, code, count);
    m_devices.erase(device);
}

void UnreadableReports::LogCount(const std::wstring& path, int code, Count& count)
{
    count.logged = count.all;
    OS_LOG(m_log, Os::Log::Warning, SourceFile,
           count.all << " reports " << Describe(code) << " could not be read, from " << path);
}

} // namespace Standalone
