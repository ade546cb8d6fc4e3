// SPDX-License-Identifier: MIT
#include "tools/run/reported_errors.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "tools/text/terminal_text.h"

namespace mardle::tools {
namespace {

// A line "Writing FILE failed: REASON" has no more, so longer ones need not be held.
constexpr std::size_t kLongestReport = 16384;

bool TellsOfAFailedWrite(std::string_view line) {
  return line.starts_with("Writing ") && line.find(" failed: ") != std::string_view::npos;
}

// When standard error itself fails there is nobody to report that to.
void WriteAll(std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = write(STDERR_FILENO, text.data(), text.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return;
    text.remove_prefix(static_cast<std::size_t>(count));
  }
}

void Close(int& descriptor) {
  if (descriptor >= 0) close(descriptor);
  descriptor = -1;
}

}  // namespace

ReportedErrors::ReportedErrors() {
  std::array<int, 2> ends;
  if (pipe2(ends.data(), O_CLOEXEC) != 0) return;
  read_end_ = ends[0];
  write_end_ = ends[1];
  fcntl(read_end_, F_SETFL, O_NONBLOCK);
}

ReportedErrors::~ReportedErrors() {
  Close(read_end_);
  Close(write_end_);
}

void ReportedErrors::CloseWriteEnd() { Close(write_end_); }

void ReportedErrors::PassOn() {
  std::array<char, 65536> block;
  while (read_end_ >= 0) {
    const ssize_t count = read(read_end_, block.data(), block.size());
    if (count < 0) return;
    if (count == 0) return Close(read_end_);
    const std::string_view text(block.data(), static_cast<std::size_t>(count));
    // A terminal gets the bytes of a character that two reads cut apart, each as a number.
    WriteAll(ShownOn(STDERR_FILENO, text));
    Look(text);
  }
}

void ReportedErrors::Look(std::string_view text) {
  for (const char c : text) {
    if (c == '\n') {
      has_failed_write_ = has_failed_write_ || TellsOfAFailedWrite(line_);
      line_.clear();
    } else if (line_.size() < kLongestReport) {
      line_ += c;
    }
  }
}

}  // namespace mardle::tools
