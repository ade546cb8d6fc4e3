// SPDX-License-Identifier: MIT
//
// libplot trusts its callers: it overruns buffers on long labels, breaks on colours out of range
// and hangs on numbers that are not finite. Everything is brought into range here.
#include "programs/plot_page.h"

#include <plot.h>
#include <strings.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "lib/support/fatal.h"

namespace mardle {
namespace {

constexpr std::size_t kLongestLabel = 255;
constexpr double kThinLine = 0.1;

// Every parameter that libplot would otherwise take from the environment, at its default; a run
// depends on its command line only. HPGL_PENS has no text as its default and is left out.
struct Parameter {
  const char* name;
  const char* value;
};
constexpr std::array<Parameter, 24> kParameters = {{{"BG_COLOR", "white"},
                                                    {"BITMAPSIZE", "570x570"},
                                                    {"CGM_ENCODING", "binary"},
                                                    {"CGM_MAX_VERSION", "4"},
                                                    {"EMULATE_COLOR", "no"},
                                                    {"GIF_ANIMATION", "yes"},
                                                    {"GIF_DELAY", "0"},
                                                    {"GIF_ITERATIONS", "0"},
                                                    {"HPGL_ASSIGN_COLORS", "no"},
                                                    {"HPGL_OPAQUE_MODE", "yes"},
                                                    {"HPGL_ROTATE", "0"},
                                                    {"HPGL_VERSION", "2"},
                                                    {"INTERLACE", "no"},
                                                    {"MAX_LINE_LENGTH", "500"},
                                                    {"META_PORTABLE", "no"},
                                                    {"PCL_ASSIGN_COLORS", "no"},
                                                    {"PCL_BEZIERS", "yes"},
                                                    {"PNM_PORTABLE", "no"},
                                                    {"ROTATION", "0"},
                                                    {"TERM", "dumb"},
                                                    {"TRANSPARENT_COLOR", "none"},
                                                    {"USE_DOUBLE_BUFFERING", "no"},
                                                    {"VANISH_ON_DELETE", "no"},
                                                    {"X_AUTO_FLUSH", "yes"}}};

struct DeleteParameters {
  void operator()(plPlotterParams* parameters) const { pl_deleteplparams(parameters); }
};

// libplot takes its texts as void*, and copies them.
void SetParameter(plPlotterParams* parameters, const char* name, const char* value) {
  std::string copy = value;
  pl_setplparam(parameters, name, copy.data());
}

// The page keeps the proportions of the drawing. libplot draws nothing on a side of 0.00 inches, so
// none is shorter than 0.01.
std::string PageSize(double width, double height) {
  const bool wide = height < width;
  const double inches_wide = wide ? 8.0 : 10.0 * width / height;
  const double inches_high = wide ? 8.0 * height / width : 10.0;
  std::array<char, 96> text;
  std::snprintf(text.data(), text.size(), "letter,xsize = %.2fin,ysize = %.2fin",
                std::max(inches_wide, 0.01), std::max(inches_high, 0.01));
  return text.data();
}

// The code point that starts at `text` and its length in bytes; length 0 when the bytes are not
// UTF-8.
struct CodePoint {
  unsigned value;
  int length;
};

// Forms that are longer than needed, surrogates and what lies beyond the last code point are not
// UTF-8.
bool IsProper(unsigned value, int length) {
  const unsigned least = length == 4 ? 0x10000 : length == 3 ? 0x800 : 0x80;
  const bool surrogate = value >= 0xd800 && value < 0xe000;
  return value >= least && value <= 0x10ffff && !surrogate;
}

CodePoint Decode(const unsigned char* text) {
  const unsigned lead = text[0];
  if (lead < 0x80) return {lead, 1};
  if (lead < 0xc0 || lead > 0xf7) return {0, 0};
  const int length = lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : 2;
  unsigned value = lead & (0x7fU >> length);
  for (int i = 1; i < length; ++i) {
    if ((text[i] & 0xc0) != 0x80) return {0, 0};
    value = value << 6 | (text[i] & 0x3fU);
  }
  return IsProper(value, length) ? CodePoint{value, length} : CodePoint{0, 0};
}

bool IsUtf8(const unsigned char* text) {
  while (*text != 0) {
    const CodePoint point = Decode(text);
    if (point.length == 0) return false;
    text += point.length;
  }
  return true;
}

bool IsControl(unsigned character) {
  return character < 0x20 || (character >= 0x7f && character < 0xa0);
}

// Formats that draw on a screen, for which libplot would open windows and processes.
bool DrawsOnScreen(const char* format) {
  return strcasecmp(format, "X") == 0 || strcasecmp(format, "Xdrawable") == 0;
}

bool IsFinite(Point p) { return std::isfinite(p.x) && std::isfinite(p.y); }

[[noreturn]] void RefuseFormat(const char* format) {
  molva::FatalError("Unknown plot format: %s\n", format);
}

}  // namespace

struct PlotPage::Plotter {
  plPlotter* handle = nullptr;
  ~Plotter() {
    if (handle != nullptr) pl_deletepl_r(handle);
  }
};

PlotPage::PlotPage(const char* filename, const char* name, const char* format, double width,
                   double height)
    : file_(molva::RVfopen(filename, "w", name)), plotter_(std::make_unique<Plotter>()) {
  if (DrawsOnScreen(format)) RefuseFormat(format);
  const std::unique_ptr<plPlotterParams, DeleteParameters> parameters(pl_newplparams());
  for (const Parameter& parameter : kParameters) {
    SetParameter(parameters.get(), parameter.name, parameter.value);
  }
  SetParameter(parameters.get(), "PAGESIZE", PageSize(width, height).c_str());
  plotter_->handle = pl_newpl_r(format, stdin, file_.get(), stderr, parameters.get());
  if (plotter_->handle == nullptr || pl_openpl_r(plotter_->handle) < 0) {
    // libplot breaks when it deletes a plotter that it could not open.
    plotter_->handle = nullptr;
    RefuseFormat(format);
  }
  plPlotter* page = plotter_->handle;
  pl_fspace_r(page, 0, 0, width, height);
  pl_flinewidth_r(page, kThinLine);
  pl_pencolorname_r(page, "black");
  pl_bgcolorname_r(page, "white");
  pl_erase_r(page);
}

PlotPage::~PlotPage() = default;

void PlotPage::Close() {
  pl_closepl_r(plotter_->handle);
  plotter_.reset();
  molva::CloseFile(file_);
}

void PlotPage::SetFontSize(double size) {
  if (std::isfinite(size)) pl_ffontsize_r(plotter_->handle, size);
}

void PlotPage::Line(Point from, Point to) {
  if (IsFinite(from) && IsFinite(to)) pl_fline_r(plotter_->handle, from.x, from.y, to.x, to.y);
}

void PlotPage::Label(Point at, double angle, Along along, Across across, const std::string& text) {
  if (!IsFinite(at)) return;
  plPlotter* page = plotter_->handle;
  pl_fmove_r(page, at.x, at.y);
  pl_textangle_r(page, static_cast<int>(angle));
  // A backslash is taken for the start of a command unless it ends its text. Texts that start at
  // their point can be drawn in pieces, each going on where the one before ended.
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t backslash = text.find('\\', begin);
    const std::size_t end = backslash == std::string::npos ? text.size() : backslash + 1;
    pl_alabel_r(page, static_cast<char>(along), static_cast<char>(across),
                text.substr(begin, end - begin).c_str());
    begin = end;
  }
}

double PlotPage::LabelWidth(const std::string& text) {
  double width = 0;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t backslash = text.find('\\', begin);
    const std::size_t end = backslash == std::string::npos ? text.size() : backslash + 1;
    width += pl_flabelwidth_r(plotter_->handle, text.substr(begin, end - begin).c_str());
    begin = end;
  }
  return width;
}

void PlotPage::StartCells() {
  pl_filltype_r(plotter_->handle, 1);
  pl_pentype_r(plotter_->handle, 0);
  pl_linewidth_r(plotter_->handle, 0);
}

void PlotPage::Cell(Point corner, Point opposite, Color color) {
  if (!IsFinite(corner) || !IsFinite(opposite)) return;
  const auto intensity = [](int value) { return std::clamp(value, 0, 65535); };
  pl_fillcolor_r(plotter_->handle, intensity(color.red), intensity(color.green),
                 intensity(color.blue));
  pl_fbox_r(plotter_->handle, corner.x, corner.y, opposite.x, opposite.y);
}

void PlotPage::StartFrames() {
  pl_filltype_r(plotter_->handle, 0);
  pl_pentype_r(plotter_->handle, 1);
  pl_linewidth_r(plotter_->handle, 1);
}

void PlotPage::Frame(Point corner, Point opposite) {
  if (!IsFinite(corner) || !IsFinite(opposite)) return;
  pl_fbox_r(plotter_->handle, corner.x, corner.y, opposite.x, opposite.y);
}

std::string PrintableLabel(const char* text) {
  const auto* bytes = reinterpret_cast<const unsigned char*>(text);
  const bool utf8 = IsUtf8(bytes);
  std::string label;
  while (*bytes != 0 && label.size() < kLongestLabel) {
    const CodePoint point = utf8 ? Decode(bytes) : CodePoint{*bytes, 1};
    bytes += point.length;
    if (IsControl(point.value)) continue;
    label += point.value > 0xff ? '?' : static_cast<char>(point.value);
  }
  return label;
}

}  // namespace mardle
