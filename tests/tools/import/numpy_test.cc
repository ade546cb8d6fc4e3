// SPDX-License-Identifier: MIT
//
// Arrays of NumPy and sparse matrices of SciPy, whole and damaged.
#include <gtest/gtest.h>
#include <zip.h>

#include <cstring>
#include <map>

#include "tests/tools/import/imported.h"
#include "tools/import/npy_array.h"

namespace {

using namespace mardle::tools;
using testing_support::Imported;
using testing_support::ReadText;
using testing_support::TempFolder;

// The bytes of numbers as this machine has them, lowest first.
template <typename Number>
std::string BytesOf(std::initializer_list<Number> numbers) {
  std::string bytes;
  for (const Number number : numbers) {
    char raw[sizeof number];
    std::memcpy(raw, &number, sizeof number);
    bytes.append(raw, sizeof number);
  }
  return bytes;
}

std::string Npy(const std::string& type, const std::string& shape, const std::string& bytes,
                bool by_columns = false) {
  const std::string header = "{'descr': '" + type +
                             "', 'fortran_order': " + (by_columns ? "True" : "False") +
                             ", 'shape': (" + shape + "), }\n";
  const std::string length = {static_cast<char>(header.size()), 0};
  return std::string("\x93NUMPY\x01\0", 8) + length + header + bytes;
}

using Arrays = std::map<std::string, std::string>;

std::string Npz(const Arrays& arrays) {
  const TempFolder folder;
  const std::string path = folder.Path("z");
  zip_t* archive = zip_open(path.c_str(), ZIP_CREATE, nullptr);
  for (const auto& [name, bytes] : arrays) {
    zip_file_add(archive, (name + ".npy").c_str(),
                 zip_source_buffer(archive, bytes.data(), bytes.size(), 0), 0);
  }
  zip_close(archive);
  return ReadText(path);
}

std::string Ints(std::initializer_list<int> numbers) {
  return Npy("<i4", std::to_string(numbers.size()) + ",", BytesOf(numbers));
}

std::string Floats(std::initializer_list<float> numbers) {
  return Npy("<f4", std::to_string(numbers.size()) + ",", BytesOf(numbers));
}

// Two rows of three columns: 1 . 2 and . 3 .
Arrays SmallMatrix() {
  return {{"format", Npy("|S3", "", "csr")},
          {"shape", Npy("<i8", "2,", BytesOf<std::int64_t>({2, 3}))},
          {"indptr", Ints({0, 2, 3})},
          {"indices", Ints({0, 2, 1})},
          {"data", Floats({1, 2, 3})}};
}

std::string FailureOf(const std::string& name, const std::string& bytes) {
  return Imported(name, bytes).Failure();
}

std::string FailureWith(const std::string& array, const std::string& bytes) {
  Arrays arrays = SmallMatrix();
  arrays[array] = bytes;
  return FailureOf("a.npz", Npz(arrays));
}

TEST(NumpyArray, BecomesADenseMatrix) {
  Imported imported("a.npy", Npy("<f8", "2, 3", BytesOf({1., 0., 2.5, -1., 4., 0.})));
  EXPECT_EQ(imported.Run(), "2 3\n1 0 2.5\n-1 4 0\n");
  imported.Again();
  imported.options.preparation.sparse = true;
  EXPECT_EQ(imported.Run(), "2 3 4\n1 1 3 2.5\n1 -1 2 4\n");
}

TEST(NumpyArray, MayBeStoredColumnByColumn) {
  EXPECT_EQ(Imported("a.npy", Npy("<f8", "2, 3", BytesOf({1., 4., 2., 5., 3., 6.}), true)).Run(),
            "2 3\n1 2 3\n4 5 6\n");
}

TEST(NumpyArray, HasNumbersOfAllKinds) {
  const auto row = [](const std::string& type, const std::string& bytes) {
    return Imported("a.npy", Npy(type, "1, 2", bytes)).Run();
  };
  EXPECT_EQ(row("<f4", BytesOf({0.5F, -8.0F})), "1 2\n0.5 -8\n");
  EXPECT_EQ(row("<i2", BytesOf<std::int16_t>({-300, 7})), "1 2\n-300 7\n");
  EXPECT_EQ(row("|i1", BytesOf<std::int8_t>({-1, 7})), "1 2\n-1 7\n");
  EXPECT_EQ(row("<u8", BytesOf<std::uint64_t>({3, 1ULL << 40U})), "1 2\n3 1099511627776\n");
  EXPECT_EQ(row("|b1", BytesOf<char>({1, 0})), "1 2\n1 0\n");
  EXPECT_EQ(row(">i2", std::string("\x01\x00\x00\x05", 4)), "1 2\n256 5\n");
}

// 0x3800 is 2^-1, 0xc400 is -2^2, 0x0001 is 2^-24, 0x7bff is 65504, 0x7c00 is infinite.
TEST(NumpyArray, HasNumbersOfHalfPrecision) {
  Imported imported("a.npy",
                    Npy("<f2", "4, 1", BytesOf<std::uint16_t>({0x3800, 0xc400, 1, 0x7bff})));
  EXPECT_EQ(imported.Run(), "4 1\n0.5\n-4\n5.960464477539063e-08\n65504\n");
  EXPECT_EQ(FailureOf("a.npy", Npy("<f2", "1, 1", BytesOf<std::uint16_t>({0x7c00}))),
            "a.npy, row 1: column 1 is too large for single precision: inf");
}

TEST(NumpyArray, MissingValuesAreSeenToLikeThoseOfTables) {
  const std::string bytes =
      Npy("<f8", "3, 1", BytesOf({1., std::numeric_limits<double>::quiet_NaN(), 3.}));
  EXPECT_TRUE(FailureOf("a.npy", bytes)
                  .starts_with("a.npy, row 2: column 1 has no value; 1 value is missing"));
  Imported imported("a.npy", bytes);
  imported.options.preparation.missing = Missing::kMean;
  EXPECT_EQ(imported.Run(), "3 1\n1\n2\n3\n");
}

TEST(NumpyArray, DamageAndWhatIsNoMatrixIsAnError) {
  const std::string good = Npy("<f8", "1, 1", BytesOf({1.}));
  EXPECT_EQ(FailureOf("a.npy", "text"), "a.npy: no array of NumPy");
  EXPECT_EQ(FailureOf("a.npy", good.substr(0, 7)), "a.npy: the header ends too early");
  EXPECT_EQ(FailureOf("a.npy", good.substr(0, 9)), "a.npy: the header ends too early");
  EXPECT_EQ(FailureOf("a.npy", good.substr(0, 30)), "a.npy: the header ends too early");
  EXPECT_EQ(FailureOf("a.npy", good.substr(0, good.size() - 1)), "a.npy: the array ends too early");
  EXPECT_EQ(FailureOf("a.npy", Npy("<f8", "4294967296, 4294967296", "")),
            "a.npy: the array ends too early");
  EXPECT_EQ(FailureOf("a.npy", Npy("<f8", "-1, 1", "")), "a.npy: the header has no shape");
  EXPECT_EQ(FailureOf("a.npy", Npy("<f8", "x", "")), "a.npy: the header has no shape");
  EXPECT_EQ(FailureOf("a.npy", Npy("|O", "1, 1", "12345678")),
            "a.npy: values of the type '|O' are not supported; numbers are");
  EXPECT_EQ(FailureOf("a.npy", Npy("<f3", "1, 1", "123")),
            "a.npy: values of the type '<f3' are not supported; numbers are");
  EXPECT_EQ(FailureOf("a.npy", Npy("<f8", "1,", BytesOf({1.}))),
            "a.npy: no matrix: an array of numbers in 1 dimensions instead of 2");
  EXPECT_EQ(FailureOf("a.npy", Npy("<f8", "0, 3", "")), "out.mat: there are no rows to write");
}

TEST(SparseArchive, RowsColumnsAndEntriesGiveTheSameMatrix) {
  const std::string expected = "2 3 3\n1 1 3 2\n2 3\n";
  EXPECT_EQ(Imported("a.npz", Npz(SmallMatrix())).Run(), expected);
  Arrays by_columns = SmallMatrix();
  by_columns["format"] = Npy("<U3", "", std::string("c\0\0\0s\0\0\0c\0\0\0", 12));
  by_columns["indptr"] = Ints({0, 1, 2, 3});
  by_columns["indices"] = Ints({0, 1, 0});
  by_columns["data"] = Floats({1, 3, 2});
  EXPECT_EQ(Imported("a.npz", Npz(by_columns)).Run(), expected);
  Arrays entries = SmallMatrix();
  entries["format"] = Npy("|S3", "", "coo");
  entries["row"] = Ints({1, 0, 0, 0});
  entries["col"] = Ints({1, 2, 0, 2});
  entries["data"] = Floats({3, 1.5, 1, 0.5});
  EXPECT_EQ(Imported("a.npz", Npz(entries)).Run(), expected);
}

TEST(SparseArchive, LabelsComeFromFiles) {
  Imported imported("a.npz", Npz(SmallMatrix()));
  imported.options.labels.columns = imported.folder.Write("words", "red\nsea\nwine\n");
  imported.options.labels.rows = imported.folder.Write("names", "first\nsecond\n");
  EXPECT_EQ(imported.Run(".clabel"), "red\nsea\nwine\n");
  EXPECT_EQ(imported.Read(".rlabel"), "first\nsecond\n");
}

TEST(SparseArchive, ASingleArrayIsAMatrix) {
  EXPECT_EQ(Imported("a.npz", Npz({{"arr_0", Npy("<f8", "1, 2", BytesOf({1., 2.}))}})).Run(),
            "1 2\n1 2\n");
  EXPECT_EQ(
      FailureOf("a.npz", Npz({{"a", Ints({1})}, {"b", Ints({1})}})),
      "a.npz: neither a sparse matrix that scipy.sparse.save_npz has saved nor a single array; "
      "the arrays are a, b");
}

TEST(SparseArchive, DamageIsAnError) {
  const std::string good = Npz(SmallMatrix());
  EXPECT_TRUE(FailureOf("a.npz", good.substr(0, good.size() / 2))
                  .starts_with("a.npz: no archive of NumPy, or a damaged one: "));
  EXPECT_EQ(FailureWith("format", Npy("|S3", "", "bsr")),
            "a.npz: a sparse matrix of the format 'bsr'; csr, csc and coo are supported, and its "
            "method tocsr() makes one");
  EXPECT_EQ(FailureWith("shape", Ints({2})), "a.npz: 'shape' holds 1 numbers instead of 2");
  EXPECT_EQ(FailureWith("shape", Ints({-2, 3})), "a.npz: more rows or columns than mardle takes");
  EXPECT_EQ(FailureWith("indptr", Ints({0, 3})), "a.npz: 'indptr' holds 2 numbers instead of 3");
  EXPECT_EQ(FailureWith("indptr", Floats({0, 2, 3})),
            "a.npz: 'indptr' is no list of whole numbers");
  for (const auto& starts : {Ints({0, 2, 4}), Ints({0, 2, 1}), Ints({1, 2, 3}), Ints({0, -1, 3})}) {
    EXPECT_EQ(FailureWith("indptr", starts),
              "a.npz: 'indptr' does not rise from 0 to the number of entries");
  }
  EXPECT_EQ(FailureWith("indices", Ints({0, 3, 1})),
            "a.npz: 'indices' holds 3, which is not between 0 and 2");
  EXPECT_EQ(FailureWith("indices", Ints({0, -1, 1})),
            "a.npz: 'indices' holds -1, which is not between 0 and 2");
  EXPECT_EQ(FailureWith("data", Floats({1})), "a.npz: 'data' holds 1 numbers instead of 3");
  EXPECT_EQ(FailureWith("data", Npy("|S1", "3,", "abc")), "a.npz: 'data' is no list of numbers");
  EXPECT_EQ(FailureWith("data", "text"), "a.npz: data: no array of NumPy");
  EXPECT_TRUE(FailureWith("data", Floats({1, std::numeric_limits<float>::quiet_NaN(), 3}))
                  .starts_with("a.npz: the value number 2 is not a finite number: "));
  Arrays without = SmallMatrix();
  without.erase("indices");
  EXPECT_EQ(FailureOf("a.npz", Npz(without)), "a.npz: there is no array 'indices'");
}

TEST(SparseArchive, BytesThatWereChangedAreSeenByTheirChecksum) {
  std::string bytes = Npz(SmallMatrix());
  // The first file's data stand behind its header of 30 bytes and its name.
  bytes[60] = static_cast<char>(bytes[60] ^ 1);
  EXPECT_TRUE(FailureOf("a.npz", bytes).starts_with("a.npz: "));
}

}  // namespace
