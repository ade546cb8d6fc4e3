// SPDX-License-Identifier: MIT
#include "lib/support/fatal.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <string>

#include "tests/testing/allocation.h"
#include "tests/testing/fatal.h"
#include "tests/testing/files.h"

namespace {

using molva::FatalError;
using molva::SetFatalHandler;
using testing_support::FatalMessage;

TEST(FatalError, PrintsTheMessageAndANewlineAndEndsWithStatusZero) {
  EXPECT_FATAL(FatalError("Unknown RowModel value of %d", 7), "Unknown RowModel value of 7");
}

TEST(FatalError, AddsANewlineToAMessageThatHasOne) {
  EXPECT_FATAL(FatalError("Row %d of %s\n", 3, "m"), "Row 3 of m\n");
}

TEST(FatalError, TakesTextsAsTheyAre) {
  EXPECT_FATAL(FatalError("%s", "100%% %s %n"), "100%% %s %n");
}

TEST(FatalError, PrintsAMessageOfAnyLength) {
  const std::string name(100000, 'x');
  EXPECT_FATAL(FatalError("<%s>", name.c_str()), "<" + name + ">");
}

// Memory may be what the message is about.
TEST(FatalError, CutsALongMessageWhenThereIsNoMemory) {
  const std::string name(100000, 'x');
  EXPECT_FATAL(
      {
        const testing_support::FailingAllocations failing(0);
        FatalError("<%s>", name.c_str());
      },
      "<" + name.substr(0, 1022));
}

TEST(FatalError, FlushesWhatStandardOutputHolds) {
  const testing_support::TempFolder folder;
  const std::string path = folder.Path("out");
  EXPECT_FATAL(
      {
        std::FILE* out = std::freopen(path.c_str(), "w", stdout);
        std::fputs("half a report", out);
        FatalError("no more");
      },
      "no more");
  EXPECT_EQ(testing_support::ReadText(path), "half a report");
}

TEST(FatalHandler, ReceivesTheFormattedMessage) {
  EXPECT_EQ(FatalMessage([] { FatalError("%s: %d of %.1f", "x", 2, 2.5); }), "x: 2 of 2.5");
}

TEST(FatalHandler, IsHandedBackWhenReplaced) {
  const molva::FatalHandler mine = [](const char*) { throw 1; };
  const molva::FatalHandler replaced = SetFatalHandler(mine);
  EXPECT_NE(replaced, mine);
  EXPECT_EQ(SetFatalHandler(replaced), mine);
}

TEST(FatalHandler, OfNullIsTheDefaultOne) {
  const testing_support::FatalThrows throws;
  EXPECT_FATAL(
      {
        SetFatalHandler(nullptr);
        FatalError("default again");
      },
      "default again");
}

TEST(FatalHandler, ThatReturnsEndsTheProcessAllTheSame) {
  EXPECT_EXIT(
      {
        SetFatalHandler([](const char*) {});
        FatalError("unheard");
      },
      ::testing::KilledBySignal(SIGABRT), "");
}

TEST(EndRun, EndsTheProcessWithStatusZeroAndSaysNothing) {
  EXPECT_EXIT(molva::EndRun(), ::testing::ExitedWithCode(0), ::testing::Eq(std::string()));
}

TEST(EndRun, PassesThroughTheHandlerUntilNullRestoresTheDefault) {
  const molva::EndHandler mine = [] { throw 2; };
  const molva::EndHandler replaced = molva::SetEndHandler(mine);
  EXPECT_THROW(molva::EndRun(), int);
  EXPECT_EQ(molva::SetEndHandler(nullptr), mine);
  EXPECT_EQ(molva::SetEndHandler(replaced), replaced);
}

TEST(EndRun, WithAHandlerThatReturnsEndsTheProcessAllTheSame) {
  EXPECT_EXIT(
      {
        molva::SetEndHandler([] {});
        molva::EndRun();
      },
      ::testing::KilledBySignal(SIGABRT), "");
}

}  // namespace
