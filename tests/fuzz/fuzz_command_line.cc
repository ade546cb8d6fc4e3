// SPDX-License-Identifier: MIT
//
// Command lines: one word a line, ended by newlines or NULs. No file is opened. The same words
// twice, and after any other command line, must give the same parameters and the same output.
#include <algorithm>

#include "programs/options.h"
#include "tests/fuzz/harness.h"

namespace fuzzing {
namespace {

constexpr std::size_t kMostWords = 200;

using Words = std::vector<std::string>;

Words WordsOf(Bytes bytes) {
  Words words = {"mardle"};
  std::string word;
  for (const std::uint8_t byte : bytes) {
    if (byte == '\n' || byte == '\0') {
      words.push_back(std::exchange(word, {}));
    } else {
      word += static_cast<char>(byte);
    }
  }
  if (!word.empty()) words.push_back(word);
  words.resize(std::min(words.size(), kMostWords));
  return words;
}

// Texts are whole words or what follows the first "=" of one.
void RequireTakenFrom(const Words& words, const molva::String& text) {
  if (!text) return;
  const std::string value = text.get();
  const auto holds = [&value](const std::string& word) {
    const std::size_t equals = word.find('=');
    return word == value || (equals != std::string::npos && word.substr(equals + 1) == value);
  };
  Require(std::any_of(words.begin(), words.end(), holds), "a text is an option's value");
}

void CheckParams(const Words& words, const mardle::RunParams& params) {
  for (const mardle::Option& option : mardle::OptionTable()) {
    if (option.text != nullptr) RequireTakenFrom(words, params.*option.text);
  }
  Require(static_cast<bool>(params.filename), "a run has a file name");
  RequireTakenFrom(words, params.filename);
  Require(params.plotformat.back() == '\0', "the format ends");
  Require(params.rb != 0 || params.direct != 0, "a method is chosen");
}

void AddText(const molva::String& text, Record& record) {
  record.Add(std::string(text ? text.get() : "(absent)"));
}

void AddParams(const mardle::RunParams& params, Record& record) {
  for (const mardle::Option& option : mardle::OptionTable()) {
    if (option.flag != nullptr) record.Add(std::vector<int>{params.*option.flag});
    if (option.number != nullptr) record.Add(std::vector{params.*option.number});
    if (option.fraction != nullptr) record.Add(std::vector{params.*option.fraction});
    if (option.text != nullptr) AddText(params.*option.text, record);
  }
  AddText(params.filename, record);
  record.Add(std::vector{params.nclusters});
  record.Add(std::span<const char>(params.plotformat));
}

Record Parse(Words words) {
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  Sandbox sandbox({.fill = 0xff});
  Record record;
  mardle::RunParams params;
  bool parsed = false;
  record.Add(FatalMessageOf([&] {
    mardle::ParseCommandLine(params, static_cast<int>(words.size()), argv.data());
    parsed = true;
  }));
  if (parsed) CheckParams(words, params);
  const std::string output = sandbox.Output();
  Require(parsed == output.empty(), "a command line that ends the run tells why");
  AddParams(params, record);
  record.Add(output);
  record.Add(sandbox.ErrorOutput());
  return record;
}

}  // namespace

void FuzzCommandLine(Bytes bytes) {
  const Words words = WordsOf(bytes);
  Require(Parse(words) == Parse(words), "the same words give the same parameters");
}

}  // namespace fuzzing
