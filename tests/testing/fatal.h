// SPDX-License-Identifier: MIT
//
// Fatal errors in tests.
#pragma once

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "lib/support/fatal.h"

namespace testing_support {

// A fatal error turned into an exception.
struct Fatal : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// While it lives, fatal errors throw Fatal instead of ending the process.
class FatalThrows {
 public:
  FatalThrows() : replaced_(molva::SetFatalHandler([](const char* text) { throw Fatal(text); })) {}
  ~FatalThrows() { molva::SetFatalHandler(replaced_); }
  FatalThrows(const FatalThrows&) = delete;
  FatalThrows& operator=(const FatalThrows&) = delete;

 private:
  molva::FatalHandler replaced_;
};

// The message of the fatal error that the statement meets; "" and a test failure when it meets
// none.
template <typename Statement>
std::string FatalMessage(Statement statement) {
  const FatalThrows throws;
  try {
    statement();
  } catch (const Fatal& error) {
    return error.what();
  }
  ADD_FAILURE() << "no fatal error was met";
  return "";
}

}  // namespace testing_support

// The statement ends the process with status 0 and prints exactly `text` (and the newline that
// every fatal error adds) to standard error.
#define EXPECT_FATAL(statement, text) \
  EXPECT_EXIT(statement, ::testing::ExitedWithCode(0), ::testing::Eq(std::string(text) + "\n"))
