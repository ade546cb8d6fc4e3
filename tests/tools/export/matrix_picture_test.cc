// SPDX-License-Identifier: MIT
#include "tools/export/matrix_picture.h"

#include <gmock/gmock.h>

#include <sstream>

#include "programs/io/labels.h"
#include "tests/tools/export/measures/matrices.h"
#include "tools/export/shades.h"

namespace {

using mardle::Matrix;
using mardle::RunParams;
using mardle::exporting::Contents;
using mardle::exporting::ShadeName;
using mardle::exporting::ShadeOfShare;
using mardle::exporting::ShadeOfStanding;
using testing::HasSubstr;
using testing::Not;
using testing_support::DenseMatrixOf;
using testing_support::SparseMatrixOf;

std::string PictureOf(const Matrix& mat, const std::vector<int>& part, int nclusters) {
  RunParams params;
  params.colmodel = MOLVA_COL_NONE;
  std::ostringstream out;
  WriteMatrixPicture(mat, {params, mat, part, nclusters}, WordingOf(Contents::kUnknown, mat), out);
  return out.str();
}

TEST(MatrixPicture, HasTheRowsOfEachClusterSideBySide) {
  // Cluster 0 takes half of the 960 dots from 190 on, cluster 1 the other half behind a gap of two.
  const Matrix mat = SparseMatrixOf({{1, 0}, {0, 2}, {3, 0}, {0, 1}}, {"sea", "land"});
  const std::string picture = PictureOf(mat, {0, 1, 0, 1}, 2);
  EXPECT_THAT(picture,
              HasSubstr("y=\"58\">sea</text><rect class=\"h6\" x=\"190\" y=\"46\" width=\"480\""));
  EXPECT_THAT(picture,
              HasSubstr("y=\"74\">land</text><rect class=\"h6\" x=\"672\" y=\"62\" width=\"480\""));
  EXPECT_THAT(picture, HasSubstr("4 documents in 2 clusters</text>"));
}

TEST(MatrixPicture, AveragesTheRowsOfADot) {
  // 1920 rows share 960 dots, two a dot; the last one of each pair lacks the second column.
  std::vector<std::vector<float>> rows;
  for (int i = 0; i < 1920; ++i) rows.push_back({1, i % 2 == 0 ? 1.0F : 0.0F});
  const Matrix mat = SparseMatrixOf(rows, {"sea", "land"});
  const std::string picture = PictureOf(mat, std::vector<int>(1920, 0), 1);
  EXPECT_THAT(picture, HasSubstr("<rect class=\"h6\" x=\"190\" y=\"46\" width=\"960\""));
  EXPECT_THAT(picture, HasSubstr("<rect class=\"h5\" x=\"190\" y=\"62\" width=\"960\""));
}

TEST(MatrixPicture, ShowsDenseValuesByTheirStanding) {
  const Matrix mat = DenseMatrixOf({{1, 9}, {1, 8}, {9, 1}, {9, 2}});
  const std::string picture = PictureOf(mat, {0, 0, 1, 1}, 2);
  EXPECT_THAT(picture, HasSubstr("class=\"g4\""));
  EXPECT_THAT(picture, HasSubstr("class=\"h4\""));
  EXPECT_THAT(picture, HasSubstr("Average, in deviations from that of all rows:"));
}

TEST(MatrixPicture, HasAStripOfTheClasses) {
  Matrix mat = SparseMatrixOf({{1, 0}, {0, 2}, {3, 0}, {0, 1}}, {"sea", "land"});
  mat.rclasses = molva::Strings(4, "classes");
  const char* names[] = {"<wet>", "dry", "<wet>", "<wet>"};
  for (std::size_t i = 0; i < 4; ++i) mat.rclasses.Set(i, names[i]);
  mardle::SetUpClasses(mat);
  const std::string picture = PictureOf(mat, {0, 1, 0, 1}, 2);
  EXPECT_THAT(picture, HasSubstr("<rect class=\"c0\" x=\"190\" y=\"46\""));
  EXPECT_THAT(picture, HasSubstr("<rect class=\"c0\" x=\"672\" y=\"46\" width=\"240\""));
  EXPECT_THAT(picture, HasSubstr("<rect class=\"c1\" x=\"912\" y=\"46\" width=\"240\""));
  EXPECT_THAT(picture, HasSubstr(">&lt;wet&gt;</text>"));
  EXPECT_THAT(picture, Not(HasSubstr("<wet>")));
}

TEST(MatrixPicture, PassesOverEmptyClusters) {
  const Matrix mat = SparseMatrixOf({{1, 0}, {0, 2}, {3, 0}, {0, 1}}, {"sea", "land"});
  const std::string picture = PictureOf(mat, {0, 2, 0, 2}, 3);
  EXPECT_THAT(picture, HasSubstr("y=\"40\">2</text>"));
  EXPECT_THAT(picture, Not(HasSubstr("y=\"40\">1</text>")));
}

TEST(Shades, BeginAtTheirBounds) {
  EXPECT_EQ(ShadeOfShare(0.0099), 0);
  EXPECT_EQ(ShadeOfShare(0.01), 1);
  EXPECT_EQ(ShadeOfShare(0.4), 5);
  EXPECT_EQ(ShadeOfShare(1), 6);
  EXPECT_EQ(ShadeOfStanding(0.2), 0);
  EXPECT_EQ(ShadeOfStanding(0.75), 4);
  EXPECT_EQ(ShadeOfStanding(-1.5), -6);
  EXPECT_EQ(ShadeName(-4), "g4");
  EXPECT_EQ(ShadeName(3), "h3");
}

}  // namespace
