// SPDX-License-Identifier: MIT
//
// The files in a ZIP archive that is held in memory, through libzip.
#pragma once

#include <zip.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace mardle::tools {

class ZipArchive {
 public:
  // The bytes are borrowed. Throws FileError, which calls the archive by its path, when they are no
  // archive.
  ZipArchive(const std::string& bytes, std::string path);

  const std::vector<std::string>& names() const { return names_; }

  // What the file of this name holds; nothing when there is none. Throws FileError when it is
  // damaged.
  std::optional<std::string> Contents(const std::string& name) const;

 private:
  std::string path_;
  std::unique_ptr<zip_t, void (*)(zip_t*)> archive_;
  std::vector<std::string> names_;
};

}  // namespace mardle::tools
