// SPDX-License-Identifier: MIT
//
// A signal handler may neither allocate nor lock: the names stand in a table of atomic pointers.
#include "tools/text/partial_files.h"

#include <signal.h>
#include <unistd.h>

#include <array>
#include <atomic>

namespace mardle::tools {
namespace {

std::array<std::atomic<const char*>, 8> names;
static_assert(std::atomic<const char*>::is_always_lock_free);

void Replace(const char* old_name, const char* new_name) {
  for (std::atomic<const char*>& name : names) {
    const char* expected = old_name;
    if (name.compare_exchange_strong(expected, new_name)) return;
  }
}

// The signal is raised again with its own effect, which it has when this returns.
void RemoveAndEnd(int signal) {
  for (const std::atomic<const char*>& name : names) {
    const char* const text = name.load();
    if (text != nullptr) unlink(text);
  }
  raise(signal);
}

}  // namespace

PartialFile::PartialFile(const char* name) : name_(name) { Replace(nullptr, name_); }
PartialFile::~PartialFile() { Replace(name_, nullptr); }

void RemovePartialFilesWhenInterrupted() {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction action = {};
    sigaction(signal, nullptr, &action);
    if (action.sa_handler == SIG_IGN) continue;
    action.sa_handler = RemoveAndEnd;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigaction(signal, &action, nullptr);
  }
}

}  // namespace mardle::tools
