// SPDX-License-Identifier: MIT
#include "tools/export/fields.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>

#include "tools/export/failure.h"
#include "tools/export/file.h"

namespace mardle::exporting {
namespace {

constexpr std::string_view kBlanks = " \t\r";

std::vector<std::string_view> Split(std::string_view text) {
  std::vector<std::string_view> fields;
  for (;;) {
    const std::size_t begin = text.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos) return fields;
    text.remove_prefix(begin);
    const std::string_view field = text.substr(0, text.find_first_of(kBlanks));
    fields.push_back(field);
    text.remove_prefix(field.size());
  }
}

}  // namespace

FieldFile::FieldFile(const std::string& path)
    : path_(path), file_(OpenOrFail(path)), reader_(file_.get()) {}

bool FieldFile::Next() {
  const char* text = reader_.Next();
  if (text == nullptr) return false;
  ++line_;
  fields_ = Split(text);
  return true;
}

int FieldFile::Int(std::size_t field) const {
  const std::string_view text = fields_[field];
  int value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) {
    Refuse("'" + std::string(text) + "' is not a whole number");
  }
  return value;
}

double FieldFile::Number(std::size_t field) const {
  const std::string text(fields_[field]);
  char* end = nullptr;
  const double value = std::strtod(text.c_str(), &end);
  if (*end != '\0') Refuse("'" + text + "' is not a number");
  return value;
}

void FieldFile::Refuse(const std::string& why) const {
  throw FailureAt(path_, std::max<std::size_t>(line_, 1), why);
}

}  // namespace mardle::exporting
