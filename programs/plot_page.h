// SPDX-License-Identifier: MIT
//
// One page of a plot file, drawn through GNU libplot; the only door to that library. Coordinates
// are user units, x to the right and y up, from (0, 0) to the page's extent.
#pragma once

#include <memory>
#include <string>

#include "lib/support/files.h"

namespace mardle {

struct Point {
  double x, y;
};

// 16-bit intensities.
struct Color {
  int red, green, blue;
};

// Where the point of a label lies on its text, along it and across it.
enum class Along : char { kStart = 'l', kCenter = 'c' };
enum class Across : char { kCenter = 'c', kTop = 't' };

class PlotPage {
 public:
  // Opens the file (failure is fatal under `name`) and a page of width x height units in it, in the
  // format named, with thin black lines on white. The page is 8 inches wide or 10 inches high and
  // keeps the proportions. A format that libplot cannot draw in ends the run with a message that
  // names it.
  PlotPage(const char* filename, const char* name, const char* format, double width, double height);
  ~PlotPage();
  PlotPage(const PlotPage&) = delete;
  PlotPage& operator=(const PlotPage&) = delete;

  // Finishes the page and closes the file; failed writes are reported on standard error.
  void Close();

  void SetFontSize(double size);
  void Line(Point from, Point to);

  // Draws a text as it is printed: what PrintableLabel leaves of it, backslashes included.
  void Label(Point at, double angle, Along along, Across across, const std::string& text);
  double LabelWidth(const std::string& text);

  // Boxes between two corners. StartCells is for filled ones without outlines, StartFrames for
  // outlines alone.
  void StartCells();
  void Cell(Point corner, Point opposite, Color color);
  void StartFrames();
  void Frame(Point corner, Point opposite);

 private:
  struct Plotter;
  molva::File file_;
  std::unique_ptr<Plotter> plotter_;
};

// A label as plots draw it: in Latin-1, converted from UTF-8 where that is what it is ("?" for what
// Latin-1 lacks), without control characters, at most 255 characters.
std::string PrintableLabel(const char* text);

}  // namespace mardle
