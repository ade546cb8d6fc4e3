// SPDX-License-Identifier: MIT
#include "tools/export/page/dendrogram.h"

#include <algorithm>

#include "tools/export/page/page_parts.h"
#include "tools/export/page/similarity_axis.h"

namespace mardle::exporting {
namespace {

constexpr double kTreeWidth = 460;
constexpr double kWidth = 860;
constexpr double kLeft = 16;
constexpr double kHead = 26;
constexpr double kLineHeight = 19;
constexpr double kClosestTicks = 0.11;
// Nodes of equal similarity still stand apart.
constexpr double kLeastStep = 3;

struct Place {
  double x = 0;
  double y = 0;
};

class Drawing {
 public:
  explicit Drawing(const Dendrogram& dendrogram)
      : nodes_(dendrogram.nodes), places_(dendrogram.nodes.size()) {
    for (const DendrogramNode& node : nodes_) {
      if (!IsEnd(node)) axis_.Include(node.similarity);
    }
    order_ = LinesOf(dendrogram.root);
    for (std::size_t line = 0; line < order_.size(); ++line) {
      Of(order_[line]).y = kHead + kLineHeight * (static_cast<double>(line) + 0.5);
    }
    Spread(dendrogram.root);
  }

  double Height() const { return kHead + kLineHeight * static_cast<double>(order_.size()) + 6; }

  void WriteAxis(std::ostream& out) const {
    out << "<g class=\"axis\" aria-hidden=\"true\">";
    for (const double tick : axis_.Ticks(kClosestTicks)) {
      const std::string x = Decimals(At(tick), 1);
      out << "<line x1=\"" << x << "\" x2=\"" << x << "\" y1=\"20\" y2=\"" << Decimals(Height(), 0)
          << "\"/><text class=\"middle\" x=\"" << x << "\" y=\"14\">" << Shortest(tick)
          << "</text>";
    }
    out << "<text x=\"" << kTreeWidth + 6 << "\" y=\"14\">average similarity</text></g>\n";
  }

  // All branches in one path.
  void WriteBranches(std::ostream& out) const {
    out << "<path d=\"";
    for (const int x : order_) {
      const DendrogramNode& node = Node(x);
      if (IsEnd(node)) continue;
      const std::string at = Decimals(Of(x).x, 1);
      for (const int child : node.children) {
        out << "M" << at << " " << Decimals(Of(x).y, 1) << "V" << Decimals(Of(child).y, 1) << "H"
            << Decimals(Of(child).x, 1);
      }
    }
    out << "\"/>\n";
  }

  void WriteTexts(std::ostream& out) const {
    for (const int x : order_) {
      const DendrogramNode& node = Node(x);
      if (!node.link.empty()) out << "<a href=\"" << node.link << "\">";
      out << "<text" << (IsEnd(node) ? "" : " class=\"inner\"") << " x=\""
          << Decimals(Of(x).x + 6, 1) << "\" y=\"" << Decimals(Of(x).y + 4, 1) << "\">" << node.text
          << "</text>" << (node.link.empty() ? "" : "</a>") << "\n";
    }
  }

 private:
  static bool IsEnd(const DendrogramNode& node) { return node.children[0] < 0; }
  const DendrogramNode& Node(int x) const { return nodes_[static_cast<std::size_t>(x)]; }
  Place& Of(int x) { return places_[static_cast<std::size_t>(x)]; }
  const Place& Of(int x) const { return places_[static_cast<std::size_t>(x)]; }
  double At(double similarity) const { return kLeft + (kTreeWidth - kLeft) * axis_.At(similarity); }

  // All nodes from the top line to the bottom line: every node between its children.
  std::vector<int> LinesOf(int root) const {
    std::vector<int> lines;
    std::vector<int> waiting;
    for (int x = root; x >= 0 || !waiting.empty();) {
      for (; x >= 0; x = Node(x).children[0]) waiting.push_back(x);
      x = waiting.back();
      waiting.pop_back();
      lines.push_back(x);
      x = Node(x).children[1];
    }
    return lines;
  }

  // From left to right. A node that joins what is less alike than its parent does stands beside
  // that; ends stand at the right.
  void Spread(int root) {
    Of(root).x = IsEnd(Node(root)) ? kTreeWidth : At(Node(root).similarity);
    std::vector<int> waiting = {root};
    while (!waiting.empty()) {
      const int x = waiting.back();
      waiting.pop_back();
      if (IsEnd(Node(x))) continue;
      for (const int child : Node(x).children) {
        Of(child).x = IsEnd(Node(child))
                          ? std::max(kTreeWidth, Of(x).x + kLeastStep)
                          : std::max(At(Node(child).similarity), Of(x).x + kLeastStep);
        waiting.push_back(child);
      }
    }
  }

  const std::vector<DendrogramNode>& nodes_;
  std::vector<Place> places_;
  std::vector<int> order_;
  SimilarityAxis axis_;
};

}  // namespace

void WriteDendrogram(const Dendrogram& dendrogram, std::ostream& out) {
  const Drawing drawing(dendrogram);
  const std::string& id = dendrogram.id;
  out << "<div class=\"scroll picture\" tabindex=\"0\" role=\"region\" aria-label=\""
      << dendrogram.title << "\"><svg class=\"dendrogram\" width=\"" << Decimals(kWidth, 0)
      << "\" height=\"" << Decimals(drawing.Height(), 0) << "\" role=\"group\" aria-labelledby=\""
      << id << "-title " << id << "-desc\"><title id=\"" << id << "-title\">" << dendrogram.title
      << "</title><desc id=\"" << id << "-desc\">" << dendrogram.description << "</desc>\n";
  drawing.WriteAxis(out);
  drawing.WriteBranches(out);
  drawing.WriteTexts(out);
  out << "</svg></div>\n";
}

}  // namespace mardle::exporting
