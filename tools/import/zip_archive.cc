// SPDX-License-Identifier: MIT
#include "tools/import/zip_archive.h"

#include <algorithm>
#include <new>
#include <utility>

#include "tools/text/file_error.h"

namespace mardle::tools {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 20;

zip_t* Open(const std::string& bytes, const std::string& path) {
  zip_error_t error;
  zip_error_init(&error);
  zip_source_t* const source = zip_source_buffer_create(bytes.data(), bytes.size(), 0, &error);
  if (source == nullptr) throw std::bad_alloc();
  zip_t* const archive = zip_open_from_source(source, ZIP_RDONLY, &error);
  if (archive == nullptr) {
    zip_source_free(source);
    const std::string reason = zip_error_strerror(&error);
    zip_error_fini(&error);
    throw FileError({path, 0}, "no archive of NumPy, or a damaged one: " + reason);
  }
  zip_error_fini(&error);
  return archive;
}

}  // namespace

ZipArchive::ZipArchive(const std::string& bytes, std::string path)
    : path_(std::move(path)), archive_(Open(bytes, path_), &zip_discard) {
  const zip_int64_t count = zip_get_num_entries(archive_.get(), 0);
  for (zip_int64_t i = 0; i < count; ++i) {
    const char* name = zip_get_name(archive_.get(), static_cast<zip_uint64_t>(i), ZIP_FL_ENC_RAW);
    if (name != nullptr) names_.emplace_back(name);
  }
}

std::optional<std::string> ZipArchive::Contents(const std::string& name) const {
  const auto place = std::find(names_.begin(), names_.end(), name);
  if (place == names_.end()) return std::nullopt;
  const std::unique_ptr<zip_file_t, int (*)(zip_file_t*)> file(
      zip_fopen(archive_.get(), name.c_str(), ZIP_FL_ENC_RAW), &zip_fclose);
  if (!file) throw FileError({path_, 0}, name + ": " + zip_strerror(archive_.get()));
  std::string contents;
  for (;;) {
    const std::size_t size = contents.size();
    contents.resize(size + kBlock);
    const zip_int64_t count = zip_fread(file.get(), contents.data() + size, kBlock);
    if (count < 0) throw FileError({path_, 0}, name + ": " + zip_file_strerror(file.get()));
    contents.resize(size + static_cast<std::size_t>(count));
    if (count == 0) return contents;
  }
}

}  // namespace mardle::tools
