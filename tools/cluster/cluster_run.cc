// SPDX-License-Identifier: MIT
#include "tools/cluster/cluster_run.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <stdexcept>
#include <string_view>

#include "tools/cluster/engine_run.h"
#include "tools/cluster/interrupt_watch.h"
#include "tools/cluster/scratch_folder.h"
#include "tools/cluster/stage_line.h"
#include "tools/import/import.h"
#include "tools/run/child_process.h"
#include "tools/run/program_path.h"
#include "tools/run/run_record.h"
#include "tools/text/fields.h"
#include "tools/text/file_error.h"
#include "tools/text/input_lines.h"
#include "tools/text/numbers.h"
#include "tools/text/run_files.h"
#include "tools/text/shell_text.h"
#include "tools/text/tool_frame.h"

namespace mardle::tools {
namespace {

namespace fs = std::filesystem;

constexpr char kName[] = "mardle-cluster";

// Whoever made the page was ended by a signal.
struct EndedBySignal {
  int signal;
};

// "8 clusters of 3 to 12 rows".
std::string ClustersText(const std::vector<int>& sizes) {
  const auto [least, most] = std::minmax_element(sizes.begin(), sizes.end());
  std::string text = std::to_string(sizes.size());
  text += sizes.size() == 1 ? " cluster of " : " clusters of ";
  if (*least != *most) text += std::to_string(*least) + " to ";
  return text + std::to_string(*most) + (*most == 1 ? " row" : " rows");
}

// One run, from its request to its results. Names of files are those in the scratch folder, which
// is the working folder from the clustering on.
class ClusterRun {
 public:
  explicit ClusterRun(const ClusterRequest& request)
      : request_(request),
        stem_(StemOf(request.input)),
        input_(request.input == "-" ? "-" : fs::absolute(request.input).string()),
        folder_(request.output),
        line_(request.quiet) {}

  int Run();

 private:
  std::string File(const char* ending) const { return stem_ + ending; }
  std::vector<std::string> LeftoverNames() const;
  void RefuseExisting() const;
  void TakeMatrix();
  void ImportMatrix();
  void Cluster();
  void WriteRecord() const;
  RecordedFile SourceRecord() const;
  std::string FromTarget(const std::string& path) const;
  const char* Contents() const;
  int MakePage() const;
  std::string Summary() const;
  std::string TypedProgram(const char* name) const;

  const ClusterRequest& request_;
  std::string stem_;
  std::string input_;
  std::string start_ = fs::current_path().string();
  ScratchFolder folder_;
  StageLine line_;
  std::string matrix_;  // from the scratch folder
  bool imported_ = false;
  std::vector<std::string> options_;  // of mardle
  ImportResult import_;
  EngineResult engine_;
};

std::vector<std::string> ClusterRun::LeftoverNames() const {
  std::vector<std::string> names;
  for (const RunFile& result : kRunFiles) names.push_back(File(result.ending));
  names.push_back(File(kRecordEnding));
  names.push_back(File(kPageEnding));
  return names;
}

void ClusterRun::RefuseExisting() const {
  std::error_code ignored;
  if (!fs::exists(folder_.target(), ignored) || request_.replace) return;
  if (fs::is_directory(folder_.target(), ignored) && fs::is_empty(folder_.target(), ignored)) {
    return;
  }
  throw FileError(
      {request_.output, 0},
      "exists already; --force replaces the results in it, --output names another folder");
}

// A matrix stays where it is.
void ClusterRun::TakeMatrix() {
  int numbers = 0;
  imported_ = request_.import.format || !LooksLikeMatrix(request_.input, numbers);
  if (imported_) return ImportMatrix();
  if (!request_.import_options.empty()) {
    throw std::invalid_argument(request_.import_options[0] +
                                " has no use for this input: matrix of mardle");
  }
  matrix_ = fs::path(input_).lexically_relative(folder_.path()).string();
  if (numbers == 2) options_.emplace_back("-denseinput");
}

void ClusterRun::ImportMatrix() {
  ImportOptions options = request_.import;
  options.output.path = folder_.path() + "/" + File(".mat");
  try {
    import_ = Import(options);
  } catch (const FileError& error) {
    std::string message = error.what();
    const std::size_t at = message.find(folder_.path());
    if (at != std::string::npos) message.replace(at, folder_.path().size(), request_.output);
    throw std::runtime_error(message);
  }
  matrix_ = File(".mat");
  options_ = MardleOptionsFor(import_.matrix);
}

void ClusterRun::Cluster() {
  options_.insert(options_.end(), request_.mardle_options.begin(), request_.mardle_options.end());
  engine_ = RunEngine({.matrix = matrix_,
                       .options = options_,
                       .nclusters = request_.nclusters,
                       .clustering = File(".clustering"),
                       .tree = File(".tree"),
                       .cluster_tree = File(".clusters.tree")},
                      line_);
}

std::string ClusterRun::FromTarget(const std::string& path) const {
  return fs::path(path).lexically_relative(folder_.target()).generic_string();
}

RecordedFile ClusterRun::SourceRecord() const {
  if (input_ == "-") return {"source", "-", std::nullopt, std::nullopt};
  if (!fs::is_directory(input_)) {
    const bool is_file = fs::is_regular_file(input_);
    return {"source", FromTarget(input_),
            is_file ? std::optional(HashOfFile(input_)) : std::nullopt, std::nullopt};
  }
  return {"source", FromTarget(input_), HashOfFiles(input_, import_.files),
          static_cast<std::int64_t>(import_.files.size())};
}

void ClusterRun::WriteRecord() const {
  RunRecord record{.options = options_,
                   .nclusters = request_.nclusters,
                   .seed = engine_.seed,
                   .threads = engine_.threads};
  if (imported_) {
    record.import_options = request_.import_options;
    record.files.push_back(SourceRecord());
  }
  for (const RunFile& result : kRunFiles) {
    const bool is_input = !imported_ && std::string_view(result.ending).starts_with(".mat");
    const std::string name =
        is_input ? matrix_ + std::string(result.ending).substr(std::string_view(".mat").size())
                 : File(result.ending);
    if (!fs::is_regular_file(name)) continue;
    record.files.push_back({result.role,
                            is_input ? FromTarget(input_ + name.substr(matrix_.size())) : name,
                            HashOfFile(name), std::nullopt});
  }
  tools::WriteRecord(record, File(kRecordEnding));
}

// What the page is told of the matrix, as far as the import knows.
const char* ClusterRun::Contents() const {
  if (!imported_) return nullptr;
  const bool has_text = !request_.import.table.text_columns.empty();
  switch (import_.format) {
    case InputFormat::kFolder:
    case InputFormat::kLines:
      return "text";
    case InputFormat::kTable:
      return has_text ? "text" : "table";
    default:
      return nullptr;
  }
}

// The options of mardle that the page must know, too, have two dashes there.
int ClusterRun::MakePage() const {
  static constexpr std::array<std::string_view, 9> kShared = {
      "-crfun",      "-sim",        "-rowmodel",   "-colmodel",  "-prune",
      "-denseinput", "-rlabelfile", "-rclassfile", "-clabelfile"};
  const std::optional<std::string> program = FindBeside("mardle-export");
  if (!program) {
    ReportError(kName, "there is no mardle-export beside this program or on PATH, so no page");
    return kFailure;
  }
  std::vector<std::string> arguments = {"html",           "--matrix",          matrix_,
                                        "--clustering",   File(".clustering"), "--output",
                                        File(kPageEnding)};
  if (engine_.has_tree) arguments.insert(arguments.end(), {"--tree", File(".tree")});
  if (!engine_.has_cluster_tree) arguments.emplace_back("--treecrfun=2");
  if (const char* contents = Contents())
    arguments.insert(arguments.end(), {"--contents", contents});
  for (const std::string& option : options_) {
    const std::string name = option.substr(0, option.find('='));
    if (std::find(kShared.begin(), kShared.end(), name) != kShared.end()) {
      arguments.push_back("-" + option);
    }
  }
  const Ending ending = RunProgram(*program, arguments);
  if (ending.signal != 0) throw EndedBySignal{ending.signal};
  return ending.start_error == 0 && ending.status == 0 ? kSuccess : kFailure;
}

// As it was typed: in the same folder, or by its name alone.
std::string ClusterRun::TypedProgram(const char* name) const {
  const std::size_t slash = request_.program.rfind('/');
  const std::string folder =
      slash == std::string::npos ? "" : request_.program.substr(0, slash + 1);
  return ShellText(folder + name);
}

std::string ClusterRun::Summary() const {
  const std::string folder = request_.output + (request_.output.ends_with('/') ? "" : "/");
  std::string text;
  if (imported_) {
    ImportOptions shown = request_.import;
    shown.output.path = folder + File(".mat");
    text = SummaryWithoutCommand(shown, import_);
  }
  text += ClustersText(engine_.sizes);
  if (engine_.rows_without > 0) {
    text += ", " + std::to_string(engine_.rows_without) + " rows in none";
  }
  text += "\n";
  for (const std::string& note : engine_.notes) text += note + "\n";
  std::string command = TypedProgram("mardle-run") + " -nooutput -showfeatures";
  for (const std::string& option : options_) command += " " + ShellText(option);
  const std::string matrix = imported_ ? folder + File(".mat") : request_.input;
  command += " " + ShellText(matrix) + " " + std::to_string(request_.nclusters);
  return text + "Report: " + command + "\nResults: " + ShellText(folder) + ", begin with " +
         ShellText(folder + File(kPageEnding)) + "\n";
}

int ClusterRun::Run() {
  RefuseExisting();
  {
    const InterruptWatch watch(folder_.path());
    TakeMatrix();
    fs::current_path(folder_.path());
    Cluster();
    line_.Begin("record and page");
    WriteRecord();
  }
  if (const int status = MakePage(); status != kSuccess) return status;
  fs::current_path(start_);
  folder_.Keep(LeftoverNames());
  line_.End();
  if (!request_.quiet) WriteStandardOutput(Summary());
  return kSuccess;
}

}  // namespace

bool LooksLikeMatrix(const std::string& path, int& numbers) {
  constexpr std::size_t kFewest = 2;
  constexpr std::size_t kMost = 3;
  if (!fs::is_regular_file(path)) return false;
  if (!path.ends_with(".mat") && fs::path(path).has_extension()) return false;
  InputLines input(path);
  std::string_view line;
  if (!input.Next(line)) return false;
  const std::vector<std::string_view> fields = FieldsOf(line);
  numbers = static_cast<int>(fields.size());
  return fields.size() >= kFewest && fields.size() <= kMost &&
         std::all_of(fields.begin(), fields.end(),
                     [](std::string_view field) { return ParseInteger(field).has_value(); });
}

int RunClustering(const ClusterRequest& request) {
  int signal = 0;
  try {
    return ClusterRun(request).Run();
  } catch (const EndedBySignal& ended) {
    signal = ended.signal;
  }
  EndBySignal(signal);
}

}  // namespace mardle::tools
