// SPDX-License-Identifier: MIT
#include "tools/run/run_record.h"

#include <nlohmann/json.hpp>

#include "lib/molva.h"
#include "tools/text/output_file.h"

namespace mardle::tools {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kFormat = 1;
constexpr int kIndent = 2;

Json FileAsJson(const RecordedFile& file) {
  Json json = {{"role", file.role}, {"path", file.path}};
  if (file.count) json["count"] = *file.count;
  if (file.hash) {
    json["size"] = file.hash->size;
    json["sha256"] = file.hash->sha256;
  }
  return json;
}

}  // namespace

std::string RecordText(const RunRecord& record) {
  Json json = {
      {"format", kFormat},         {"program", "mardle"},          {"version", MOLVA_Version()},
      {"options", record.options}, {"clusters", record.nclusters}, {"seed", record.seed},
      {"threads", record.threads}};
  if (record.import_options) json["import"] = *record.import_options;
  if (record.sampled) {
    json["sampled"] = {{"rows", record.sampled->rows}, {"passes", record.sampled->passes}};
  }
  json["files"] = Json::array();
  for (const RecordedFile& file : record.files) json["files"].push_back(FileAsJson(file));
  return json.dump(kIndent, ' ', false, Json::error_handler_t::replace) + "\n";
}

void WriteRecord(const RunRecord& record, const std::string& path) {
  OutputFile file(path);
  file.Write(RecordText(record));
  file.Complete();
  OutputFile* const files[] = {&file};
  Publish(files);
}

}  // namespace mardle::tools
