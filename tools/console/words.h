// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Console
{

typedef std::vector<std::string> Words;

/// The words of a line; those with blanks stand in double quotes, in which a backslash stands
/// before a quote or another backslash. Throws std::invalid_argument for a quote that does not end.
Words SplitWords(const std::string& line);
/// Throws std::invalid_argument unless there are that many words.
void CheckCount(const Words& words, std::size_t least, std::size_t most, const char* usage);
/// A word as SplitWords() reads it back.
std::string Quote(const std::string& word);

// A word as what it stands for. Each throws std::invalid_argument that names the word.

bool ToSwitch(const std::string& word); ///< on or off
/// The name of a file. Throws std::runtime_error for what is there and is no file, such as a pipe,
/// whose opening could take for ever.
std::string ToFile(const std::string& word);
int ToInteger(const std::string& word, int lowest, int highest);
double ToNumber(const std::string& word, double lowest, double highest);

} // namespace Console
