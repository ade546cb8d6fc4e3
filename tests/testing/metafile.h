// SPDX-License-Identifier: MIT
//
// A reader of plots in the format "meta", which holds every object in user units, 16-bit colours
// and texts as they were given.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace testing_support {

struct MetaPoint {
  double x, y;
};

using MetaColor = std::array<int, 3>;  // red, green, blue

struct MetaBox {
  MetaPoint corner, opposite;
  std::optional<MetaColor> fill;  // none when it is not filled
  bool outlined;
  double line_width;
};

struct MetaLine {
  MetaPoint from, to;
  double line_width;
};

struct MetaLabel {
  MetaPoint at;
  double angle;
  char along, across;  // how the text lies at its point
  std::string text;
  double font_size;
};

// The objects with the attributes they are drawn under, each kind in the order of drawing.
struct Metafile {
  double width = 0;  // of the page, in user units; told only where something is drawn
  double height = 0;
  std::vector<MetaBox> boxes;
  std::vector<MetaLine> lines;
  std::vector<MetaLabel> labels;
  std::string order;  // of all objects: 'B' for a box, 'L' for a line, 'T' for a label
};

// Reads a file. Texts drawn in pieces, each going on where the one before ended, are one label.
// What is not a whole plot of boxes, lines and labels in black is a test failure.
Metafile ReadMetafile(const std::string& path);

}  // namespace testing_support
