// SPDX-License-Identifier: MIT
#include "hwctl/log_setup.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <stdexcept>

#include "common/log_contexts.h"
#include "os/log.h"
#include "standalone/journal_sink.h"
#include "standalone/log_masks.h"
#include "standalone/stderr_sink.h"

namespace Hwctl
{

namespace
{

/// Contexts that masks were given for. Written before there is a second thread.
std::vector<std::string>& GetAskedContexts()
{
    static std::vector<std::string> contexts;
    return contexts;
}

/// Standard error without the notes that nobody asked for.
class TerminalSink : public Standalone::LogSink
{
public:
    void Write(const Standalone::LogRecord& record) override
    {
        if (IsForTerminal(record))
            m_sink.Write(record);
    }

private:
    Standalone::StderrSink m_sink;
};

std::string GetEnvironment()
{
    // NOLINTNEXTLINE(concurrency-mt-unsafe): there is only one thread yet
    const char* const masks = std::getenv(LogVariable);
    return masks ? masks : "";
}

/// Applies a list of masks and remembers its contexts. Throws std::invalid_argument.
void ApplyMasks(const std::string& masks)
{
    std::string list;
    std::istringstream items(masks);
    for (std::string item; std::getline(items, item, ',');) {
        const std::size_t equals = item.find('=');
        list += list.empty() ? "" : ",";
        if (equals == std::string::npos || equals == 0) {
            list += item; // refused below
            continue;
        }
        const std::string context = Tools::FindLogContext(item.substr(0, equals));
        GetAskedContexts().push_back(context);
        list += context + item.substr(equals);
    }
    const std::string problem = Standalone::ApplyLogMasks(list);
    if (!problem.empty())
        throw std::invalid_argument(problem);
}

template <class Error> void ApplyMasksOf(const char* source, const std::string& masks)
{
    try {
        ApplyMasks(masks);
    } catch (const std::invalid_argument& error) {
        throw Error(std::string(source) + ": " + error.what());
    }
}

} // namespace

bool IsForTerminal(const Standalone::LogRecord& record)
{
    const auto& asked = GetAskedContexts();
    return record.level >= Os::Log::Warning ||
           std::any_of(asked.begin(), asked.end(), [&record](const std::string& context) {
               return record.context == context || record.context.starts_with(context + "/");
           });
}

bool LogsToErrors(const CommonOptions& options)
{
    const bool isAskedFor =
        !options.isQuiet || !options.logMasks.empty() || !GetEnvironment().empty();
    return options.logSink == "stderr" || (options.logSink.empty() && isAskedFor);
}

void SetUpLog(const CommonOptions& options)
{
    if (options.logSink == "journal")
        Standalone::SetLogSink(std::make_shared<Standalone::JournalSink>());
    else if (LogsToErrors(options))
        Standalone::SetLogSink(std::make_shared<TerminalSink>());
    else
        Standalone::SetLogSink(nullptr);
    ApplyMasksOf<CommandError>(LogVariable, GetEnvironment());
    ApplyMasksOf<UsageError>("--log", options.logMasks);
}

} // namespace Hwctl
