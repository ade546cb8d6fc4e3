// SPDX-License-Identifier: MIT
#include "tools/text/file_error.h"

#include <cerrno>
#include <cstring>

namespace mardle::tools {
namespace {

std::string PlaceText(const Place& place) {
  return place.line == 0 ? place.path : place.path + ":" + std::to_string(place.line);
}

}  // namespace

FileError::FileError(const Place& place, const std::string& message)
    : std::runtime_error(PlaceText(place) + ": " + message) {}

FileError SystemError(const std::string& path) {
  const int error = errno;
  return FileError({path, 0}, std::strerror(error));
}

}  // namespace mardle::tools
