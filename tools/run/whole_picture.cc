// SPDX-License-Identifier: MIT
#include "tools/run/whole_picture.h"

#include <strings.h>

#include <array>
#include <cstdio>
#include <vector>

#include "tools/text/fields.h"
#include "tools/text/input_lines.h"
#include "tools/text/numbers.h"

namespace mardle::tools {
namespace {

using namespace std::literals;

struct PictureEnd {
  const char* format;
  std::string_view text;
};

// CGM: the elements END PICTURE and END METAFILE. PCL: back from HP-GL/2. GIF: the empty block of
// the last image and the trailer. PNG: the chunk IEND. Tektronix: back to text.
constexpr std::array<PictureEnd, 10> kEnds = {{{"ps", "\n%%EOF\n"sv},
                                               {"ai", "\n%%EOF\n"sv},
                                               {"svg", "</svg>\n"sv},
                                               {"cgm", "\x00\xa0\x00\x40"sv},
                                               {"pcl", "\x1b%0A"sv},
                                               {"gif", "\x00;"sv},
                                               {"png", "IEND\xae\x42\x60\x82"sv},
                                               {"meta", "x"sv},
                                               {"hpgl", "PG0;\n"sv},
                                               {"regis", "\x1b\\\x1b[1;1H"sv}}};

std::string EndOf(const std::string& name, std::size_t length) {
  const molva::File file = OpenForReading(name);
  std::string end(length, '\0');
  if (std::fseek(file.get(), -static_cast<long>(length), SEEK_END) != 0) return {};
  end.resize(std::fread(end.data(), 1, length, file.get()));
  return end;
}

// An object of fig: a line of fields, of which the last counts its points, and below it indented
// lines with the coordinates; or a text, whose line ends with a mark.
class FigObject {
 public:
  void Take(std::string_view line) {
    if (line.starts_with('\t')) {
      coordinates_ += FieldsOf(line).size();
    } else if (!line.starts_with('#')) {
      first_line_ = line;
      coordinates_ = 0;
    }
  }

  bool IsWhole() const {
    if (first_line_.starts_with("4 ")) return first_line_.ends_with("\\001");
    if (!first_line_.starts_with("2 ")) return true;
    const auto points = ParseInteger(FieldsOf(first_line_).back());
    return points && static_cast<long long>(coordinates_) == 2 * *points;
  }

 private:
  std::string first_line_;
  std::size_t coordinates_ = 0;
};

bool HasWholeFigObjects(const std::string& name) {
  InputLines input(name);
  FigObject last;
  std::string_view line;
  while (input.Next(line)) last.Take(line);
  return last.IsWhole() && EndOf(name, 1) == "\n";
}

}  // namespace

bool HasEndOfPicture(const std::string& name, std::string_view format) {
  const std::string wanted(format);
  if (strcasecmp(wanted.c_str(), "fig") == 0) return HasWholeFigObjects(name);
  for (const PictureEnd& end : kEnds) {
    if (strcasecmp(wanted.c_str(), end.format) == 0) {
      return EndOf(name, end.text.size()) == end.text;
    }
  }
  return true;
}

}  // namespace mardle::tools
