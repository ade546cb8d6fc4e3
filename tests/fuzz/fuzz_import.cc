// SPDX-License-Identifier: MIT
//
// Inputs of mardle-import: what it makes is a matrix that the program reads, with the numbers of
// the summary; what it refuses is named in the message and leaves no file behind.
//
// The first two bytes: the format and the options; then the input.
#include <algorithm>

#include "tests/fuzz/imports.h"

namespace fuzzing {
namespace {

using mardle::tools::ImportOptions;
using mardle::tools::InputFormat;

ImportOptions OptionsFrom(Input& input, InputFormat format) {
  ImportOptions options;
  options.output.drop_empty = input.Flag();
  const int choice = input.Byte();
  const bool bits[] = {(choice & 1) != 0, (choice & 2) != 0, (choice & 4) != 0, (choice & 8) != 0};
  if (format == InputFormat::kSvmlight) options.zero_based = bits[0];
  if (format == InputFormat::kMatrixMarket) options.preparation.sparse = bits[0];
  if (format == InputFormat::kLines || format == InputFormat::kTable) {
    if (bits[0]) options.table.class_column = "1";
    if (bits[1]) options.table.label_column = "2";
  }
  if (format == InputFormat::kTable) {
    options.table.no_header = bits[2];
    if (bits[3]) options.table.text_columns = {"3"};
    if (!bits[3]) {
      options.preparation.sparse = (choice & 16) != 0;
      options.preparation.missing = static_cast<mardle::tools::Missing>((choice >> 5) % 5);
      options.table.decimal_comma = (choice & 1) != 0;
    }
  }
  return options;
}

// A file of few bytes may tell of more rows than there is time for here.
bool HasLongNumber(const std::string& text) {
  constexpr int kDigits = 5;
  int digits = 0;
  return std::any_of(text.begin(), text.end(), [&digits](char c) {
    digits = c >= '0' && c <= '9' ? digits + 1 : 0;
    return digits > kDigits;
  });
}

}  // namespace

void FuzzImport(Bytes bytes) {
  static constexpr InputFormat kFormats[] = {InputFormat::kMatrixMarket, InputFormat::kSvmlight,
                                             InputFormat::kTable, InputFormat::kLines};
  Input input(bytes);
  const InputFormat format = kFormats[input.Below(4)];
  ImportOptions options = OptionsFrom(input, format);
  options.format = format;
  const std::string text = Expanded(input.Rest());
  if (format == InputFormat::kMatrixMarket && HasLongNumber(text)) return;
  const MemoryFile file(text);
  RequireImportOrRefusal(file, options);
}

}  // namespace fuzzing
