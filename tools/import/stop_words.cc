// SPDX-License-Identifier: MIT
#include "tools/import/stop_words.h"

#include <string_view>

#include "tools/import/text_tokens.h"
#include "tools/text/fields.h"
#include "tools/text/input_lines.h"

namespace mardle::tools {
namespace {

constexpr std::string_view kEnglish =
    // articles, pronouns, possessives
    "a an the i me my mine myself you your yours yourself yourselves he him his himself "
    "she her hers herself it its itself we us our ours ourselves they them their theirs themselves "
    "this that these those who whom whose which what whoever whatever whichever one ones "
    "someone something anyone anything everyone everything nobody nothing none "
    // forms of be, have, do; modal verbs
    "am is are was were be been being have has had having do does did done doing "
    "can could may might must shall should will would ought cannot "
    // prepositions
    "about above across after against along among around at before behind below beneath beside "
    "besides between beyond by down during except for from in inside into like near of off on onto "
    "out outside over per since through throughout till to toward towards under until up upon via "
    "with within without "
    // conjunctions
    "and or but nor so yet if unless because although though while whereas whether than as "
    // adverbs and determiners
    "not no yes only very too also just even still already again ever never always often "
    "here there where when why how then thus hence therefore however moreover "
    "all any both each every either neither few many more most much less least several some such "
    "other others another same own enough quite rather almost now once "
    // pieces of contractions
    "don doesn didn isn aren wasn weren hasn haven hadn won wouldn couldn shouldn mustn ain "
    "ll ve re";

void AddWords(std::string_view text, StopWords& words) {
  for (const std::string_view word : FieldsOf(text)) words.insert(LowerCase(word));
}

}  // namespace

StopWords EnglishStopWords() {
  StopWords words;
  AddWords(kEnglish, words);
  return words;
}

bool IsStopWordFile(const std::string& name) { return name != "english" && name != "none"; }

StopWords StopWordsNamed(const std::string& name) {
  if (name == "english") return EnglishStopWords();
  StopWords words;
  if (!IsStopWordFile(name)) return words;
  InputLines input(name);
  std::string_view line;
  while (input.Next(line)) AddWords(line, words);
  return words;
}

}  // namespace mardle::tools
