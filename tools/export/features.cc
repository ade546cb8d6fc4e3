// SPDX-License-Identifier: MIT
#include "tools/export/features.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <string>

#include "tools/export/escape.h"

namespace mardle::exporting {
namespace {

using nlohmann::ordered_json;

// One of the two lists of a cluster.
struct Kind {
  const char* name;
  std::optional<double> ClusterWord::*share;
};
constexpr Kind kKinds[] = {{"descriptive", &ClusterWord::describes},
                           {"discriminating", &ClusterWord::tells_apart}};

// The words of a kind, the largest share first.
ClusterWords WordsOf(const ClusterWords& words, const Kind& kind) {
  ClusterWords list;
  for (const ClusterWord& word : words) {
    if (word.*kind.share) list.push_back(word);
  }
  std::stable_sort(list.begin(), list.end(), [&kind](const ClusterWord& a, const ClusterWord& b) {
    return *(a.*kind.share) > *(b.*kind.share);
  });
  return list;
}

// Only what tells a cluster apart can do so by being weak in it.
bool IsWeaker(const ClusterWord& word, const Kind& kind) {
  return kind.share == &ClusterWord::tells_apart && word.weaker;
}

std::string Text(double value) {
  if (!std::isfinite(value)) return "nan";
  std::array<char, 40> text;
  std::snprintf(text.data(), text.size(), "%.6g", value);
  return text.data();
}

ordered_json ListOf(const Matrix& mat, const DescribedClusters& clusters, int k, const Kind& kind) {
  ordered_json list = ordered_json::array();
  for (const ClusterWord& word : WordsOf(clusters.words[static_cast<std::size_t>(k)], kind)) {
    ordered_json record;
    record["column"] = word.column;
    record["label"] = ValidUtf8(mat.clabels[word.column]);
    record["share"] = *(word.*kind.share);
    record["inside"] = clusters.levels.Inside(k, word.column);
    record["elsewhere"] = clusters.levels.Elsewhere(k, word.column);
    if (kind.share == &ClusterWord::tells_apart) record["weaker"] = word.weaker;
    list.push_back(record);
  }
  return list;
}

ordered_json RecordOf(const Matrix& mat, const DescribedClusters& clusters, int k) {
  ordered_json record;
  record["cluster"] = k;
  record["size"] = clusters.rows.Size(k);
  record["name"] = ordered_json::array();
  for (const int column : NameOf(clusters.words[static_cast<std::size_t>(k)], 3)) {
    record["name"].push_back(ValidUtf8(mat.clabels[column]));
  }
  for (const Kind& kind : kKinds) record[kind.name] = ListOf(mat, clusters, k, kind);
  return record;
}

}  // namespace

void WriteFeaturesTsv(const Matrix& mat, const DescribedClusters& clusters, std::ostream& out) {
  out << "cluster\tsize\tkind\trank\tcolumn\tlabel\tshare\tinside\telsewhere\tweaker\n";
  for (int k = 0; k < clusters.rows.nclusters(); ++k) {
    for (const Kind& kind : kKinds) {
      int rank = 0;
      for (const ClusterWord& word : WordsOf(clusters.words[static_cast<std::size_t>(k)], kind)) {
        out << k << '\t' << clusters.rows.Size(k) << '\t' << kind.name << '\t' << ++rank << '\t'
            << word.column << '\t' << TsvField(mat.clabels[word.column]) << '\t'
            << Text(*(word.*kind.share)) << '\t' << Text(clusters.levels.Inside(k, word.column))
            << '\t' << Text(clusters.levels.Elsewhere(k, word.column)) << '\t'
            << (IsWeaker(word, kind) ? "yes" : "no") << '\n';
      }
    }
  }
}

void WriteFeaturesJson(const Matrix& mat, const DescribedClusters& clusters, std::ostream& out) {
  out << "{\"nclusters\":" << clusters.rows.nclusters() << ",\"levels\":\""
      << (clusters.levels.are_shares() ? "shares" : "averages") << "\",\"clusters\":[";
  for (int k = 0; k < clusters.rows.nclusters(); ++k) {
    out << (k == 0 ? "\n" : ",\n") << RecordOf(mat, clusters, k).dump();
  }
  out << "\n]}\n";
}

}  // namespace mardle::exporting
