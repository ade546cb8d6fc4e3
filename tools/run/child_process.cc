// SPDX-License-Identifier: MIT
//
// All signals are blocked and taken one by one, so there are no handlers and nothing to race with.
#include "tools/run/child_process.h"

#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>

#include "tools/run/argument_vector.h"
#include "tools/run/reported_errors.h"

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

// What the program gets: the signal mask that this process had, the usual effect of the signals
// that the tools ignore, and a pipe for its standard error.
class Attributes {
 public:
  Attributes(const sigset_t& mask, int standard_error) {
    posix_spawnattr_init(&attributes_);
    posix_spawn_file_actions_init(&actions_);
    posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    posix_spawnattr_setsigmask(&attributes_, &mask);
    sigset_t usual;
    sigemptyset(&usual);
    sigaddset(&usual, SIGPIPE);
    sigaddset(&usual, SIGXFSZ);
    posix_spawnattr_setsigdefault(&attributes_, &usual);
    posix_spawn_file_actions_adddup2(&actions_, standard_error, STDERR_FILENO);
  }
  ~Attributes() {
    posix_spawn_file_actions_destroy(&actions_);
    posix_spawnattr_destroy(&attributes_);
  }
  Attributes(const Attributes&) = delete;
  Attributes& operator=(const Attributes&) = delete;

  const posix_spawnattr_t* attributes() const { return &attributes_; }
  const posix_spawn_file_actions_t* actions() const { return &actions_; }

 private:
  posix_spawnattr_t attributes_;
  posix_spawn_file_actions_t actions_;
};

// Returns 0, or why the program could not be started.
int Start(const std::string& program, const std::vector<std::string>& arguments,
          const Attributes& attributes, pid_t& child) {
  std::vector<std::string> texts{program};
  texts.insert(texts.end(), arguments.begin(), arguments.end());
  return posix_spawn(&child, program.c_str(), attributes.actions(), attributes.attributes(),
                     ArgumentVector(texts).data(), environ);
}

// Takes the signals that have come; hands them on to the program.
void HandOn(pid_t child, const sigset_t& watched) {
  constexpr timespec kAtOnce{};
  for (;;) {
    const int signal = sigtimedwait(&watched, nullptr, &kAtOnce);
    if (signal <= 0) return;
    if (signal != SIGCHLD) kill(child, signal);
  }
}

// Hands signals and errors on until the program has ended; returns its wait status.
int WaitFor(pid_t child, const sigset_t& watched, ReportedErrors& errors) {
  const int signals = signalfd(-1, &watched, SFD_CLOEXEC);
  for (;;) {
    int wait_status = 0;
    const bool ended = waitpid(child, &wait_status, WNOHANG) == child;
    errors.PassOn();
    if (ended) {
      close(signals);
      return wait_status;
    }
    std::array<pollfd, 2> sources = {{{signals, POLLIN, 0}, {errors.read_end(), POLLIN, 0}}};
    poll(sources.data(), sources.size(), -1);
    HandOn(child, watched);
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
  ReportedErrors errors;
  ending.start_error =
      errors.is_open() ? Start(program, arguments, {mask, errors.write_end()}, child) : errno;
  errors.CloseWriteEnd();
  if (ending.start_error == 0) {
    const int wait_status = WaitFor(child, watched, errors);
    ending.has_failed_write = errors.has_failed_write();
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
