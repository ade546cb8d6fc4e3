// SPDX-License-Identifier: MIT
#include "tools/text/input_error.h"

namespace mardle::tools {
namespace {

std::string NameOf(const Place& place) {
  return place.line == 0 ? place.path : place.path + ":" + std::to_string(place.line);
}

}  // namespace

InputError::InputError(const Place& place, const std::string& message)
    : std::runtime_error(NameOf(place) + ": " + message) {}

}  // namespace mardle::tools
