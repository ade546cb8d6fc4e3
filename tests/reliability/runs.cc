// SPDX-License-Identifier: MIT
#include "tests/reliability/runs.h"

#include <filesystem>
#include <sstream>
#include <utility>

#include "programs/run.h"
#include "tests/reliability/failing_new.h"
#include "tests/testing/fatal.h"

namespace reliability {
namespace {

// Eight rows over six columns: three groups that share few columns.
constexpr char kSparse[] =
    "8 6 22\n"
    "1 3 2 1\n"
    "1 2 2 2 3 1\n"
    "1 4 2 3\n"
    "3 2 4 5\n"
    "3 3 4 2 5 1\n"
    "3 1 4 4\n"
    "5 2 6 3 1 1 4 2\n"
    "5 3 6 1 2 1 3 1\n";
constexpr char kDense[] =
    "6 4\n"
    "1 2 3 4\n"
    "2 4 6 9\n"
    "1 3 4 5\n"
    "4 3 2 1\n"
    "9 6 4 2\n"
    "-1 5 2 0.5\n";
constexpr char kClasses[] = "x\nx\ny\ny\nx\nz\nz\ny\n";
constexpr char kColumnLabels[] = "apple\nbread\ncheese\ndate\negg\nfig\n";

const Files kSparseInput = {{"m", kSparse}};
const Files kLabelledInput = {{"m", kSparse}, {"m.rclass", kClasses}, {"m.clabel", kColumnLabels}};
const Files kDenseInput = {{"m", kDense}};

std::string InFolder(const testing_support::TempFolder& folder, const std::string& word) {
  const std::size_t at = word.find('@');
  return at == std::string::npos ? word : word.substr(0, at) + folder.Path(word.substr(at + 1));
}

// The words of a command line as main receives them.
class CommandLine {
 public:
  explicit CommandLine(Words words) : words_(std::move(words)) {
    words_.insert(words_.begin(), "mardle");
    for (std::string& word : words_) argv_.push_back(word.data());
    argv_.push_back(nullptr);
  }
  int argc() const { return static_cast<int>(words_.size()); }
  char** argv() { return argv_.data(); }

 private:
  Words words_;
  std::vector<char*> argv_;
};

}  // namespace

Stage::Stage(const Scenario& scenario) : scenario_(scenario) {
  for (const auto& [name, text] : scenario.inputs) folder_.Write(name, text);
  for (const std::string& word : scenario.words) words_.push_back(InFolder(folder_, word));
}

Files Stage::Contents() const {
  Files contents;
  for (const auto& entry : std::filesystem::directory_iterator(folder_.Path(""))) {
    contents[entry.path().filename()] = testing_support::ReadText(entry.path());
  }
  return contents;
}

Outcome Stage::Run(long failing_new) const {
  for (const auto& [name, text] : Contents()) {
    if (!scenario_.inputs.contains(name)) std::filesystem::remove(folder_.Path(name));
  }
  const testing_support::FatalThrows throws;
  CommandLine line(words_);
  Outcome outcome;
  testing::internal::CaptureStdout();
  {
    const testing_support::FailingNew failing(failing_new);
    try {
      outcome.status = mardle::Run(line.argc(), line.argv());
    } catch (const testing_support::Fatal& error) {
      outcome.error = error.what();
    }
    outcome.new_requests = failing.requests();
  }
  outcome.report = WithoutTimes(testing::internal::GetCapturedStdout());
  outcome.files = Contents();
  return outcome;
}

std::string WithoutTimes(const std::string& report) {
  std::istringstream lines(report);
  std::string kept;
  for (std::string line; std::getline(lines, line);) {
    kept += line.ends_with(" sec") ? line.substr(0, line.find(':')) : line;
    if (!lines.eof()) kept += '\n';
  }
  return kept;
}

const std::vector<Scenario>& Scenarios() {
  static const std::vector<Scenario> scenarios = {
      {"sparse", {"@m", "3"}, kSparseInput},
      {"dense", {"@m", "3", "-denseinput"}, kDenseInput},
      {"correlation", {"@m", "3", "-denseinput", "-sim=2"}, kDenseInput},
      {"sparse correlation", {"@m", "3", "-sim=2"}, kSparseInput},
      {"direct", {"@m", "3", "-direct", "-crfun=7", "-colmodel=1"}, kSparseInput},
      {"refine", {"@m", "3", "-refine", "-crfun=3", "-rowmodel=2"}, kSparseInput},
      {"pruned", {"@m", "3", "-prune=0.8"}, kSparseInput},
      {"z-scores", {"@m", "3", "-zscores"}, kSparseInput},
      {"classes", {"@m", "3", "-clabelfile=@m.clabel"}, kLabelledInput},
      {"features", {"@m", "3", "-showfeatures", "-nfeatures=2"}, kLabelledInput},
      {"tree", {"@m", "3", "-showtree", "-writetree"}, kLabelledInput},
      {"tree of an exhaustive criterion", {"@m", "4", "-showtree=6"}, kSparseInput},
      {"tree over equal gains",
       {"@m", "4", "-showtree", "-denseinput"},
       {{"m", "4 4\n1 0 0 0\n0 1 0 0\n0 0 1 0\n0 0 0 1\n"}}},
      {"label tree", {"@m", "3", "-showtree", "-labeltree"}, kLabelledInput},
      {"complete tree", {"@m", "3", "-fulltree", "-writetree"}, kLabelledInput},
      {"matrix plot",
       {"@m", "3", "-fulltree", "-plotmatrix=@p", "-plotformat=fig", "-clustercolumns"},
       kSparseInput},
      {"dense matrix plot",
       {"@m", "3", "-denseinput", "-plotmatrix=@p", "-plotformat=fig", "-clustercolumns",
        "-fulltree"},
       kDenseInput},
      {"cluster plot",
       {"@m", "3", "-plotclusters=@p", "-plotformat=fig", "-clustercolumns"},
       kSparseInput},
  };
  return scenarios;
}

}  // namespace reliability
