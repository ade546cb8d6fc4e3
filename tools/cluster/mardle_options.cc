// SPDX-License-Identifier: MIT
#include "tools/cluster/mardle_options.h"

#include <algorithm>
#include <array>
#include <climits>
#include <filesystem>
#include <stdexcept>
#include <string_view>

#include "tools/text/fields.h"
#include "tools/text/input_lines.h"
#include "tools/text/numbers.h"
#include "tools/text/suggestion.h"

namespace mardle::tools {
namespace {

enum class Kind { kFlag, kWhole, kFraction, kFile, kIdle };

struct Rule {
  std::string_view name;
  Kind kind;
  long long least = 0;
  long long most = 0;
};

constexpr std::array<Rule, 32> kRules = {{{"crfun", Kind::kWhole, 1, 9},
                                          {"rowmodel", Kind::kWhole, 1, 4},
                                          {"colmodel", Kind::kWhole, 1, 2},
                                          {"prune", Kind::kFraction},
                                          {"ntrials", Kind::kWhole, 1, INT_MAX},
                                          {"niter", Kind::kWhole, 0, INT_MAX},
                                          {"seed", Kind::kWhole, INT_MIN, INT_MAX},
                                          {"sim", Kind::kWhole, 1, 2},
                                          {"clabelfile", Kind::kFile},
                                          {"rlabelfile", Kind::kFile},
                                          {"rclassfile", Kind::kFile},
                                          {"direct", Kind::kFlag},
                                          {"rb", Kind::kFlag},
                                          {"refine", Kind::kFlag},
                                          {"zscores", Kind::kFlag},
                                          {"fulltree", Kind::kFlag},
                                          {"denseinput", Kind::kFlag},
                                          {"dbglvl", Kind::kIdle},
                                          {"output", Kind::kIdle},
                                          {"nooutput", Kind::kIdle},
                                          {"showfeatures", Kind::kIdle},
                                          {"nfeatures", Kind::kIdle},
                                          {"showtree", Kind::kIdle},
                                          {"labeltree", Kind::kIdle},
                                          {"writetree", Kind::kIdle},
                                          {"plotmatrix", Kind::kIdle},
                                          {"clustercolumns", Kind::kIdle},
                                          {"plotformat", Kind::kIdle},
                                          {"plotclusters", Kind::kIdle},
                                          {"zeroblack", Kind::kIdle},
                                          {"noreorder", Kind::kIdle},
                                          {"help", Kind::kIdle}}};

[[noreturn]] void Refuse(const std::string& message) { throw std::invalid_argument(message); }

const Rule& RuleFor(const std::string& name) {
  const auto rule = std::find_if(kRules.begin(), kRules.end(),
                                 [&name](const Rule& each) { return each.name == name; });
  if (rule != kRules.end()) return *rule;
  std::vector<std::string> names;
  for (const Rule& each : kRules) names.push_back("-" + std::string(each.name));
  Refuse("-" + name + " is no option of mardle" + DidYouMean("-" + name, names));
}

void CheckWhole(const Rule& rule, const std::string& option, const std::string& value) {
  const auto number = ParseInteger(value);
  if (number && *number >= rule.least && *number <= rule.most) return;
  std::string range = rule.most == INT_MAX ? "from " + std::to_string(rule.least) + " on"
                                           : "from " + std::to_string(rule.least) + " to " +
                                                 std::to_string(rule.most);
  if (rule.least == INT_MIN) range = "of at most nine digits";
  Refuse(option + ": a whole number " + range + " is wanted");
}

void CheckFraction(const std::string& option, const std::string& value) {
  constexpr double kPercent = 100;
  const double number = ParseNumber(value).value_or(-1);
  if (number > 0 && number <= 1) return;
  std::string message = option + ": a fraction above 0 and up to 1 is wanted";
  if (number > 1 && number <= kPercent) {
    std::string fraction;
    AppendNumber(fraction, number / kPercent);
    message += "; did you mean " + option.substr(0, option.find('=') + 1) + fraction + "?";
  }
  Refuse(message);
}

void Check(std::string& option) {
  const std::size_t equals = option.find('=');
  const std::string name = option.substr(1, equals == std::string::npos ? equals : equals - 1);
  const Rule& rule = RuleFor(name);
  if (rule.kind == Kind::kIdle) {
    Refuse("-" + name +
           " has no use here, where files have fixed names and the page shows what "
           "there is to see; mardle-run takes it");
  }
  const bool has_value = equals != std::string::npos;
  if (rule.kind == Kind::kFlag) {
    if (has_value) Refuse(option + ": -" + name + " has no value");
    return;
  }
  if (!has_value) Refuse(option + ": the value stands behind =, as in -" + name + "=...");
  const std::string value = option.substr(equals + 1);
  if (rule.kind == Kind::kWhole) CheckWhole(rule, option, value);
  if (rule.kind == Kind::kFraction) CheckFraction(option, value);
  if (rule.kind == Kind::kFile) {
    OpenForReading(value);
    option = "-" + name + "=" + std::filesystem::absolute(value).string();
  }
}

}  // namespace

std::vector<const char*> TakeMardleOptions(int argc, const char* const* argv,
                                           std::vector<std::string>& options) {
  std::vector<const char*> others{argv[0]};
  for (int i = 1; i < argc; ++i) {
    const std::string word = argv[i];
    const bool is_option =
        word.size() > 1 && word[0] == '-' && word[1] != '-' && !ParseNumber(word);
    if (is_option) {
      options.push_back(word);
    } else {
      others.push_back(argv[i]);
    }
  }
  return others;
}

void CheckMardleOptions(std::vector<std::string>& options) {
  for (std::string& option : options) Check(option);
}

}  // namespace mardle::tools
