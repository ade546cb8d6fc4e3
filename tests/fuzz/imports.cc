// SPDX-License-Identifier: MIT
#include "tests/fuzz/imports.h"

#include <cstdlib>
#include <filesystem>

#include "programs/io/read_matrix.h"

namespace fuzzing {
namespace {

namespace fs = std::filesystem;
using mardle::tools::ImportOptions;
using mardle::tools::ImportResult;
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

mardle::RunParams ParamsOf(const std::string& matrix, bool dense) {
  mardle::RunParams params;
  params.filename = molva::mystrdup(matrix.c_str());
  params.denseinput = dense ? 1 : 0;
  return params;
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

void RequireImportOrRefusal(const MemoryFile& file, ImportOptions options) {
  const Folder folder;
  options.quiet = true;
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
