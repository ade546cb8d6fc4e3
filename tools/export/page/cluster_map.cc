// SPDX-License-Identifier: MIT
//
// The clusters as discs in a plane, near each other where they are similar; the discs are as large
// as the clusters. Names stand where there is room for them, those of large clusters first.
#include <algorithm>
#include <cmath>
#include <optional>

#include "tools/export/escape.h"
#include "tools/export/measures/plane.h"
#include "tools/export/page/page_parts.h"

namespace mardle::exporting {
namespace {

constexpr double kWidth = 960;
constexpr double kMostHeight = 600;
constexpr double kLeastHeight = 160;
constexpr double kMargin = 70;
constexpr double kLargestRadius = 26;
constexpr double kLeastRadius = 2;
constexpr double kTextHeight = 15;
constexpr double kCharacterWidth = 8;  // of a wide text
constexpr std::size_t kWordsShown = 2;

struct Box {
  double left, top, right, bottom;
  bool Meets(const Box& other) const {
    return left < other.right && other.left < right && top < other.bottom && other.top < bottom;
  }
};

struct Disc {
  int cluster;
  Point at;
  double radius;
};

struct Plan {
  std::vector<Disc> discs;  // the largest first
  double height = 0;
};

// The points, stretched to the place there is; in both directions alike, so that distances hold.
Plan PlaceDiscs(const PageNumbers& numbers) {
  const std::vector<Point>& points = numbers.map.points;
  Point low = points[0];
  Point high = points[0];
  for (const Point& point : points) {
    low = {std::min(low.x, point.x), std::min(low.y, point.y)};
    high = {std::max(high.x, point.x), std::max(high.y, point.y)};
  }
  const double scale = std::min((kWidth - 2 * kMargin) / std::max(high.x - low.x, 1e-9),
                                (kMostHeight - 2 * kMargin) / std::max(high.y - low.y, 1e-9));
  Plan plan;
  plan.height = std::max(scale * (high.y - low.y) + 2 * kMargin, kLeastHeight);
  const int largest = *std::max_element(numbers.pwgts.begin(), numbers.pwgts.end());
  for (std::size_t i = 0; i < points.size(); ++i) {
    const int k = numbers.map.clusters[i];
    const double share = double{1} * numbers.pwgts[k] / std::max(largest, 1);
    plan.discs.push_back({k,
                          {kWidth / 2 + scale * (points[i].x - (low.x + high.x) / 2),
                           plan.height / 2 + scale * (points[i].y - (low.y + high.y) / 2)},
                          std::max(kLargestRadius * std::sqrt(share), kLeastRadius)});
  }
  std::stable_sort(plan.discs.begin(), plan.discs.end(),
                   [](const Disc& a, const Disc& b) { return a.radius > b.radius; });
  return plan;
}

std::size_t Characters(const std::string& text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xc0) != 0x80;
  }));
}

// Names go below their discs or, where another name or the edge is in the way, above. Near the
// sides they move inwards.
class NamePlaces {
 public:
  explicit NamePlaces(double height) : height_(height) {}

  // The middle of a name's baseline; nothing when it has no place.
  std::optional<Point> Take(const Disc& disc, const std::string& text) {
    const double half = kCharacterWidth * static_cast<double>(Characters(text)) / 2;
    if (2 * half > kWidth) return std::nullopt;
    const double x = std::clamp(disc.at.x, half, kWidth - half);
    for (const double top : {disc.at.y + disc.radius + 1, disc.at.y - disc.radius - kTextHeight}) {
      const Box box{x - half, top, x + half, top + kTextHeight};
      const bool is_free =
          box.top >= 0 && box.bottom <= height_ &&
          std::none_of(taken_.begin(), taken_.end(), [&](const Box& b) { return b.Meets(box); });
      if (!is_free) continue;
      taken_.push_back(box);
      return Point{x, top + 12};
    }
    return std::nullopt;
  }

 private:
  double height_;
  std::vector<Box> taken_;
};

std::string ShortName(const PageRun& run, const PageNumbers& numbers, int k) {
  std::string name = std::to_string(k);
  for (const int column : NameOf(numbers.words[static_cast<std::size_t>(k)], kWordsShown)) {
    name += " " + WordText(run, numbers, k, column);
  }
  return name;
}

void WriteDisc(const PageRun& run, const PageNumbers& numbers, const Disc& disc, NamePlaces& places,
               std::ostream& out) {
  out << "<a href=\"#cluster-" << disc.cluster << "\"><title>"
      << TitleText(run, numbers, disc.cluster) << ", "
      << CountedRows(run, numbers.pwgts[disc.cluster]) << "</title><circle cx=\""
      << Decimals(disc.at.x, 1) << "\" cy=\"" << Decimals(disc.at.y, 1) << "\" r=\""
      << Decimals(disc.radius, 1) << "\"/>";
  const std::string name = ShortName(run, numbers, disc.cluster);
  if (const std::optional<Point> at = places.Take(disc, name)) {
    out << "<text class=\"middle\" x=\"" << Decimals(at->x, 1) << "\" y=\"" << Decimals(at->y, 1)
        << "\">" << Html(name) << "</text>";
  }
  out << "</a>\n";
}

}  // namespace

bool HasMap(const PageNumbers& numbers) { return numbers.map.clusters.size() >= 3; }

void WriteClusterMap(const PageRun& run, const PageNumbers& numbers, std::ostream& out) {
  if (!HasMap(numbers)) return;
  const Plan plan = PlaceDiscs(numbers);
  NamePlaces places(plan.height);
  out << "<section id=\"map\" aria-labelledby=\"map-heading\">\n"
         "<h2 id=\"map-heading\">Map of the clusters</h2>\n"
         "<p class=\"dim\">";
  if (numbers.map.clusters.size() < static_cast<std::size_t>(numbers.nclusters)) {
    out << "The " << numbers.map.clusters.size() << " largest clusters. ";
  }
  out << "Clusters are near where their " << run.wording.rows
      << " are alike, as far as a plane can show it; directions mean nothing. Areas tell "
      << "sizes.</p>\n<div class=\"scroll picture\" tabindex=\"0\" role=\"region\" "
         "aria-label=\"Map\"><svg class=\"map\" viewBox=\"0 0 "
      << kWidth << " " << Decimals(plan.height, 0)
      << "\" role=\"group\" aria-labelledby=\"map-title map-desc\">"
         "<title id=\"map-title\">The clusters in a plane</title>"
         "<desc id=\"map-desc\">A disc for every cluster, which leads to its card; the cards name "
         "the nearest clusters.</desc>\n";
  for (const Disc& disc : plan.discs) WriteDisc(run, numbers, disc, places, out);
  out << "</svg></div>\n</section>\n";
}

}  // namespace mardle::exporting
