// SPDX-License-Identifier: MIT
//
// What plots are made of, for their tests: small input matrices, and expected plots put together
// object by object.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "programs/io/matrix.h"
#include "programs/plot_page.h"
#include "programs/run_params.h"
#include "tests/testing/fatal.h"
#include "tests/testing/files.h"
#include "tests/testing/metafile.h"

namespace testing_support {

using Texts = std::vector<std::string>;
using FloatRows = std::vector<std::vector<float>>;

inline molva::Strings LabelsOf(const Texts& texts) {
  molva::Strings labels(static_cast<std::int64_t>(texts.size()), "labels");
  for (std::size_t j = 0; j < texts.size(); ++j) labels.Set(j, texts[j].c_str());
  return labels;
}

// "c0", "c1", ...
inline Texts NumberedLabels(std::size_t n) {
  Texts labels;
  for (std::size_t j = 0; j < n; ++j) labels.push_back(std::to_string(j).insert(0, 1, 'c'));
  return labels;
}

// Stores every cell.
inline mardle::Matrix DenseInput(const FloatRows& rows, const Texts& labels) {
  mardle::Matrix mat;
  mat.nrows = static_cast<int>(rows.size());
  mat.ncols = static_cast<int>(rows[0].size());
  mat.rowval = molva::AllocFloats(std::int64_t{mat.nrows} * mat.ncols, "rowval");
  float* cell = mat.rowval.get();
  for (const std::vector<float>& row : rows) cell = std::copy(row.begin(), row.end(), cell);
  mat.clabels = LabelsOf(labels);
  return mat;
}

inline mardle::Matrix DenseInput(const FloatRows& rows) {
  return DenseInput(rows, NumberedLabels(rows[0].size()));
}

// Stores the cells that are not zero.
inline mardle::Matrix SparseInput(const FloatRows& rows, const Texts& labels) {
  std::vector<int> rowptr = {0};
  std::vector<int> rowind;
  std::vector<float> rowval;
  for (const std::vector<float>& row : rows) {
    for (std::size_t j = 0; j < row.size(); ++j) {
      if (row[j] == 0) continue;
      rowind.push_back(static_cast<int>(j));
      rowval.push_back(row[j]);
    }
    rowptr.push_back(static_cast<int>(rowind.size()));
  }
  mardle::Matrix mat;
  mat.nrows = static_cast<int>(rows.size());
  mat.ncols = static_cast<int>(rows[0].size());
  mat.rowptr = molva::AllocInts(static_cast<std::int64_t>(rowptr.size()), "rowptr");
  mat.rowind = molva::AllocInts(static_cast<std::int64_t>(rowind.size()), "rowind");
  mat.rowval = molva::AllocFloats(static_cast<std::int64_t>(rowval.size()), "rowval");
  std::copy(rowptr.begin(), rowptr.end(), mat.rowptr.begin());
  std::copy(rowind.begin(), rowind.end(), mat.rowind.begin());
  std::copy(rowval.begin(), rowval.end(), mat.rowval.begin());
  mat.clabels = LabelsOf(labels);
  return mat;
}

inline mardle::Matrix SparseInput(const FloatRows& rows) {
  return SparseInput(rows, NumberedLabels(rows[0].size()));
}

// Plots in the format "meta" of matrices that are scaled to unit rows and nothing else, with all
// columns among the features.
inline mardle::RunParams PlotParams(int nclusters) {
  mardle::RunParams params;
  params.colmodel = 1;
  params.treecrfun = 2;
  params.nclusters = nclusters;
  params.nfeatures = 1000;
  std::snprintf(params.plotformat.data(), params.plotformat.size(), "meta");
  return params;
}

// Values of both signs in every cell, none of them 0.
inline FloatRows RandomRows(std::uint32_t seed, std::size_t nrows, std::size_t ncols) {
  std::mt19937 random(seed);
  FloatRows rows(nrows, std::vector<float>(ncols));
  for (std::vector<float>& row : rows) {
    for (float& v : row) v = static_cast<float>(static_cast<int>(random() % 201) - 100) + 0.5F;
  }
  return rows;
}

// Rows of length 1.
inline std::vector<std::vector<double>> UnitRows(const FloatRows& rows) {
  std::vector<std::vector<double>> units;
  for (const std::vector<float>& row : rows) {
    double squares = 0;
    for (const float v : row) squares += static_cast<double>(v) * static_cast<double>(v);
    std::vector<double>& unit = units.emplace_back();
    for (const float v : row) unit.push_back(static_cast<double>(v) / std::sqrt(squares));
  }
  return units;
}

// The length of a text in the font of the format "meta", which grows with its size.
inline double TextWidth(const std::string& text, double font_size) {
  constexpr double kSize = 10;
  static std::map<std::string, double> widths;
  const auto [at, is_new] = widths.try_emplace(text, 0);
  if (is_new) {
    mardle::PlotPage page("/dev/null", "TextWidth", "meta", 1000, 1000);
    page.SetFontSize(kSize);
    at->second = page.LabelWidth(text) / kSize;
    page.Close();
  }
  return at->second * font_size;
}

// The colour of a cell by its share of the extreme of its sign.
inline MetaColor ColorOf(double value, double extreme, bool zeroblack) {
  const double share = value == 0 ? 0 : value / extreme;
  const int full = 65535;
  const int strong = static_cast<int>(full * share);
  const int pale = static_cast<int>(full * (1 - share));
  if (zeroblack) return value < 0 ? MetaColor{0, strong, 0} : MetaColor{strong, 0, 0};
  return value < 0 ? MetaColor{pale, full, pale} : MetaColor{full, pale, pale};
}

// A plot put together as it is expected.
class ExpectedPlot {
 public:
  ExpectedPlot(double width, double height) {
    plot_.width = width;
    plot_.height = height;
  }

  void Line(MetaPoint from, MetaPoint to) {
    plot_.lines.push_back({from, to, 0.1});
    plot_.order += 'L';
  }
  void Cell(MetaPoint corner, MetaPoint opposite, MetaColor color) {
    plot_.boxes.push_back({corner, opposite, color, false, 0});
    plot_.order += 'B';
  }
  void Frame(MetaPoint corner, MetaPoint opposite) {
    plot_.boxes.push_back({corner, opposite, {}, true, 1});
    plot_.order += 'B';
  }
  void Label(MetaPoint at, double angle, const std::string& lies, const std::string& text,
             double font_size) {
    plot_.labels.push_back({at, angle, lies[0], lies[1], text, font_size});
    plot_.order += 'T';
  }
  const Metafile& plot() const { return plot_; }

 private:
  Metafile plot_;
};

// A tree as nested nodes, children with two elements or none, sizes of leaves given.
struct NestedTree {
  int node;
  double leaf_size = 1;
  std::vector<NestedTree> children = {};

  double size() const {
    return children.empty() ? leaf_size : children[0].size() + children[1].size();
  }
};

inline NestedTree Pair(int node, NestedTree first, NestedTree second) {
  return {node, 1, {std::move(first), std::move(second)}};
}

// Draws a tree over n leaves by plain recursion; returns where its root stands. The
// x of a horizontal tree and the y of a vertical one are depths.
inline MetaPoint DrawHorizontally(ExpectedPlot& plot, const NestedTree& v, int n, MetaPoint at,
                                  double xstep, double ystep) {
  if (v.children.empty()) return {at.x, at.y + 0.5 * (v.size() - 1) * ystep};
  const NestedTree& first = v.children[0];
  const NestedTree& second = v.children[1];
  const auto below = [&](const NestedTree& child) {
    return at.x + xstep * (child.node >= n ? v.node - child.node : v.node - n + 1);
  };
  const MetaPoint here = {at.x, at.y + (first.size() - 0.5) * ystep};
  const MetaPoint a = DrawHorizontally(plot, first, n, {below(first), at.y}, xstep, ystep);
  const MetaPoint b =
      DrawHorizontally(plot, second, n, {below(second), at.y + first.size() * ystep}, xstep, ystep);
  plot.Line({here.x, a.y}, {here.x, b.y});
  plot.Line({here.x - 0.5 * xstep, here.y}, here);
  plot.Line({here.x, a.y}, a);
  plot.Line({here.x, b.y}, b);
  return here;
}

inline MetaPoint DrawVertically(ExpectedPlot& plot, const NestedTree& v, int n, MetaPoint at,
                                double xstep, double ystep) {
  if (v.children.empty()) return at;
  const NestedTree& first = v.children[0];
  const NestedTree& second = v.children[1];
  const auto below = [&](const NestedTree& child) {
    return at.y - ystep * (child.node >= n ? v.node - child.node : v.node - n + 1);
  };
  const MetaPoint here = {at.x + (first.size() - 0.5) * xstep, at.y};
  const MetaPoint a = DrawVertically(plot, first, n, {at.x, below(first)}, xstep, ystep);
  const MetaPoint b =
      DrawVertically(plot, second, n, {at.x + first.size() * xstep, below(second)}, xstep, ystep);
  plot.Line({a.x, here.y}, {b.x, here.y});
  plot.Line({here.x, here.y + 0.5 * ystep}, here);
  plot.Line({a.x, here.y}, a);
  plot.Line({b.x, here.y}, b);
  return here;
}

// Positions agree to a two-millionth of the page, which is what single precision leaves, and
// colours to 1 of 65535. Boxes may name their corners in any order.
inline void ExpectSamePlot(const Metafile& actual, const Metafile& expected) {
  const double near = 2e-6 * std::max(expected.width, expected.height);
  const auto expect_points = [near](MetaPoint is, MetaPoint wanted) {
    EXPECT_NEAR(is.x, wanted.x, near);
    EXPECT_NEAR(is.y, wanted.y, near);
  };
  EXPECT_NEAR(actual.width, expected.width, near);
  EXPECT_NEAR(actual.height, expected.height, near);
  ASSERT_EQ(actual.order, expected.order);
  for (std::size_t i = 0; i < expected.lines.size(); ++i) {
    SCOPED_TRACE("line " + std::to_string(i));
    expect_points(actual.lines[i].from, expected.lines[i].from);
    expect_points(actual.lines[i].to, expected.lines[i].to);
    EXPECT_FLOAT_EQ(static_cast<float>(actual.lines[i].line_width),
                    static_cast<float>(expected.lines[i].line_width));
  }
  for (std::size_t i = 0; i < expected.boxes.size(); ++i) {
    SCOPED_TRACE("box " + std::to_string(i));
    const MetaBox& is = actual.boxes[i];
    const MetaBox& wanted = expected.boxes[i];
    expect_points({std::min(is.corner.x, is.opposite.x), std::min(is.corner.y, is.opposite.y)},
                  wanted.corner);
    expect_points({std::max(is.corner.x, is.opposite.x), std::max(is.corner.y, is.opposite.y)},
                  wanted.opposite);
    EXPECT_EQ(is.outlined, wanted.outlined);
    EXPECT_EQ(is.line_width, wanted.line_width);
    ASSERT_EQ(is.fill.has_value(), wanted.fill.has_value());
    for (std::size_t part = 0; is.fill && part < 3; ++part) {
      EXPECT_NEAR((*is.fill)[part], (*wanted.fill)[part], 1) << "colour " << part;
    }
  }
  for (std::size_t i = 0; i < expected.labels.size(); ++i) {
    SCOPED_TRACE("label " + std::to_string(i));
    const MetaLabel& is = actual.labels[i];
    const MetaLabel& wanted = expected.labels[i];
    EXPECT_EQ(is.text, wanted.text);
    expect_points(is.at, wanted.at);
    EXPECT_EQ(is.angle, wanted.angle);
    EXPECT_EQ(is.along, wanted.along);
    EXPECT_EQ(is.across, wanted.across);
    EXPECT_NEAR(is.font_size, wanted.font_size, near);
  }
}

// Every object lies on the page, labels with the letters at their full height. `beyond` is how far
// boxes and lines may lie outside, to the right and below.
inline void ExpectInside(const Metafile& plot, MetaPoint beyond = {0, 0}) {
  const double near = 2e-6 * std::max(plot.width, plot.height);
  const auto expect_point = [&](MetaPoint at, MetaPoint allowed) {
    EXPECT_GE(at.x, -near);
    EXPECT_LE(at.x, plot.width + allowed.x + near);
    EXPECT_GE(at.y, -allowed.y - near);
    EXPECT_LE(at.y, plot.height + near);
  };
  for (std::size_t i = 0; i < plot.lines.size(); ++i) {
    SCOPED_TRACE("line " + std::to_string(i));
    expect_point(plot.lines[i].from, beyond);
    expect_point(plot.lines[i].to, beyond);
  }
  for (std::size_t i = 0; i < plot.boxes.size(); ++i) {
    SCOPED_TRACE("box " + std::to_string(i));
    expect_point(plot.boxes[i].corner, beyond);
    expect_point(plot.boxes[i].opposite, beyond);
  }
  for (const MetaLabel& label : plot.labels) {
    SCOPED_TRACE(label.text);
    ASSERT_EQ(std::fabs(label.angle), 90);
    const double length = TextWidth(label.text, label.font_size);
    const double from = label.along == 'c' ? label.at.y - length / 2 : label.at.y - length;
    const double left = label.across == 'c' ? label.at.x - label.font_size / 2 : label.at.x;
    expect_point({left, from}, {beyond.x, 0});
    expect_point({left + label.font_size, from + length}, {beyond.x, 0});
  }
}

// Runs a statement and returns what it prints to standard error.
template <typename Statement>
std::string ErrorsOf(Statement statement) {
  testing::internal::CaptureStderr();
  statement();
  return testing::internal::GetCapturedStderr();
}

// The plot that draw(path) makes; nothing may come to standard error.
template <typename Draw>
Metafile PlotOf(Draw draw) {
  const TempFolder folder;
  const std::string path = folder.Path("plot");
  EXPECT_EQ(ErrorsOf([&] { draw(path); }), "");
  return ReadMetafile(path);
}

// The names of the blocks that a plot asks for, by letting each in turn not be had.
template <typename Draw>
Texts NamesOfBlocks(Draw draw) {
  static int left;
  const FatalThrows throws;
  Texts names;
  for (int i = 0;; ++i) {
    left = i;
    molva::SetAllocateFunction(
        [](std::size_t nbytes) { return left-- == 0 ? nullptr : std::malloc(nbytes); });
    try {
      draw();
      molva::SetAllocateFunction(nullptr);
      return names;
    } catch (const Fatal& error) {
      const std::string text = error.what();
      const std::size_t from = std::string("***Memory allocation failed for ").size();
      names.push_back(text.substr(from, text.find(". Requested") - from));
    }
  }
}

}  // namespace testing_support
