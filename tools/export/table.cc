// SPDX-License-Identifier: MIT
#include "tools/export/table.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <string>

#include "tools/export/escape.h"

namespace mardle::exporting {
namespace {

// Six decimals, as in the clustering file. The sign of what is no number says nothing.
std::string ScoreText(double score) {
  if (std::isnan(score)) return "nan";
  if (std::isinf(score)) return score > 0 ? "inf" : "-inf";
  std::array<char, 400> text;
  std::snprintf(text.data(), text.size(), "%f", score);
  return text.data();
}

nlohmann::ordered_json RowRecord(const NamedRows& rows, const Clustering& clustering,
                                 std::size_t i) {
  nlohmann::ordered_json row;
  row["row"] = i;
  row["label"] = ValidUtf8(rows.rlabels[static_cast<std::int64_t>(i)]);
  if (rows.rclasses) row["class"] = ValidUtf8(rows.rclasses[i]);
  row["cluster"] = clustering.part[i];
  if (clustering.has_zscores()) {
    row["internal_z"] = clustering.internal_z[i];
    row["external_z"] = clustering.external_z[i];
  }
  return row;
}

}  // namespace

void WriteTsv(const NamedRows& rows, const Clustering& clustering, std::ostream& out) {
  out << "row\tlabel\t" << (rows.rclasses ? "class\t" : "") << "cluster"
      << (clustering.has_zscores() ? "\tinternal_z\texternal_z" : "") << '\n';
  for (std::size_t i = 0; i < clustering.part.size(); ++i) {
    out << i << '\t' << TsvField(rows.rlabels[static_cast<std::int64_t>(i)]) << '\t';
    if (rows.rclasses) out << TsvField(rows.rclasses[i]) << '\t';
    out << clustering.part[i];
    if (clustering.has_zscores()) {
      out << '\t' << ScoreText(clustering.internal_z[i]) << '\t'
          << ScoreText(clustering.external_z[i]);
    }
    out << '\n';
  }
}

void WriteJson(const NamedRows& rows, const Clustering& clustering, std::ostream& out) {
  out << "{\"nrows\":" << clustering.part.size() << ",\"nclusters\":" << clustering.nclusters
      << ",\"rows\":[";
  for (std::size_t i = 0; i < clustering.part.size(); ++i) {
    out << (i == 0 ? "\n" : ",\n") << RowRecord(rows, clustering, i).dump();
  }
  out << "\n]}\n";
}

}  // namespace mardle::exporting
