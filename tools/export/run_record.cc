// SPDX-License-Identifier: MIT
#include "tools/export/run_record.h"

#include <cstdlib>
#include <nlohmann/json.hpp>

#include "tools/text/file_error.h"
#include "tools/text/file_hash.h"
#include "tools/text/input_lines.h"

namespace mardle::exporting {
namespace {

using nlohmann::json;

constexpr int kKnownFormat = 1;

std::string TextOf(const std::string& path) {
  const molva::File file = tools::OpenForReading(path);
  std::string text;
  for (int c = std::getc(file.get()); c != EOF; c = std::getc(file.get())) {
    text += static_cast<char>(c);
  }
  if (std::ferror(file.get()) != 0) throw tools::SystemError(path);
  return text;
}

// Throws what the parser throws when a field is missing or of another kind.
RunRecord RecordOf(const json& text, const std::string& path) {
  if (text.at("format").get<int>() != kKnownFormat) {
    throw tools::FileError({path, 0}, "records of format " +
                                          std::to_string(text["format"].get<int>()) +
                                          " are not known to this version");
  }
  RunRecord record;
  record.path = path;
  record.version = text.at("version").get<std::string>();
  record.options = text.at("options").get<std::vector<std::string>>();
  record.clusters = text.at("clusters").get<int>();
  record.seed = text.at("seed").get<int>();
  record.threads = text.value("threads", 1);
  if (text.contains("import")) {
    record.import_options = text["import"].get<std::vector<std::string>>();
  }
  if (text.contains("sampled")) {
    const json& sampled = text["sampled"];
    record.sampled = {sampled.at("rows").get<int>(), sampled.at("passes").get<int>()};
  }
  for (const json& file : text.at("files")) {
    record.files.push_back({file.at("role").get<std::string>(), file.value("sha256", "")});
  }
  return record;
}

bool IsOfRun(const RunRecord& record, const std::string& role, const std::string& path) {
  for (const RunRecord::File& file : record.files) {
    if (file.role == role && file.sha256 == tools::HashOfFile(path).sha256) return true;
  }
  return false;
}

void TakeInt(const RunRecord& record, const char* name, int& field) {
  const std::optional<std::string> value = OptionOf(record, name);
  if (value && !value->empty()) field = std::atoi(value->c_str());
}

}  // namespace

RunRecord ReadRunRecord(const std::string& path) {
  const std::string text = TextOf(path);
  try {
    return RecordOf(json::parse(text), path);
  } catch (const json::exception&) {
    throw tools::FileError({path, 0}, "this is not the record of a run");
  }
}

std::string FileOfAnotherRun(const RunRecord& record, const std::string& matrix,
                             const std::string& clustering) {
  if (!IsOfRun(record, "matrix", matrix)) return "the matrix " + matrix;
  if (!IsOfRun(record, "clustering", clustering)) return "the clustering " + clustering;
  return "";
}

std::optional<std::string> OptionOf(const RunRecord& record, const std::string& name) {
  std::optional<std::string> found;
  for (const std::string& option : record.options) {
    const std::size_t begin = option.find_first_not_of('-');
    if (begin == std::string::npos) continue;
    const std::size_t end = option.find('=');
    if (option.compare(begin, end == std::string::npos ? end : end - begin, name) != 0) continue;
    found = end == std::string::npos ? "" : option.substr(end + 1);
  }
  return found;
}

void TakeOptions(const RunRecord& record, RunParams& params) {
  TakeInt(record, "crfun", params.crfun);
  TakeInt(record, "showtree", params.treecrfun);
  TakeInt(record, "sim", params.simfun);
  TakeInt(record, "rowmodel", params.rowmodel);
  TakeInt(record, "colmodel", params.colmodel);
  const std::optional<std::string> prune = OptionOf(record, "prune");
  if (prune) params.prune = static_cast<float>(std::atof(prune->c_str()));
  params.denseinput = OptionOf(record, "denseinput").has_value();
  params.seed = record.seed;
}

}  // namespace mardle::exporting
