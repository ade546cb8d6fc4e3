// SPDX-License-Identifier: MIT
#include "tools/text/own_name.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <random>

namespace mardle::tools {

std::string OwnName(const std::string& folder) {
  std::random_device bits;
  const std::uint64_t number = std::uint64_t{bits()} << 32U | bits();
  std::array<char, 40> name;
  std::snprintf(name.data(), name.size(), "/.mardle-%016llx.partial",
                static_cast<unsigned long long>(number));
  return folder + name.data();
}

}  // namespace mardle::tools
