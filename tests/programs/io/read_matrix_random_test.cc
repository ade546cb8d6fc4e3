// SPDX-License-Identifier: MIT
//
// Seeded random matrix files, sound and spoilt, give the same bits or the same message as the plain
// reader.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include "lib/support/files.h"
#include "programs/io/read_matrix.h"
#include "tests/testing/fatal.h"
#include "tests/testing/files.h"
#include "tests/testing/plain_reader.h"

namespace {

using mardle::Matrix;

// What became of a file.
struct Outcome {
  std::string message;  // of the fatal error, and the matrix is void
  std::vector<int> sizes;
  std::vector<int> rowptr;
  std::vector<int> rowind;
  std::vector<std::uint32_t> value_bits;

  bool operator==(const Outcome&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
  return out << '"' << outcome.message << "\", " << outcome.rowind.size() << " columns, "
             << outcome.value_bits.size() << " values";
}

// Sizes that spoilt headers ask for are refused instead of waited for.
void* AllocateUpTo100Megabytes(std::size_t nbytes) {
  return nbytes <= 100'000'000 ? std::malloc(nbytes) : nullptr;
}

template <typename Read>
Outcome OutcomeOf(Read read) {
  const testing_support::FatalThrows throws;
  Outcome outcome;
  Matrix mat;
  try {
    read(mat);
  } catch (const testing_support::Fatal& error) {
    outcome.message = error.what();
    return outcome;
  }
  outcome.sizes = {mat.nrows, mat.ncols};
  outcome.rowptr.assign(mat.rowptr.begin(), mat.rowptr.end());
  outcome.rowind.assign(mat.rowind.begin(), mat.rowind.end());
  for (const float value : mat.rowval) {
    outcome.value_bits.push_back(std::bit_cast<std::uint32_t>(value));
  }
  return outcome;
}

class RandomFiles : public ::testing::TestWithParam<bool> {
 protected:
  RandomFiles() : allocate_(molva::SetAllocateFunction(AllocateUpTo100Megabytes)) {}
  ~RandomFiles() override { molva::SetAllocateFunction(allocate_); }

  static bool dense() { return GetParam(); }
  std::size_t Below(std::size_t n) { return random_() % n; }

  // Reads the text in both ways and returns whether the program's reader took it.
  bool ExpectSameOutcome(const std::string& text) {
    const std::string path = folder_.Write("m", text);
    mardle::RunParams params;
    params.filename = molva::mystrdup(path.c_str());
    params.denseinput = dense() ? 1 : 0;
    const Outcome actual = OutcomeOf([&](Matrix& mat) { mardle::ReadMatrix(params, mat); });
    const molva::File file = molva::OpenFile(path.c_str(), "r");
    const Outcome expected =
        OutcomeOf([&](Matrix& mat) { testing_support::PlainReadMatrix(file.get(), dense(), mat); });
    EXPECT_EQ(actual, expected) << "of the file\n" << text.substr(0, 2000);
    std::filesystem::remove(path);  // a new file is made much faster than an old one is replaced
    return actual.message.empty();
  }

  std::string Blank() {
    static constexpr std::array<const char*, 6> kBlanks = {" ", " ", " ", "\t", "  ", " \t "};
    return kBlanks[Below(kBlanks.size())];
  }

  std::string Value() {
    const std::string number = std::to_string(Below(1000));
    switch (Below(6)) {
      case 0:
        return number + "." + std::to_string(random_());
      case 1:
        return "-0." + number;
      case 2:
        return number + "e" + std::to_string(static_cast<int>(Below(60)) - 30);
      default:
        return number;
    }
  }

  // A row of `count` columns, with values in the columns for a sparse matrix.
  std::string Row(std::size_t count, std::size_t ncols) {
    std::string row;
    for (std::size_t e = 0; e < count; ++e) {
      if (!row.empty() || Below(4) == 0) row += Blank();
      if (!dense()) row += std::to_string(1 + Below(ncols)) + Blank();
      row += Value();
    }
    return Below(4) == 0 ? row + Blank() : row;
  }

  // A sound file: the header, then rows of up to `ncols` fields or pairs.
  std::string SoundFile(std::size_t nrows, std::size_t ncols) {
    std::string rows;
    std::size_t nnz = 0;
    for (std::size_t i = 0; i < nrows; ++i) {
      const std::size_t count = dense() ? ncols : Below(ncols + 1);
      rows += "\n" + Row(count, ncols);
      nnz += count;
    }
    return std::to_string(nrows) + " " + std::to_string(ncols) + " " + std::to_string(nnz) + rows +
           "\n";
  }

  // Puts something odd at a random place.
  void Spoil(std::string& text) {
    static const std::vector<std::string> kOdd = {"\r",
                                                  "\r\n",
                                                  "\n",
                                                  " ",
                                                  "\t",
                                                  "\v",
                                                  "-",
                                                  "+",
                                                  ".",
                                                  ",",
                                                  "e",
                                                  "x",
                                                  "0",
                                                  "9",
                                                  " 0 ",
                                                  " -1 1 ",
                                                  " 1 ",
                                                  " -5 ",
                                                  " nan ",
                                                  " inf ",
                                                  " 0x1p3 ",
                                                  " 1e400 ",
                                                  " --1 ",
                                                  " 1,5 ",
                                                  " 1e-46 ",
                                                  " abc ",
                                                  " \r ",
                                                  " 99999999999 1 ",
                                                  " 1 2 3 ",
                                                  " -99999999999999999999 1 ",
                                                  " 99999999999999999999 1 ",
                                                  "00000000000000000000000",
                                                  std::string(1, '\0'),
                                                  std::string(" \0 ", 3)};
    const std::size_t at = Below(text.size() + 1);
    const std::size_t removed = std::min(Below(4), text.size() - at);
    text.replace(at, removed, Below(4) == 0 ? "" : kOdd[Below(kOdd.size())]);
  }

  std::mt19937 random_{1};

 private:
  testing_support::TempFolder folder_;
  molva::AllocateFunction allocate_;
};

INSTANTIATE_TEST_SUITE_P(, RandomFiles, ::testing::Bool(),
                         [](const auto& param) { return param.param ? "Dense" : "Sparse"; });

TEST_P(RandomFiles, AreTakenWhenSound) {
  for (int round = 0; round < 500; ++round) {
    ASSERT_TRUE(ExpectSameOutcome(SoundFile(Below(10), 1 + Below(20))));
  }
}

TEST_P(RandomFiles, AreReadAlikeWhenSpoilt) {
  int taken = 0;
  for (int round = 0; round < 4000; ++round) {
    std::string text = SoundFile(1 + Below(4), 1 + Below(4));
    for (std::size_t spots = 1 + Below(3); spots > 0; --spots) Spoil(text);
    taken += ExpectSameOutcome(text) ? 1 : 0;
    ASSERT_FALSE(HasFailure());
  }
  EXPECT_GT(taken, 100);
  EXPECT_LT(taken, 3900);
}

TEST_P(RandomFiles, AreReadAlikeWithCarriageReturns) {
  for (int round = 0; round < 200; ++round) {
    std::string text;
    for (const char c : SoundFile(1 + Below(4), 1 + Below(4))) {
      text += c == '\n' ? "\r\n" : std::string(1, c);
    }
    ExpectSameOutcome(text);
    ASSERT_FALSE(HasFailure());
  }
}

TEST_P(RandomFiles, AreReadAlikeWhereverTheyEnd) {
  for (int round = 0; round < 20; ++round) {
    const std::string text = SoundFile(5, 4);
    for (std::size_t length = 0; length < text.size(); ++length) {
      ExpectSameOutcome(text.substr(0, length));
      ASSERT_FALSE(HasFailure());
    }
  }
}

// Ten buffers, so that fields and lines lie across the end of a buffer everywhere.
TEST_P(RandomFiles, AreReadAlikeWhenTheyAreLong) {
  for (const std::size_t ncols : {1U, 10U, 1000U, 5000U}) {
    std::string text = SoundFile((dense() ? 300000 : 200000) / ncols, ncols);
    ASSERT_TRUE(ExpectSameOutcome(text));
    for (int spots = 0; spots < 5; ++spots) {
      Spoil(text);
      ExpectSameOutcome(text);
      ASSERT_FALSE(HasFailure());
    }
  }
}

// Lines of about one buffer and two, which are split anywhere in a field or between fields.
TEST_P(RandomFiles, AreReadAlikeWithOverlongLines) {
  constexpr std::size_t kLongest = 131071;
  int taken = 0;
  for (int round = 0; round < 300; ++round) {
    const std::size_t count = 1 + Below(3);
    const std::string row = Row(count, 3);
    const std::size_t padding = (1 + Below(2)) * kLongest - row.size() - Below(8);
    // What the file holds when a line is split between the two rows it was made of.
    const std::string header =
        dense() ? "4 " + std::to_string(count) : "4 3 " + std::to_string(4 * count);
    std::string text =
        header + "\n" + row + "\n" + row + std::string(padding, ' ') + row + "\n" + row + "\n";
    if (Below(3) == 0) Spoil(text);
    if (Below(4) == 0) text[Below(text.size())] = '\0';
    taken += ExpectSameOutcome(text) ? 1 : 0;
    ASSERT_FALSE(HasFailure());
  }
  EXPECT_GT(taken, 10);
}

}  // namespace
