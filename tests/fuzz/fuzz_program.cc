// SPDX-License-Identifier: MIT
//
// Whole runs: a small matrix under any options, with every report, tree and plot. Each run is made
// twice, with fresh memory holding different bytes; what it prints (the timings aside) and its
// clustering and tree files must be the same.
//
// Options are drawn from the table, never taken as text, and their file names are files in memory,
// so nothing is written elsewhere. Matrices have at most 12 x 12 cells, trials and passes are few,
// and numbers of clusters and of features are either small or too large for memory, so that an
// input runs for milliseconds. Pictures of 570 x 570 points are left to the plots' own target.
#include <algorithm>
#include <array>

#include "programs/options.h"
#include "programs/run.h"
#include "tests/fuzz/harness.h"

namespace fuzzing {
namespace {

using mardle::Option;

constexpr int kMost = 12;
constexpr int kFinished = 84;

struct Files {
  MemoryFile matrix, clabels, rlabels, rclasses;
  MemoryFile clusters, tree, matrix_plot, cluster_plot;
};

std::string MatrixText(Input& input, bool dense) {
  const int nrows = input.Below(kMost + 1);
  const int ncols = input.Below(kMost + 1);
  int entries = 0;
  std::string rows;
  for (int i = 0; i < nrows; ++i) {
    for (int j = 0; j < ncols; ++j) {
      const int choice = input.Byte();
      if (!dense && choice % 3 == 0) continue;
      if (!dense) rows += std::to_string(j + 1) + " ";
      rows += choice < 0xf8 ? std::to_string(choice % 16)
                            : Format("%.9g", static_cast<double>(input.AnyFloat()));
      rows += ' ';
      ++entries;
    }
    rows += '\n';
  }
  return Format("%d %d %d\n", nrows, ncols, entries) + rows;
}

std::string Labels(Input& input) {
  const std::string text = input.Until(0xfe);
  return Expanded({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

// As many clusters or features as a run of milliseconds can have, or more than there is memory for.
int Bounded(int number) { return number >= 1 << 24 ? number : std::min(number, 40); }

int NumberFor(const Option& option, Input& input) {
  const int number = input.AnyInt();
  const std::string_view name = option.name;
  if (name == "ntrials") return std::min(number, 3);
  if (name == "niter") return std::min(number, 4);
  if (name == "nfeatures") return Bounded(number);
  if (name.ends_with("model") || name == "sim") return number < 24 ? number % 5 : number;
  return number;
}

std::string FormatFor(Input& input) {
  static constexpr const char* kFormats[] = {"ps",  "fig",  "ai",   "svg", "cgm",
                                             "pcl", "meta", "hpgl", "tek", "regis"};
  const int choice = input.Byte();
  if (choice < 0xf0) return kFormats[static_cast<std::size_t>(choice) % std::size(kFormats)];
  std::string text = input.Until(0xfe);
  text.resize(std::min(text.find('\0'), text.size()));
  return text;
}

const char* FileFor(const Option& option, const Files& files) {
  const std::string_view name = option.name;
  if (name == "clabelfile") return files.clabels.path();
  if (name == "rlabelfile") return files.rlabels.path();
  if (name == "rclassfile") return files.rclasses.path();
  if (name == "output") return files.clusters.path();
  if (name == "writetree") return files.tree.path();
  return name == "plotmatrix" ? files.matrix_plot.path() : files.cluster_plot.path();
}

std::string Word(const Option& option, Input& input, const Files& files) {
  const std::string name = std::string("-") + option.name;
  switch (option.value) {
    case Option::Value::kNone:
    case Option::Value::kHelp:
      return name;
    case Option::Value::kInt:
      return name + "=" + std::to_string(NumberFor(option, input));
    case Option::Value::kOptionalInt:
      return input.Flag() ? name : name + "=" + std::to_string(NumberFor(option, input));
    case Option::Value::kFloat:
      return name + Format("=%.9g", static_cast<double>(input.AnyFloat()));
    case Option::Value::kText:
    case Option::Value::kOptionalText:
      return name + "=" + (input.Below(32) == 31 ? "/proc/self/fd/none" : FileFor(option, files));
    case Option::Value::kFormat:
      return name + "=" + FormatFor(input);
  }
  return name;
}

// A run from its bytes: the number of options and whether the matrix is dense, what memory it has,
// its clusters, the options, the matrix, the labels.
class ProgramRun {
 public:
  explicit ProgramRun(Bytes bytes) {
    Input input(bytes);
    const int shape = input.Byte();
    const int blocks = input.Byte();
    blocks_ = blocks < 0xe0 ? INT_MAX : (blocks - 0xdf) * 8;
    const bool dense = shape % 2 == 1;
    words_ = {"mardle", Format("-output=%s", files_.clusters.path())};
    if (dense) words_.emplace_back("-denseinput");
    const int nclusters = input.AnyInt();
    const auto options = mardle::OptionTable();
    for (int n = shape / 2 % 16; n > 0; --n) {
      const auto choice = static_cast<std::size_t>(input.Byte()) % options.size();
      words_.push_back(Word(options[choice], input, files_));
    }
    words_.emplace_back(files_.matrix.path());
    words_.push_back(std::to_string(nclusters > 28 && nclusters < 1 << 24 ? 3 : nclusters));
    // A text of any kind, or a matrix that can be read.
    Write(files_.matrix, shape >= 0xe0 ? input.Until(0xfe) : MatrixText(input, dense));
    Write(files_.clabels, Labels(input));
    Write(files_.rlabels, Labels(input));
    Write(files_.rclasses, Labels(input));
  }

  Record Outcome(std::uint8_t fill) {
    std::vector<std::string> words = words_;
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    int status = 0;
    Sandbox sandbox({.fill = fill, .blocks = blocks_});
    Record record;
    const std::string message =
        FatalMessageOf([&] { status = mardle::Run(static_cast<int>(words.size()), argv.data()); });
    Require(message.empty() || status == 0, "a fatal error ends the run");
    const std::string output = sandbox.Output();
    const std::size_t timings = output.find("\nTiming Information ---");
    Require((status == kFinished) == (timings != std::string::npos),
            "a finished run tells its timings and returns 84");
    record.Add(message);
    record.Add(output.substr(0, timings));
    record.Add(files_.clusters.Text());
    record.Add(files_.tree.Text());
    return record;
  }

 private:
  static void Write(const MemoryFile& file, const std::string& text) {
    std::FILE* stream = std::fopen(file.path(), "w");
    std::fwrite(text.data(), 1, text.size(), stream);
    std::fclose(stream);
  }

  Files files_;
  int blocks_;
  std::vector<std::string> words_;
};

}  // namespace

void FuzzProgram(Bytes bytes) {
  ProgramRun run(bytes);
  Require(run.Outcome(0x00) == run.Outcome(0xff), "a run does not depend on fresh memory");
}

}  // namespace fuzzing
