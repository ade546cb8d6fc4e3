// SPDX-License-Identifier: MIT
//
// The kinds of input, and how they are told apart.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace mardle::tools {

enum class InputFormat { kMatrixMarket, kSvmlight, kTable, kLines, kFolder, kNpy, kNpz };

// Whether the file is binary, as its name tells by .npy or .npz.
std::optional<InputFormat> BinaryFormatOf(const std::string& path);

// A folder is known by being one, a Matrix Market file by its first line, others by the end of
// their name: .csv .tsv .tab, .svm .svmlight .libsvm, .txt, with or without .gz behind. Any other
// name leaves it to the first lines: pairs COLUMN:VALUE after a label; or equally many fields in
// both, and a number in the second; or else one document a line.
InputFormat DetectFormat(const std::string& path, std::string_view beginning);

// As messages call it.
const char* FormatName(InputFormat format);

}  // namespace mardle::tools
