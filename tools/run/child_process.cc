// SPDX-License-Identifier: MIT
//
// All signals are blocked and taken one by one, so there are no handlers and nothing to race with.
#include "tools/run/child_process.h"

#include <signal.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "tools/run/argument_vector.h"

namespace mardle::tools {
namespace {

constexpr int kHandedOn[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGUSR1, SIGUSR2};
constexpr int kShellSignalBase = 128;

sigset_t WatchedSignals() {
  sigset_t watched;
  sigemptyset(&watched);
  sigaddset(&watched, SIGCHLD);
  for (const int signal : kHandedOn) sigaddset(&watched, signal);
  return watched;
}

// Starts the program with the signal mask that this process had.
int Start(const std::string& program, const std::vector<std::string>& arguments,
          const sigset_t& mask, pid_t& child) {
  std::vector<std::string> texts{program};
  texts.insert(texts.end(), arguments.begin(), arguments.end());
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
  posix_spawnattr_setsigmask(&attributes, &mask);
  const int error = posix_spawn(&child, program.c_str(), nullptr, &attributes,
                                ArgumentVector(texts).data(), environ);
  posix_spawnattr_destroy(&attributes);
  return error;
}

// Hands signals on until the program has ended; returns its wait status.
int WaitFor(pid_t child, const sigset_t& watched) {
  for (;;) {
    int wait_status = 0;
    if (waitpid(child, &wait_status, WNOHANG) == child) return wait_status;
    const int signal = sigwaitinfo(&watched, nullptr);
    if (signal > 0 && signal != SIGCHLD) kill(child, signal);
  }
}

}  // namespace

Ending RunProgram(const std::string& program, const std::vector<std::string>& arguments) {
  // Whoever started this process may ignore ended children; then nothing would tell of them.
  signal(SIGCHLD, SIG_DFL);
  const sigset_t watched = WatchedSignals();
  sigset_t mask;
  sigprocmask(SIG_BLOCK, &watched, &mask);
  Ending ending;
  pid_t child = 0;
  ending.start_error = Start(program, arguments, mask, child);
  if (ending.start_error == 0) {
    const int wait_status = WaitFor(child, watched);
    if (WIFSIGNALED(wait_status)) ending.signal = WTERMSIG(wait_status);
    if (WIFEXITED(wait_status)) ending.status = WEXITSTATUS(wait_status);
  }
  sigprocmask(SIG_SETMASK, &mask, nullptr);
  return ending;
}

void EndBySignal(int signal) {
  // The program may have left a core file; this process must not write over it.
  const rlimit no_core{0, 0};
  setrlimit(RLIMIT_CORE, &no_core);
  sigset_t one;
  sigemptyset(&one);
  sigaddset(&one, signal);
  ::signal(signal, SIG_DFL);
  sigprocmask(SIG_UNBLOCK, &one, nullptr);
  raise(signal);
  std::_Exit(kShellSignalBase + signal);
}

}  // namespace mardle::tools
