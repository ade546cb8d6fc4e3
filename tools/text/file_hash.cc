// SPDX-License-Identifier: MIT
#include "tools/text/file_hash.h"

#include <nettle/sha2.h>

#include <array>
#include <cstdio>

#include "tools/text/file_error.h"
#include "tools/text/input_lines.h"

namespace mardle::tools {
namespace {

class Sha256 {
 public:
  Sha256() { sha256_init(&context_); }
  void Add(const char* bytes, std::size_t size) {
    sha256_update(&context_, size, reinterpret_cast<const std::uint8_t*>(bytes));
  }
  std::string Digits() {
    constexpr char kDigits[] = "0123456789abcdef";
    std::array<std::uint8_t, SHA256_DIGEST_SIZE> digest;
    sha256_digest(&context_, digest.size(), digest.data());
    std::string digits;
    for (const std::uint8_t byte : digest) digits += {kDigits[byte / 16], kDigits[byte % 16]};
    return digits;
  }

 private:
  sha256_ctx context_;
};

}  // namespace

FileHash HashOfFile(const std::string& path) {
  const molva::File file = OpenForReading(path);
  std::array<char, 65536> block;
  Sha256 sum;
  FileHash hash;
  while (const std::size_t count = std::fread(block.data(), 1, block.size(), file.get())) {
    sum.Add(block.data(), count);
    hash.size += static_cast<std::int64_t>(count);
  }
  if (std::ferror(file.get()) != 0) throw SystemError(path);
  hash.sha256 = sum.Digits();
  return hash;
}

FileHash HashOfFiles(const std::string& folder, const std::vector<std::string>& paths) {
  Sha256 sum;
  FileHash all;
  for (const std::string& path : paths) {
    const FileHash hash = HashOfFile(folder + "/" + path);
    const std::string line = hash.sha256 + "  " + path + "\n";
    sum.Add(line.data(), line.size());
    all.size += hash.size;
  }
  all.sha256 = sum.Digits();
  return all;
}

}  // namespace mardle::tools
