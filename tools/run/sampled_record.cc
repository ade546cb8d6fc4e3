// SPDX-License-Identifier: MIT
#include "tools/run/sampled_record.h"

#include <filesystem>

#include "lib/molva.h"
#include "programs/io/write_results.h"
#include "tools/run/run_record.h"
#include "tools/text/run_files.h"

namespace mardle::tools {
namespace {

namespace fs = std::filesystem;

bool HasValue(const std::string& name) {
  return name != "nooutput" && name != "denseinput" && name != "direct";
}

// A value may be an argument of its own. Options that name files are left out, as in every record.
std::vector<std::string> OptionsIn(const std::vector<std::string>& arguments) {
  std::vector<std::string> options;
  for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
    const std::size_t dashes = argument->find_first_not_of('-');
    if (dashes == 0 || dashes == std::string::npos) continue;
    const std::size_t equals = argument->find('=');
    const std::string name = argument->substr(dashes, equals - dashes);
    std::string option = *argument;
    if (equals == std::string::npos && HasValue(name)) option += "=" + *++argument;
    if (name != "output" && name != "nooutput") options.push_back(option);
  }
  return options;
}

std::string FromRecord(const std::string& path, const std::string& record) {
  const fs::path folder = fs::absolute(record).lexically_normal().parent_path();
  return fs::absolute(path).lexically_normal().lexically_relative(folder).generic_string();
}

}  // namespace

void WriteSampledRecord(const std::vector<std::string>& arguments, const RunParams& params,
                        const SampleSettings& settings, const SampledClusters& found) {
  const std::string matrix = params.filename.get();
  const std::string clustering = ClusteringName(params);
  const std::string path = RecordPathOf(clustering);
  RunRecord record{.options = {"--sample=" + std::to_string(settings.rows),
                               "--passes=" + std::to_string(settings.passes)},
                   .nclusters = params.nclusters,
                   .seed = params.seed,
                   .threads = MOLVA_GetNumThreads(),
                   .sampled = {{found.sampled_rows, found.passes}}};
  for (std::string& option : OptionsIn(arguments)) record.options.push_back(std::move(option));
  record.files = {
      {"matrix", FromRecord(matrix, path), HashOfFile(matrix), std::nullopt},
      {"clustering", FromRecord(clustering, path), HashOfFile(clustering), std::nullopt}};
  WriteRecord(record, path);
}

}  // namespace mardle::tools
