// SPDX-License-Identifier: MIT
//
// The message of the failure that a statement meets.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "tools/text/file_error.h"

namespace testing_support {

template <typename Statement>
std::string FailureMessage(Statement statement) {
  try {
    statement();
  } catch (const mardle::tools::FileError& failure) {
    return failure.what();
  }
  ADD_FAILURE() << "no failure was met";
  return "";
}

}  // namespace testing_support
