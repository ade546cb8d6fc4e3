// SPDX-License-Identifier: MIT
#include "tools/import/input_format.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <vector>

#include "tools/import/svmlight.h"
#include "tools/import/table_reader.h"
#include "tools/text/fields.h"
#include "tools/text/numbers.h"

namespace mardle::tools {
namespace {

constexpr std::string_view kBanner = "%%MatrixMarket";

struct Extension {
  std::string_view text;
  InputFormat format;
};
constexpr std::array<Extension, 8> kExtensions = {{{".mtx", InputFormat::kMatrixMarket},
                                                   {".csv", InputFormat::kTable},
                                                   {".tsv", InputFormat::kTable},
                                                   {".tab", InputFormat::kTable},
                                                   {".svm", InputFormat::kSvmlight},
                                                   {".svmlight", InputFormat::kSvmlight},
                                                   {".libsvm", InputFormat::kSvmlight},
                                                   {".txt", InputFormat::kLines}}};

constexpr std::string_view kPacked = ".gz";

std::optional<InputFormat> FormatOfName(std::string_view path) {
  if (path.ends_with(kPacked)) path.remove_suffix(kPacked.size());
  for (const Extension& extension : kExtensions) {
    if (path.ends_with(extension.text)) return extension.format;
  }
  return std::nullopt;
}

std::vector<std::string_view> FirstLines(std::string_view text, std::size_t most) {
  std::vector<std::string_view> lines;
  while (lines.size() < most && !text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    if (line.ends_with('\r')) line.remove_suffix(1);
    lines.push_back(line);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

bool LooksLikeTable(std::string_view header, std::string_view row) {
  const char delimiter = DelimiterOf(header);
  const std::vector<std::string_view> fields = FieldsBetween(row, delimiter);
  return fields.size() > 1 && fields.size() == FieldsBetween(header, delimiter).size() &&
         std::any_of(fields.begin(), fields.end(), [](std::string_view field) {
           return ParseNumber(Trimmed(field)).has_value();
         });
}

}  // namespace

std::optional<InputFormat> BinaryFormatOf(const std::string& path) {
  if (path.ends_with(".npy") || path.ends_with(".npy.gz")) return InputFormat::kNpy;
  if (path.ends_with(".npz")) return InputFormat::kNpz;
  return std::nullopt;
}

InputFormat DetectFormat(const std::string& path, std::string_view beginning) {
  if (std::filesystem::is_directory(path)) return InputFormat::kFolder;
  if (beginning.starts_with(kBanner)) return InputFormat::kMatrixMarket;
  if (const auto format = FormatOfName(path)) return *format;
  std::vector<std::string_view> lines = FirstLines(beginning, 3);
  if (!lines.empty() && lines[0].starts_with('#')) lines.erase(lines.begin());
  if (!lines.empty() && LooksLikeSvmlight(lines[0])) return InputFormat::kSvmlight;
  if (lines.size() > 1 && LooksLikeTable(lines[0], lines[1])) return InputFormat::kTable;
  return InputFormat::kLines;
}

const char* FormatName(InputFormat format) {
  switch (format) {
    case InputFormat::kMatrixMarket:
      return "Matrix Market";
    case InputFormat::kSvmlight:
      return "svmlight";
    case InputFormat::kTable:
      return "table";
    case InputFormat::kLines:
      return "lines of text";
    case InputFormat::kFolder:
      return "folder of texts";
    case InputFormat::kNpy:
      return "NumPy array";
    case InputFormat::kNpz:
      return "NumPy archive";
  }
  return "";
}

}  // namespace mardle::tools
