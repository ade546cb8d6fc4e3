// SPDX-License-Identifier: MIT
//
// What every tool does first and last: its streams and signals, its messages, its statuses.
#pragma once

#include <functional>
#include <string>

namespace mardle::tools {

inline constexpr int kSuccess = 0;
inline constexpr int kFailure = 1;
inline constexpr int kWrongUsage = 2;

// To be called first. From now on a reader that is gone and a limit on file sizes are failed writes
// like any other, no file takes the place of a standard stream that is closed, and an interrupt
// leaves no files behind that are being written.
void PrepareTool();

// "TOOL: message" on standard error, with one line end whether the message has one or not. Neither
// here nor below does a terminal get control characters, which names and labels may hold.
void ReportError(const char* tool, std::string message);

// The status that the work returns; when it throws, the error is reported, and the status is that
// of wrong usage for std::invalid_argument and that of a failure for all others.
int StatusOf(const char* tool, const std::function<int()>& work);

// Writes and flushes; throws FileError when standard output is full, closed or without a reader.
void WriteStandardOutput(const std::string& text);

}  // namespace mardle::tools
