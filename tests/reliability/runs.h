// SPDX-License-Identifier: MIT
//
// Runs of the whole program inside the test, on files of its own folder.
#pragma once

#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "tests/testing/files.h"

namespace reliability {

using Words = std::vector<std::string>;
// Texts by name.
using Files = std::map<std::string, std::string>;

// The command line of a run and the files that it finds. Words that begin with '@' are names of
// files in the folder, "-option=@name" as well.
struct Scenario {
  const char* name;
  Words words;
  Files inputs;

  friend void PrintTo(const Scenario& scenario, std::ostream* stream) { *stream << scenario.name; }
};

// What a run leaves behind.
struct Outcome {
  std::string error;  // of a fatal error; empty for a completed run
  int status = 0;
  std::string report;
  Files files;            // everything in the folder
  long new_requests = 0;  // of the standard library's memory
};

// A folder with the inputs of a scenario.
class Stage {
 public:
  explicit Stage(const Scenario& scenario);

  // Runs the program. Files of an earlier run are removed first. The n-th of its requests to
  // operator new fails, none for 0.
  Outcome Run(long failing_new = 0) const;
  // Puts another text in the place of an input.
  void Replace(const std::string& name, const std::string& text) const {
    folder_.Write(name, text);
  }
  // The files in the folder.
  Files Contents() const;

 private:
  const Scenario& scenario_;
  testing_support::TempFolder folder_;
  Words words_;
};

// The report without the processor times.
std::string WithoutTimes(const std::string& report);

// Every kind of run: both formats, both methods, both similarities, every report and every plot.
const std::vector<Scenario>& Scenarios();

}  // namespace reliability
