// SPDX-License-Identifier: MIT
//
// Inputs of mardle-import: what it makes is a matrix that the program reads, with the numbers of
// the summary; what it refuses is named in the message and leaves no file behind.
//
// The first two bytes: the format and the options; then the input.
#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "programs/io/read_matrix.h"
#include "tests/fuzz/harness.h"
#include "tools/import/import.h"

namespace fuzzing {
namespace {

namespace fs = std::filesystem;
using mardle::tools::ImportOptions;
using mardle::tools::ImportResult;
using mardle::tools::InputFormat;
using mardle::tools::MatrixSummary;

// A folder of this process, empty again at the end of every run.
class Folder {
 public:
  Folder() {
    static const fs::path kFolder = Make();
    path_ = kFolder;
  }
  ~Folder() {
    for (const fs::directory_entry& entry : fs::directory_iterator(path_)) fs::remove(entry);
  }
  std::string File(const char* name) const { return path_ / name; }
  bool empty() const { return fs::is_empty(path_); }

 private:
  static fs::path Make() {
    std::string name = fs::temp_directory_path() / "mardle-fuzz-XXXXXX";
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("mkdtemp");
    std::atexit([] { fs::remove(Name()); });
    return Name() = name;
  }
  static fs::path& Name() {
    static fs::path name;
    return name;
  }
  fs::path path_;
};

ImportOptions OptionsFrom(Input& input, InputFormat format) {
  ImportOptions options;
  options.quiet = true;
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

mardle::RunParams ParamsOf(const std::string& matrix, bool dense) {
  mardle::RunParams params;
  params.filename = molva::mystrdup(matrix.c_str());
  params.denseinput = dense ? 1 : 0;
  return params;
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

// Matrices of many columns may ask for more memory than there is here.
void RequireReadable(const std::string& path, const MatrixSummary& summary) {
  Sandbox sandbox({.fill = 0xff});
  mardle::Matrix mat;
  const std::string message =
      FatalMessageOf([&] { mardle::ReadMatrix(ParamsOf(path, summary.dense), mat); });
  if (message.starts_with("***Memory allocation failed for ")) return;
  Require(message.empty(), "a matrix without faults: " + message);
  Require(mat.nrows == summary.rows && mat.ncols == summary.columns, "the counts of the summary");
  if (!summary.dense) {
    Require(mardle::NonZeroCount(mat) == summary.entries, "the entries of the summary");
  }
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
  const Folder folder;
  options.input = file.path();
  options.output.path = folder.File("m");
  ImportResult result;
  try {
    result = Import(options);
  } catch (const mardle::tools::FileError& error) {
    const std::string message = error.what();
    Require(message.starts_with(file.path()) || message.starts_with(options.output.path),
            "a message that names the file: " + message);
    Require(folder.empty(), "nothing left behind: " + message);
    return;
  }
  RequireReadable(options.output.path, result.matrix);
}

}  // namespace fuzzing
