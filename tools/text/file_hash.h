// SPDX-License-Identifier: MIT
//
// SHA-256 of files, through nettle.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace mardle::tools {

struct FileHash {
  std::int64_t size = 0;
  std::string sha256;  // 64 hexadecimal digits
};

// Throws FileError when the file cannot be read.
FileHash HashOfFile(const std::string& path);

// Of several files below a folder: their sizes together, and the hash of the lines that sha256sum
// prints of them, in this order.
FileHash HashOfFiles(const std::string& folder, const std::vector<std::string>& paths);

}  // namespace mardle::tools
