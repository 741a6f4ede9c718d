// SPDX-License-Identifier: MIT
#include "whole/json_lines.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string_view>
#include <utility>

namespace Desk
{

namespace
{

/// More than any form needs, and little enough for values to be destroyed one within the other.
constexpr std::size_t MostLevels = 32;

/// Knows the line of the character that was taken last. One that is only looked at to see where a
/// number ends, such as a line feed, does not begin a new line yet.
class LineCounter
{
public:
    explicit LineCounter(const std::string& text) : m_text(text) {}

    char Take(std::size_t position)
    {
        for (; m_counted < position; ++m_counted)
            m_line += m_text[m_counted] == '\n' ? 1 : 0;
        return m_text[position];
    }
    int GetLine() const { return m_line; }

    /// The word that the character stands in, or that it ends.
    std::string GetWord() const
    {
        constexpr std::string_view Ends = " \t\r\n,:[]{}\"";
        constexpr std::size_t Most = 30;
        std::size_t begin = m_counted;
        while (begin > 0 && Ends.find(m_text[begin - 1]) == std::string_view::npos)
            --begin;
        const std::size_t end = std::min(m_text.find_first_of(Ends, begin), m_text.size());
        return m_text.substr(begin, std::min(end - begin, Most));
    }

private:
    const std::string& m_text;
    std::size_t m_counted = 0;
    int m_line = 1;
};

/// What the parser reads from.
class CountingIterator
{
public:
    typedef std::input_iterator_tag iterator_category;
    typedef char value_type;
    typedef std::ptrdiff_t difference_type;
    typedef const char* pointer;
    typedef char reference;

    CountingIterator(LineCounter& counter, std::size_t position)
        : m_counter(&counter), m_position(position)
    {
    }
    char operator*() const { return m_counter->Take(m_position); }
    CountingIterator& operator++()
    {
        ++m_position;
        return *this;
    }
    bool operator==(const CountingIterator& other) const { return m_position == other.m_position; }
    bool operator!=(const CountingIterator& other) const { return !(*this == other); }

private:
    LineCounter* m_counter;
    std::size_t m_position;
};

/// What the parser has to say, without its own name, places and states.
/// @param word that it stopped in
std::string Shorten(std::string what, const std::string& word)
{
    const auto cutBehind = [&what](const std::string& mark) {
        const std::size_t found = what.find(mark);
        if (found != std::string::npos)
            what.erase(0, found + mark.size());
    };
    cutBehind("] ");
    if (!what.starts_with("parse error"))
        return what;
    cutBehind(" - ");
    if (what.starts_with("invalid string: control character U+000A"))
        return "syntax error: a text does not end in its line";
    const std::size_t begin = what.find("; last read: ");
    if (begin != std::string::npos) {
        // What it read last goes back to the last text or number.
        const std::size_t expected = what.rfind("; expected ");
        const std::size_t end =
            expected == std::string::npos || expected < begin ? what.size() : expected;
        what.replace(begin, end - begin,
                     what.starts_with("invalid literal") ? " " + QuoteJson(word) : "");
    }
    return "syntax error: " + what;
}

/// Takes what the parser finds.
class Builder final : public nlohmann::json_sax<nlohmann::json>
{
public:
    explicit Builder(const LineCounter& counter) : m_counter(counter) {}

    JsonValue& GetRoot() { return m_root; }
    const std::optional<JsonProblem>& GetProblem() const { return m_problem; }

    bool null() override { return Add(MakeValue(nullptr)); }
    bool boolean(bool value) override { return Add(MakeValue(value)); }
    bool number_integer(std::int64_t value) override
    {
        return Add(MakeValue(static_cast<double>(value)));
    }
    bool number_unsigned(std::uint64_t value) override
    {
        return Add(MakeValue(static_cast<double>(value)));
    }
    bool number_float(double value, const std::string&) override { return Add(MakeValue(value)); }
    bool string(std::string& value) override { return Add(MakeValue(value)); }
    bool binary(binary_t&) override { return false; } // not in a text
    bool start_object(std::size_t) override { return Open(MakeValue(JsonValue::Object())); }
    bool start_array(std::size_t) override { return Open(MakeValue(JsonValue::List())); }
    bool end_object() override { return Close(); }
    bool end_array() override { return Close(); }

    bool key(std::string& name) override
    {
        m_open.back().name = name;
        m_open.back().line = m_counter.GetLine();
        return true;
    }

    bool parse_error(std::size_t, const std::string&,
                     const nlohmann::json::exception& error) override
    {
        return Fail(Shorten(error.what(), m_counter.GetWord()));
    }

private:
    template <class Content> JsonValue MakeValue(Content content) const
    {
        return {m_counter.GetLine(), std::move(content)};
    }

    bool Fail(const std::string& reason)
    {
        m_problem.emplace(m_counter.GetLine(), reason);
        return false;
    }

    bool Open(JsonValue value)
    {
        if (m_open.size() == MostLevels)
            return Fail("lists and objects stand more than " + std::to_string(MostLevels) +
                        " deep in each other");
        m_open.push_back({"", 1, std::move(value)});
        return true;
    }

    bool Close()
    {
        JsonValue value = std::move(m_open.back().value);
        m_open.pop_back();
        return Add(std::move(value));
    }

    bool Add(JsonValue value)
    {
        if (m_open.empty()) {
            m_root = std::move(value);
            return true;
        }
        JsonValue::Member& parent = m_open.back();
        if (auto* const list = std::get_if<JsonValue::List>(&parent.value.content))
            list->push_back(std::move(value));
        else
            std::get<JsonValue::Object>(parent.value.content)
                .push_back({parent.name, parent.line, std::move(value)});
        return true;
    }

    const LineCounter& m_counter;
    JsonValue m_root;
    /// Lists and objects that are not complete, each with the name that its next value has.
    std::vector<JsonValue::Member> m_open;
    std::optional<JsonProblem> m_problem;
};

template <class Content>
const Content& Get(const JsonValue& value, const std::string& what, const char* kind)
{
    const auto* const content = std::get_if<Content>(&value.content);
    if (!content)
        value.Refuse(what + " is " + kind);
    return *content;
}

std::string ListNames(const std::vector<JsonField>& fields)
{
    std::string names;
    for (const JsonField& field : fields)
        names += (names.empty() ? "" : ", ") + QuoteJson(field.name);
    return names;
}

const JsonField& FindField(const std::vector<JsonField>& fields, const JsonValue::Member& member,
                           const std::string& what)
{
    const auto found =
        std::find_if(fields.begin(), fields.end(),
                     [&member](const JsonField& field) { return field.name == member.name; });
    if (found == fields.end())
        throw JsonProblem(member.line, what + " has no " + QuoteJson(member.name) +
                                           "; it may have " + ListNames(fields));
    return *found;
}

} // namespace

JsonValue ParseJson(const std::string& text)
{
    LineCounter counter(text);
    if (const std::size_t zero = text.find('\0'); zero != std::string::npos) {
        // The parser would take it for the end.
        counter.Take(zero);
        throw JsonProblem(counter.GetLine(), "syntax error: there is a byte of 0");
    }
    Builder builder(counter);
    const bool isParsed = nlohmann::json::sax_parse(
        CountingIterator(counter, 0), CountingIterator(counter, text.size()), &builder);
    if (builder.GetProblem())
        throw JsonProblem(*builder.GetProblem());
    if (!isParsed)
        throw JsonProblem(counter.GetLine(), "syntax error");
    return std::move(builder.GetRoot());
}

std::string QuoteJson(const std::string& text)
{
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

const std::string& ReadText(const JsonValue& value, const std::string& what)
{
    return Get<std::string>(value, what, "a text");
}

const std::string& ReadFilledText(const JsonValue& value, const std::string& what)
{
    const auto& text = Get<std::string>(value, what, "a text that is not empty");
    if (text.empty())
        value.Refuse(what + " is a text that is not empty");
    return text;
}

bool ReadSwitch(const JsonValue& value, const std::string& what)
{
    return Get<bool>(value, what, "true or false");
}

double ReadNumber(const JsonValue& value, const std::string& what, int lowest, int highest)
{
    const auto* const number = std::get_if<double>(&value.content);
    if (!number || *number < lowest || *number > highest)
        value.Refuse(what + " is a number from " + std::to_string(lowest) + " to " +
                     std::to_string(highest));
    return *number;
}

long long ReadWhole(const JsonValue& value, const std::string& what, long long lowest,
                    long long highest)
{
    const auto* const number = std::get_if<double>(&value.content);
    if (!number || *number < static_cast<double>(lowest) ||
        *number > static_cast<double>(highest) || *number != std::floor(*number))
        value.Refuse(what + " is a whole number from " + std::to_string(lowest) + " to " +
                     std::to_string(highest));
    return static_cast<long long>(*number);
}

const JsonValue::List& ReadList(const JsonValue& value, const std::string& what, std::size_t most)
{
    const auto& list = Get<JsonValue::List>(value, what, "a list");
    if (list.size() > most)
        list[most].Refuse(what + " has at most " + std::to_string(most) + " entries, not " +
                          std::to_string(list.size()));
    return list;
}

JsonField MakeSwitchField(const std::string& name, bool& target)
{
    return {name, [name, &target](const JsonValue& value) {
                target = ReadSwitch(value, QuoteJson(name));
            }};
}

void ReadObject(const JsonValue& value, const std::string& what,
                const std::vector<JsonField>& fields)
{
    const auto& object = Get<JsonValue::Object>(value, what, "an object");
    for (const JsonField& field : fields) {
        const bool isThere =
            std::any_of(object.begin(), object.end(),
                        [&field](const auto& member) { return member.name == field.name; });
        if (field.isRequired && !isThere)
            value.Refuse(what + " needs a " + QuoteJson(field.name));
    }
    std::map<std::string, int> lines;
    for (const JsonValue::Member& member : object) {
        const JsonField& field = FindField(fields, member, what);
        const auto [first, isNew] = lines.emplace(member.name, member.line);
        if (!isNew)
            throw JsonProblem(member.line, QuoteJson(member.name) + " stands in line " +
                                               std::to_string(first->second) + " already");
        field.take(member.value);
    }
}

} // namespace Desk
