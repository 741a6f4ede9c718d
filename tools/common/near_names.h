// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace Tools
{

typedef std::vector<std::string> Names;

/// The name that @p word stands for: the same one, otherwise the only one that differs from it in
/// the case of its letters alone. Nothing where there is no such name, or more than one.
std::optional<std::string> FindName(const std::string& word, const Names& names);

/// Names that @p word may have been meant to be, the nearest first, three at most: they begin with
/// it, or few letters make the difference. Case does not count.
Names FindNearNames(const std::string& word, const Names& names);

/// What to say after a word that is not a name: "; the nearest are A and B; there are A, B, C".
std::string SuggestNames(const std::string& word, const Names& names);

/// FindName() that throws std::invalid_argument for a word that is not a name: "there is no WHAT
/// 'WORD'" with the nearest names and all that there are.
std::string ChooseName(const std::string& what, const std::string& word, const Names& names);

} // namespace Tools
