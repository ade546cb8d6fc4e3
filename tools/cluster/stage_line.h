// SPDX-License-Identifier: MIT
//
// A line on standard error that tells how far the work has come.
#pragma once

#include <chrono>
#include <string>

#include "lib/molva.h"

namespace mardle::tools {

// Silent unless standard error is a terminal.
class StageLine {
 public:
  explicit StageLine(bool quiet);
  ~StageLine();
  StageLine(const StageLine&) = delete;
  StageLine& operator=(const StageLine&) = delete;

  // A stage begins: "reading".
  void Begin(const std::string& stage);
  // The line goes.
  void End();

  // What the library tells while it works; `line` is a StageLine. Never asks for the end.
  static int Hook(MOLVA_Event event, int done, int total, void* line);

  // "clustering: bisection 3 of 7, 12 s, about 15 s left". Of what is done nothing is left to
  // estimate from, so there is an estimate from the first on.
  static std::string Text(const std::string& stage, const std::string& step, int done, int total,
                          double seconds);

 private:
  void Show(const std::string& text);

  bool shown_;
  std::string stage_;
  std::string step_;  // what is counted, "bisection" or "trial"
  int done_ = 0;
  int total_ = 0;
  std::chrono::steady_clock::time_point begin_;
  std::chrono::steady_clock::time_point last_;
};

// While it lives, the library tells the line of its progress.
class Progressing {
 public:
  explicit Progressing(StageLine& line) { MOLVA_SetProgressHook(&StageLine::Hook, &line); }
  ~Progressing() { MOLVA_SetProgressHook(nullptr, nullptr); }
  Progressing(const Progressing&) = delete;
  Progressing& operator=(const Progressing&) = delete;
};

}  // namespace mardle::tools
