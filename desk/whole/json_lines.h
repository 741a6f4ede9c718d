// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

namespace Desk
{

/// What is wrong with a JSON text, and in which line; the first is 1.
class JsonProblem : public std::runtime_error
{
public:
    JsonProblem(int line, const std::string& reason) : std::runtime_error(reason), m_line(line) {}
    int GetLine() const { return m_line; }

private:
    int m_line;
};

/// A value of a JSON text that knows the line it begins in. Members of objects stand in the order
/// of the text, the same name perhaps twice.
struct JsonValue {
    struct Member;
    typedef std::vector<JsonValue> List;
    typedef std::vector<Member> Object;

    int line = 1;
    std::variant<std::nullptr_t, bool, double, std::string, List, Object> content;

    /// Throws a JsonProblem for this value's line.
    [[noreturn]] void Refuse(const std::string& reason) const { throw JsonProblem(line, reason); }
};

struct JsonValue::Member {
    std::string name;
    int line = 1;
    JsonValue value;
};

/// Throws JsonProblem for what is no JSON.
JsonValue ParseJson(const std::string& text);

/// A text in quotation marks, with escapes for what would break a line.
std::string QuoteJson(const std::string& text);

// These throw JsonProblem with what the value has to be, which begins with @p what.

const std::string& ReadText(const JsonValue& value, const std::string& what);
/// A text that is not empty.
const std::string& ReadFilledText(const JsonValue& value, const std::string& what);
bool ReadSwitch(const JsonValue& value, const std::string& what);
double ReadNumber(const JsonValue& value, const std::string& what, int lowest, int highest);
/// A whole number, also one that is written with a point or an exponent.
long long ReadWhole(const JsonValue& value, const std::string& what, long long lowest,
                    long long highest);
/// @param most how long it may be
const JsonValue::List& ReadList(const JsonValue& value, const std::string& what, std::size_t most);

/// A name that an object may have, and what takes its value.
struct JsonField {
    std::string name;
    std::function<void(const JsonValue&)> take;
    bool isRequired = false;
};
JsonField MakeSwitchField(const std::string& name, bool& target);
template <class Number>
JsonField MakeWholeField(const std::string& name, long long lowest, long long highest,
                         Number& target, bool isRequired = false)
{
    return {name,
            [=, &target](const JsonValue& value) {
                target = static_cast<Number>(ReadWhole(value, QuoteJson(name), lowest, highest));
            },
            isRequired};
}

/// Has an object's values taken in the order of the text. Refuses names that are no field's, names
/// that stand there twice, and an object without one that is required.
void ReadObject(const JsonValue& value, const std::string& what,
                const std::vector<JsonField>& fields);

} // namespace Desk
