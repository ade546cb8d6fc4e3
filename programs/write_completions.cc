// SPDX-License-Identifier: MIT
//
// Prints the completion of mardle's command line for a shell, or its options as a list for the
// completions of other programs: write_completions bash|zsh|list. Built and run with the program,
// so that the completions come from its own table of options.
#include <cstdio>
#include <cstring>
#include <string>

#include "programs/options.h"

namespace {

using mardle::Option;
using enum mardle::Option::Value;

bool TakesValue(const Option& option) { return option.value != kNone && option.value != kHelp; }
bool TakesFile(const Option& option) {
  return option.value == kText || option.value == kOptionalText;
}

// The values that an option may have, separated by blanks; empty where any number or file will do.
std::string ValuesOf(const Option& option) {
  const std::string name = option.name;
  if (name == "crfun" || name == "showtree") return "1 2 3 4 5 6 7 8 9";
  if (name == "rowmodel") return "1 2 3 4";
  if (name == "colmodel" || name == "sim") return "1 2";
  if (name == "plotformat") return "ps fig ai svg cgm pcl gif";
  return "";
}

void PrintBash() {
  std::string options;
  std::string cases;
  for (const Option& option : mardle::OptionTable()) {
    const std::string name = option.name;
    options += (options.empty() ? "-" : " -") + name + (TakesValue(option) ? "=" : "");
    if (TakesFile(option)) {
      cases += "    -" + name + ") COMPREPLY=($(compgen -f -- \"$value\")) ;;\n";
    } else if (!ValuesOf(option).empty()) {
      cases += "    -" + name + ") COMPREPLY=($(compgen -W \"" + ValuesOf(option) +
               "\" -- \"$value\")) ;;\n";
    }
  }
  std::printf(
      "# Completion of mardle's command line.\n"
      "_mardle() {\n"
      "  local word=${COMP_WORDS[COMP_CWORD]} option value\n"
      "  # An option, = and its value are three words.\n"
      "  if [[ $word == \"=\" ]]; then\n"
      "    option=${COMP_WORDS[COMP_CWORD - 1]} value=\n"
      "  elif [[ ${COMP_WORDS[COMP_CWORD - 1]} == \"=\" ]]; then\n"
      "    option=${COMP_WORDS[COMP_CWORD - 2]} value=$word\n"
      "  fi\n"
      "  # What mardle-run takes beside.\n"
      "  local own=\n"
      "  [[ ${COMP_WORDS[0]} == *mardle-run ]] && own=\"--sample --sample= --passes= --help --version\"\n"
      "  case $option in\n"
      "%s"
      "    -*) COMPREPLY=() ;;\n"
      "    *)\n"
      "      if [[ $word == -* ]]; then\n"
      "        COMPREPLY=($(compgen -W \"%s $own\" -- \"$word\"))\n"
      "        [[ ${COMPREPLY[0]} == *= ]] && compopt -o nospace 2> /dev/null\n"
      "      else\n"
      "        COMPREPLY=($(compgen -f -- \"$word\"))\n"
      "      fi\n"
      "      ;;\n"
      "  esac\n"
      "  return 0\n"
      "}\n"
      "complete -o filenames -F _mardle mardle mardle-run\n",
      cases.c_str(), options.c_str());
}

void PrintZsh() {
  std::printf(
      "#compdef mardle mardle-run\n"
      "local -a own\n"
      "[[ $service == mardle-run ]] &&\n"
      "  own=('--sample=-::rows: ' '--passes=-:passes: ' '--help' '--version')\n"
      "_arguments $own \\\n");
  for (const Option& option : mardle::OptionTable()) {
    const std::string values = ValuesOf(option);
    std::string action;
    if (TakesFile(option)) {
      action = ":file:_files";
    } else if (TakesValue(option)) {
      action = values.empty() ? ":value: " : ":value:(" + values + ")";
    }
    std::printf("  '-%s%s%s' \\\n", option.name, TakesValue(option) ? "=-" : "", action.c_str());
  }
  std::printf("  ':matrix:_files' ':clusters: '\n");
}

// A line each: "-crfun= 1 2 3", "-output= FILE", "-direct".
void PrintList() {
  for (const Option& option : mardle::OptionTable()) {
    const std::string values = TakesFile(option) ? "FILE" : ValuesOf(option);
    std::printf("-%s%s%s%s\n", option.name, TakesValue(option) ? "=" : "",
                values.empty() ? "" : " ", values.c_str());
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2 && std::strcmp(argv[1], "bash") == 0) {
    PrintBash();
  } else if (argc == 2 && std::strcmp(argv[1], "zsh") == 0) {
    PrintZsh();
  } else if (argc == 2 && std::strcmp(argv[1], "list") == 0) {
    PrintList();
  } else {
    std::fprintf(stderr, "usage: write_completions bash|zsh|list\n");
    return 2;
  }
  return 0;
}
