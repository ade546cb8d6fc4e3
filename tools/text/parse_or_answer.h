// SPDX-License-Identifier: MIT
//
// A tool's command line: taken, answered or refused.
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace CLI {
class App;
}  // namespace CLI

namespace mardle::tools {

// Gives a program its options --help and --version, and what stands below the help.
void AddHelp(CLI::App& app, const std::string& name, const char* footer);

// Calls `parse`, which parses by the app. Nothing when the tool is to go on; otherwise its status:
// help and version are printed, and of what cannot be taken it is told, after `before_complaint`,
// which may throw what there is to say instead.
std::optional<int> ParseOrAnswer(
    const CLI::App& app, const std::string& name, const std::function<void()>& parse,
    const std::function<void()>& before_complaint = [] {});

}  // namespace mardle::tools
