// SPDX-License-Identifier: MIT
#include "tools/export/file_digest.h"

#include <nettle/sha2.h>

#include <array>
#include <cstdint>
#include <cstdio>

#include "tools/text/file_error.h"
#include "tools/text/input_lines.h"

namespace mardle::exporting {

std::string Sha256OfFile(const std::string& path) {
  const molva::File file = tools::OpenForReading(path);
  sha256_ctx context;
  sha256_init(&context);
  std::array<std::uint8_t, 65536> block;
  while (const std::size_t size = std::fread(block.data(), 1, block.size(), file.get())) {
    sha256_update(&context, size, block.data());
  }
  if (std::ferror(file.get()) != 0) throw tools::SystemError(path);
  std::array<std::uint8_t, SHA256_DIGEST_SIZE> digest;
  sha256_digest(&context, digest.size(), digest.data());
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : digest) text += {kDigits[byte / 16], kDigits[byte % 16]};
  return text;
}

}  // namespace mardle::exporting
