// SPDX-License-Identifier: MIT
//
// The sections of the page, in their order, and what they share.
#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "tools/export/clustering.h"
#include "tools/export/page/page_numbers.h"

namespace mardle::exporting {

// A number with so many decimals; "n/a" when it is none.
std::string Decimals(double value, int decimals);
// A number in as few digits as tell it: "0.05".
std::string Shortest(double value);
// Four digits, with commas where they are whole: 1,500, 0.02345.
std::string FourDigits(double value);
// A count with commas: 46,873.
std::string Grouped(std::int64_t count);
// A share of 1 as the percentage that SVG and CSS take: "37.50%".
std::string Percent(double share);
// A share of 1 as people write it, "37.5 %", with a blank at which no line ends.
std::string PercentText(double share);
// "1 document", "7,674 documents".
std::string Counted(std::int64_t count, const std::string& one, const std::string& many);
std::string CountedRows(const PageRun& run, std::int64_t count);
// With a capital at its beginning.
std::string Capital(std::string word);

// The level of a column: a percentage, or for a dense matrix three digits of the average.
std::string LevelText(const PageNumbers& numbers, double level);

// The words by which a cluster is called, as HTML: "oil, crude, prices".
std::string NameText(const PageRun& run, const PageNumbers& numbers, int k);
// The same behind its number: "16: oil, crude, prices".
std::string TitleText(const PageRun& run, const PageNumbers& numbers, int k);
constexpr std::size_t kNameWords = 3;

// The first words that describe a node of a tree, as HTML.
std::string NodeWords(const PageRun& run, const MeasuredTree& tree, int x);
// As HTML, what a text begins with: at most so many bytes of it, cut between two characters.
std::string Beginning(std::string_view text, std::size_t bytes);

// A button with which the page's script hands out one of its tables.
void WriteCsvButton(const char* table, const std::string& text, std::ostream& out);

void WriteOverview(const PageRun& run, const PageNumbers& numbers, std::ostream& out);
void WriteClusterCards(const PageRun& run, const PageNumbers& numbers, std::ostream& out);
void WriteHeatMap(const PageRun& run, const PageNumbers& numbers, std::ostream& out);
// Two points make no map.
bool HasMap(const PageNumbers& numbers);
void WriteClusterMap(const PageRun& run, const PageNumbers& numbers, std::ostream& out);
void WriteTreeSection(const PageRun& run, const PageNumbers& numbers, std::ostream& out);
// Nothing where no complete tree was given.
void WriteRowTrees(const PageRun& run, const PageNumbers& numbers, std::ostream& out);
void WriteQuality(const PageRun& run, const PageNumbers& numbers, std::ostream& out);
// The part of it that shows similarities as marks on an axis.
void WriteSimilarityPicture(const PageRun& run, const PageNumbers& numbers, std::ostream& out);
void WriteRowList(const PageRun& run, const PageNumbers& numbers, const Clustering& clustering,
                  std::ostream& out);
// With which options the run was made.
void WriteRunNotes(const PageRun& run, std::ostream& out);

}  // namespace mardle::exporting
