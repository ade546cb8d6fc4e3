// SPDX-License-Identifier: MIT
//
// What texts come in: encodings, gzip, and files that are no texts at all.
#include <gtest/gtest.h>
#include <zlib.h>

#include <filesystem>
#include <stdexcept>

#include "tests/tools/import/imported.h"
#include "tools/import/decoder.h"
#include "tools/import/file_kind.h"
#include "tools/import/text_input.h"

namespace {

using namespace mardle::tools;
using namespace std::literals;
using testing_support::Imported;
using testing_support::ReadText;
using testing_support::TempFolder;

std::string Packed(const std::string& text) {
  const TempFolder folder;
  const std::string path = folder.Path("packed");
  gzFile file = gzopen(path.c_str(), "w");
  gzwrite(file, text.data(), static_cast<unsigned>(text.size()));
  gzclose(file);
  return ReadText(path);
}

// The text in UTF-8 with a NUL byte behind each character, as UTF-16LE has those of ASCII.
std::string Wide(std::string_view text) {
  std::string wide;
  for (const char c : text) (wide += c) += '\0';
  return wide;
}

std::string SummaryOf(Imported& imported) {
  return imported.WithoutFolder(Summary(imported.options, Import(imported.options)));
}

TEST(Unpacking, AFileInGzipIsReadAsWhatItHolds) {
  Imported imported("t.csv.gz", Packed("a,b\n1,2\n"));
  EXPECT_EQ(imported.Run(), "1 2\n1 2\n");
  EXPECT_EQ(imported.Read(".clabel"), "a\nb\n");
}

TEST(Unpacking, PiecesOfGzipFollowEachOther) {
  Imported imported("t.csv.gz", Packed("a,b\n1,2\n") + Packed("3,4\n"));
  EXPECT_EQ(imported.Run(), "2 2\n1 2\n3 4\n");
}

TEST(Unpacking, DamageIsAnError) {
  std::string text;
  for (int i = 0; i < 1000; ++i) text += std::to_string(i * 7919 % 1000) + ",1\n";
  const std::string packed = Packed("a,b\n" + text);
  EXPECT_EQ(Imported("t.csv.gz", packed.substr(0, packed.size() / 2)).Failure(),
            "t.csv.gz: the compressed data end too early");
  std::string damaged = packed;
  damaged[packed.size() / 2] = static_cast<char>(damaged[packed.size() / 2] ^ 0x55);
  EXPECT_EQ(Imported("t.csv.gz", damaged).Failure(), "t.csv.gz: the compressed data are damaged");
}

TEST(Encodings, AByteOrderMarkIsNoPartOfTheText) {
  Imported imported("t.csv",
                    "\xef\xbb\xbf"
                    "a,b\n1,2\n");
  EXPECT_EQ(imported.Run(".clabel"), "a\nb\n");
}

TEST(Encodings, ANamedEncodingIsRead) {
  Imported imported("t.txt", "caf\xe9 M\xfcnchen\ncaf\xe9 M\xfcnchen\n");
  imported.options.encoding = "latin1";
  EXPECT_EQ(imported.Run(".clabel"), "café\nmünchen\n");
}

TEST(Encodings, WideTextsAreReadByTheirMark) {
  Imported imported("t.txt", "\xff\xfe" + Wide("sea wine\nsea wine\n"));
  imported.options.encoding = "UTF-16";
  EXPECT_EQ(imported.Run(".clabel"), "sea\nwine\n");
}

TEST(Encodings, ACharacterMayComeInTwoPieces) {
  // U+1F600 in UTF-16BE, which its reader hands over byte by byte.
  const std::string bytes = "\xd8\x3d\xde\x00"s;
  std::size_t taken = 0;
  Decoder decoder("UTF-16BE", "t", [&](char* block, std::size_t) -> std::size_t {
    if (taken == bytes.size()) return 0;
    *block = bytes[taken++];
    return 1;
  });
  std::string text;
  char block[16];
  while (const std::size_t count = decoder.Read(block, sizeof block)) text.append(block, count);
  EXPECT_EQ(text, "\xf0\x9f\x98\x80");
}

TEST(Encodings, BytesThatAnEncodingHasNotAreAnErrorWithALine) {
  Imported imported("t.txt", "aa\nbb\nc\xffq\n");
  imported.options.encoding = "US-ASCII";
  EXPECT_EQ(imported.Failure(), "t.txt:3: bytes that are not US-ASCII");
  Imported half("t.txt",
                "\xff\xfe"
                "a");
  half.options.encoding = "UTF-16";
  EXPECT_EQ(half.Failure(), "t.txt:1: bytes that are not UTF-16");
}

TEST(Encodings, AnUnknownNameIsWrongUsage) {
  Imported imported("t.txt", "aa\n");
  imported.options.encoding = "latin-nine-and-a-half";
  EXPECT_THROW(Import(imported.options), std::invalid_argument);
  EXPECT_THROW(RequireEncoding(""), std::invalid_argument);
}

TEST(Encodings, BytesThatAreNotUtf8AreTold) {
  Imported imported("t.txt", "aa caf\xe9\naa\ncaf\xe9 r\xe9 aa\n");
  EXPECT_EQ(SummaryOf(imported),
            "out.mat: 3 rows, 2 columns, 5 entries, sparse, from t.txt (lines of text)\n"
            "2 lines hold bytes that are not UTF-8, the first is line 1; --encoding NAME reads "
            "other encodings, latin1 for instance\n"
            "Cluster with: mardle out.mat NCLUSTERS\n");
}

TEST(Encodings, FilesOfAFolderThatAreNotUtf8AreTold) {
  Imported imported("unused", "");
  std::filesystem::create_directory(imported.folder.Path("texts"));
  imported.folder.Write("texts/1", "aa bb");
  imported.folder.Write("texts/2", "aa\nb\xe4 bb");
  imported.folder.Write("texts/3", "aa b\xe4");
  imported.options.input = imported.folder.Path("texts");
  const std::string summary = SummaryOf(imported);
  EXPECT_NE(
      summary.find("\n2 files hold bytes that are not UTF-8, the first: texts/2:2; --encoding"),
      std::string::npos)
      << summary;
}

TEST(TextWatch, SeesCharactersThatTwoBlocksCut) {
  const std::string text = "aé\n漢\xf0\x9f\x98\x80\n";
  for (std::size_t cut = 0; cut <= text.size(); ++cut) {
    TextWatch watch("t");
    watch.Look(text.substr(0, cut));
    watch.Look(text.substr(cut));
    watch.End();
    EXPECT_EQ(watch.malformed_lines(), 0) << cut;
  }
}

TEST(TextWatch, CountsLinesAndNotBytes) {
  TextWatch watch("t");
  watch.Look("good\n\xff\xff\ngood\n\xe6\xbc");
  watch.End();
  EXPECT_EQ(watch.malformed_lines(), 2);
  EXPECT_EQ(watch.first_malformed_line(), 2);
}

TEST(NoTexts, AreRefusedByWhatTheyBeginWith) {
  EXPECT_EQ(Imported("x.txt", "%PDF-1.7\n").Failure(),
            "x.txt: is a PDF document; pdftotext makes a text of it");
  EXPECT_EQ(Imported("x",
                     "\x7f"
                     "ELF\2\1\1")
                .Failure(),
            "x: is a program");
  EXPECT_EQ(Imported("x.csv", "PK\3\4\x14").Failure(),
            "x.csv: is a ZIP archive, as .xlsx, .docx and .odt are; save it as text or CSV");
  EXPECT_EQ(Imported("x.txt", "\xff\xfe" + Wide("text")).Failure(),
            "x.txt: is text in UTF-16; --encoding UTF-16 reads it");
  EXPECT_EQ(KindOfNoText("plain", false), "");
  EXPECT_EQ(KindOfNoText("\xff\xfe", true), "");
}

TEST(NoTexts, ANulByteAnywhereIsRefused) {
  const std::string advice =
      "a NUL byte, which no text has (--encoding UTF-16LE reads Windows' wide texts)";
  EXPECT_EQ(Imported("x.txt", "aa\nb\0b\n"s).Failure(), "x.txt:2: " + advice);
  EXPECT_EQ(Imported("x.csv", "a,b\n1,\0\n"s).Failure(), "x.csv:2: " + advice);
  EXPECT_EQ(Imported("x.mtx", "%%MatrixMarket matrix coordinate real general\0\n"s).Failure(),
            "x.mtx:1: " + advice);
}

TEST(NoTexts, AMatrixWithoutColumnsIsRefused) {
  EXPECT_EQ(Imported("x.svm", "1\n2\n").Failure(), "out.mat: there are no columns to write");
  EXPECT_EQ(Imported("x.txt", "the\n").Failure(),
            "out.mat: the texts have no words, or stop words alone, so there are no columns");
  EXPECT_EQ(Imported("x.txt", "red apple\ngreen pear\n").Failure(),
            "out.mat: of 4 words none occurs in at least 2 documents, so there are no columns: "
            "--min-count and --max-fraction set these limits");
  Imported limited("x.txt", "aa\naa\n");
  limited.options.limits.max_fraction = 0.5;
  EXPECT_EQ(limited.Failure(),
            "out.mat: of 1 words none occurs in at least 2 and at most 0.5 of all documents, so "
            "there are no columns: --min-count and --max-fraction set these limits");
}

}  // namespace
