// SPDX-License-Identifier: MIT
#include "tools/text/option_complaint.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <vector>

#include "tools/text/fields.h"
#include "tools/text/suggestion.h"

namespace mardle::tools {
namespace {

using Words = std::vector<std::string>;

// The part of the program that its first word chooses, or the program.
const CLI::App& ChosenPart(const CLI::App& app) {
  const std::vector<CLI::App*> chosen = app.get_subcommands();
  return chosen.empty() ? app : *chosen.front();
}

Words OptionNames(const CLI::App& app) {
  Words names;
  for (const CLI::Option* option : app.get_options()) {
    const std::string name = option->get_name(false, true);
    if (name.starts_with("--")) names.push_back(name);
  }
  return names;
}

Words PartNames(const CLI::App& app) {
  Words names;
  for (const CLI::App* part : app.get_subcommands({})) names.push_back(part->get_name());
  return names;
}

bool IsOption(const std::string& word) { return word.size() > 1 && word[0] == '-'; }

}  // namespace

std::string OptionComplaint(const CLI::App& app, const CLI::ParseError& error) {
  const Words rest = app.remaining(true);
  const bool wants_part = app.get_subcommands().empty() && !app.get_subcommands({}).empty();
  const auto option = std::find_if(rest.begin(), rest.end(), IsOption);
  const auto word = std::find_if_not(rest.begin(), rest.end(), IsOption);
  if (wants_part && word != rest.end()) {
    return "there is no " + Quoted(*word) + DidYouMean(*word, PartNames(app));
  }
  if (option != rest.end()) {
    const std::string name = option->substr(0, option->find('='));
    return "there is no option " + Quoted(name) + DidYouMean(name, OptionNames(ChosenPart(app)));
  }
  if (word != rest.end()) return Quoted(*word) + " is one argument too many";
  return error.what();
}

}  // namespace mardle::tools
