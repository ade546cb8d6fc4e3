// SPDX-License-Identifier: MIT
#include "tools/text/parse_or_answer.h"

#include <CLI/CLI.hpp>
#include <sstream>

#include "tools/text/option_complaint.h"
#include "tools/text/tool_frame.h"
#include "tools/text/version.h"

namespace mardle::tools {

void AddHelp(CLI::App& app, const std::string& name, const char* footer) {
  app.footer(footer);
  app.set_help_flag("--help", "Print this help");
  app.set_version_flag("--version", name + " " + kVersion, "Print the version");
}

std::optional<int> ParseOrAnswer(const CLI::App& app, const std::string& name,
                                 const std::function<void()>& parse,
                                 const std::function<void()>& before_complaint) {
  try {
    parse();
  } catch (const CLI::Success& success) {
    std::ostringstream answer;
    const int status = app.exit(success, answer);
    WriteStandardOutput(answer.str());
    return status;
  } catch (const CLI::ParseError& error) {
    before_complaint();
    ReportError(name.c_str(), OptionComplaint(app, error) + "\nTry '" + name + " --help'.");
    return kWrongUsage;
  }
  return std::nullopt;
}

}  // namespace mardle::tools
