// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "gut/light_setting_fields.h"

namespace Standalone
{

/// The text of a light settings file: lines that are blank, comments that begin with ; or #, groups
/// in brackets, and keys with values. Settings are in the group General, which is also the group of
/// keys that come before any group.
///
/// A change leaves every other line as it was, byte for byte, so that comments, keys of other
/// versions and groups of other programs survive.
class LightSettingsText
{
public:
    /// Takes a file's content; an empty one is settings without any value.
    explicit LightSettingsText(std::string_view bytes);

    /// Why the content is not light settings, such as "line 3 is neither ..."; empty if it is.
    /// Nothing else may be called where there is a problem.
    const std::string& GetProblem() const { return m_problem; }
    /// What is unusual and is left alone: keys that are not settings, and values that are wrong. At
    /// most ten lines, the last of which counts those that are left out.
    std::vector<std::string> GetWarnings() const;

    /// Puts what the text has into the settings. A setting that is missing or has a wrong value
    /// stays as it is.
    void Read(LightSettings& settings) const;
    /// Has the text say what the settings are. Lines that say it already stay as they are.
    void Write(const LightSettings& settings);

    std::string GetBytes() const;

private:
    struct Line {
        std::string text;       // with its end
        bool isGeneral = false; // opens the group General, or is a key in it
        std::string key;        // with its group; empty where there is none
        std::string value;
        const LightSettingField* setting = nullptr; // none where the key is not one
    };

    void AddLine(std::string_view text);
    bool AddGroup(std::string_view content, Line& line);
    bool AddKey(std::string_view content, Line& line) const;
    bool BelongsToOthers() const;
    std::size_t FindPlaceForNew();

    std::vector<Line> m_lines;
    std::string m_problem;
    std::string m_group;       // at the end of what was read; empty for General
    bool m_hasGroup = false;   // before the end of what was read
    bool m_hasForeign = false; // a key outside of a group General that is spelled out
};

} // namespace Standalone
