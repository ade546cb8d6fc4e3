// SPDX-License-Identifier: MIT
//
// One input file, imported in a folder of its own.
#pragma once

#include <string>

#include "tests/testing/files.h"
#include "tools/import/import.h"

namespace testing_support {

class Imported {
 public:
  // Options start with the input written and the output at "out.mat".
  Imported(const std::string& name, const std::string& text) {
    options.input = folder.Write(name, text);
    options.output.path = folder.Path("out.mat");
    options.quiet = true;
  }

  // The file beside the matrix with this suffix after an import, the matrix itself for "". What
  // follows the numbers of the header is cut away.
  std::string Run(const std::string& suffix = "") {
    Import(options);
    return Read(suffix);
  }

  // The options for another import to the same place.
  const mardle::tools::ImportOptions& Again() {
    options.output.replace = true;
    return options;
  }

  std::string Read(const std::string& suffix) const {
    std::string text = ReadText(folder.Path("out.mat" + suffix));
    if (!suffix.empty()) return text;
    const std::size_t end = text.find('\n');
    const std::size_t last = text.find_last_not_of(' ', end - 1);
    return text.erase(last + 1, end - last - 1);
  }

  // The message of an import that must fail, with the input called by its name alone.
  std::string Failure() {
    try {
      Import(options);
    } catch (const std::exception& error) {
      return WithoutFolder(error.what());
    }
    return "no failure";
  }

  std::string WithoutFolder(std::string text) const {
    const std::string prefix = folder.Path("");
    for (std::size_t at; (at = text.find(prefix)) != std::string::npos;) {
      text.erase(at, prefix.size());
    }
    return text;
  }

  TempFolder folder;
  mardle::tools::ImportOptions options;
};

}  // namespace testing_support
