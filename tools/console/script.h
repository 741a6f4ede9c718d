// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "console/session.h"
#include "console/words.h"

namespace Console
{

/// Thrown when what is expected does not hold.
struct ExpectationError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// A line of a script and where it stands.
struct ScriptLine {
    std::string text;
    std::size_t number = 0; ///< the first being 1
};

/// The lines of a script that do something; '#' begins a remark.
std::vector<ScriptLine> ParseDeskScript(const std::string& text);

/// "PATH = VALUE" and the like, about what Session::GetState() tells. A value.
class Condition
{
public:
    /// PATH OPERATOR VALUE, the operator one of = != < > <= >=. Throws std::invalid_argument.
    static Condition Parse(const std::vector<std::string>& words);
    const std::string& GetPath() const { return m_path; }
    /// The same about another path, such as this one as the state has it.
    Condition WithPath(const std::string& path) const;
    /// Such as "cd/status = playing".
    const std::string& GetText() const { return m_text; }
    /// Throws std::invalid_argument where numbers are compared with what is none.
    bool Holds(const nlohmann::json& state) const;
    /// What stands at the path, such as "stopped"; "nothing" where there is nothing.
    std::string GetFound(const nlohmann::json& state) const;

private:
    std::string m_text;
    std::string m_path;
    std::string m_operator;
    std::string m_value;
};

/// A condition to wait for, and for how long at most.
struct Patience {
    Condition condition;
    double seconds = 0;
};

/// PATH OPERATOR VALUE [within SECONDS]; ten seconds if not told. Throws std::invalid_argument.
Patience ParseUntil(Words words);

/// What a line can be besides the verbs of a session.
const std::vector<VerbHelp>& GetScriptVerbs();

/// What a state holds at a path such as "widgets/motor/leds/10"; null where there is nothing.
const nlohmann::json* FindInState(const nlohmann::json& state, const std::string& path);

/// Does one line: a verb of the session, or one of GetScriptVerbs(). A path that the state cannot
/// have is wrong; one where nothing stands yet is not. Throws ExpectationError, and what
/// Session::Do() throws.
/// @param pause waits so many seconds, or less when it was told to stop, and then returns false
/// @param print takes what is to be printed
void DoScriptLine(Session& session, const std::string& text,
                  const std::function<bool(double seconds)>& pause,
                  const std::function<void(const std::string&)>& print);

} // namespace Console
