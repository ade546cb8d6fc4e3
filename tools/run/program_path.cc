// SPDX-License-Identifier: MIT
#include "tools/run/program_path.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string_view>

namespace mardle::tools {
namespace {

namespace fs = std::filesystem;

bool IsProgram(const std::string& file) {
  std::error_code ignored;
  return fs::is_regular_file(file, ignored) && access(file.c_str(), X_OK) == 0;
}

}  // namespace

std::string OwnPath() {
  std::error_code ignored;
  return fs::read_symlink("/proc/self/exe", ignored).string();
}

std::optional<std::string> FindProgram(const std::string& name, const char* path) {
  if (name.find('/') != std::string::npos) {
    return IsProgram(name) ? std::optional(name) : std::nullopt;
  }
  std::string_view folders = path == nullptr ? "" : path;
  for (;;) {
    const std::size_t end = folders.find(':');
    const std::string folder(folders.substr(0, end));
    // An empty folder is the working folder.
    const std::string file = (folder.empty() ? "." : folder) + "/" + name;
    if (IsProgram(file)) return file;
    if (end == std::string_view::npos) return std::nullopt;
    folders.remove_prefix(end + 1);
  }
}

std::optional<std::string> FindMardle() {
  const char* path = std::getenv("PATH");
  const char* named = std::getenv("MARDLE");
  if (named != nullptr && *named != '\0') return FindProgram(named, path);
  return FindBeside("mardle");
}

std::optional<std::string> FindBeside(const std::string& name) {
  const std::string beside = (fs::path(OwnPath()).parent_path() / name).string();
  return IsProgram(beside) ? beside : FindProgram(name, std::getenv("PATH"));
}

}  // namespace mardle::tools
