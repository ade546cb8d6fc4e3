// SPDX-License-Identifier: MIT
#include "tools/run/sampled_run.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <stdexcept>
#include <string_view>

#include "lib/molva.h"
#include "lib/support/fatal.h"
#include "lib/support/printed.h"
#include "programs/code_names.h"
#include "programs/io/result_file.h"
#include "programs/io/write_results.h"
#include "programs/thread_count.h"
#include "tools/run/promised_files.h"
#include "tools/run/sampled_record.h"
#include "tools/text/kept_inputs.h"
#include "tools/text/numbers.h"
#include "tools/text/run_files.h"
#include "tools/text/tool_frame.h"

namespace mardle::tools {
namespace {

constexpr char kName[] = "mardle-run";
constexpr std::int64_t kFewestSampled = 20'000;
constexpr std::int64_t kSampledOfACluster = 300;

std::int64_t NumberIn(std::string_view option, std::string_view text) {
  const auto number = ParseInteger(text);
  if (number && *number >= 1 && *number <= INT32_MAX) return *number;
  throw std::invalid_argument(std::string(option) + " takes a whole number from 1 on, not '" +
                              std::string(text) + "'");
}

// The options that the sampled form has; -direct is what it does.
bool HasOption(const std::string& argument) {
  static constexpr std::array<std::string_view, 11> kOptions = {
      "crfun", "sim",    "rowmodel", "colmodel",   "prune", "ntrials",
      "seed",  "output", "nooutput", "denseinput", "direct"};
  const std::size_t dashes = argument.find_first_not_of('-');
  if (dashes == 0 || dashes == std::string::npos) return true;
  const std::string name = argument.substr(dashes, argument.find('=') - dashes);
  return std::find(kOptions.begin(), kOptions.end(), name) != kOptions.end();
}

RunParams ParamsOf(const std::vector<std::string>& arguments) {
  for (const std::string& argument : arguments) {
    if (HasOption(argument)) continue;
    throw std::invalid_argument(
        argument +
        " needs all rows in memory: the sampled form takes -crfun, -sim, -rowmodel, -colmodel,\n"
        "-prune, -ntrials, -seed, -output, -nooutput and -denseinput, spelled in full");
  }
  std::vector<std::string> command_line{"mardle"};
  command_line.insert(command_line.end(), arguments.begin(), arguments.end());
  RunParams params;
  if (ReadCommandLine(command_line, params) != CommandLineKind::kRun) {
    throw std::invalid_argument("the sampled form takes a matrix file and the number of clusters");
  }
  if (params.nclusters < 1) {
    throw std::invalid_argument("the sampled form needs the number of clusters, from 1 on");
  }
  return params;
}

// Whether all of it could be written; what failed has been told.
bool WriteParts(const RunParams& params, const std::vector<int>& part) {
  const std::string name = ClusteringName(params);
  ResultFile file(name);
  if (!file) molva::FatalError("Problems in opening the clustering file: %s", name.c_str());
  for (const int k : part) std::fprintf(file.get(), "%d\n", k);
  return file.Complete();
}

template <typename... Values>
void Append(std::string& text, const char* format, Values... values) {
  std::array<char, 4096> line;
  std::snprintf(line.data(), line.size(), format, values...);
  text += line.data();
}

std::vector<std::string> OutputsWithRecord(RunParams& params) {
  std::vector<std::string> outputs = OutputsOf(params);
  if (!params.nooutput) outputs.push_back(RecordPathOf(ClusteringName(params)));
  return outputs;
}

std::string ReportOf(const RunParams& params, const SampleSettings& settings,
                     const MatrixBlocks& blocks, const SampledClusters& found) {
  std::string text;
  Append(text,
         "Sampled form: %d rows clustered directly, all rows placed in %d of at most %d passes\n",
         found.sampled_rows, found.passes, settings.passes);
  text += "Name: " + std::string(params.filename.get());
  Append(text, ", #Rows: %d, #Columns: %d, #NonZeros: %lld\n", blocks.header().nrows,
         blocks.header().ncols, static_cast<long long>(blocks.entries()));
  Append(text, "CRfun=%s, RowModel=%s, ColModel=%s, Prune=%.2f, NTrials=%d, SimFun=%s, Seed=%d\n\n",
         CriterionName(params.crfun), RowModelName(params.rowmodel),
         ColumnModelName(params.colmodel), static_cast<double>(params.prune), params.ntrials,
         SimilarityName(params.simfun), params.seed);
  Append(text, "%d-way clustering solution: [%s=%.2e]\n", params.nclusters,
         CriterionName(params.crfun), molva::Printed(found.value));
  text += "cid       Size  ISim  ISdev   ESim  ESdev\n";
  for (std::size_t k = 0; k < found.pwgts.size(); ++k) {
    Append(text, "%3d %10lld %+5.3f %+5.3f %+5.3f %+5.3f\n", static_cast<int>(k),
           static_cast<long long>(found.pwgts[k]), molva::Printed(found.isim[k]),
           molva::Printed(found.isdev[k]), molva::Printed(found.esim[k]),
           molva::Printed(found.esdev[k]));
  }
  const auto none = std::count(found.part.begin(), found.part.end(), -1);
  if (none > 0) Append(text, "%lld rows in no cluster\n", static_cast<long long>(none));
  return text;
}

}  // namespace

std::optional<SampleSettings> TakeSampleOptions(std::vector<std::string>& arguments) {
  constexpr std::string_view kSample = "--sample=";
  constexpr std::string_view kPasses = "--passes=";
  std::optional<SampleSettings> settings;
  std::optional<int> passes;
  std::erase_if(arguments, [&](const std::string& argument) {
    if (argument == "--sample") {
      settings.emplace();
    } else if (argument.starts_with(kSample)) {
      settings.emplace();
      settings->rows = NumberIn("--sample", argument.substr(kSample.size()));
    } else if (argument.starts_with(kPasses)) {
      passes = static_cast<int>(NumberIn("--passes", argument.substr(kPasses.size())));
    } else {
      return false;
    }
    return true;
  });
  if (passes && !settings) throw std::invalid_argument("--passes goes with --sample");
  if (passes) settings->passes = *passes;
  return settings;
}

void RunSampled(const std::vector<std::string>& arguments, SampleSettings settings) {
  const molva::CatchableErrors errors_are_thrown;
  RunParams params = ParamsOf(arguments);
  RefuseInputsAsOutputs(InputsOf(params), OutputsWithRecord(params));
  UseThreadsOfEnvironment();
  if (settings.rows == 0) {
    settings.rows = std::max(kFewestSampled, kSampledOfACluster * params.nclusters);
  }
  const MatrixBlocks blocks(params.filename.get(), params.denseinput);
  const SampledClusters found = ClusterBySample(
      params, settings, blocks, [](const std::string& text) { ReportError(kName, text); });
  const bool is_written = params.nooutput || WriteParts(params, found.part);
  WriteStandardOutput(ReportOf(params, settings, blocks, found));
  if (!is_written) throw std::runtime_error("the run could not write everything");
  if (!params.nooutput && IsReadBack(ClusteringName(params))) {
    WriteSampledRecord(arguments, params, settings, found);
  }
}

}  // namespace mardle::tools
