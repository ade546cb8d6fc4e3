// SPDX-License-Identifier: MIT
//
// Plot files: labels, colours and coordinates of any kind on one page, and both plots of a matrix
// of any values with labels of any kind, in every format. Text formats must end as they should, and
// nothing but the known lines may come to standard error.
//
// Pages and coordinates are bounded as the layouts bound them; not-a-number and infinite ones stay.
#include <algorithm>
#include <cmath>

#include "lib/molva.h"
#include "programs/plot_clusters.h"
#include "programs/plot_matrix.h"
#include "programs/plot_page.h"
#include "tests/fuzz/harness.h"

namespace fuzzing {
namespace {

constexpr int kMost = 8;

constexpr const char* kFormats[] = {
    "ps",  "fig", "ai",   "svg", "cgm", "pcl", "meta",   "hpgl",    "tek", "regis",    "SVG", "ps",
    "svg", "fig", "meta", "gif", "png", "pnm", "bitmap", "generic", "X",   "nonsense", ""};

// The three formats of pictures take milliseconds each, so they are drawn seldom.
const char* AnyFormat(Input& input) {
  const int choice = input.Byte();
  const int vector_formats = 15;
  return kFormats[choice < 0xe0
                      ? choice % vector_formats
                      : static_cast<int>(static_cast<std::size_t>(choice) % std::size(kFormats))];
}

double Coordinate(Input& input) {
  const auto value = static_cast<double>(input.AnyFloat());
  return std::isfinite(value) ? std::clamp(value, -1e5, 1e5) : value;
}

mardle::Point AnyPoint(Input& input) {
  const double x = Coordinate(input);
  return {x, Coordinate(input)};
}

std::string AnyLabel(Input& input) {
  const std::string raw = input.Until(0xfe);
  std::string text = Expanded({reinterpret_cast<const std::uint8_t*>(raw.data()), raw.size()});
  text.resize(std::min(text.find('\0'), text.size()));
  return text;
}

// One thing drawn. Along and across come in the pairs that the plots use; a text that is centred
// has no backslash.
void DrawAny(mardle::PlotPage& page, Input& input) {
  using mardle::Across;
  using mardle::Along;
  const int choice = input.Below(9);
  const mardle::Point at = AnyPoint(input);
  if (choice == 0) page.SetFontSize(at.x);
  if (choice == 1) page.Line(at, AnyPoint(input));
  if (choice == 2 || choice == 3) {
    const std::string text = mardle::PrintableLabel(AnyLabel(input).c_str());
    Require(text.size() <= 255, "a label has at most 255 characters");
    Require(text.find_first_of("\n\t\x7f\x1b") == std::string::npos, "no control characters");
    page.Label(at, -90, Along::kStart, Across::kCenter, text);
    const double width = page.LabelWidth(text);
    Require(width >= 0, "a label has a width");
  }
  if (choice == 4) page.Label(at, 90, Along::kCenter, Across::kTop, std::to_string(input.AnyInt()));
  if (choice == 5) page.StartCells();
  if (choice == 6) {
    const int red = input.AnyInt(), green = input.AnyInt();
    page.Cell(at, AnyPoint(input), {red, green, input.AnyInt()});
  }
  if (choice == 7) page.StartFrames();
  if (choice == 8) page.Frame(at, AnyPoint(input));
}

void DrawPage(Input& input, const char* format, const MemoryFile& file) {
  const double width = std::abs(static_cast<double>(input.Below(200))) * 0.5 + 0.01;
  mardle::PlotPage page(file.path(), "Fuzz: page", format, width, input.Below(200) * 100 + 0.01);
  for (int n = 0; n < 60 && !input.empty(); ++n) DrawAny(page, input);
  page.Close();
}

mardle::Matrix AnyMatrix(Input& input, bool dense) {
  mardle::Matrix mat;
  mat.nrows = input.Below(kMost + 1);
  mat.ncols = input.Below(kMost + 1);
  std::vector<int> columns, starts = {0};
  std::vector<float> values;
  for (int i = 0; i < mat.nrows; ++i) {
    for (int j = 0; j < mat.ncols; ++j) {
      if (!dense && input.Flag()) continue;
      columns.push_back(j);
      values.push_back(input.AnyFloat());
    }
    starts.push_back(static_cast<int>(std::ssize(values)));
  }
  mat.rowval = molva::AllocFloats(std::ssize(values), "Fuzz: rowval");
  std::copy(values.begin(), values.end(), mat.rowval.begin());
  if (dense) return mat;
  mat.rowptr = molva::AllocInts(std::ssize(starts), "Fuzz: rowptr");
  std::copy(starts.begin(), starts.end(), mat.rowptr.begin());
  mat.rowind = molva::AllocInts(std::ssize(columns), "Fuzz: rowind");
  std::copy(columns.begin(), columns.end(), mat.rowind.begin());
  return mat;
}

mardle::RunParams AnyParams(Input& input, const char* format, const char* path) {
  mardle::RunParams params;
  std::copy_n(format, std::strlen(format) + 1, params.plotformat.begin());
  const int flags = input.Byte();
  params.denseinput = flags & 1;
  params.clustercolumns = flags >> 1 & 1;
  params.zeroblack = flags >> 2 & 1;
  params.noreorder = flags >> 3 & 1;
  params.fulltree = flags >> 4 & 1;
  params.prune = input.Flag() ? 1.0F : input.AnyFloat();
  params.rowmodel = 1 + input.Below(4);
  params.colmodel = params.denseinput != 0 ? 1 : 1 + input.Below(2);
  params.crfun = params.treecrfun = 1 + input.Below(9);
  params.nfeatures = std::min(input.AnyInt(), 40);
  params.nclusters = input.Below(kMost) - 1;
  params.plotmatrixfile = molva::mystrdup(path);
  params.plotclustersfile = molva::mystrdup(path);
  return params;
}

// Clusters as a run may have them, of which preparation may drop the rows.
void DrawMatrix(Input& input, const char* format, const MemoryFile& file) {
  const bool bands = input.Flag();
  const mardle::RunParams params = AnyParams(input, format, file.path());
  mardle::Matrix mat = AnyMatrix(input, params.denseinput);
  molva::Array<int> part = molva::AllocIntsSet(mat.nrows, -1, "Fuzz: part");
  for (int& k : part) k = input.Below(params.nclusters + 2) - 1;
  mat.clabels = molva::Strings(mat.ncols, "Fuzz: clabels");
  for (int j = 0; j < mat.ncols; ++j) {
    mat.clabels.Set(static_cast<std::size_t>(j), AnyLabel(input).c_str());
  }
  const mardle::Clusters clusters{params.nclusters, part.get()};
  if (bands) return mardle::PlotTreeClusterMatrix(params, mat, clusters);
  molva::Array<int> ptree;
  if (params.fulltree) {
    const std::int64_t nodes = 2 * std::int64_t{mat.nrows};
    ptree = molva::AllocIntsSet(nodes, -1, "Fuzz: ptree");
    molva::Array<float> tsims = molva::AllocFloatsSet(nodes, 0, "Fuzz: tsims");
    MOLVA_V_BuildTree(mat.nrows, mat.ncols, mat.rowptr.get(), mat.rowind.get(), mat.rowval.get(), 1,
                      params.crfun, params.rowmodel, params.colmodel, params.prune, 2, 0,
                      params.nclusters, part.get(), ptree.get(), tsims.get());
  }
  mardle::PlotMatrix(params, mat, {ptree.get(), ptree.size()}, clusters);
}

bool IsKnownLine(std::string_view line) {
  return line.empty() || line.starts_with("No rows or no columns to plot: ") ||
         line == "libplot: ignoring request to create plotter of unknown type" ||
         line.starts_with("libplot: ignoring request to create plotter of unknown type \"") ||
         line == "libplot: cannot retrieve font \"Helvetica\", using default \"HersheySerif\"";
}

void CheckErrorOutput(std::string_view text) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    Require(IsKnownLine(text.substr(0, end)), "a line on standard error: " + std::string(text));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
}

void CheckFile(const std::string& format, const std::string& text) {
  if (text.empty()) return;
  const auto ends = [&text](const char* end) { return text.ends_with(end); };
  if (format == "svg" || format == "SVG") Require(ends("</svg>\n"), "an svg file is closed");
  if (format == "ps" || format == "ai") Require(ends("%%EOF\n"), "a ps file is closed");
  if (format == "meta") Require(ends("x"), "a metafile is closed");
}

}  // namespace

void FuzzPlots(Bytes bytes) {
  Input input(bytes);
  const char* format = AnyFormat(input);
  const bool page = input.Flag();
  const MemoryFile file;
  Sandbox sandbox({.fill = 0xff});
  const std::string message = FatalMessageOf(
      [&] { page ? DrawPage(input, format, file) : DrawMatrix(input, format, file); });
  CheckErrorOutput(sandbox.ErrorOutput());
  if (message.empty()) CheckFile(format, file.Text());
}

}  // namespace fuzzing
