// SPDX-License-Identifier: MIT
#include "tools/export/fields.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <optional>

#include "tools/text/fields.h"
#include "tools/text/file_error.h"
#include "tools/text/input_lines.h"
#include "tools/text/numbers.h"

namespace mardle::exporting {

FieldFile::FieldFile(const std::string& path)
    : path_(path), file_(tools::OpenForReading(path)), reader_(file_.get()) {}

bool FieldFile::Next() {
  const char* text = reader_.Next();
  if (text == nullptr) return false;
  ++line_;
  fields_ = tools::FieldsOf(text, tools::kBlanksAndReturns);
  return true;
}

int FieldFile::Int(std::size_t field) const {
  const std::optional<long long> value = tools::ParseInteger(fields_[field]);
  if (!value || *value < INT_MIN || *value > INT_MAX) {
    Refuse("'" + std::string(fields_[field]) + "' is not a whole number");
  }
  return static_cast<int>(*value);
}

double FieldFile::Number(std::size_t field) const {
  const std::optional<double> value = tools::ParseNumber(fields_[field]);
  if (!value) Refuse("'" + std::string(fields_[field]) + "' is not a number");
  return *value;
}

void FieldFile::Refuse(const std::string& why) const {
  throw tools::FileError({path_, static_cast<std::int64_t>(std::max<std::size_t>(line_, 1))}, why);
}

}  // namespace mardle::exporting
