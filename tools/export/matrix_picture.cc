// SPDX-License-Identifier: MIT
#include "tools/export/matrix_picture.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <string>
#include <utility>

#include "tools/export/escape.h"
#include "tools/export/shades.h"
#include "tools/export/written_numbers.h"

namespace mardle::exporting {
namespace {

constexpr int kDots = 960;  // for all rows together
constexpr std::size_t kMostClusters = 120;
constexpr std::size_t kMostWords = 72;
constexpr std::size_t kWordsOfACluster = 4;
constexpr std::size_t kLabelLength = 30;
constexpr int kLabelWidth = 190;
constexpr int kHead = 46;  // title and numbers of the clusters
constexpr int kStrip = 10;
constexpr int kLine = 16;
constexpr int kGap = 2;  // between clusters
constexpr int kClassColours = 8;

// A dot is one place from left to right: some rows of one cluster.
struct Dot {
  int x;
  int width;
  std::span<const int> rows;
};

struct ClusterDots {
  int cluster;
  std::vector<int> rows;  // by class
  std::vector<Dot> dots;
  int left = 0;
  int right = 0;
};

std::vector<int> ShownClusters(const ClusterRows& rows) {
  std::vector<int> shown;
  for (int k = 0; k < rows.nclusters(); ++k) {
    if (rows.Size(k) > 0) shown.push_back(k);
  }
  std::stable_sort(shown.begin(), shown.end(),
                   [&rows](int a, int b) { return rows.Size(a) > rows.Size(b); });
  shown.resize(std::min(shown.size(), kMostClusters));
  std::sort(shown.begin(), shown.end());
  return shown;
}

// Splits the rows of a cluster evenly into as many dots as it has room for, one after the other.
void SplitIntoDots(int room, ClusterDots& cluster) {
  const auto nrows = static_cast<std::int64_t>(cluster.rows.size());
  const std::int64_t ndots = std::min<std::int64_t>(room, nrows);
  for (std::int64_t dot = 0; dot < ndots; ++dot) {
    const std::int64_t first = dot * nrows / ndots;
    const std::int64_t last = (dot + 1) * nrows / ndots;
    const auto x = static_cast<int>(dot * room / ndots);
    const auto end = static_cast<int>((dot + 1) * room / ndots);
    cluster.dots.push_back(
        {cluster.left + x, end - x,
         std::span(cluster.rows).subspan(std::size_t(first), std::size_t(last - first))});
  }
}

std::vector<ClusterDots> PlaceDots(const Matrix& mat, const ClusterRows& rows) {
  std::vector<ClusterDots> placed;
  std::int64_t total = 0;
  for (const int k : ShownClusters(rows)) total += rows.Size(k);
  int x = kLabelWidth;
  for (const int k : ShownClusters(rows)) {
    ClusterDots& cluster = placed.emplace_back();
    cluster.cluster = k;
    cluster.rows.assign(rows[k].begin(), rows[k].end());
    if (mat.nclasses > 1) {
      std::stable_sort(cluster.rows.begin(), cluster.rows.end(),
                       [&mat](int a, int b) { return mat.classes[a] < mat.classes[b]; });
    }
    const int room = std::max(
        static_cast<int>(std::int64_t{kDots} * rows.Size(k) / std::max<std::int64_t>(total, 1)), 2);
    cluster.left = x;
    cluster.right = x + room;
    SplitIntoDots(room, cluster);
    x += room + kGap;
  }
  return placed;
}

std::vector<int> ShownColumns(const DescribedClusters& clusters,
                              const std::vector<ClusterDots>& placed) {
  std::vector<int> columns;
  const std::size_t each = std::clamp<std::size_t>(
      kMostWords / std::max<std::size_t>(placed.size(), 1), 1, kWordsOfACluster);
  for (const ClusterDots& cluster : placed) {
    for (const int column :
         NameOf(clusters.words[static_cast<std::size_t>(cluster.cluster)], each)) {
      const bool is_new = std::find(columns.begin(), columns.end(), column) == columns.end();
      if (is_new) columns.push_back(column);
    }
  }
  return columns;
}

// The value of a cell of a dense matrix, or 1 where a sparse one holds something.
double CellOf(const Matrix& mat, int i, int j) {
  if (!mat.rowptr) return static_cast<double>(mat.rowval[std::int64_t{i} * mat.ncols + j]);
  for (int p = mat.rowptr[i]; p < mat.rowptr[i + 1]; ++p) {
    if (mat.rowind[p] == j && mat.rowval[p] != 0) return 1;
  }
  return 0;
}

int ShadeOf(const Matrix& mat, const ColumnLevels& levels, const Dot& dot, int column) {
  double sum = 0;
  for (const int i : dot.rows) sum += CellOf(mat, i, column);
  const double average = sum / static_cast<double>(dot.rows.size());
  return levels.are_shares() ? ShadeOfShare(average)
                             : ShadeOfStanding(levels.StandingOf(average, column));
}

// The classes as colours: the most frequent have one each, all others share the last.
std::vector<int> ColoursOfClasses(const Matrix& mat) {
  std::vector<int> counts(static_cast<std::size_t>(mat.nclasses), 0);
  for (const int c : mat.classes) ++counts[static_cast<std::size_t>(c)];
  std::vector<std::size_t> order(counts.size());
  std::iota(order.begin(), order.end(), 0);
  std::stable_sort(order.begin(), order.end(),
                   [&counts](std::size_t a, std::size_t b) { return counts[a] > counts[b]; });
  std::vector<int> colours(counts.size());
  for (std::size_t place = 0; place < order.size(); ++place) {
    colours[order[place]] = std::min(static_cast<int>(place), kClassColours);
  }
  return colours;
}

class Picture {
 public:
  Picture(const Matrix& mat, const DescribedClusters& clusters, const Wording& wording,
          std::ostream& out)
      : mat_(mat),
        clusters_(clusters),
        wording_(wording),
        out_(out),
        placed_(PlaceDots(mat, clusters.rows)),
        columns_(ShownColumns(clusters, placed_)),
        top_(kHead + (mat.nclasses > 1 ? kStrip + 4 : 0)) {}

  void Write() const {
    WriteBegin();
    WriteClusters();
    if (mat_.nclasses > 1) WriteClassStrip();
    for (std::size_t line = 0; line < columns_.size(); ++line) WriteLine(line);
    WriteSeparators();
    WriteKey();
    if (mat_.nclasses > 1) WriteClassKey();
    out_ << "</svg>\n";
  }

 private:
  int Right() const { return placed_.empty() ? kLabelWidth : placed_.back().right; }
  int Bottom() const { return top_ + kLine * static_cast<int>(columns_.size()); }
  int Height() const { return Bottom() + (mat_.nclasses > 1 ? 74 : 44); }
  int Width() const { return std::max(Right() + 16, kLabelWidth + 800); }

  std::string Description() const {
    return std::to_string(columns_.size()) + " " + wording_.columns + " from top to bottom, " +
           wording_.rows + " from left to right in " + std::to_string(placed_.size()) +
           " clusters. A place is the darker the " +
           (clusters_.levels.are_shares()
                ? "more of its " + wording_.rows + " hold the " + wording_.column
                : "farther the average of its " + wording_.rows + " lies from that of all") +
           ".";
  }

  void WriteBegin() const {
    out_ << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << Width() << "\" height=\""
         << Height() << "\" viewBox=\"0 0 " << Width() << " " << Height()
         << "\" role=\"img\" aria-labelledby=\"title desc\">\n<title id=\"title\">" << Counts()
         << "</title>\n<desc id=\"desc\">" << Description()
         << "</desc>\n<style>text{font:12px sans-serif;fill:#1d2126}.end{text-anchor:end}"
            ".middle{text-anchor:middle}.h1,.h2,.h3,.h4,.h5,.h6{fill:#007a8c}"
            ".g2,.g4,.g6{fill:#1d2126}.h1{opacity:.12}.h2,.g2{opacity:.25}.h3{opacity:.4}"
            ".h4,.g4{opacity:.57}.h5{opacity:.77}.c0{fill:#2f6db5}.c1{fill:#c9552b}"
            ".c2{fill:#2a8a68}.c3{fill:#8d4fa8}.c4{fill:#a77a00}.c5{fill:#b83a67}"
            ".c6{fill:#4c7d1f}.c7{fill:#5b5fc7}.c8{fill:#85898e}.line{stroke:#b9bdc3}</style>\n"
            "<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n<text x=\""
         << kLabelWidth << "\" y=\"16\">" << Counts() << "</text>\n";
  }

  std::string Counts() const {
    std::string text = Counted(clusters_.rows.Total(), wording_.row, wording_.rows) + " in " +
                       Counted(clusters_.rows.nclusters(), "cluster", "clusters");
    if (placed_.size() < static_cast<std::size_t>(clusters_.rows.nclusters())) {
      text += "; shown are the " + std::to_string(placed_.size()) + " largest";
    }
    return text;
  }

  // The number of each cluster above its middle, where it does not meet the one before.
  void WriteClusters() const {
    int last = 0;
    for (const ClusterDots& cluster : placed_) {
      const std::string number = std::to_string(cluster.cluster);
      const int middle = (cluster.left + cluster.right) / 2;
      const int half = 4 * static_cast<int>(number.size()) + 1;
      if (middle - half < last) continue;
      last = middle + half;
      out_ << "<text class=\"middle\" x=\"" << middle << "\" y=\"40\">" << number << "</text>";
    }
    out_ << "\n";
  }

  // Every dot in the colour of its most frequent class.
  void WriteClassStrip() const {
    const std::vector<int> colours = ColoursOfClasses(mat_);
    for (const ClusterDots& cluster : placed_) {
      for (const Dot& dot : cluster.dots) {
        std::vector<int> counts(kClassColours + 1, 0);
        for (const int i : dot.rows) {
          ++counts[static_cast<std::size_t>(colours[static_cast<std::size_t>(mat_.classes[i])])];
        }
        const auto most = std::max_element(counts.begin(), counts.end()) - counts.begin();
        out_ << "<rect class=\"c" << most << "\" x=\"" << dot.x << "\" y=\"" << kHead
             << "\" width=\"" << dot.width << "\" height=\"" << kStrip << "\"/>";
      }
    }
    out_ << "\n";
  }

  // Neighbouring dots of one shade are one rectangle.
  void WriteLine(std::size_t line) const {
    const int column = columns_[line];
    const int y = top_ + kLine * static_cast<int>(line);
    const std::string label = ValidUtf8(mat_.clabels[column]);
    out_ << "<text class=\"end\" x=\"" << kLabelWidth - 6 << "\" y=\"" << y + 12 << "\">"
         << Html(Cut(label)) << "</text>";
    for (const ClusterDots& cluster : placed_) {
      for (std::size_t d = 0; d < cluster.dots.size();) {
        const int shade = ShadeOf(mat_, clusters_.levels, cluster.dots[d], column);
        const int x = cluster.dots[d].x;
        int width = 0;
        for (; d < cluster.dots.size() &&
               ShadeOf(mat_, clusters_.levels, cluster.dots[d], column) == shade;
             ++d) {
          width += cluster.dots[d].width;
        }
        if (shade == 0) continue;
        out_ << "<rect class=\"" << ShadeName(shade) << "\" x=\"" << x << "\" y=\"" << y
             << "\" width=\"" << width << "\" height=\"" << kLine - 1 << "\"/>";
      }
    }
    out_ << "\n";
  }

  static std::string Cut(const std::string& label) {
    if (label.size() <= kLabelLength) return label;
    std::size_t end = kLabelLength - 3;
    while (end > 0 && (static_cast<unsigned char>(label[end]) & 0xc0) == 0x80) --end;
    return label.substr(0, end) + "…";
  }

  void WriteSeparators() const {
    for (std::size_t place = 1; place < placed_.size(); ++place) {
      out_ << "<path class=\"line\" d=\"M" << placed_[place].left - 1 << " " << kHead << "V"
           << Bottom() << "\"/>";
    }
    out_ << "\n";
  }

  void WriteKey() const {
    int x = kLabelWidth;
    const int y = Bottom() + 24;
    const std::string title = KeyTitle(clusters_.levels.are_shares(), wording_);
    out_ << "<text x=\"" << x << "\" y=\"" << y << "\">" << title << "</text>";
    x += 7 * static_cast<int>(title.size()) + 6;
    for (const KeyEntry& entry : KeyOfShades(clusters_.levels.are_shares())) {
      out_ << "<rect class=\"" << (entry.shade == 0 ? "white" : ShadeName(entry.shade)) << "\" x=\""
           << x << "\" y=\"" << y - 11 << "\" width=\"12\" height=\"12\""
           << (entry.shade == 0 ? " fill=\"#ffffff\" stroke=\"#b9bdc3\"" : "") << "/><text x=\""
           << x + 17 << "\" y=\"" << y << "\">" << entry.text << "</text>";
      x += 30 + 7 * static_cast<int>(std::string_view(entry.text).size());
    }
    out_ << "\n";
  }

  void WriteClassKey() const {
    const std::vector<int> colours = ColoursOfClasses(mat_);
    int x = kLabelWidth;
    const int y = Bottom() + 52;
    for (int colour = 0; colour <= kClassColours; ++colour) {
      const auto held = std::find(colours.begin(), colours.end(), colour);
      if (held == colours.end()) break;
      const std::string name = colour == kClassColours
                                   ? "other classes"
                                   : Cut(ValidUtf8(mat_.classnames[held - colours.begin()]));
      out_ << "<rect class=\"c" << colour << "\" x=\"" << x << "\" y=\"" << y - 11
           << "\" width=\"12\" height=\"12\"/><text x=\"" << x + 17 << "\" y=\"" << y << "\">"
           << Html(name) << "</text>";
      x += 30 + 7 * static_cast<int>(name.size());
    }
    out_ << "\n";
  }

  const Matrix& mat_;
  const DescribedClusters& clusters_;
  const Wording& wording_;
  std::ostream& out_;
  std::vector<ClusterDots> placed_;
  std::vector<int> columns_;
  int top_;  // of the first line
};

}  // namespace

void WriteMatrixPicture(const Matrix& mat, const DescribedClusters& clusters,
                        const Wording& wording, std::ostream& out) {
  Picture(mat, clusters, wording, out).Write();
}

}  // namespace mardle::exporting
