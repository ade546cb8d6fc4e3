// SPDX-License-Identifier: MIT
//
// What is said of a command line that cannot be taken.
#pragma once

#include <string>

namespace CLI {
class App;
class ParseError;
}  // namespace CLI

namespace mardle::tools {

// Names what there is not, an option or one argument too many, with what may have been meant;
// otherwise it is what the error says. `app` is the program or the part of it that took the rest of
// the line.
std::string OptionComplaint(const CLI::App& app, const CLI::ParseError& error);

}  // namespace mardle::tools
