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
#include "tools/export/written_numbers.h"

namespace mardle::exporting {

// "1 document", "7,674 documents".
std::string CountedRows(const PageRun& run, std::int64_t count);
// How the sampled form of a run came to its clusters: "62 documents clustered directly, all placed
// in 9 passes".
std::string SampleText(const PageRun& run, const RunRecord::Sample& sample);
// The level of a column: a percentage, or for a dense matrix three digits of the average.
std::string LevelText(const PageNumbers& numbers, double level);

// Whether the average of a column of a dense matrix is lower in a cluster than in the others.
bool IsLower(const PageNumbers& numbers, int k, int column);
// A column among the words of a cluster: "oil", or "low weight" where it is lower.
std::string WordText(const PageRun& run, const PageNumbers& numbers, int k, int column);
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
