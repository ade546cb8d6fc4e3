// SPDX-License-Identifier: MIT
#include "programs/plot_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <plot.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "tests/testing/fatal.h"
#include "tests/testing/plots.h"

namespace {

using mardle::Across;
using mardle::Along;
using mardle::Color;
using mardle::PlotPage;
using mardle::PrintableLabel;
using testing::HasSubstr;
using testing_support::ErrorsOf;
using testing_support::MetaColor;
using testing_support::Metafile;
using testing_support::PlotOf;
using testing_support::ReadText;
using testing_support::TempFolder;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr std::array kFormats = {"ps", "fig", "ai", "svg", "cgm", "pcl", "gif", "meta"};

// A page of 100 x 100 units, drawn on and read back.
template <typename Draw>
Metafile Drawn(Draw draw) {
  return PlotOf([&](const std::string& path) {
    PlotPage page(path.c_str(), "test", "meta", 100, 100);
    draw(page);
    page.Close();
  });
}

// The text after the next `before`, up to the `after` that follows, where `at` moves.
std::string Between(const std::string& text, const std::string& before, const std::string& after,
                    std::size_t& at) {
  const std::size_t from = text.find(before, at);
  if (from == std::string::npos) {
    at = text.size();
    return "";
  }
  at = std::min(text.find(after, from + before.size()), text.size());
  return text.substr(from + before.size(), at - from - before.size());
}

// "WIDTHin x HEIGHTin" of a page of this extent.
std::string PageOf(double width, double height) {
  const TempFolder folder;
  const std::string path = folder.Path("plot.svg");
  EXPECT_EQ(ErrorsOf([&] { PlotPage(path.c_str(), "test", "svg", width, height).Close(); }), "");
  const std::string text = ReadText(path);
  std::size_t at = 0;
  const std::string wide = Between(text, " width=\"", "\"", at);
  return wide + " x " + Between(text, " height=\"", "\"", at);
}

TEST(PageSize, OfAWideDrawingIs8InchesWide) {
  EXPECT_EQ(PageOf(200, 100), "8in x 4in");
  EXPECT_EQ(PageOf(100, 99), "8in x 7.92in");
  EXPECT_EQ(PageOf(300, 200), "8in x 5.33in");
}

TEST(PageSize, OfATallDrawingIs10InchesHigh) {
  EXPECT_EQ(PageOf(100, 200), "5in x 10in");
  EXPECT_EQ(PageOf(99, 100), "9.9in x 10in");
  EXPECT_EQ(PageOf(200, 300), "6.67in x 10in");
}

TEST(PageSize, OfASquareDrawingIs10InchesBothWays) { EXPECT_EQ(PageOf(7, 7), "10in x 10in"); }

TEST(PageSize, IsNowhereShorterThanAHundredthOfAnInch) {
  EXPECT_EQ(PageOf(1, 100000), "0.01in x 10in");
  EXPECT_EQ(PageOf(100000, 1), "8in x 0.01in");
}

TEST(PlotPage, SpansTheExtent) {
  const Metafile plot = PlotOf([](const std::string& path) {
    PlotPage page(path.c_str(), "test", "meta", 160, 12.5);
    page.Line({0, 0}, {1, 1});
    page.Close();
  });
  EXPECT_FLOAT_EQ(static_cast<float>(plot.width), 160);
  EXPECT_FLOAT_EQ(static_cast<float>(plot.height), 12.5);
}

TEST(PlotPage, MayStayEmpty) {
  EXPECT_EQ(Drawn([](PlotPage&) {}).order, "");
}

TEST(PlotPage, ReplacesTheFile) {
  const TempFolder folder;
  const std::string path = folder.Write("plot", std::string(100000, 'x'));
  PlotPage(path.c_str(), "test", "meta", 1, 1).Close();
  EXPECT_EQ(testing_support::ReadMetafile(path).order, "");
}

void OpenIn(const char* format) { PlotPage("/dev/null", "test", format, 1, 1); }

constexpr char kUnknownType[] = "libplot: ignoring request to create plotter of unknown type\n";

TEST(PlotPage, EndsTheRunOnAnUnknownFormat) {
  EXPECT_FATAL(OpenIn("jpeg"), std::string(kUnknownType) + "Unknown plot format: jpeg\n");
}

TEST(PlotPage, EndsTheRunOnAnEmptyFormat) {
  EXPECT_FATAL(OpenIn(""), std::string(kUnknownType) + "Unknown plot format: \n");
}

TEST(PlotPage, PrintsTheNameOfAnUnknownFormatAsItIs) {
  EXPECT_FATAL(OpenIn("%s%n"), std::string(kUnknownType) + "Unknown plot format: %s%n\n");
}

// The formats that draw on a screen have none here.
TEST(PlotPage, EndsTheRunOnAFormatThatCannotBeOpened) {
  for (const char* format : {"X", "Xdrawable"}) {
    EXPECT_EXIT(OpenIn(format), testing::ExitedWithCode(0),
                HasSubstr("Unknown plot format: " + std::string(format) + "\n\n"));
  }
}

// A handler that throws unwinds through the page.
TEST(PlotPage, ReleasesAFormatThatCannotBeOpened) {
  for (const char* format : {"jpeg", "X", "Xdrawable"}) {
    EXPECT_EXIT(
        {
          const std::string message = testing_support::FatalMessage([&] { OpenIn(format); });
          std::exit(message == "Unknown plot format: " + std::string(format) + "\n" ? 3 : 4);
        },
        testing::ExitedWithCode(3), "");
  }
}

TEST(PlotPage, EndsTheRunUnderItsNameWhenTheFileCannotBeOpened) {
  EXPECT_FATAL(PlotPage("/no/such/folder/plot", "Some name", "svg", 1, 1),
               "Some name: " + std::string(std::strerror(ENOENT)) + "\nFailed on RVfopen\n");
}

TEST(PlotPage, DrawsLines) {
  const Metafile plot = Drawn([](PlotPage& page) { page.Line({1, 2}, {3, 4.5}); });
  ASSERT_EQ(plot.order, "L");
  EXPECT_EQ(plot.lines[0].from.x, 1);
  EXPECT_EQ(plot.lines[0].from.y, 2);
  EXPECT_EQ(plot.lines[0].to.x, 3);
  EXPECT_EQ(plot.lines[0].to.y, 4.5);
  EXPECT_FLOAT_EQ(static_cast<float>(plot.lines[0].line_width), 0.1F);
}

TEST(PlotPage, DrawsCellsWithoutOutlinesAndFramesWithoutFilling) {
  const Metafile plot = Drawn([](PlotPage& page) {
    page.StartCells();
    page.Cell({1, 2}, {3, 4}, {5, 600, 65535});
    page.StartFrames();
    page.Frame({10, 20}, {30, 40});
  });
  ASSERT_EQ(plot.order, "BB");
  EXPECT_EQ(plot.boxes[0].fill, (MetaColor{5, 600, 65535}));
  EXPECT_FALSE(plot.boxes[0].outlined);
  EXPECT_EQ(plot.boxes[0].line_width, 0);
  EXPECT_EQ(plot.boxes[0].opposite.y, 4);
  EXPECT_EQ(plot.boxes[1].fill, std::nullopt);
  EXPECT_TRUE(plot.boxes[1].outlined);
  EXPECT_EQ(plot.boxes[1].line_width, 1);
  EXPECT_EQ(plot.boxes[1].corner.x, 10);
}

TEST(PlotPage, BringsColoursIntoRange) {
  const Metafile plot = Drawn([](PlotPage& page) {
    page.StartCells();
    page.Cell({1, 1}, {2, 2}, {-1, 65536, 7});
    page.Cell({1, 1}, {2, 2},
              {std::numeric_limits<int>::min(), std::numeric_limits<int>::max(), 0});
  });
  ASSERT_EQ(plot.order, "BB");
  EXPECT_EQ(plot.boxes[0].fill, (MetaColor{0, 65535, 7}));
  EXPECT_EQ(plot.boxes[1].fill, (MetaColor{0, 65535, 0}));
}

TEST(PlotPage, DrawsNothingAtPlacesThatAreNoNumbers) {
  for (const double bad : {kNotANumber, kInfinity, -kInfinity}) {
    const Metafile plot = Drawn([bad](PlotPage& page) {
      page.Line({bad, 1}, {2, 2});
      page.Line({1, 1}, {2, bad});
      page.Label({bad, 1}, 0, Along::kStart, Across::kCenter, "text");
      page.Label({1, bad}, 0, Along::kStart, Across::kCenter, "text");
      page.StartCells();
      page.Cell({bad, 1}, {2, 2}, {1, 2, 3});
      page.Cell({1, 1}, {2, bad}, {1, 2, 3});
      page.StartFrames();
      page.Frame({1, bad}, {2, 2});
      page.Frame({1, 1}, {bad, 2});
    });
    EXPECT_EQ(plot.order, "");
  }
}

TEST(PlotPage, KeepsItsFontSizeWhenTheNewOneIsNoNumber) {
  const Metafile plot = Drawn([](PlotPage& page) {
    page.SetFontSize(5);
    for (const double bad : {kNotANumber, kInfinity, -kInfinity}) page.SetFontSize(bad);
    page.Label({1, 1}, 0, Along::kStart, Across::kCenter, "text");
  });
  ASSERT_EQ(plot.order, "T");
  EXPECT_EQ(plot.labels[0].font_size, 5);
}

TEST(PlotPage, TurnsAndPlacesLabels) {
  const Metafile plot = Drawn([](PlotPage& page) {
    page.SetFontSize(5);
    page.Label({1, 2}, -90, Along::kStart, Across::kCenter, "down");
    page.Label({3, 4}, 90, Along::kCenter, Across::kTop, "up");
  });
  ASSERT_EQ(plot.order, "TT");
  EXPECT_EQ(plot.labels[0].angle, -90);
  EXPECT_EQ(plot.labels[0].along, 'l');
  EXPECT_EQ(plot.labels[0].across, 'c');
  EXPECT_EQ(plot.labels[0].at.x, 1);
  EXPECT_EQ(plot.labels[0].at.y, 2);
  EXPECT_EQ(plot.labels[0].text, "down");
  EXPECT_EQ(plot.labels[0].font_size, 5);
  EXPECT_EQ(plot.labels[1].angle, 90);
  EXPECT_EQ(plot.labels[1].along, 'c');
  EXPECT_EQ(plot.labels[1].across, 't');
  EXPECT_EQ(plot.labels[1].text, "up");
}

TEST(PlotPage, DrawsNoEmptyLabel) {
  EXPECT_EQ(Drawn([](PlotPage& page) {
              page.Label({1, 2}, 0, Along::kStart, Across::kTop, "");
            }).order,
            "");
}

// The texts of an svg file in which one label is drawn.
std::vector<std::string> SvgTexts(const std::string& label) {
  const TempFolder folder;
  const std::string path = folder.Path("plot.svg");
  EXPECT_EQ(ErrorsOf([&] {
              PlotPage page(path.c_str(), "test", "svg", 100, 100);
              page.SetFontSize(5);
              page.Label({50, 50}, -90, Along::kStart, Across::kCenter, label);
              page.Close();
            }),
            "");
  const std::string text = ReadText(path);
  std::vector<std::string> texts;
  for (std::size_t at = text.find("<text "); at < text.size(); at = text.find("<text ", at)) {
    texts.push_back(Between(text, ">", "</text>", at));
  }
  return texts;
}

std::string Joined(const std::vector<std::string>& texts) {
  std::string all;
  for (const std::string& text : texts) all += text;
  return all;
}

// "\sp", "\*a" and "\f2" would be commands: a superscript, a Greek letter, a change of the font.
TEST(PlotPage, DrawsBackslashesAsTheyAre) {
  for (const std::string text :
       {"C:\\spare\\*a", "\\", "\\\\", "a\\", "\\sp2\\ep", "\\f2x", "\\r1"}) {
    EXPECT_EQ(Joined(SvgTexts(text)), text);
    const Metafile plot = Drawn([&](PlotPage& page) {
      page.SetFontSize(5);
      page.Label({50, 50}, -90, Along::kStart, Across::kCenter, text);
    });
    ASSERT_EQ(plot.labels.size(), 1U);
    EXPECT_EQ(plot.labels[0].text, text);
  }
}

TEST(PlotPage, EscapesWhatSvgReserves) {
  EXPECT_EQ(SvgTexts("<a&b>"), std::vector<std::string>{"&lt;a&amp;b&gt;"});
}

// The letter X is 20 of the 33 units wide that the font is high.
TEST(PlotPage, MeasuresLabels) {
  Drawn([](PlotPage& page) {
    page.SetFontSize(33);
    EXPECT_NEAR(page.LabelWidth("X"), 20, 1e-9);
    EXPECT_NEAR(page.LabelWidth("XXXX"), 80, 1e-9);
    EXPECT_EQ(page.LabelWidth(""), 0);
    page.SetFontSize(3.3);
    EXPECT_NEAR(page.LabelWidth("XX"), 4, 1e-9);
  });
}

TEST(PlotPage, MeasuresBackslashesAsTheyAreDrawn) {
  Drawn([](PlotPage& page) {
    page.SetFontSize(33);
    const double backslash = page.LabelWidth("\\");
    EXPECT_GT(backslash, 0);
    EXPECT_NEAR(page.LabelWidth("\\spX\\"), 2 * backslash + page.LabelWidth("spX"), 1e-9);
  });
}

TEST(PrintableLabel, LeavesPlainTextAlone) {
  EXPECT_EQ(PrintableLabel("Some text, 100% <plain> \\ ~"), "Some text, 100% <plain> \\ ~");
  EXPECT_EQ(PrintableLabel(""), "");
}

TEST(PrintableLabel, ConvertsUtf8ToLatin1) {
  EXPECT_EQ(PrintableLabel("K\xc3\xb6ln \xc3\x89t\xc3\xa9 \xc2\xa0\xc3\xbf"),
            "K\xf6ln \xc9t\xe9 \xa0\xff");
}

// The first character that Latin-1 lacks has two bytes, the euro sign three, a clef four.
TEST(PrintableLabel, PutsAQuestionMarkForWhatLatin1Lacks) {
  EXPECT_EQ(PrintableLabel("\xc4\x80"), "?");
  EXPECT_EQ(PrintableLabel("1\xe2\x82\xac!"), "1?!");
  EXPECT_EQ(PrintableLabel("\xf0\x9d\x84\x9e\xf4\x8f\xbf\xbf"), "??");
}

TEST(PrintableLabel, TakesWhatIsNotUtf8ForLatin1) {
  EXPECT_EQ(PrintableLabel("K\xf6ln"), "K\xf6ln");
  EXPECT_EQ(PrintableLabel("caf\xe9"), "caf\xe9");
  EXPECT_EQ(PrintableLabel("\xc3\xb6\xf6"), "\xc3\xb6\xf6");
  EXPECT_EQ(PrintableLabel("\xe2\xac"), "\xe2\xac");
  EXPECT_EQ(PrintableLabel("\xf0\xa1\xa2"), "\xf0\xa1\xa2");
  EXPECT_EQ(PrintableLabel("\xb6"), "\xb6");
  EXPECT_EQ(PrintableLabel("\xc0\xaf"), "\xc0\xaf");
  EXPECT_EQ(PrintableLabel("\xf5\xa1\xa2\xa3"), "\xf5\xa1\xa2\xa3");
  EXPECT_EQ(PrintableLabel("\xff\xfe"), "\xff\xfe");
}

// Three or four bytes that spell a character with fewer, half of a pair of UTF-16, and what lies
// above the last character.
TEST(PrintableLabel, TakesForbiddenFormsOfUtf8ForLatin1) {
  EXPECT_EQ(PrintableLabel("\xe0\xa0\xa0"), "?");
  EXPECT_EQ(PrintableLabel("\xe0\x80\x80"), "\xe0");
  EXPECT_EQ(PrintableLabel("\xf0\x80\x81\xa1"), "\xf0\xa1");
  EXPECT_EQ(PrintableLabel("\xed\xa0\xa0"), "\xed\xa0\xa0");
  EXPECT_EQ(PrintableLabel("\xf4\xa0\xa0\xa0"), "\xf4\xa0\xa0\xa0");
}

TEST(PrintableLabel, DropsControlCharacters) {
  EXPECT_EQ(PrintableLabel("a\tb\x01"
                           "c\x1f"
                           "d\x7f"
                           "e\r\n"),
            "abcde");
  EXPECT_EQ(PrintableLabel("a\xc2\x80\xc2\x85\xc2\x9f"
                           "b"),
            "ab");
  EXPECT_EQ(PrintableLabel("a\x80\x85\x9f"
                           "b\xa0"),
            "ab\xa0");
}

TEST(PrintableLabel, KeepsAtMost255Characters) {
  EXPECT_EQ(PrintableLabel(std::string(255, 'a').c_str()), std::string(255, 'a'));
  EXPECT_EQ(PrintableLabel(std::string(256, 'a').c_str()), std::string(255, 'a'));
  EXPECT_EQ(PrintableLabel(std::string(131071, 'a').c_str()), std::string(255, 'a'));
}

TEST(PrintableLabel, CountsCharactersNotBytes) {
  std::string text;
  for (int i = 0; i < 300; ++i) text += "\xc3\xb6\x01";
  EXPECT_EQ(PrintableLabel(text.c_str()), std::string(255, '\xf6'));
}

// Something of every kind.
void DrawScene(PlotPage& page) {
  page.SetFontSize(4);
  page.Line({10, 10}, {20, 30});
  page.Line({15, 10}, {15, 40});
  page.Label({30, 80}, -90, Along::kStart, Across::kCenter, "label");
  page.StartCells();
  for (int i = 0; i < 5; ++i) {
    page.Cell({30.0 + 4 * i, 20}, {34.0 + 4 * i, 24}, {65535, 13000 * i, 13000 * i});
  }
  page.StartFrames();
  page.Frame({30, 20}, {50, 24});
  page.Label({52, 22}, 90, Along::kCenter, Across::kTop, "(12)");
}

// A file without the line that tells when it was made.
std::string WithoutDate(const std::string& path) {
  std::string text = ReadText(path);
  const std::size_t at = text.find("%%CreationDate");
  if (at != std::string::npos) text.erase(at, text.find('\n', at) - at);
  return text;
}

// On a page of 8.00 x 4.00 inches all formats have their fonts and say nothing.
std::string Scene(const char* format) {
  const TempFolder folder;
  const std::string path = folder.Path("plot");
  EXPECT_EQ(ErrorsOf([&] {
              PlotPage page(path.c_str(), "test", format, 200, 100);
              DrawScene(page);
              page.Close();
            }),
            "")
      << format;
  return WithoutDate(path);
}

// The same scene drawn by libplot's own calls, with the page size as the only parameter.
std::string SceneByLibplot(const char* format) {
  const TempFolder folder;
  const std::string path = folder.Path("plot");
  std::FILE* file = std::fopen(path.c_str(), "w");
  plPlotterParams* parameters = pl_newplparams();
  std::string size = "letter,xsize = 8.00in,ysize = 4.00in";
  pl_setplparam(parameters, "PAGESIZE", size.data());
  plPlotter* page = pl_newpl_r(format, stdin, file, stderr, parameters);
  pl_deleteplparams(parameters);
  pl_openpl_r(page);
  pl_fspace_r(page, 0, 0, 200, 100);
  pl_flinewidth_r(page, 0.1);
  pl_pencolorname_r(page, "black");
  pl_bgcolorname_r(page, "white");
  pl_erase_r(page);
  pl_ffontsize_r(page, 4);
  pl_fline_r(page, 10, 10, 20, 30);
  pl_fline_r(page, 15, 10, 15, 40);
  pl_fmove_r(page, 30, 80);
  pl_textangle_r(page, -90);
  pl_alabel_r(page, 'l', 'c', "label");
  pl_filltype_r(page, 1);
  pl_pentype_r(page, 0);
  pl_linewidth_r(page, 0);
  for (int i = 0; i < 5; ++i) {
    pl_fillcolor_r(page, 65535, 13000 * i, 13000 * i);
    pl_fbox_r(page, 30.0 + 4 * i, 20, 34.0 + 4 * i, 24);
  }
  pl_filltype_r(page, 0);
  pl_pentype_r(page, 1);
  pl_linewidth_r(page, 1);
  pl_fbox_r(page, 30, 20, 50, 24);
  pl_fmove_r(page, 52, 22);
  pl_textangle_r(page, 90);
  pl_alabel_r(page, 'c', 't', "(12)");
  pl_closepl_r(page);
  pl_deletepl_r(page);
  std::fclose(file);
  return WithoutDate(path);
}

// All names under which libplot looks for its parameters.
constexpr std::array kNames = {"BG_COLOR",
                               "BITMAPSIZE",
                               "CGM_ENCODING",
                               "CGM_MAX_VERSION",
                               "DISPLAY",
                               "EMULATE_COLOR",
                               "GIF_ANIMATION",
                               "GIF_DELAY",
                               "GIF_ITERATIONS",
                               "HPGL_ASSIGN_COLORS",
                               "HPGL_OPAQUE_MODE",
                               "HPGL_PENS",
                               "HPGL_ROTATE",
                               "HPGL_VERSION",
                               "INTERLACE",
                               "MAX_LINE_LENGTH",
                               "META_PORTABLE",
                               "PAGESIZE",
                               "PCL_ASSIGN_COLORS",
                               "PCL_BEZIERS",
                               "PNM_PORTABLE",
                               "ROTATION",
                               "TERM",
                               "TRANSPARENT_COLOR",
                               "USE_DOUBLE_BUFFERING",
                               "VANISH_ON_DELETE",
                               "XDRAWABLE_DISPLAY",
                               "X_AUTO_FLUSH"};

// Holds environment variables at a value, or absent, and puts them back.
class Environment {
 public:
  explicit Environment(const char* value) {
    for (const char* name : kNames) {
      const char* old = std::getenv(name);
      old_.push_back(old == nullptr ? std::nullopt : std::optional<std::string>(old));
      Set(name, value);
    }
  }
  ~Environment() {
    for (std::size_t i = 0; i < kNames.size(); ++i) {
      Set(kNames[i], old_[i] ? old_[i]->c_str() : nullptr);
    }
  }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

 private:
  static void Set(const char* name, const char* value) {
    if (value == nullptr) {
      unsetenv(name);
    } else {
      setenv(name, value, 1);
    }
  }
  std::vector<std::optional<std::string>> old_;
};

TEST(PlotParameters, AreLibplotsOwnDefaults) {
  const Environment absent(nullptr);
  for (const char* format : kFormats) EXPECT_EQ(Scene(format), SceneByLibplot(format)) << format;
}

// Values that some of the names understand, and one that none does.
TEST(PlotParameters, DoNotComeFromTheEnvironment) {
  std::vector<std::string> plain;
  {
    const Environment absent(nullptr);
    for (const char* format : kFormats) plain.push_back(Scene(format));
  }
  for (const char* value :
       {"nonsense", "yes", "no", "90", "1", "red", "100x50", "a4", "text", ""}) {
    const Environment environment(value);
    for (std::size_t i = 0; i < kFormats.size(); ++i) {
      EXPECT_EQ(Scene(kFormats[i]), plain[i]) << kFormats[i] << " under " << value;
    }
  }
}

// The environment does reach a plot that sets the page size alone.
TEST(PlotParameters, WouldComeFromTheEnvironment) {
  const Environment environment("90");
  std::string drawn;
  ErrorsOf([&] { drawn = SceneByLibplot("svg"); });
  EXPECT_NE(drawn, Scene("svg"));
}

// A full disk is told once in our words; some formats have libplot's own before.
TEST(PlotPage, TellsOfAFullDisk) {
  const std::string ours = "Writing /dev/full failed: " + std::string(std::strerror(ENOSPC)) + "\n";
  for (const char* format : kFormats) {
    const std::string errors = ErrorsOf([&] {
      PlotPage page("/dev/full", "test", format, 200, 100);
      DrawScene(page);
      page.Close();
    });
    EXPECT_TRUE(errors == ours || errors == "libplot error: the output stream is jammed\n" + ours)
        << format << ": " << errors;
  }
}

// More than the stream holds back, so that it fails while the page is drawn.
TEST(PlotPage, TellsOfADiskThatIsFullBeforeItsEnd) {
  const std::string errors = ErrorsOf([] {
    PlotPage page("/dev/full", "test", "meta", 100, 100);
    page.StartCells();
    for (int i = 0; i < 20000; ++i) page.Cell({1, 1}, {2, 2}, {i, 0, 0});
    page.Close();
  });
  EXPECT_EQ(errors, "Writing /dev/full failed: " + std::string(std::strerror(ENOSPC)) + "\n");
}

// A page that is abandoned by an exception.
TEST(PlotPage, MayBeLeftUnfinished) {
  for (const char* format : kFormats) {
    EXPECT_EQ(ErrorsOf([&] {
                PlotPage page("/dev/null", "test", format, 200, 100);
                DrawScene(page);
              }),
              "")
        << format;
  }
}

}  // namespace
