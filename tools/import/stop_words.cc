// SPDX-License-Identifier: MIT
#include "tools/import/stop_words.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <vector>

#include "tools/import/stop_word_lists.h"
#include "tools/import/text_tokens.h"
#include "tools/text/fields.h"
#include "tools/text/input_lines.h"
#include "tools/text/suggestion.h"

namespace mardle::tools {
namespace {

constexpr char kNone[] = "none";

const StopWordList* ListNamed(const std::string& name) {
  const std::span<const StopWordList> lists = StopWordLists();
  const auto list = std::find_if(lists.begin(), lists.end(), [&name](const StopWordList& each) {
    return each.language == name || each.code == name;
  });
  return list == lists.end() ? nullptr : &*list;
}

void AddWords(std::string_view text, StopWords& words) {
  for (const std::string_view word : FieldsOf(text)) words.insert(LowerCase(word));
}

void RequireFile(const std::string& name) {
  std::error_code ignored;
  if (name.find('/') != std::string::npos || std::filesystem::exists(name, ignored)) return;
  std::vector<std::string> names;
  for (const StopWordList& list : StopWordLists()) names.emplace_back(list.language);
  names.emplace_back(kNone);
  std::string message = "there is no such file and no such list of stop words";
  message += DidYouMean(name, names);
  message += message.ends_with('?') ? " The lists are " : "; the lists are ";
  for (const std::string& each : names) message += (&each == names.data() ? "" : ", ") + each;
  throw FileError({name, 0}, message);
}

}  // namespace

bool IsStopWordFile(const std::string& name) { return name != kNone && ListNamed(name) == nullptr; }

StopWords StopWordsNamed(const std::string& name) {
  StopWords words;
  if (name == kNone) return words;
  if (const StopWordList* list = ListNamed(name)) {
    AddWords(list->words, words);
    return words;
  }
  RequireFile(name);
  InputLines input(name);
  std::string_view line;
  while (input.Next(line)) AddWords(line, words);
  return words;
}

StopWords StopWordsOf(std::span<const std::string> names) {
  StopWords words;
  for (const std::string& name : names) words.merge(StopWordsNamed(name));
  return words;
}

}  // namespace mardle::tools
