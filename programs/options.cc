// SPDX-License-Identifier: MIT
#include "programs/options.h"

#include <getopt.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "lib/support/fatal.h"
#include "programs/help_text.h"

namespace mardle {
namespace {

using enum Option::Value;

constexpr std::array<Option, 32> kOptions = {{
    {.name = "crfun", .value = kInt, .number = &RunParams::crfun},
    {.name = "rowmodel", .value = kInt, .number = &RunParams::rowmodel},
    {.name = "colmodel", .value = kInt, .number = &RunParams::colmodel},
    {.name = "prune", .value = kFloat, .fraction = &RunParams::prune},
    {.name = "ntrials", .value = kInt, .number = &RunParams::ntrials},
    {.name = "niter", .value = kInt, .number = &RunParams::niter},
    {.name = "seed", .value = kInt, .number = &RunParams::seed},
    {.name = "dbglvl", .value = kInt, .number = &RunParams::dbglvl},
    {.name = "clabelfile", .value = kText, .text = &RunParams::clabelfile},
    {.name = "rlabelfile", .value = kText, .text = &RunParams::rlabelfile},
    {.name = "rclassfile", .value = kText, .text = &RunParams::rclassfile},
    {.name = "direct", .value = kNone, .flag = &RunParams::direct},
    {.name = "rb", .value = kNone, .flag = &RunParams::rb},
    {.name = "refine", .value = kNone, .flag = &RunParams::refine},
    {.name = "output", .value = kText, .text = &RunParams::outputfile},
    {.name = "nooutput", .value = kNone, .flag = &RunParams::nooutput},
    {.name = "showfeatures", .value = kNone, .flag = &RunParams::showfeatures},
    {.name = "nfeatures", .value = kInt, .number = &RunParams::nfeatures},
    {.name = "showtree",
     .value = kOptionalInt,
     .flag = &RunParams::showtree,
     .number = &RunParams::treecrfun},
    {.name = "labeltree", .value = kNone, .flag = &RunParams::labeltree},
    {.name = "writetree",
     .value = kOptionalText,
     .flag = &RunParams::writetree,
     .text = &RunParams::treefile},
    {.name = "zscores", .value = kNone, .flag = &RunParams::zscores},
    {.name = "fulltree", .value = kNone, .flag = &RunParams::fulltree},
    {.name = "sim", .value = kInt, .number = &RunParams::simfun},
    {.name = "denseinput", .value = kNone, .flag = &RunParams::denseinput},
    {.name = "plotmatrix", .value = kText, .text = &RunParams::plotmatrixfile},
    {.name = "clustercolumns", .value = kNone, .flag = &RunParams::clustercolumns},
    {.name = "plotformat", .value = kFormat},
    {.name = "plotclusters", .value = kText, .text = &RunParams::plotclustersfile},
    {.name = "zeroblack", .value = kNone, .flag = &RunParams::zeroblack},
    {.name = "noreorder", .value = kNone, .flag = &RunParams::noreorder},
    {.name = "help", .value = kHelp},
}};

int ToInt(const char* text) { return static_cast<int>(std::strtol(text, nullptr, 10)); }
float ToFloat(const char* text) { return static_cast<float>(std::strtod(text, nullptr)); }

int ArgumentRule(Option::Value value) {
  switch (value) {
    case kNone:
    case kHelp:
      return no_argument;
    case kOptionalInt:
    case kOptionalText:
      return optional_argument;
    default:
      return required_argument;
  }
}

// The parser's own table: one entry per option and a row of zeros. The parser returns 0 for every
// entry and tells its position, so no code can be mistaken for "unknown option", which is '?'.
std::array<option, kOptions.size() + 1> ParserTable() {
  std::array<option, kOptions.size() + 1> table{};
  for (std::size_t i = 0; i < kOptions.size(); ++i) {
    table[i] = {kOptions[i].name, ArgumentRule(kOptions[i].value), nullptr, 0};
  }
  return table;
}

// Formats longer than the field are cut.
void CopyFormat(std::array<char, 256>& field, const char* text) {
  field = {};
  std::strncpy(field.data(), text, field.size() - 1);
}

[[noreturn]] void ShowHelp() {
  PrintLines(HelpLines());
  molva::EndRun();
}

// Applies one option; `value` is null when none was given.
void Apply(const Option& option, const char* value, RunParams& params) {
  switch (option.value) {
    case kNone:
      params.*option.flag = true;
      return;
    case kInt:
      params.*option.number = ToInt(value);
      return;
    case kFloat:
      params.*option.fraction = ToFloat(value);
      return;
    case kText:
      params.*option.text = molva::mystrdup(value);
      return;
    case kOptionalInt:
      params.*option.flag = true;
      if (value != nullptr) params.*option.number = ToInt(value);
      return;
    case kOptionalText:
      params.*option.flag = true;
      if (value != nullptr) params.*option.text = molva::mystrdup(value);
      return;
    case kFormat:
      return CopyFormat(params.plotformat, value);
    case kHelp:
      ShowHelp();
  }
}

// Failing to understand the command line is no failure to the caller: status 0, as for every error.
[[noreturn]] void RefuseOptions(const char* program) {
  std::printf("Illegal command-line option(s)\nUse %s -help for a summary of the options.\n",
              program);
  molva::EndRun();
}

[[noreturn]] void RefuseArguments() {
  std::printf("Missing parameters.");
  PrintLines(UsageLines());
  molva::EndRun();
}

// Hands each option and its value, null when none was given, to `take`, up to the first for which
// that returns false, or one that is illegal; returns whether all were legal. Options and
// positional arguments may be mixed; the parser moves the latter to the end.
template <typename Take>
bool WalkOptions(int argc, char** argv, Take take) {
  // This variable would forbid mixing; a run depends on its command line only.
  unsetenv("POSIXLY_CORRECT");
  optind = 0;
  static const auto kParserTable = ParserTable();
  int position = 0;
  for (;;) {
    const int code = getopt_long_only(argc, argv, "", kParserTable.data(), &position);
    if (code == -1) return true;
    if (code != 0) return false;
    if (!take(kOptions[static_cast<std::size_t>(position)], optarg)) return true;
  }
}

void ReadOptions(RunParams& params, int argc, char** argv) {
  opterr = 1;
  const bool legal = WalkOptions(argc, argv, [&params](const Option& option, const char* value) {
    Apply(option, value, params);
    return true;
  });
  if (!legal) RefuseOptions(argv[0]);
}

// A run has the name of a matrix and a number of clusters.
bool HasBothArguments(int argc) { return argc - optind == 2; }

}  // namespace

std::span<const Option> OptionTable() { return kOptions; }

CommandLineKind KindOfCommandLine(int argc, char** argv) {
  opterr = 0;
  bool help = false;
  const bool legal = WalkOptions(argc, argv, [&help](const Option& option, const char*) {
    help = option.value == kHelp;
    return !help;
  });
  if (help) return CommandLineKind::kHelp;
  return legal && HasBothArguments(argc) ? CommandLineKind::kRun : CommandLineKind::kRefused;
}

void ParseCommandLine(RunParams& params, int argc, char** argv) {
  params = RunParams();
  ReadOptions(params, argc, argv);
  if (!HasBothArguments(argc)) RefuseArguments();
  params.filename = molva::mystrdup(argv[optind]);
  params.nclusters = ToInt(argv[optind + 1]);
  DeriveSettings(params);
}

}  // namespace mardle
