// SPDX-License-Identifier: MIT
//
// Words that are left out of texts.
#pragma once

#include <set>
#include <span>
#include <string>

namespace mardle::tools {

using StopWords = std::set<std::string>;

// Whether StopWordsNamed reads a file of this name.
bool IsStopWordFile(const std::string& name);

// The list of a language, which goes by its name or its code ("german", "de"); "none"; or else the
// name of a file: words between blanks and line ends, in any case. Throws FileError when there is
// no such file either.
StopWords StopWordsNamed(const std::string& name);

// The words of all the names together.
StopWords StopWordsOf(std::span<const std::string> names);

}  // namespace mardle::tools
