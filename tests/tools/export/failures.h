// SPDX-License-Identifier: MIT
//
// The message of the failure that a statement meets.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "tools/export/failure.h"

namespace testing_support {

template <typename Statement>
std::string FailureMessage(Statement statement) {
  try {
    statement();
  } catch (const mardle::exporting::Failure& failure) {
    return failure.what();
  }
  ADD_FAILURE() << "no failure was met";
  return "";
}

}  // namespace testing_support
