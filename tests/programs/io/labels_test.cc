// SPDX-License-Identifier: MIT
#include "programs/io/labels.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/testing/allocation.h"
#include "tests/testing/colliding_texts.h"
#include "tests/testing/fatal.h"
#include "tests/testing/files.h"

namespace {

using mardle::Matrix;
using testing_support::OutputOf;
using Texts = std::vector<std::string>;
using Ints = std::vector<int>;

template <typename Table>
Texts TextsOf(const Table& table) {
  Texts texts;
  for (std::size_t i = 0; i < table.size(); ++i) {
    texts.emplace_back(table[static_cast<std::int64_t>(i)]);
  }
  return texts;
}

Texts Of(const molva::Strings& strings) { return TextsOf(strings); }
Texts Of(const mardle::Labels& labels) { return TextsOf(labels); }

Ints Of(const molva::Array<int>& array) { return {array.begin(), array.end()}; }

Matrix MatrixOf(int nrows, int ncols) {
  Matrix mat;
  mat.nrows = nrows;
  mat.ncols = ncols;
  return mat;
}

// A matrix whose rows carry these class labels.
Matrix MatrixWithClasses(const Texts& labels) {
  const int nrows = static_cast<int>(labels.size());
  Matrix mat = MatrixOf(nrows, 1);
  mat.rclasses = molva::Strings(nrows, "rclasses");
  for (std::size_t i = 0; i < labels.size(); ++i) mat.rclasses.Set(i, labels[i].c_str());
  return mat;
}

std::string AllocationFailed(const std::string& name, std::size_t nbytes) {
  return "***Memory allocation failed for " + name + ". Requested size: " + std::to_string(nbytes) +
         " bytes";
}

// The files beside a matrix named docs.mat, which itself is not read.
class CompanionFiles : public ::testing::Test {
 protected:
  CompanionFiles() { params_.filename = molva::mystrdup(folder_.Path("docs.mat").c_str()); }

  Matrix Read(int nrows, int ncols) const {
    Matrix mat = MatrixOf(nrows, ncols);
    mardle::ReadLabelsAndClasses(params_, mat);
    return mat;
  }

  std::string Name(molva::String& option, const std::string& name) const {
    option = molva::mystrdup(folder_.Path(name).c_str());
    return folder_.Path(name);
  }

  testing_support::TempFolder folder_;
  mardle::RunParams params_;
};

TEST_F(CompanionFiles, BesideTheMatrixAreReadUnderItsWholeName) {
  folder_.Write("docs.mat.clabel", "apple\npear\n");
  folder_.Write("docs.mat.rlabel", "one\ntwo\nthree\n");
  folder_.Write("docs.mat.rclass", "b\na\nb\n");
  const Matrix mat = Read(3, 2);
  EXPECT_EQ(Of(mat.clabels), (Texts{"apple", "pear"}));
  EXPECT_EQ(Of(mat.rlabels), (Texts{"one", "two", "three"}));
  EXPECT_EQ(Of(mat.rclasses), (Texts{"b", "a", "b"}));
  EXPECT_EQ(Of(mat.classes), (Ints{0, 1, 0}));
}

TEST_F(CompanionFiles, AreReadUnderTheNamesGiven) {
  folder_.Write("docs.mat.clabel", "not\nthese\n");
  folder_.Write(Name(params_.clabelfile, "c").substr(folder_.Path("").size()), "apple\npear\n");
  folder_.Write(Name(params_.rlabelfile, "r").substr(folder_.Path("").size()), "one\n");
  folder_.Write(Name(params_.rclassfile, "k").substr(folder_.Path("").size()), "fruit\n");
  const Matrix mat = Read(1, 2);
  EXPECT_EQ(Of(mat.clabels), (Texts{"apple", "pear"}));
  EXPECT_EQ(Of(mat.rlabels), Texts{"one"});
  EXPECT_EQ(Of(mat.classnames), Texts{"fruit"});
}

TEST_F(CompanionFiles, ThatAreMissingGiveGeneratedLabelsAndOneClassInSilence) {
  Matrix mat;
  EXPECT_EQ(OutputOf([&] { mat = Read(2, 3); }), "");
  EXPECT_EQ(Of(mat.clabels), (Texts{"col00001", "col00002", "col00003"}));
  EXPECT_EQ(Of(mat.rlabels), (Texts{"row00001", "row00002"}));
  EXPECT_FALSE(mat.rclasses);
  EXPECT_EQ(mat.nclasses, 1);
  EXPECT_EQ(Of(mat.classes), (Ints{0, 0}));
  EXPECT_EQ(Of(mat.classnames), Texts{"no-class"});
}

TEST_F(CompanionFiles, GenerateLabelsThatGrowWithTheirNumbers) {
  const Matrix mat = Read(100000, 42);
  EXPECT_STREQ(mat.clabels[41], "col00042");
  EXPECT_STREQ(mat.rlabels[99998], "row99999");
  EXPECT_STREQ(mat.rlabels[99999], "row100000");
}

TEST_F(CompanionFiles, ThatWereNamedAndAreMissingAreToldOnce) {
  const std::string clabel = Name(params_.clabelfile, "c.txt");
  const std::string rlabel = Name(params_.rlabelfile, "r.txt");
  const std::string rclass = Name(params_.rclassfile, "k.txt");
  EXPECT_EQ(OutputOf([this] { Read(1, 1); }),
            "Column label file (" + clabel + ") does not exist! Ignoring the file...\n" +
                "Row label file (" + rlabel + ") does not exist! Ignoring the file...\n" +
                "Row class file (" + rclass + ") does not exist! Ignoring the file...\n");
}

TEST_F(CompanionFiles, ThatWereNamedAndAreMissingHideTheOnesBesideTheMatrix) {
  folder_.Write("docs.mat.clabel", "apple\n");
  folder_.Write("docs.mat.rlabel", "one\n");
  folder_.Write("docs.mat.rclass", "fruit\n");
  Name(params_.clabelfile, "c.txt");
  Name(params_.rlabelfile, "r.txt");
  Name(params_.rclassfile, "k.txt");
  Matrix mat;
  OutputOf([&] { mat = Read(1, 1); });
  EXPECT_EQ(Of(mat.clabels), Texts{"col00001"});
  EXPECT_EQ(Of(mat.rlabels), Texts{"row00001"});
  EXPECT_EQ(Of(mat.classnames), Texts{"no-class"});
}

TEST_F(CompanionFiles, KeepLeadingAndInnerBlanksOfALine) {
  folder_.Write("docs.mat.clabel", " two  words \t\n\n");
  EXPECT_EQ(Of(Read(1, 2).clabels), (Texts{" two  words", ""}));
}

TEST_F(CompanionFiles, KeepTheCarriageReturnsOfTheirLines) {
  folder_.Write("docs.mat.rlabel", "one\r\ntwo\r\n");
  EXPECT_EQ(Of(Read(2, 1).rlabels), (Texts{"one\r", "two\r"}));
}

TEST_F(CompanionFiles, AreReadNoFurtherThanTheLastRowOrColumn) {
  folder_.Write("docs.mat.rlabel", "one\ntwo\nthree\n");
  folder_.Write("docs.mat.rclass", "a\nb\n");
  const Matrix mat = Read(1, 1);
  EXPECT_EQ(Of(mat.rlabels), Texts{"one"});
  EXPECT_EQ(mat.nclasses, 1);
  EXPECT_EQ(Of(mat.classnames), Texts{"a"});
}

TEST_F(CompanionFiles, MayEndWithoutANewline) {
  folder_.Write("docs.mat.rlabel", "one\ntwo");
  EXPECT_EQ(Of(Read(2, 1).rlabels), (Texts{"one", "two"}));
}

TEST_F(CompanionFiles, ThatEndEarlyEndTheRun) {
  const std::string clabel = folder_.Write("docs.mat.clabel", "a\nb\n");
  EXPECT_FATAL(Read(1, 3), "Column label file (" + clabel +
                               ") ends too early! Lines wanted: 3, lines found: 2\n");
  std::filesystem::remove(clabel);
  const std::string rlabel = folder_.Write("docs.mat.rlabel", "a");
  EXPECT_FATAL(Read(2, 1),
               "Row label file (" + rlabel + ") ends too early! Lines wanted: 2, lines found: 1\n");
  std::filesystem::remove(rlabel);
  const std::string rclass = folder_.Write("docs.mat.rclass", "");
  EXPECT_FATAL(Read(2, 1),
               "Row class file (" + rclass + ") ends too early! Lines wanted: 2, lines found: 0\n");
}

TEST_F(CompanionFiles, ThatAreFoldersHaveNoLines) {
  params_.rclassfile = molva::mystrdup(folder_.Path("").c_str());
  EXPECT_FATAL(Read(2, 1), "Row class file (" + folder_.Path("") +
                               ") ends too early! Lines wanted: 2, lines found: 0\n");
}

TEST_F(CompanionFiles, SplitAnOverlongLineAsTheMatrixDoes) {
  const std::string first(131071, 'x');
  folder_.Write("docs.mat.rlabel", first + "yy\nthree\n");
  EXPECT_EQ(Of(Read(3, 1).rlabels), (Texts{first, "yy", "three"}));
}

// The buffer holds 131,071 characters, the newline included where it has room.
TEST_F(CompanionFiles, SplitLinesWhereTheBufferEnds) {
  const std::string fits(131070, 'x');
  struct Case {
    std::string line;
    Texts entries;
  };
  const std::vector<Case> cases = {{fits, {fits, "next"}},
                                   {fits + "y", {fits + "y", "", "next"}},
                                   {fits + "yz", {fits + "y", "z", "next"}},
                                   {fits + "yzz", {fits + "y", "zz", "next"}}};
  for (const auto& [line, entries] : cases) {
    for (const char* suffix : {"clabel", "rlabel", "rclass"}) {
      folder_.Write(std::string("docs.mat.") + suffix, line + "\nnext\n");
    }
    const int n = static_cast<int>(entries.size());
    const Matrix mat = Read(n, n);
    EXPECT_EQ(Of(mat.clabels), entries) << line.size();
    EXPECT_EQ(Of(mat.rlabels), entries) << line.size();
    EXPECT_EQ(Of(mat.rclasses), entries) << line.size();
    EXPECT_EQ(mat.nclasses, n) << line.size();
    EXPECT_EQ(Of(mat.classnames), entries) << line.size();
  }
}

// A cut name would open another file.
TEST_F(CompanionFiles, HaveNamesOfAnyLength) {
  const std::string folder = std::string(200, 'a') + "/" + std::string(200, 'b');
  std::filesystem::create_directories(folder_.Path(folder));
  params_.filename = molva::mystrdup(folder_.Path(folder + "/docs.mat").c_str());
  folder_.Write(folder + "/docs.mat.clabel", "apple\n");
  EXPECT_EQ(Of(Read(1, 1).clabels), Texts{"apple"});
}

TEST_F(CompanionFiles, OfAMatrixWithoutRowsAndColumnsAreNotRead) {
  folder_.Write("docs.mat.clabel", "");
  folder_.Write("docs.mat.rclass", "");
  for (const int n : {0, -3}) {
    const Matrix mat = Read(n, n);
    EXPECT_FALSE(mat.clabels);
    EXPECT_FALSE(mat.rlabels);
    EXPECT_FALSE(mat.classes);
    EXPECT_EQ(mat.nclasses, 1);
  }
}

// Without columns the row labels are the first table; generated texts ask for nothing yet.
TEST_F(CompanionFiles, NameTheTableThatCannotBeHad) {
  folder_.Write("docs.mat.rclass", "a\n");
  const auto read_with = [this](int successes, int nrows, int ncols) {
    const testing_support::FailingAllocations failing(successes);
    Read(nrows, ncols);
  };
  EXPECT_FATAL(read_with(0, 1, 3), AllocationFailed("ReadMat: clabel", 3 * sizeof(char*)));
  EXPECT_FATAL(read_with(0, 1, 0), AllocationFailed("ReadMat: rlabels", sizeof(char*)));
  EXPECT_FATAL(read_with(1, 1, 0), AllocationFailed("ReadMat: rclasses", sizeof(char*)));
}

TEST(SetUpClasses, NumbersLabelsInTheOrderOfTheirFirstAppearance) {
  Matrix mat = MatrixWithClasses({"b", "a", "b", "c"});
  mardle::SetUpClasses(mat);
  EXPECT_EQ(Of(mat.classes), (Ints{0, 1, 0, 2}));
  EXPECT_EQ(mat.nclasses, 3);
  EXPECT_EQ(Of(mat.classnames), (Texts{"b", "a", "c"}));
}

TEST(SetUpClasses, TellsLabelsApartByEveryCharacter) {
  Matrix mat = MatrixWithClasses({"a b", "A b", "a  b", " a b", "a b", ""});
  mardle::SetUpClasses(mat);
  EXPECT_EQ(Of(mat.classes), (Ints{0, 1, 2, 3, 0, 4}));
}

TEST(SetUpClasses, PutsAllRowsIntoOneClassWithoutLabels) {
  Matrix mat = MatrixOf(3, 1);
  mardle::SetUpClasses(mat);
  EXPECT_EQ(Of(mat.classes), (Ints{0, 0, 0}));
  EXPECT_EQ(mat.nclasses, 1);
  EXPECT_EQ(Of(mat.classnames), Texts{"no-class"});
}

TEST(SetUpClasses, NumbersAsManyClassesAsRows) {
  Texts labels;
  Ints expected;
  for (int i = 0; i < 200000; ++i) {
    labels.push_back("class " + std::to_string(i));
    expected.push_back(i);
  }
  Matrix mat = MatrixWithClasses(labels);
  mardle::SetUpClasses(mat);
  EXPECT_EQ(mat.nclasses, 200000);
  EXPECT_EQ(Of(mat.classes), expected);
  EXPECT_STREQ(mat.classnames[199999], "class 199999");
}

// Were each label compared with all that collide with it, this would take half an hour.
TEST(SetUpClasses, NumbersLabelsThatCollideInAHashTable) {
  const Texts colliding = testing_support::CollidingTexts(1000000);
  const std::hash<std::string_view> hash;
  EXPECT_EQ(hash(colliding.front()), hash(colliding.back()));
  Matrix mat = MatrixWithClasses(colliding);
  mardle::SetUpClasses(mat);
  EXPECT_EQ(mat.nclasses, 1000000);
  EXPECT_EQ(mat.classes[mat.nrows - 1], mat.nrows - 1);
}

TEST(SetUpClasses, NamesTheArrayThatCannotBeHad) {
  Matrix mat = MatrixWithClasses({"a", "b", "a"});
  const auto set_up_with = [&mat](int successes) {
    const testing_support::FailingAllocations failing(successes);
    mardle::SetUpClasses(mat);
  };
  EXPECT_FATAL(set_up_with(0), AllocationFailed("SetUpClasses: class", 12));
  EXPECT_FATAL(set_up_with(1), AllocationFailed("SetUpClasses: classnames", 2 * sizeof(char*)));
}

TEST_F(CompanionFiles, MakeOneClassOfLabelsThatDifferInTrailingBlanks) {
  folder_.Write("docs.mat.rclass", "a\na \na\t\n a\n");
  EXPECT_EQ(Of(Read(4, 1).classes), (Ints{0, 0, 0, 1}));
}

TEST(Labels2Classes, NumbersAsTheRowClassesDo) {
  const std::vector<const char*> labels = {"b", "a", "b", "c", "B"};
  int nclasses = -1;
  EXPECT_EQ(Of(mardle::Labels2Classes(5, labels.data(), nclasses)), (Ints{0, 1, 0, 2, 3}));
  EXPECT_EQ(nclasses, 4);
}

TEST(Labels2Classes, FindsNoClassAmongNoLabels) {
  for (const int n : {0, -2}) {
    int nclasses = 7;
    EXPECT_FALSE(mardle::Labels2Classes(n, nullptr, nclasses));
    EXPECT_EQ(nclasses, 0);
  }
}

TEST(Labels2Classes, NamesTheArrayThatCannotBeHad) {
  const std::vector<const char*> labels = {"a", "b"};
  int nclasses = 0;
  EXPECT_FATAL(
      {
        const testing_support::FailingAllocations failing(0);
        mardle::Labels2Classes(2, labels.data(), nclasses);
      },
      AllocationFailed("Labels2Classes: part", 8));
}

}  // namespace
