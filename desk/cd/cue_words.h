// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace Desk
{

/// What is wrong with a line of a CUE sheet, without its number.
class CueProblem : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

std::string Quote(const std::string& text);
std::string ToUpper(std::string word);

/// Whether a line holds nothing for a reader: a remark that does not tell a length.
bool IsCueRemark(const std::string& line);
/// Words of a line; one in quotation marks may hold blanks. Throws CueProblem.
std::vector<std::string> SplitCueLine(const std::string& line);
/// A number of decimal digits and nothing else, with at most so many; -1 for none.
int ToCueNumber(const std::string& digits, std::size_t most);
/// The frames of a time "mm:ss:ff". Throws CueProblem.
int ParseCueTime(const std::string& text);

} // namespace Desk
