// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "desk/virtual_network.h"

namespace Tools
{

/// What happens to virtual network adapters, as a text: one step a line, "SECONDS ADAPTER VERB
/// [WORD]", '#' begins a remark. Verbs: add, remove, up, down, speed BITS-PER-SECOND, rename NAME,
/// flap COUNT, and overrun, for a link that changes while the news of it are lost.
class NetworkScript
{
public:
    struct Step {
        std::string place; ///< "NAME:LINE" of a script's step
        double seconds;    ///< since the start, never less than the step before
        std::wstring adapter;
        std::string verb;
        std::string word;
    };

    /// Throws std::invalid_argument with "NAME:LINE: REASON" for a text that is not a script.
    static NetworkScript Parse(const std::string& text, const std::string& name);
    /// Reads a file; throws std::runtime_error when it cannot.
    static NetworkScript Read(const std::string& file);

    /// A step without its time: the verb and its word. Throws std::invalid_argument with the
    /// reason.
    static Step ParseAct(const std::string& adapter, const std::string& text);

    const std::vector<Step>& GetSteps() const { return m_steps; }
    /// Does one step. Throws std::invalid_argument when it cannot be done.
    static void Do(const Step& step, Desk::VirtualNetwork& network);

private:
    std::vector<Step> m_steps;
};

} // namespace Tools
