// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "console/words.h"

namespace Console
{

/// A form that a line can have, read from its text as VerbHelp has it: words in lower case stand
/// for themselves, "on|off" for one of them, a word with capitals for a value; "[...]" may be left
/// out, "..." repeats.
class Usage
{
public:
    struct Part {
        std::vector<std::string> literals; ///< none for a value
        std::string value;                 ///< such as "BUTTON"
        bool isOptional = false;
        bool repeats = false;
    };

    explicit Usage(const std::string& text);

    const std::string& GetText() const { return m_text; }
    const std::vector<Part>& GetParts() const { return m_parts; }
    /// Whether these words, the verb among them, have the form. Values are not looked at.
    bool Matches(const Words& words) const;
    /// The part that a word belongs to, counted from 0, of words that have the form.
    const Part& GetPart(std::size_t word) const;

private:
    std::string m_text;
    std::vector<Part> m_parts;
};

} // namespace Console
