// SPDX-License-Identifier: MIT
#include "programs/files/own_name.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <random>

namespace mardle {

std::string FolderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

std::string OwnName(const std::string& folder) {
  std::random_device bits;
  const std::uint64_t number = std::uint64_t{bits()} << 32U | bits();
  std::array<char, 40> name;
  std::snprintf(name.data(), name.size(), "/.mardle-%016llx.partial",
                static_cast<unsigned long long>(number));
  return folder + name.data();
}

}  // namespace mardle
