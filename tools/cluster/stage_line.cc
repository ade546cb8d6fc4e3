// SPDX-License-Identifier: MIT
#include "tools/cluster/stage_line.h"

#include <unistd.h>

#include <cmath>
#include <cstdio>

namespace mardle::tools {
namespace {

constexpr std::chrono::milliseconds kInterval{200};
constexpr char kEraseLine[] = "\r\033[K";

std::string Seconds(double seconds) { return std::to_string(std::lround(seconds)) + " s"; }

}  // namespace

StageLine::StageLine(bool quiet) : shown_(!quiet && isatty(STDERR_FILENO) == 1) {}

StageLine::~StageLine() { End(); }

void StageLine::End() {
  if (shown_) std::fputs(kEraseLine, stderr);
}

void StageLine::Begin(const std::string& stage) {
  stage_ = stage;
  step_.clear();
  done_ = total_ = 0;
  begin_ = last_ = std::chrono::steady_clock::now();
  Show(stage);
}

std::string StageLine::Text(const std::string& stage, const std::string& step, int done, int total,
                            double seconds) {
  std::string text = stage;
  if (total > 0) {
    text += ": " + step + " " + std::to_string(done) + " of " + std::to_string(total);
  }
  text += ", " + Seconds(seconds);
  if (done > 0 && done < total) {
    text += ", about " + Seconds(seconds * (total - done) / done) + " left";
  }
  return text;
}

// The trials of a bisection are many and small; once there are bisections, those are counted.
int StageLine::Hook(MOLVA_Event event, int done, int total, void* data) {
  auto& line = *static_cast<StageLine*>(data);
  const char* const step = event == MOLVA_EVENT_BISECTION ? "bisection" : "trial";
  const bool counts =
      event == MOLVA_EVENT_BISECTION || (event == MOLVA_EVENT_TRIAL && line.step_ != "bisection");
  const bool is_first = counts && line.step_ != step;
  if (counts) {
    line.step_ = step;
    line.done_ = done;
    line.total_ = total;
  }
  const auto now = std::chrono::steady_clock::now();
  if (now - line.last_ < kInterval && !is_first) return 0;
  line.last_ = now;
  const std::chrono::duration<double> seconds = now - line.begin_;
  line.Show(Text(line.stage_, line.step_, line.done_, line.total_, seconds.count()));
  return 0;
}

void StageLine::Show(const std::string& text) {
  if (!shown_) return;
  std::fprintf(stderr, "%s%s", kEraseLine, text.c_str());
  std::fflush(stderr);
}

}  // namespace mardle::tools
