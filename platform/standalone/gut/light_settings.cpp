// SPDX-License-Identifier: MIT
#include "standalone/light_settings.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>
#include <system_error>

#include "gut/light_settings_file.h"
#include "gut/light_settings_text.h"
#include "gut/message.h"
#include "os/log.h"
#include "os/post.h"

namespace Standalone
{

namespace
{

constexpr char SourceFile[] = "gut/light_settings.cpp";

// The message that reports changed light settings, and its receiver.
constexpr std::uint32_t LightMessage = 22;
constexpr std::uint32_t ApplyAtOnce = 11;
constexpr std::uint32_t ApplyWithFades = 12;
constexpr std::uint32_t SettingsChanged = 1;
constexpr unsigned Application = 3;

Os::Log::Context& LogContext()
{
    // Never destroyed: settings may change until the process ends.
    static auto* const context =
        new Os::Log::Context("LightSettings", nullptr, Os::Log::AllButTrace);
    return *context;
}

/// The file's own path, so that all who use it by other names lock the same folder and a later
/// change of the working folder makes no difference.
std::string Resolve(const std::string& file)
{
    std::error_code error;
    std::filesystem::path path = std::filesystem::weakly_canonical(file, error);
    if (error)
        path = std::filesystem::absolute(file, error);
    return error ? file : path.string();
}

/// The settings and where they are kept. Logs nothing itself: a log sink may ask for the settings.
class Keeper
{
public:
    /// Never destroyed.
    static Keeper& Get()
    {
        static auto* const keeper = new Keeper;
        return *keeper;
    }

    LightSettings GetSettings()
    {
        const std::lock_guard hold(m_mutex);
        return m_settings;
    }
    /// Returns an empty text, or what went wrong.
    std::string Change(const std::function<void(LightSettings&)>& change);
    /// Returns an empty text, or why the file is refused.
    std::string Use(const std::string& file, std::vector<std::string>& warnings);

private:
    std::string ReadFile(LightSettingsText& text, LightSettings& wanted);
    std::string WriteFile(LightSettingsText& text, const LightSettings& settings);
    void SetSettings(const LightSettings& settings)
    {
        const std::lock_guard hold(m_mutex);
        m_settings = settings;
    }

    std::mutex m_turn; // held over a whole change, and taken before the other one
    // Guarded by m_turn:
    std::string m_file; // as it was named; empty for none
    std::string m_path;
    LightSettings m_kept; // as the file had them when it was last read or written

    std::mutex m_mutex; // held for a copy, so that nobody who asks waits for a file
    LightSettings m_settings;
};

std::string Keeper::Change(const std::function<void(LightSettings&)>& change)
{
    const std::lock_guard turn(m_turn);
    LightSettings wanted = GetSettings();
    std::optional<LightSettingsLock> lock;
    LightSettingsText text({});
    std::string problem;
    if (!m_file.empty()) {
        problem = lock.emplace(m_path).GetProblem();
        if (problem.empty())
            problem = ReadFile(text, wanted);
    }
    change(wanted);
    if (const LightSettingField* const level = FindLevelAboveFull(wanted))
        return std::string("Cannot change the light settings: ") + level->name + " would be " +
               FormatLightSetting(*level, wanted) + ", above 100";
    SetSettings(wanted);
    if (!m_file.empty() && problem.empty())
        problem = WriteFile(text, wanted);
    return problem.empty() ? problem
                           : "Cannot write the light settings to '" + m_file + "': " + problem;
}

/// Takes over what another process has changed; what could not be written here stays.
std::string Keeper::ReadFile(LightSettingsText& text, LightSettings& wanted)
{
    std::string bytes;
    if (std::string problem = ReadLightSettingsFile(m_path, bytes); !problem.empty())
        return problem;
    text = LightSettingsText(bytes);
    if (!text.GetProblem().empty())
        return text.GetProblem();
    LightSettings current = m_kept;
    text.Read(current);
    for (const LightSettingField& field : LightSettingFields)
        if (!IsSameLightSetting(field, current, m_kept))
            CopyLightSetting(field, current, wanted);
    m_kept = current;
    return {};
}

std::string Keeper::WriteFile(LightSettingsText& text, const LightSettings& settings)
{
    const std::string before = text.GetBytes();
    text.Write(settings);
    const std::string bytes = text.GetBytes();
    if (bytes != before)
        if (std::string problem = ReplaceLightSettingsFile(m_path, bytes); !problem.empty())
            return problem;
    m_kept = settings;
    return {};
}

std::string Keeper::Use(const std::string& file, std::vector<std::string>& warnings)
{
    const std::lock_guard turn(m_turn);
    if (file.empty()) {
        m_file.clear();
        return {};
    }
    const std::string path = Resolve(file);
    std::string bytes;
    if (std::string problem = ReadLightSettingsFile(path, bytes); !problem.empty())
        return problem;
    const LightSettingsText text(bytes);
    if (!text.GetProblem().empty())
        return text.GetProblem();
    LightSettings settings = GetSettings();
    text.Read(settings);
    warnings = text.GetWarnings();
    m_file = file;
    m_path = path;
    m_kept = settings;
    SetSettings(settings);
    return {};
}

} // namespace

LightSettings GetLightSettings()
{
    return Keeper::Get().GetSettings();
}

bool ChangeLightSettings(const std::function<void(LightSettings&)>& change)
{
    const std::string problem = Keeper::Get().Change(change);
    if (!problem.empty())
        OS_LOG(LogContext(), Os::Log::Error, SourceFile, problem);
    return problem.empty();
}

bool SetLightSettings(const LightSettings& settings)
{
    return ChangeLightSettings([&settings](LightSettings& current) { current = settings; });
}

std::string UseLightSettingsFile(const std::string& file)
{
    std::vector<std::string> warnings;
    const std::string problem = Keeper::Get().Use(file, warnings);
    if (!problem.empty())
        return "cannot read the light settings in '" + file + "': " + problem;
    for (const std::string& warning : warnings)
        OS_LOG(LogContext(), Os::Log::Warning, SourceFile, "'" << file << "', " << warning);
    return {};
}

void AnnounceLightSettings(bool fade)
{
    const std::array<std::uint32_t, 3> words{LightMessage, fade ? ApplyWithFades : ApplyAtOnce,
                                             SettingsChanged};
    Os::Post(Gut::Message(words.data(), sizeof words), Application);
}

} // namespace Standalone
