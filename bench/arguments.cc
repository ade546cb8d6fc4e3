// SPDX-License-Identifier: MIT
#include "bench/arguments.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace bench {
namespace {

std::string ValueOf(const Argument& argument) {
  if (auto* const* number = std::get_if<int*>(&argument.field)) return std::to_string(**number);
  char text[32];
  if (auto* const* number = std::get_if<double*>(&argument.field)) {
    std::snprintf(text, sizeof text, "%g", **number);
    return text;
  }
  return "none";
}

bool IsOption(const Argument& argument) { return std::strncmp(argument.name, "--", 2) == 0; }

void PrintUsage(std::FILE* out, const char* purpose, std::span<const Argument> known) {
  std::fprintf(out, "%s\n", purpose);
  for (const Argument& argument : known) {
    const std::string name = argument.name + std::string(IsOption(argument) ? "=..." : "");
    std::fprintf(out, "  %-18s %s", name.c_str(), argument.meaning);
    std::fprintf(out, IsOption(argument) ? " [%s]\n" : "\n", ValueOf(argument).c_str());
  }
}

template <typename Number>
bool SetNumber(const Argument& argument, std::string_view text, Number& field) {
  Number number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return false;
  // Also false for what is not a number.
  if (!(number >= argument.least && number <= argument.most)) return false;
  field = number;
  return true;
}

bool Set(const Argument& argument, std::string_view text) {
  if (auto* const* field = std::get_if<int*>(&argument.field)) {
    return SetNumber(argument, text, **field);
  }
  if (auto* const* field = std::get_if<double*>(&argument.field)) {
    return SetNumber(argument, text, **field);
  }
  *std::get<std::string*>(argument.field) = text;
  return !text.empty();
}

// Whether `given` is the argument, and if so its value.
bool Matches(const Argument& argument, std::string_view given, std::string_view& value) {
  value = given;
  if (!IsOption(argument)) return !given.starts_with('-');
  if (!given.starts_with(argument.name)) return false;
  value.remove_prefix(std::strlen(argument.name));
  if (!value.starts_with('=')) return false;
  value.remove_prefix(1);
  return true;
}

bool SetOneOf(std::span<const Argument> known, std::string_view given) {
  std::string_view value;
  for (const Argument& argument : known) {
    if (Matches(argument, given, value)) return Set(argument, value);
  }
  return false;
}

}  // namespace

void ParseArguments(int argc, char** argv, const char* purpose, std::span<const Argument> known) {
  int given_by_itself = 0;
  for (const std::string_view given : std::span(argv, static_cast<std::size_t>(argc)).subspan(1)) {
    if (given == "--help") {
      PrintUsage(stdout, purpose, known);
      std::exit(0);
    }
    if (!SetOneOf(known, given)) {
      std::fprintf(stderr, "%s cannot be understood, or is out of range.\n", given.data());
      PrintUsage(stderr, purpose, known);
      std::exit(1);
    }
    if (!given.starts_with('-')) ++given_by_itself;
  }
  if (given_by_itself != 1) {
    PrintUsage(stderr, purpose, known);
    std::exit(1);
  }
}

void WriteClasses(const std::string& path, const char* word, std::span<const int> numbers) {
  std::FILE* const out = std::fopen(path.c_str(), "w");
  bool written = out != nullptr;
  for (std::size_t i = 0; written && i < numbers.size(); ++i) {
    written = std::fprintf(out, "%s%d\n", word, numbers[i]) > 0;
  }
  if (out == nullptr || std::fclose(out) != 0 || !written) {
    std::fprintf(stderr, "%s cannot be written.\n", path.c_str());
    std::exit(1);
  }
}

}  // namespace bench
