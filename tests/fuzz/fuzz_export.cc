// SPDX-License-Identifier: MIT
//
// Files for mardle-export: what it writes is well formed, and what it refuses leaves the output
// untouched and is told in one message.
//
// The first two bytes: the format and the options; then the matrix, the clustering, the tree, the
// labels of rows and columns and the classes, each up to a byte 0xfe.
#include <algorithm>
#include <nlohmann/json.hpp>

#include "tests/fuzz/harness.h"
#include "tools/export/export_run.h"

namespace fuzzing {
namespace {

constexpr char kUntouched[] = "untouched";

// What the command line is made of.
struct Files {
  explicit Files(Input& input)
      : matrix(input.Until(0xfe)),
        clustering(input.Until(0xfe)),
        tree(input.Until(0xfe)),
        rlabels(input.Until(0xfe)),
        clabels(input.Until(0xfe)),
        rclasses(input.Until(0xfe)) {}
  MemoryFile matrix, clustering, tree, rlabels, clabels, rclasses;
  MemoryFile output{kUntouched};
};

enum Kind { kTsv, kJson, kNewick, kLinkage, kDot, kHtml, kFeatures, kHeatMap, kKinds };
constexpr const char* kNames[] = {"tsv", "json", "newick",   "linkage",
                                  "dot", "html", "features", "heatmap"};

void AddRowFiles(const Files& files, int choice, std::vector<std::string>& words) {
  words.insert(words.end(), {"--matrix", files.matrix.path()});
  if ((choice & 1) != 0) words.insert(words.end(), {"--rlabelfile", files.rlabels.path()});
}

void AddClustering(const Files& files, int choice, std::vector<std::string>& words) {
  AddRowFiles(files, choice, words);
  words.insert(words.end(), {"--clustering", files.clustering.path()});
  if ((choice & 2) != 0) words.insert(words.end(), {"--rclassfile", files.rclasses.path()});
}

void AddTree(const Files& files, int choice, std::vector<std::string>& words) {
  words.insert(words.end(), {"--tree", files.tree.path()});
  if ((choice & 4) != 0) AddRowFiles(files, choice, words);
  if ((choice & 12) == 8) words.insert(words.end(), {"--heights", "similarity"});
}

// The row model is told, which leaves nothing to warn of.
void AddModels(const Files& files, int choice, std::vector<std::string>& words) {
  words.insert(words.end(), {"--rowmodel", "1"});
  if ((choice & 8) != 0) words.insert(words.end(), {"--clabelfile", files.clabels.path()});
  if ((choice & 16) != 0) words.emplace_back("--denseinput");
  if ((choice & 32) != 0) words.insert(words.end(), {"--sim", "2"});
}

void AddFeatures(const Files& files, int choice, std::vector<std::string>& words) {
  words.insert(words.end(),
               {"--matrix", files.matrix.path(), "--clustering", files.clustering.path()});
  if ((choice & 2) != 0) words.insert(words.end(), {"--as", "json"});
  AddModels(files, choice, words);
}

void AddPage(const Files& files, int choice, std::vector<std::string>& words) {
  AddClustering(files, choice, words);
  AddModels(files, choice, words);
  if ((choice & 4) != 0) words.insert(words.end(), {"--tree", files.tree.path()});
  if ((choice & 64) != 0) words.insert(words.end(), {"--treecrfun", "6", "--noreorder"});
}

std::vector<std::string> CommandLine(const Files& files, Kind kind, int choice) {
  std::vector<std::string> words{"mardle-export", kNames[kind], "--output", files.output.path()};
  if (kind == kTsv || kind == kJson) AddClustering(files, choice, words);
  if (kind == kNewick || kind == kLinkage || kind == kDot) AddTree(files, choice, words);
  if (kind == kHtml) AddPage(files, choice, words);
  if (kind == kFeatures) AddFeatures(files, choice, words);
  if (kind == kHeatMap) {
    AddClustering(files, choice, words);
    AddModels(files, choice, words);
  }
  return words;
}

std::ptrdiff_t Count(const std::string& text, char c) {
  return std::count(text.begin(), text.end(), c);
}

// Outside quotes, as many brackets close as open, and the whole ends as trees do.
void RequireNewick(const std::string& text) {
  std::ptrdiff_t depth = 0;
  bool quoted = false;
  for (const char c : text) {
    if (c == '\'') quoted = !quoted;
    if (quoted) continue;
    depth += (c == '(') - (c == ')');
    Require(depth >= 0, "brackets that close after they open");
  }
  Require(!quoted && depth == 0 && text.ends_with(";\n"), "a whole tree");
}

void RequirePage(const std::string& text) {
  Require(text.starts_with("<!DOCTYPE html>") && text.ends_with("</html>\n"), "a whole page");
  const auto scripts = [&text](const char* tag) {
    std::ptrdiff_t count = 0;
    for (std::size_t at = text.find(tag); at != std::string::npos; at = text.find(tag, at + 1)) {
      ++count;
    }
    return count;
  };
  Require(scripts("<script") == 1 && scripts("</script") == 1, "no script but the page's own");
}

void RequirePicture(const std::string& text) {
  Require(text.starts_with("<svg ") && text.ends_with("</svg>\n"), "a whole picture");
  Require(Count(text, '<') == Count(text, '>'), "elements that end");
}

void RequireWellFormed(Kind kind, bool is_json, const std::string& text) {
  switch (kind) {
    case kTsv:
      Require(Count(text, '\n') >= 2, "a heading and a line for each row");
      break;
    case kJson:
      Require(nlohmann::json::accept(text), "JSON");
      break;
    case kNewick:
      RequireNewick(text);
      break;
    case kLinkage:
      Require(Count(text, '\t') == 3 * Count(text, '\n'), "four fields a line");
      break;
    case kDot:
      Require(text.starts_with("digraph tree {\n") && text.ends_with("}\n"), "a whole graph");
      break;
    case kFeatures:
      Require(is_json ? nlohmann::json::accept(text) : text.starts_with("cluster\t"), "a table");
      break;
    case kHeatMap:
      RequirePicture(text);
      break;
    default:
      RequirePage(text);
  }
}

}  // namespace

void FuzzExport(Bytes bytes) {
  Input input(bytes);
  const auto kind = static_cast<Kind>(input.Below(kKinds));
  const int choice = input.Byte();
  const Files files(input);
  const std::vector<std::string> words = CommandLine(files, kind, choice);
  std::vector<const char*> argv;
  for (const std::string& word : words) argv.push_back(word.c_str());

  Sandbox sandbox({.fill = 0xff});
  const int status = mardle::exporting::Export(static_cast<int>(argv.size()), argv.data());
  const std::string told = sandbox.ErrorOutput();
  if (status == 0) {
    Require(told.empty(), "silence after success: " + told);
    RequireWellFormed(kind, (choice & 2) != 0, files.output.Text());
    return;
  }
  Require(status == 1, "status 0 or 1");
  Require(told.starts_with("mardle-export: ") && told.size() > 16, "a reason: " + told);
  Require(files.output.Text() == kUntouched, "an output as it was");
}

}  // namespace fuzzing
