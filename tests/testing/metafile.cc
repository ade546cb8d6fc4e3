// SPDX-License-Identifier: MIT
//
// A file is a line with the name of the format and then operations, each one character and its
// arguments: numbers as they lie in memory, texts up to a newline. Attributes hold until they are
// set again, and are written before the next object that needs them.
#include "tests/testing/metafile.h"

#include <gtest/gtest.h>

#include <cstring>

#include "tests/testing/files.h"

namespace testing_support {
namespace {

class Reader {
 public:
  explicit Reader(std::string bytes) : bytes_(std::move(bytes)) {}

  Metafile Read() {
    if (Text() != "#PLOT 1") ADD_FAILURE() << "not a metafile";
    while (at_ < bytes_.size() && !closed_) Operation(bytes_[at_++]);
    EXPECT_TRUE(closed_) << "the plot is not finished";
    EXPECT_EQ(at_, bytes_.size()) << "something follows the plot";
    return std::move(plot_);
  }

 private:
  template <typename T>
  T Number() {
    T value{};
    if (at_ + sizeof(T) > bytes_.size()) {
      ADD_FAILURE() << "a number is cut off at byte " << at_;
      at_ = bytes_.size();
    } else {
      std::memcpy(&value, bytes_.data() + at_, sizeof(T));
      at_ += sizeof(T);
    }
    return value;
  }

  int Int() { return Number<int>(); }
  double Float() { return static_cast<double>(Number<float>()); }

  MetaPoint Point() {
    const double x = Float();
    return {x, Float()};
  }

  std::string Text() {
    const std::size_t end = std::min(bytes_.find('\n', at_), bytes_.size());
    std::string text = bytes_.substr(at_, end - at_);
    at_ = end + 1;
    return text;
  }

  void Operation(char operation) {
    switch (operation) {
      case 'o':
      case 'e':
      case 'E':
        return;
      case 'x':
        closed_ = true;
        return;
      case 'j':
        return ReadScale();
      case '$':
        point_ = Point();
        moved_ = true;
        return;
      case ')':
        return AddLine();
      case '3':
        return AddBox();
      case 'T':
        return AddLabel();
      case 'F':
        Text();
        return;
      case 'D':
        for (int& intensity : fill_) intensity = Int();
        return;
      case 'L':
        filltype_ = Int();
        EXPECT_TRUE(filltype_ == 0 || filltype_ == 1) << filltype_;
        return;
      case 'h':
        pentype_ = Int();
        return;
      case '0':
        line_width_ = Float();
        return;
      case '7':
        font_size_ = Float();
        return;
      case '(':
        angle_ = Float();
        return;
      default:
        ADD_FAILURE() << "operation '" << operation << "' at byte " << at_ - 1;
        at_ = bytes_.size();
    }
  }

  // The page is scaled to the unit square.
  void ReadScale() {
    std::array<double, 6> scale;
    for (double& number : scale) number = Float();
    plot_.width = 1 / scale[0];
    plot_.height = 1 / scale[3];
    for (const int zero : {1, 2, 4, 5}) EXPECT_EQ(scale[static_cast<std::size_t>(zero)], 0);
  }

  void AddLine() {
    const MetaPoint to = Point();
    plot_.lines.push_back({point_, to, line_width_});
    plot_.order += 'L';
    point_ = to;
    moved_ = true;
  }

  void AddBox() {
    const MetaPoint corner = Point();
    const MetaPoint opposite = Point();
    std::optional<MetaColor> fill;
    if (filltype_ != 0) fill = fill_;
    plot_.boxes.push_back({corner, opposite, fill, pentype_ != 0, line_width_});
    plot_.order += 'B';
    moved_ = true;
  }

  void AddLabel() {
    const char along = static_cast<char>(Number<unsigned char>());
    const char across = static_cast<char>(Number<unsigned char>());
    const std::string text = Text();
    if (!moved_ && along == 'l') {
      plot_.labels.back().text += text;
      return;
    }
    plot_.labels.push_back({point_, angle_, along, across, text, font_size_});
    plot_.order += 'T';
    moved_ = false;
  }

  std::string bytes_;
  std::size_t at_ = 0;
  bool closed_ = false;
  Metafile plot_;

  MetaPoint point_ = {0, 0};
  bool moved_ = true;
  MetaColor fill_ = {0, 0, 0};
  int filltype_ = 0;
  int pentype_ = 1;
  double line_width_ = -1;
  double font_size_ = -1;
  double angle_ = 0;
};

}  // namespace

Metafile ReadMetafile(const std::string& path) { return Reader(ReadText(path)).Read(); }

}  // namespace testing_support
