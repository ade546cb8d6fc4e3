// SPDX-License-Identifier: MIT
#include "tools/cluster/scratch_folder.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>

#include "programs/files/own_name.h"
#include "tools/text/file_error.h"
#include "tools/text/file_exchange.h"
#include "tools/text/folder_lock.h"
#include "tools/text/output_target.h"

namespace mardle::tools {
namespace {

namespace fs = std::filesystem;

constexpr mode_t kNewFolder = 0777;  // of which the process's mask takes its part

std::string AbsolutePath(const std::string& name) {
  fs::path path = fs::absolute(name).lexically_normal();
  if (!path.has_filename()) path = path.parent_path();
  return path.string();
}

}  // namespace

ScratchFolder::ScratchFolder(const std::string& name)
    : name_(name), target_(AbsolutePath(name)), path_(OwnName(FolderOf(target_))) {
  if (mkdir(path_.c_str(), kNewFolder) != 0) {
    path_.clear();
    throw SystemError(name_);
  }
}

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  if (!path_.empty()) fs::remove_all(path_, ignored);
}

void ScratchFolder::Keep(const std::vector<std::string>& leftovers) {
  if (std::rename(path_.c_str(), target_.c_str()) == 0) {
    path_.clear();
    return;
  }
  if (errno != ENOTEMPTY && errno != EEXIST) throw SystemError(name_);
  const FolderLock lock({&target_, 1});
  FileExchange exchange;
  for (const std::string& leftover : leftovers) exchange.Remove(target_ + "/" + leftover);
  for (const fs::directory_entry& file : fs::directory_iterator(path_)) {
    exchange.Replace(target_ + "/" + file.path().filename().string(), file.path().string());
  }
  exchange.Keep();
}

}  // namespace mardle::tools
