// SPDX-License-Identifier: MIT
//
// From texts to matrices: words, stop words, documents, counts.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <vector>

#include "tests/tools/import/imported.h"
#include "tools/import/html_entities.h"
#include "tools/import/stemmer.h"
#include "tools/import/stop_word_lists.h"
#include "tools/import/stop_words.h"
#include "tools/import/text_tokens.h"
#include "tools/text/fields.h"

namespace {

using mardle::tools::WordRules;
using testing_support::Imported;
using testing_support::ReadText;
using testing_support::TempFolder;
using Texts = std::vector<std::string>;

Texts WordsOf(const std::string& text, const WordRules& rules = {}) {
  mardle::tools::TextTokens tokens(rules);
  tokens.Start(text, {"text", 0});
  Texts words;
  std::string word;
  while (tokens.Next(word)) words.push_back(word);
  return words;
}

TEST(TextTokens, AreTwoLettersOrMoreInLowerCase) {
  EXPECT_EQ(WordsOf("The cat, a CAT2cat_x don't"), (Texts{"the", "cat", "cat", "cat", "don"}));
}

TEST(TextTokens, LettersOfAllScriptsAreLetters) {
  EXPECT_EQ(WordsOf("ÉTÉ Straße ДОМ ΟΔΟΣ"), (Texts{"été", "straße", "дом", "οδος"}));
}

TEST(TextTokens, MarksBelongToTheirLetters) {
  EXPECT_EQ(WordsOf("e\xcc\x81t x\xcc\x81"), (Texts{"e\xcc\x81t", "x\xcc\x81"}));
}

TEST(TextTokens, BytesThatAreNoTextSeparateWords) {
  EXPECT_EQ(WordsOf("ab\xff\xfe"
                    "cd \xc3"),
            (Texts{"ab", "cd"}));
}

TEST(TextTokens, AnotherPatternCutsOtherWords) {
  EXPECT_EQ(WordsOf("A-1 b", {.pattern = "[a-z0-9-]*"}), (Texts{"a-1", "b"}));
  EXPECT_THROW(WordsOf("", {.pattern = "(["}), std::invalid_argument);
}

// Each of the 60 letters doubles the ways to cut the text, and none of them ends in an exclamation
// mark.
TEST(TextTokens, APatternThatTakesTooLongIsAnError) {
  try {
    WordsOf(std::string(60, 'a'), {.pattern = "(a+)+!"});
    FAIL() << "no failure";
  } catch (const mardle::tools::FileError& error) {
    EXPECT_STREQ(error.what(),
                 "text: the token pattern takes too long; nested repetitions such as (a+)+ do");
  }
}

// A million words, and a word of ten million letters: the steps allowed grow with the texts.
TEST(TextTokens, LongTextsMayTakeTheirTime) {
  std::string text;
  for (int i = 0; i < 1000000; ++i) text += "word ";
  EXPECT_EQ(WordsOf(text).size(), 1000000U);
  EXPECT_EQ(WordsOf(std::string(10000000, 'w')).size(), 1U);
}

TEST(TextTokens, DigitsMayStandInWords) {
  EXPECT_EQ(WordsOf("mp3 2024 x 7", {.digits = true}), (Texts{"mp3", "2024"}));
  EXPECT_EQ(WordsOf("mp3 2024 x 7"), (Texts{"mp"}));
}

// "Files are compressed" and "the Linux kernel": particles of one kana are no words.
TEST(TextTokens, UnspacedScriptsAreCutByTheirDictionaries) {
  EXPECT_EQ(WordsOf("ファイルを圧縮"), (Texts{"ファイル", "圧縮"}));
  EXPECT_EQ(WordsOf("Linuxのカーネル"), (Texts{"linux", "カーネル"}));
  EXPECT_EQ(WordsOf("我们喜欢音乐"), (Texts{"我们", "喜欢", "音乐"}));
  EXPECT_EQ(WordsOf("ภาษาไทย"), (Texts{"ภาษา", "ไทย"}));
}

TEST(TextTokens, ASingleIdeographIsAWord) { EXPECT_EQ(WordsOf("山、水。あ"), (Texts{"山", "水"})); }

TEST(TextTokens, UnderAPatternOfOnesOwnNothingIsCut) {
  EXPECT_EQ(WordsOf("ファイルを圧縮", {.pattern = "\\p{L}+"}), (Texts{"ファイルを圧縮"}));
}

TEST(TextTokens, KnowWhetherTheyFollowEachOther) {
  mardle::tools::TextTokens tokens({});
  tokens.Start("aa bb\ncc, dd\n\nee 1 ff", {"text", 0});
  std::vector<bool> follow;
  std::string word;
  while (tokens.Next(word)) follow.push_back(tokens.follows());
  EXPECT_EQ(follow, (std::vector<bool>{false, true, true, false, false, false}));
  tokens.Start("gg", {"text", 0});
  EXPECT_TRUE(tokens.Next(word));
  EXPECT_FALSE(tokens.follows());
}

TEST(Stemmer, TakesEndingsOff) {
  const auto stem = [](const char* language, std::string word) {
    mardle::tools::Stemmer(language).Stem(word);
    return word;
  };
  EXPECT_EQ(stem("english", "connections"), "connect");
  EXPECT_EQ(stem("german", "häuser"), "haus");
  EXPECT_EQ(stem("de", "katzen"), "katz");
  const std::string no_word(2000, 's');
  EXPECT_EQ(stem("english", no_word), no_word);
}

TEST(Stemmer, ALanguageWithoutOneIsRefusedWithThoseThatHaveOne) {
  try {
    mardle::tools::Stemmer("germn");
    FAIL() << "no failure";
  } catch (const std::invalid_argument& error) {
    const std::string message = error.what();
    EXPECT_TRUE(message.starts_with(
        "there is no stemmer for 'germn'; did you mean 'german'? There are arabic, "))
        << message;
  }
}

TEST(HtmlEntities, BecomeCharacters) {
  using mardle::tools::WithoutEntities;
  EXPECT_EQ(WithoutEntities("caf&eacute; &amp; th&#233; &#xE9;&#XE9; &hellip; &Aacute;&zwnj;"),
            "café & thé éé … Á\xe2\x80\x8c");
  EXPECT_EQ(WithoutEntities("&apos;&thetasym;&AElig;"), "'ϑÆ");
}

TEST(HtmlEntities, WhatIsNoneStays) {
  using mardle::tools::WithoutEntities;
  for (const char* text :
       {"AT&T", "&", "&;", "&nosuch;", "a & b; c", "&#;", "&#0;", "&#xd800;", "&#1114112;", "&#x;",
        "&# 65;", "&#-1;", "&EACUTE;", "&amp", "&averylongnamethatisnone;"}) {
    EXPECT_EQ(WithoutEntities(text), text);
  }
}

TEST(StopWords, OfEachLanguageAreWordsInLowerCaseGivenOnce) {
  for (const auto& list : mardle::tools::StopWordLists()) {
    const auto words = mardle::tools::StopWordsNamed(std::string(list.language));
    EXPECT_EQ(words, mardle::tools::StopWordsNamed(std::string(list.code)));
    EXPECT_GE(words.size(), 100U) << list.language;
    const auto fields = mardle::tools::FieldsOf(list.words);
    EXPECT_EQ(fields.size(), words.size()) << list.language;
    for (const auto field : fields) EXPECT_TRUE(words.contains(std::string(field))) << field;
  }
}

TEST(StopWords, AMistypedLanguageIsAnsweredWithThoseThatThereAre) {
  try {
    mardle::tools::StopWordsNamed("germn");
    FAIL() << "no failure";
  } catch (const mardle::tools::FileError& error) {
    EXPECT_STREQ(
        error.what(),
        "germn: there is no such file and no such list of stop words; did you mean "
        "'german'? The lists are chinese, danish, dutch, english, french, german, italian, "
        "japanese, norwegian, portuguese, russian, spanish, swedish, none");
  }
}

TEST(StopWords, EnglishHasTheCommonWordsOnce) {
  const auto words = mardle::tools::StopWordsNamed("english");
  for (const char* word : {"the", "and", "of", "it", "don", "without"}) {
    EXPECT_TRUE(words.contains(word)) << word;
  }
  EXPECT_FALSE(words.contains("water"));
  EXPECT_TRUE(mardle::tools::StopWordsNamed("none").empty());
}

TEST(StopWords, AFileHasWordsInAnyCase) {
  const TempFolder folder;
  const auto words = mardle::tools::StopWordsNamed(folder.Write("words", "Und der\nÜBER\n"));
  EXPECT_EQ(words, (mardle::tools::StopWords{"und", "der", "über"}));
  EXPECT_THROW(mardle::tools::StopWordsNamed("/nosuch"), mardle::tools::FileError);
}

TEST(TextMatrix, CountsTheWordsOfLines) {
  Imported imported("t.txt", "Red apple, red wine\nWine and the sea\n\nred sea\n");
  EXPECT_EQ(imported.Run(), "4 3 6\n1 2 3 1\n2 1 3 1\n\n1 1 2 1\n");
  EXPECT_EQ(imported.Read(".clabel"), "red\nsea\nwine\n");
  EXPECT_EQ(imported.Read(".rlabel"), "Red apple, red wine\nWine and the sea\n\nred sea\n");
}

TEST(TextMatrix, WordsOfTooFewOrTooManyDocumentsAreNoColumns) {
  Imported imported("t.txt", "aa bb cc\naa bb\naa bb dd\naa\n");
  imported.options.limits = {.min_count = 1, .max_fraction = 0.75};
  EXPECT_EQ(imported.Run(".clabel"), "bb\ncc\ndd\n");
}

TEST(TextMatrix, EmptyDocumentsAreLeftOutOnRequest) {
  Imported imported("t.txt", "aa bb\n\naa bb\n");
  imported.options.output.drop_empty = true;
  EXPECT_EQ(imported.Run(), "2 2 4\n1 1 2 1\n1 1 2 1\n");
}

TEST(TextMatrix, ManyWordsAndCountsAreKept) {
  // More than 128 words and a word more than 128 times: counts of more than one byte.
  std::string text;
  for (char a = 'a'; a <= 'z'; ++a) {
    for (char b = 'a'; b <= 'z'; ++b) (text += std::string{'q', a, b}) += ' ';
  }
  for (int i = 0; i < 299; ++i) text += "qzz ";
  Imported imported("t.txt", text + "\n" + text + "\n");
  const std::string matrix = imported.Run();
  EXPECT_EQ(matrix.substr(0, matrix.find('\n')), "2 676 1352");
  EXPECT_TRUE(matrix.ends_with(" 675 1 676 300\n"));
}

TEST(TextMatrix, FieldsBetweenTabsAreLabelAndClass) {
  Imported imported("t.txt", "n1\taa bb\tred\nn2\taa\tblue\tbb\n");
  imported.options.table.label_column = "1";
  imported.options.table.class_column = "3";
  EXPECT_EQ(imported.Run(), "2 2 4\n1 1 2 1\n1 1 2 1\n");
  EXPECT_EQ(imported.Read(".rlabel"), "n1\nn2\n");
  EXPECT_EQ(imported.Read(".rclass"), "red\nblue\n");
}

TEST(TextMatrix, ALineWithoutItsColumnIsNamed) {
  Imported imported("t.txt", "a\tb\nc\n");
  imported.options.table.class_column = "2";
  EXPECT_EQ(imported.Failure(), "t.txt:2: the line has no column 2 between tabs");
}

TEST(TextMatrix, ColumnsOfLinesAreNumbers) {
  Imported imported("t.txt", "a\tb\n");
  imported.options.table.class_column = "kind";
  EXPECT_EQ(imported.Failure(), "columns of lines are numbers, counted from 1, not 'kind'");
}

TEST(TextMatrix, StopWordsAreReplacedOrAddedTo) {
  const std::string text = "the und sea red\nthe und sea red\n";
  const auto columns_with = [&text](const Texts& instead, const Texts& more) {
    Imported imported("t.txt", text);
    if (!instead.empty()) imported.options.words.stop_words = instead;
    imported.options.words.more_stop_words = more;
    return imported.Run(".clabel");
  };
  EXPECT_EQ(columns_with({}, {}), "red\nsea\nund\n");
  EXPECT_EQ(columns_with({"german"}, {}), "red\nsea\nthe\n");
  EXPECT_EQ(columns_with({"german", "english"}, {}), "red\nsea\n");
  EXPECT_EQ(columns_with({}, {"german"}), "red\nsea\n");
  EXPECT_EQ(columns_with({"none"}, {}), "red\nsea\nthe\nund\n");
}

// What is left of "doings" is a stop word. Of two forms as common as each other the first is taken.
TEST(TextMatrix, WordsWithOneStemAreOneColumnCalledByTheCommonest) {
  Imported imported("t.txt", "water sails\nwaters sailing\ndoings, waters\n");
  imported.options.words.stem_language = "english";
  imported.options.words.pairs = true;
  imported.options.limits.min_count = 1;
  EXPECT_EQ(imported.Run(), "3 4 8\n2 1 3 1 4 1\n2 1 3 1 4 1\n1 1 3 1\n");
  EXPECT_EQ(imported.Read(".clabel"), "doings\nsailing\nwaters\nwater sails\n");
}

TEST(TextMatrix, PairsOfNeighboursAreColumnsToo) {
  Imported imported("t.txt", "red sea, red wine and sea\nred sea\n");
  imported.options.words.pairs = true;
  imported.options.limits.min_count = 1;
  EXPECT_EQ(imported.Run(), "2 5 8\n1 2 2 1 3 1 4 2 5 1\n1 1 2 1 4 1\n");
  EXPECT_EQ(imported.Read(".clabel"), "red\nred sea\nred wine\nsea\nwine\n");
}

TEST(TextMatrix, ATextIsCalledByItsFirstCharacters) {
  std::string text;
  for (int i = 0; i < 30; ++i) text += "été  ";
  Imported imported("t.txt", text + "\n  aa\tété &amp; bb \n");
  imported.options.limits.min_count = 1;
  std::string beginning;
  for (int i = 0; i < 20; ++i) beginning += "été ";
  // Twenty times three letters and a blank are 80; the last blank goes.
  EXPECT_EQ(imported.Run(".rlabel"), beginning.substr(0, beginning.size() - 1) + "\naa été & bb\n");
}

TEST(TextMatrix, SeveralColumnsAreOneTextAndNoPairCrossesThem) {
  Imported imported("t.csv", "a,b\nred sea,wine\nred sea,wine\n");
  imported.options.table.text_columns = {"b", "a"};
  imported.options.words.pairs = true;
  EXPECT_EQ(imported.Run(".clabel"), "red\nred sea\nsea\nwine\n");
  EXPECT_EQ(imported.Read(".rlabel"), "wine red sea\nwine red sea\n");
}

TEST(TextMatrix, CellsOfATableAreTexts) {
  Imported imported("t.csv", "kind,text,stars\nred,\"Sea, sea\nwine\",5\nblue,wine sea,1\n");
  imported.options.table.text_columns = {"text"};
  imported.options.table.class_column = "kind";
  EXPECT_EQ(imported.Run(), "2 2 4\n1 2 2 1\n1 1 2 1\n");
  EXPECT_EQ(imported.Read(".rclass"), "red\nblue\n");
}

TEST(TextMatrix, ADocumentWithTooManyWordsIsNamed) {
  std::string text = "aa\n";
  for (int i = 0; i < 30000; ++i) {
    for (int n = i + 1000; n > 0; n /= 26) text += static_cast<char>('a' + n % 26);
    text += ' ';
  }
  Imported imported("t.txt", text + "\n");
  imported.options.limits.min_count = 1;
  EXPECT_EQ(imported.Failure().substr(0, 35), "t.txt:2: the row would be a line of");
}

// A folder of texts beside the output.
class TextFolder : public ::testing::Test {
 protected:
  TextFolder() : imported_("unused", "") {
    imported_.options.input = imported_.folder.Path("texts");
  }
  void Write(const std::string& name, const std::string& text) {
    const std::filesystem::path path = imported_.folder.Path("texts/" + name);
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << text;
  }
  Imported imported_;
};

TEST_F(TextFolder, FilesAreRowsInTheOrderOfTheirPaths) {
  Write("b/2.txt", "aa bb");
  Write("a/1.txt", "bb");
  Write("b.txt", "aa\nbb bb");
  EXPECT_EQ(imported_.Run(), "3 2 5\n2 1\n1 1 2 2\n1 1 2 1\n");
  EXPECT_EQ(imported_.Read(".rlabel"), "a/1.txt\nb.txt\nb/2.txt\n");
}

TEST_F(TextFolder, TheFirstFolderIsTheClassOnRequest) {
  Write("b/deep/2.txt", "aa");
  Write("1.txt", "aa");
  imported_.options.folder.folder_classes = true;
  EXPECT_EQ(imported_.Run(".rclass"), ".\nb\n");
}

TEST_F(TextFolder, OnlyVisibleTextsThatFitAreTaken) {
  Write("1.txt", "aa");
  Write(".hidden.txt", "aa");
  Write(".git/x.txt", "aa");
  Write("2.md", "aa");
  Write("3.txt", std::string("a\0a", 3));
  imported_.options.folder.file_pattern = "*.txt";
  imported_.options.limits.min_count = 1;
  const auto result = Import(imported_.options);
  EXPECT_EQ(imported_.Read(".rlabel"), "1.txt\n");
  EXPECT_EQ(imported_.WithoutFolder(Summary(imported_.options, result)),
            "out.mat: 1 row, 1 column, 1 entry, sparse, from texts (folder of texts)\n"
            "1 file is no text and left out: texts/3.txt:1: a NUL byte, which no text has "
            "(--encoding UTF-16LE reads Windows' wide texts)\n"
            "Cluster with: mardle -colmodel=1 out.mat NCLUSTERS\n");
}

// "notes" has no record beside it, and a text may be called like the record's folder.
TEST_F(TextFolder, ResultsOfEarlierRunsAreNoTexts) {
  for (const char* name : {"letters-3/letters.run.json", "letters-3/letters.mat",
                           "letters-3/letters.mat.rlabel", "letters-3/letters.clusters.tree",
                           "letters-3/letters.html", "letters-3/letters.txt", "notes.html"}) {
    Write(name, "aa");
  }
  const auto result = Import(imported_.options);
  EXPECT_EQ(imported_.Read(".rlabel"), "letters-3/letters.txt\nnotes.html\n");
  EXPECT_EQ(result.notes, (Texts{"5 files are results of an earlier run and left out, the first: "
                                 "letters-3/letters.mat"}));
}

TEST_F(TextFolder, AFolderWithoutTextsIsRefused) {
  Write("2.md", "aa");
  imported_.options.folder.file_pattern = "*.txt";
  EXPECT_EQ(imported_.Failure(), "out.mat: there are no rows to write");
}

}  // namespace
