// SPDX-License-Identifier: MIT
//
// Words that are left out of texts.
#pragma once

#include <string>
#include <set>

namespace mardle::tools {

using StopWords = std::set<std::string>;

// Common function words of English, and the pieces that contractions leave ("don", "ll").
StopWords EnglishStopWords();

// Whether StopWordsNamed reads a file of this name.
bool IsStopWordFile(const std::string& name);

// "english", "none", or else the name of a file: words between blanks and line ends, in any case.
StopWords StopWordsNamed(const std::string& name);

}  // namespace mardle::tools
