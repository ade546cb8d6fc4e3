// SPDX-License-Identifier: MIT
//
// A signal handler may neither allocate nor lock: the names stand in a table of atomic pointers.
#include "programs/files/partial_files.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>

#include "programs/files/held_signals.h"
#include "programs/files/own_name.h"

namespace mardle {
namespace {

constexpr mode_t kNewFile = 0666;  // of which the process's mask takes its part
constexpr mode_t kOwnerOnly = 0600;

std::array<std::atomic<const char*>, 8> names;
static_assert(std::atomic<const char*>::is_always_lock_free);

void Exchange(const char* old_name, const char* new_name) {
  for (std::atomic<const char*>& name : names) {
    const char* expected = old_name;
    if (name.compare_exchange_strong(expected, new_name)) return;
  }
}

// The signal is raised again with its own effect, which it has when this returns.
void RemoveAndEnd(int signal) {
  RemovePartialFiles();
  raise(signal);
}

// Fails when anything stands under the name, a link also.
int CreateNew(const std::string& name, mode_t mode) {
  return open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
}

}  // namespace

int PartialFile::Create(const std::string& folder, std::optional<mode_t> mode) {
  const HeldSignals held;
  int descriptor = -1;
  std::string name;
  do {
    name = OwnName(folder);
    descriptor = CreateNew(name, mode ? kOwnerOnly : kNewFile);
  } while (descriptor < 0 && errno == EEXIST);
  if (descriptor < 0) return descriptor;
  name_ = name;
  Exchange(nullptr, name_.c_str());
  if (mode) static_cast<void>(fchmod(descriptor, *mode));
  return descriptor;
}

void PartialFile::Forget() {
  if (!name_.empty()) Exchange(name_.c_str(), nullptr);
  name_.clear();
}

void PartialFile::Remove() {
  if (!name_.empty()) unlink(name_.c_str());
  Forget();
}

PartialFile::~PartialFile() { Remove(); }

void RemovePartialFiles() {
  for (const std::atomic<const char*>& name : names) {
    const char* const text = name.load();
    if (text != nullptr) unlink(text);
  }
}

void RemovePartialFilesWhenInterrupted() {
  for (const int signal : kInterrupts) {
    struct sigaction action = {};
    sigaction(signal, nullptr, &action);
    if (action.sa_handler == SIG_IGN) continue;
    action.sa_handler = RemoveAndEnd;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigaction(signal, &action, nullptr);
  }
}

}  // namespace mardle
