// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <malloc.h>

#include <cstdio>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>

#include "lib/molva.h"
#include "lib/support/fatal.h"

namespace {

// A cluster number for each of no rows: with an unknown criterion every call is an error.
void AskForCriterion(void* code) {
  const int rowptr[] = {0, 1, 2, 3};
  const int rowind[] = {0, 1, 0};
  const float rowval[] = {1, 1, 1};
  int part[3];
  MOLVA_VP_ClusterRB(3, 2, rowptr, rowind, rowval, MOLVA_SIM_COSINE, *static_cast<int*>(code),
                     MOLVA_ROW_NONE, MOLVA_COL_NONE, 1.0F, 10, 10, 1, 0, 0, 2, part);
}

struct HostError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

TEST(Try, GivesTheMessageOfAnErrorBack) {
  int code = 12;
  char message[100] = "before";
  EXPECT_NE(MOLVA_Try(AskForCriterion, &code, message, sizeof(message)), 0);
  EXPECT_EQ(std::string(message), "Unknown clustering criterion function (CRFun) of 12\n");
}

TEST(Try, ReturnsZeroAndNoMessageWhenAllGoesWell) {
  int code = MOLVA_CRFUN_I2;
  char message[100] = "before";
  EXPECT_EQ(MOLVA_Try(AskForCriterion, &code, message, sizeof(message)), 0);
  EXPECT_EQ(std::string(message), "");
}

TEST(Try, CutsTheMessageToFit) {
  int code = 12;
  char message[8] = "before";
  EXPECT_NE(MOLVA_Try(AskForCriterion, &code, message, sizeof(message)), 0);
  EXPECT_EQ(std::string(message), "Unknown");
  EXPECT_NE(MOLVA_Try(AskForCriterion, &code, message, 0), 0);
  EXPECT_EQ(std::string(message), "Unknown");
  EXPECT_NE(MOLVA_Try(AskForCriterion, &code, nullptr, 0), 0);
}

// The standard library's own memory has no name.
TEST(Try, TellsThatTheStandardLibraryGotNoMemory) {
  char message[100] = "before";
  EXPECT_NE(MOLVA_Try([](void*) { throw std::bad_alloc(); }, nullptr, message, sizeof(message)), 0);
  EXPECT_EQ(std::string(message), "Out of memory!");
}

TEST(Try, MayBeNested) {
  const auto outer = [](void* code) {
    char message[100];
    EXPECT_NE(MOLVA_Try(AskForCriterion, code, message, sizeof(message)), 0);
    AskForCriterion(code);
    ADD_FAILURE() << "went on after the error";
  };
  int code = 12;
  char message[100];
  EXPECT_NE(MOLVA_Try(outer, &code, message, sizeof(message)), 0);
}

TEST(Try, LeavesTheErrorsOfOtherThreadsAlone) {
  MOLVA_SetErrorHandler([](const char* text) { throw HostError(text); });
  const auto other = [](void* code) {
    std::thread([code] { EXPECT_THROW(AskForCriterion(code), HostError); }).join();
  };
  int code = 12;
  char message[100];
  EXPECT_EQ(MOLVA_Try(other, &code, message, sizeof(message)), 0);
  MOLVA_SetErrorHandler(nullptr);
}

TEST(ErrorHandler, MayThrowThroughTheLibrary) {
  MOLVA_SetErrorHandler([](const char* text) { throw HostError(text); });
  int code = 12;
  EXPECT_THROW(AskForCriterion(&code), HostError);
  MOLVA_SetErrorHandler(nullptr);
}

TEST(ErrorHandler, GivesTheOneBeforeBack) {
  const MOLVA_ErrorHandler mine = [](const char* text) { throw HostError(text); };
  const MOLVA_ErrorHandler standard = MOLVA_SetErrorHandler(mine);
  EXPECT_EQ(MOLVA_SetErrorHandler(standard), mine);
}

TEST(ErrorHandler, OfNullEndsTheProcessWithStatusZero) {
  MOLVA_SetErrorHandler(nullptr);
  int code = 12;
  EXPECT_EXIT(AskForCriterion(&code), testing::ExitedWithCode(0),
              "Unknown clustering criterion function \\(CRFun\\) of 12");
}

// The sanitizers' allocator does not report to mallinfo; its leak check does the same there.
TEST(ErrorHandler, LeaksNothingInTenThousandErrors) {
  int code = 12;
  char message[100];
  for (int i = 0; i < 100; ++i) MOLVA_Try(AskForCriterion, &code, message, sizeof(message));
  const std::size_t before = mallinfo2().uordblks;
  for (int i = 0; i < 10000; ++i) MOLVA_Try(AskForCriterion, &code, message, sizeof(message));
  EXPECT_LE(mallinfo2().uordblks, before + 1000);
}

TEST(Version, IsThatOfTheHeader) { EXPECT_EQ(std::string(MOLVA_Version()), MOLVA_VERSION); }

}  // namespace
