// SPDX-License-Identifier: MIT
#include "tools/export/run_settings.h"

#include <filesystem>
#include <stdexcept>

#include "tools/text/file_error.h"
#include "tools/text/run_files.h"

namespace mardle::exporting {
namespace {

// The record, when its files are those of the export.
std::optional<RunRecord> RecordOfRun(const Request& request, const std::string& path) {
  RunRecord record = ReadRunRecord(path);
  const std::string other = FileOfAnotherRun(record, request.files.matrix, request.clustering);
  if (!other.empty()) {
    throw tools::FileError(
        {path, 0}, "the record is of another run: it does not tell of " + other + " as it is now");
  }
  return record;
}

std::optional<RunRecord> FindRecord(const Request& request, std::vector<std::string>& warnings) {
  if (!request.record.empty()) return RecordOfRun(request, request.record);
  const std::string path = tools::RecordPathOf(request.clustering);
  if (!std::filesystem::is_regular_file(path)) return std::nullopt;
  try {
    return RecordOfRun(request, path);
  } catch (const tools::FileError& error) {
    warnings.push_back(std::string(error.what()) + "; it is not used");
    return std::nullopt;
  }
}

// An option of a model, which a run has only one value of.
template <typename Value>
void TakeModel(const Request& request, const std::optional<RunRecord>& record, const char* option,
               Value RunParams::*field, RunParams& params) {
  if (!request.told.contains(option)) return;
  if (record && params.*field != request.run.*field) {
    throw std::invalid_argument(std::string(option) + " is not that of the run, as " +
                                record->path + " tells");
  }
  params.*field = request.run.*field;
}

// What the page shows beside: any criterion may be asked for.
void TakeChoices(const Request& request, RunParams& params) {
  if (request.told.contains("--crfun")) {
    params.crfun = request.run.crfun;
    params.treecrfun = 0;
  }
  if (request.told.contains("--treecrfun")) params.treecrfun = request.run.treecrfun;
  params.nfeatures = request.run.nfeatures;
  params.noreorder = request.run.noreorder;
}

bool TellsModels(const Request& request) {
  for (const char* option : {"--sim", "--rowmodel", "--colmodel", "--prune", "--denseinput"}) {
    if (request.told.contains(option)) return true;
  }
  return false;
}

}  // namespace

RunSettings SettleRun(const Request& request) {
  RunSettings settings;
  settings.record = FindRecord(request, settings.warnings);
  RunParams& params = settings.params;
  if (settings.record) {
    TakeOptions(*settings.record, params);
    if (params.simfun == MOLVA_SIM_CORRELATION || params.denseinput) {
      params.colmodel = MOLVA_COL_NONE;
    }
  } else if (!TellsModels(request)) {
    settings.warnings.emplace_back(
        "nothing tells the models of the run, neither a record beside the clustering nor an option "
        "such as --rowmodel; the defaults of mardle are taken");
  }
  TakeModel(request, settings.record, "--sim", &RunParams::simfun, params);
  TakeModel(request, settings.record, "--rowmodel", &RunParams::rowmodel, params);
  TakeModel(request, settings.record, "--colmodel", &RunParams::colmodel, params);
  TakeModel(request, settings.record, "--prune", &RunParams::prune, params);
  TakeModel(request, settings.record, "--denseinput", &RunParams::denseinput, params);
  TakeChoices(request, params);
  DeriveSettings(params);
  if (request.format == Format::kHtml && params.treecrfun > MOLVA_CRFUN_H2) {
    throw std::invalid_argument("trees are built under the criteria 1 to 7; --treecrfun is wanted");
  }
  return settings;
}

}  // namespace mardle::exporting
