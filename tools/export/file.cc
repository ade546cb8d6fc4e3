// SPDX-License-Identifier: MIT
#include "tools/export/file.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>

#include "tools/export/failure.h"

namespace mardle::exporting {
namespace {

Failure SystemFailure(const std::string& path) {
  const std::string reason = std::strerror(errno);
  return Failure(path + ": " + reason);
}

}  // namespace

molva::File OpenOrFail(const std::string& path) {
  molva::File file = molva::OpenFile(path.c_str(), "r");
  if (!file) throw SystemFailure(path);
  return file;
}

void WriteOrFail(const std::string& path, const std::string& text) {
  if (path.empty()) {
    std::cout << text << std::flush;
    if (!std::cout) throw SystemFailure("standard output");
    return;
  }
  std::ofstream file(path, std::ios::binary);
  file << text;
  file.close();
  if (!file) throw SystemFailure(path);
}

}  // namespace mardle::exporting
