// SPDX-License-Identifier: MIT
//
// Binary inputs of mardle-import: arrays of NumPy, archives of them, and texts in gzip and in other
// encodings.
//
// The first two bytes: the kind of input and the options; then the input, but that of an archive
// whose arrays come one after the other, each behind a byte for its name and up to a byte 0xfe, so
// that no checksum need be found.
#include <zip.h>

#include <array>
#include <string>

#include "tests/fuzz/imports.h"

namespace fuzzing {
namespace {

using mardle::tools::ImportOptions;
using mardle::tools::InputFormat;
using mardle::tools::Missing;

constexpr std::uint8_t kEndOfArray = 0xfe;
constexpr std::array<const char*, 8> kNames = {"format.npy",  "shape.npy", "indptr.npy",
                                               "indices.npy", "data.npy",  "row.npy",
                                               "col.npy",     "other.npy"};
constexpr std::array<const char*, 6> kEncodings = {"latin1",      "UTF-16",  "Shift_JIS",
                                                   "ISO-2022-JP", "GB18030", "UTF-7"};

std::string ArchiveOf(Input& input) {
  zip_error_t error;
  zip_error_init(&error);
  zip_source_t* const source = zip_source_buffer_create(nullptr, 0, 0, &error);
  zip_t* const archive = zip_open_from_source(source, ZIP_TRUNCATE, &error);
  Require(archive != nullptr, "an archive in memory");
  zip_source_keep(source);
  std::vector<std::string> arrays;
  arrays.reserve(kNames.size());
  while (!input.empty() && arrays.size() < kNames.size()) {
    const char* name = kNames[static_cast<std::size_t>(input.Below(kNames.size()))];
    const std::string& bytes = arrays.emplace_back(input.Until(kEndOfArray));
    zip_file_add(archive, name, zip_source_buffer(archive, bytes.data(), bytes.size(), 0),
                 ZIP_FL_OVERWRITE);
  }
  zip_close(archive);
  std::string packed;
  if (zip_source_open(source) == 0) {
    zip_source_seek(source, 0, SEEK_END);
    packed.resize(static_cast<std::size_t>(zip_source_tell(source)));
    zip_source_seek(source, 0, SEEK_SET);
    zip_source_read(source, packed.data(), packed.size());
    zip_source_close(source);
  }
  zip_source_free(source);
  return packed;
}

std::string ToString(Bytes bytes) { return {bytes.begin(), bytes.end()}; }

}  // namespace

void FuzzArrays(Bytes bytes) {
  Input input(bytes);
  const int kind = input.Below(4);
  const int choice = input.Byte();
  ImportOptions options;
  options.output.drop_empty = true;
  if (kind < 3) {
    options.format = kind == 0 ? InputFormat::kNpy : InputFormat::kNpz;
    options.preparation.missing = static_cast<Missing>(choice % 5);
    options.preparation.standardize = (choice & 32) != 0;
    options.preparation.sparse = (choice & 64) != 0;
  } else {
    options.format = InputFormat::kLines;
    options.words.pairs = (choice & 8) != 0;
    if ((choice & 16) != 0) options.encoding = kEncodings[static_cast<std::size_t>(choice) % 6];
  }
  const std::string text = kind == 1 ? ArchiveOf(input) : ToString(input.Rest());
  RequireImportOrRefusal(MemoryFile(text), options);
}

}  // namespace fuzzing
