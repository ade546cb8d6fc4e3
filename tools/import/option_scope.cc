// SPDX-License-Identifier: MIT
#include "tools/import/option_scope.h"

#include <stdexcept>
#include <string>

namespace mardle::tools {
namespace {

// The format with the two uses of tables told apart.
struct Kind {
  bool table, table_of_texts, lines, folder, svmlight, matrix_market, numpy;
  bool AnyTable() const { return table || table_of_texts; }
  bool Unlabelled() const { return svmlight || matrix_market || numpy; }
  bool Numbers() const { return table || numpy; }
  bool Texts() const { return table_of_texts || lines || folder; }
};

Kind KindOf(const ImportOptions& options, InputFormat format) {
  const bool is_table = format == InputFormat::kTable;
  const bool has_text = !options.table.text_columns.empty();
  return {.table = is_table && !has_text,
          .table_of_texts = is_table && has_text,
          .lines = format == InputFormat::kLines,
          .folder = format == InputFormat::kFolder,
          .svmlight = format == InputFormat::kSvmlight,
          .matrix_market = format == InputFormat::kMatrixMarket,
          .numpy = format == InputFormat::kNpy || format == InputFormat::kNpz};
}

void Require(bool useful, bool given, const char* option, InputFormat format) {
  if (given && !useful) {
    throw std::invalid_argument(std::string(option) +
                                " has no use for this input: " + FormatName(format));
  }
}

}  // namespace

void RefuseIdleOptions(const ImportOptions& options, InputFormat format) {
  static const ImportOptions kDefaults;
  const TableOptions& table = options.table;
  const WordOptions& words = options.words;
  const Kind kind = KindOf(options, format);
  const auto require = [format](bool useful, bool given, const char* option) {
    Require(useful, given, option, format);
  };
  require(kind.AnyTable() || kind.lines, !table.label_column.empty(), "--label-column");
  require(kind.AnyTable() || kind.lines, !table.class_column.empty(), "--class-column");
  require(kind.AnyTable(), !table.text_columns.empty(), "--text-column");
  require(kind.table, !table.skipped_columns.empty(), "--skip-column");
  require(kind.AnyTable(), table.delimiter.has_value(), "--delimiter");
  require(kind.AnyTable(), table.no_header, "--no-header");
  require(kind.Numbers() || kind.matrix_market, options.preparation.sparse, "--sparse");
  require(kind.Numbers(), options.preparation.standardize, "--standardize");
  require(kind.Numbers(), options.preparation.missing != Missing::kRefused, "--missing");
  require(kind.table, table.decimal_comma, "--decimal-comma");
  require(kind.table, table.numbers_only, "--numbers-only");
  require(!kind.numpy, !options.encoding.empty(), "--encoding");
  require(kind.Unlabelled(), !options.labels.columns.empty(), "--labels");
  require(kind.Unlabelled(), !options.labels.rows.empty(), "--row-labels");
  require(kind.svmlight, options.zero_based, "--zero-based");
  require(kind.folder, options.folder.file_pattern != kDefaults.folder.file_pattern, "--files");
  require(kind.folder, options.folder.folder_classes, "--folder-classes");
  require(kind.Texts(), !words.rules.pattern.empty(), "--token-pattern");
  require(kind.Texts(), words.rules.digits, "--digits");
  require(kind.Texts(), words.stop_words != kDefaults.words.stop_words, "--stop-words");
  require(kind.Texts(), !words.more_stop_words.empty(), "--more-stop-words");
  require(kind.Texts(), !words.stem_language.empty(), "--stem");
  require(kind.Texts(), words.pairs, "--pairs");
  require(kind.Texts(), options.limits.min_count != kDefaults.limits.min_count, "--min-count");
  require(kind.Texts(), options.limits.max_fraction < kDefaults.limits.max_fraction,
          "--max-fraction");
}

}  // namespace mardle::tools
