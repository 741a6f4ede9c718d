// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "console/parts.h"
#include "console/words.h"

namespace Console
{

/// Verbs by their first word.
struct VerbTable {
    typedef std::function<void(Session::Parts& parts, const Words& words)> Act;

    /// Adds what a first word does. The words that it gets begin behind that word.
    void Add(const std::string& word, Act act, std::vector<VerbHelp> itsHelp)
    {
        acts[word] = std::move(act);
        help.insert(help.end(), itsHelp.begin(), itsHelp.end());
    }

    /// What is never to wait for a verb that a stuck device holds up: it takes no turn.
    std::set<std::string> free;
    std::map<std::string, Act> acts;
    std::vector<VerbHelp> help;
};

// Each adds the verbs of its source.
void AddCdVerbs(VerbTable& table);
void AddDeskVerbs(VerbTable& table);
void AddLightVerbs(VerbTable& table);
void AddMidiVerbs(VerbTable& table);
void AddTimecodeVerbs(VerbTable& table);
void AddWingVerbs(VerbTable& table);

} // namespace Console
