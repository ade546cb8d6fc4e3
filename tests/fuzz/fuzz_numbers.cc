// SPDX-License-Identifier: MIT
//
// One word of a matrix file as a value and as a column number: the bits that strtod gives, rounded
// to float, and the column that strtol gives. Reading a file takes twenty times as long as
// converting the word where it stands, so one word in sixteen goes through files as well.
#include <algorithm>
#include <cstdlib>

#include "programs/io/number_text.h"
#include "programs/io/read_matrix.h"
#include "tests/fuzz/harness.h"

namespace fuzzing {
namespace {

// What a word can hold. Other bytes end it or its line.
bool BelongsToAWord(char c) { return c != ' ' && c != '\t' && c != '\n' && c != '\0'; }

std::string ReadInto(mardle::Matrix& mat, const std::string& text, int dense) {
  const MemoryFile file(text);
  return FatalMessageOf([&] {
    mardle::RunParams params;
    params.filename = molva::mystrdup(file.path());
    params.denseinput = dense;
    mardle::ReadMatrix(params, mat);
  });
}

// Where it stands, with another field behind it: the bits of the word alone, and its end.
void CheckInPlace(const std::string& word) {
  for (const char* behind : {"", " 7", "\t7"}) {
    const std::string text = word + behind;
    const mardle::Parsed<double> value = mardle::ParseDouble(text.c_str());
    const double wanted = std::strtod(word.c_str(), nullptr);
    Require(std::memcmp(&wanted, &value.value, sizeof wanted) == 0,
            Format("%s is %a, not %a", text.c_str(), wanted, value.value));
    const mardle::Parsed<long> number = mardle::ParseLong(text.c_str());
    Require(number.value == std::strtol(word.c_str(), nullptr, 10),
            Format("%s is not %ld", text.c_str(), number.value));
    const char* end = text.c_str() + word.size();
    Require(value.end == end && number.end == end, "a number ends with its field");
  }
}

void CheckValue(const std::string& word) {
  mardle::Matrix mat;
  Require(ReadInto(mat, "1 1\n" + word + "\n", 1).empty(), "a matrix of one value is read");
  const auto wanted = static_cast<float>(std::strtod(word.c_str(), nullptr));
  Require(std::memcmp(&wanted, &mat.rowval[0], sizeof wanted) == 0,
          Format("%s is %a, not %a", word.c_str(), static_cast<double>(wanted),
                 static_cast<double>(mat.rowval[0])));
}

void CheckColumn(const std::string& word) {
  constexpr int kColumns = 1000;
  mardle::Matrix mat;
  const std::string text = Format("1 %d 1\n%s 1\n", kColumns, word.c_str());
  const std::string message = ReadInto(mat, text, 0);
  const long column = std::max<long>(std::strtol(word.c_str(), nullptr, 10), INT_MIN + 1L) - 1;
  if (column < kColumns) {
    Require(message.empty(), "a column within the matrix is taken: " + message);
    Require(mat.rowind[0] == column,
            Format("%s is column %ld, not %d", word.c_str(), column, mat.rowind[0]));
  } else {
    Require(message == Format("Column number is greater than ncols. Ncols=%d, ColNum=%ld, Row=0\n",
                              kColumns, column),
            "a column outside is told: " + message);
  }
}

// By the word alone, so that an input does the same whenever it is run.
bool GoesThroughFiles(const std::string& word) {
  std::uint32_t hash = 0;
  for (const char c : word) hash = 31 * hash + static_cast<unsigned char>(c);
  return hash % 16 == 0;
}

}  // namespace

void FuzzNumbers(Bytes bytes) {
  constexpr std::size_t kLongest = 4000;
  std::string word = Expanded(bytes);
  word.resize(std::min(word.size(), kLongest));
  std::erase_if(word, [](char c) { return !BelongsToAWord(c); });
  if (word.empty()) return;
  CheckInPlace(word);
  if (!GoesThroughFiles(word)) return;
  const Sandbox sandbox({.fill = 0xff});
  CheckValue(word);
  CheckColumn(word);
}

}  // namespace fuzzing
