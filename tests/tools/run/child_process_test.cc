// SPDX-License-Identifier: MIT
#include "tools/run/child_process.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <string>

#include "tests/testing/files.h"
#include "tools/run/program_path.h"

namespace {

using namespace mardle::tools;
using testing_support::TempFolder;

TEST(RunProgram, TellsTheStatus) {
  EXPECT_EQ(RunProgram("/bin/sh", {"-c", "exit 84"}).status, 84);
  EXPECT_EQ(RunProgram("/bin/sh", {"-c", "exit $1", "sh", "7"}).status, 7);
}

TEST(RunProgram, TellsTheSignal) {
  EXPECT_EQ(RunProgram("/bin/sh", {"-c", "kill -KILL $$"}).signal, SIGKILL);
}

TEST(RunProgram, TellsWhyItDidNotStart) {
  EXPECT_EQ(RunProgram("/nosuch", {}).start_error, ENOENT);
  EXPECT_EQ(RunProgram("/", {}).start_error, EACCES);
}

TEST(RunProgram, HandsSignalsOn) {
  // The program signals its parent, which is this process, and waits for the signal to come back.
  const Ending ending = RunProgram(
      "/bin/sh", {"-c", "trap 'exit 5' TERM; kill -TERM $PPID; while :; do sleep 0.01; done"});
  EXPECT_EQ(ending.status, 5);
}

TEST(RunProgram, PassesStandardErrorOn) {
  testing::internal::CaptureStderr();
  RunProgram("/bin/sh", {"-c", "head -c 200000 /dev/zero | tr '\\0' x >&2; printf end >&2"});
  EXPECT_EQ(testing::internal::GetCapturedStderr(), std::string(200000, 'x') + "end");
}

bool HasFailedWrite(const std::string& script) {
  testing::internal::CaptureStderr();
  const Ending ending = RunProgram("/bin/sh", {"-c", script});
  testing::internal::GetCapturedStderr();
  return ending.has_failed_write;
}

TEST(RunProgram, NoticesAWriteThatIsReportedAsFailed) {
  EXPECT_TRUE(
      HasFailedWrite("echo one >&2; echo 'Writing m.tree.2 failed: No space' >&2; exit 84"));
  EXPECT_TRUE(HasFailedWrite("printf 'Writing a' >&2; sleep 0.1; echo ' b failed: No space' >&2"));
  EXPECT_TRUE(HasFailedWrite("echo 'Writing a failed: No space' >&2; echo 'one more' >&2"));
  EXPECT_FALSE(HasFailedWrite("echo 'Writing m.tree.2' >&2; echo 'it failed: no' >&2"));
}

TEST(RunProgram, DoesNotWaitForWhatTheProgramLeavesRunning) {
  const TempFolder folder;
  const std::string name = folder.Path("pid");
  RunProgram("/bin/sh", {"-c", "sleep 600 & echo $! > \"$1\"", "sh", name});
  // It is still there to be ended.
  EXPECT_EQ(kill(std::stoi(testing_support::ReadText(name)), SIGKILL), 0);
}

TEST(EndBySignal, EndsAsTheProgramDid) {
  EXPECT_EXIT(EndBySignal(SIGTERM), testing::KilledBySignal(SIGTERM), "");
}

std::string WriteProgram(const TempFolder& folder, const std::string& name) {
  const std::string path = folder.Write(name, "#!/bin/sh\n");
  std::filesystem::permissions(path, std::filesystem::perms::owner_all);
  return path;
}

TEST(FindProgram, APathIsTakenAsItIs) {
  const TempFolder folder;
  const std::string program = WriteProgram(folder, "p");
  EXPECT_EQ(FindProgram(program, ""), program);
  EXPECT_EQ(FindProgram(folder.Write("text", ""), ""), std::nullopt);
  EXPECT_EQ(FindProgram(folder.Path(""), ""), std::nullopt);
}

TEST(FindProgram, ANameIsFoundInTheFirstFolderThatHasIt) {
  const TempFolder empty, first, second;
  const std::string program = WriteProgram(first, "p");
  WriteProgram(second, "p");
  const std::string path = empty.Path("") + ":" + first.Path(".") + ":" + second.Path(".");
  EXPECT_EQ(FindProgram("p", path.c_str()), first.Path(".") + "/p");
  EXPECT_EQ(FindProgram("q", path.c_str()), std::nullopt);
  EXPECT_EQ(FindProgram("p", nullptr), std::nullopt);
}

}  // namespace
