// SPDX-License-Identifier: MIT
#include "tools/import/markup.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "tools/text/fields.h"

namespace mardle::tools {
namespace {

constexpr std::string_view kBlanksAndLineEnds = " \t\r\n";

bool IsLetter(char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0; }

bool StartsWithAnyCase(std::string_view text, std::string_view small_letters) {
  return text.size() >= small_letters.size() &&
         std::equal(small_letters.begin(), small_letters.end(), text.begin(), [](char a, char b) {
           return a == std::tolower(static_cast<unsigned char>(b));
         });
}

std::string_view WithoutBlanksBefore(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(kBlanksAndLineEnds);
  return begin == std::string_view::npos ? std::string_view() : text.substr(begin);
}

// Takes the first line, without its end, off the text.
std::string_view TakeLine(std::string_view& text) {
  const std::string_view line = text.substr(0, text.find('\n'));
  text.remove_prefix(std::min(line.size() + 1, text.size()));
  return line;
}

// How long the piece at the front is that ends with `end`: all of the text when nothing ends it.
std::size_t LengthUpTo(std::string_view text, std::string_view end) {
  const std::size_t found = text.find(end);
  return found == std::string_view::npos ? text.size() : found + end.size();
}

// The end tag of what is no text but for programs: "</script".
std::size_t LengthOfElement(std::string_view text, std::string_view end_tag) {
  for (std::size_t at = 0; (at = text.find('<', at)) != std::string_view::npos; ++at) {
    if (StartsWithAnyCase(text.substr(at), end_tag)) {
      return at + LengthUpTo(text.substr(at), ">");
    }
  }
  return text.size();
}

// Of the tag at the front, up to the first ">"; 0 when it is none.
std::size_t LengthOfTag(std::string_view text) {
  constexpr std::string_view kOtherBegins = "!?";
  const std::size_t name = text.starts_with("</") ? 2 : 1;
  if (text.size() <= name) return 0;
  if (!IsLetter(text[name]) && kOtherBegins.find(text[name]) == std::string_view::npos) return 0;
  const std::size_t end = text.find_first_of("<>", name);
  return end != std::string_view::npos && text[end] == '>' ? end + 1 : 0;
}

// Of the tag, the comment or the script at the front.
std::size_t LengthOfMark(std::string_view text) {
  if (text.starts_with("<!--")) return LengthUpTo(text, "-->");
  if (text.starts_with("<![CDATA[")) return std::string_view("<![CDATA[").size();
  const std::size_t tag = LengthOfTag(text);
  if (tag == 0 || text[tag - 2] == '/') return tag;
  if (StartsWithAnyCase(text, "<script")) return LengthOfElement(text, "</script");
  if (StartsWithAnyCase(text, "<style")) return LengthOfElement(text, "</style");
  return tag;
}

// Whether the name of the request, behind its dot, is that of a macro whose arguments are text.
// Macros have capitals; those that are listed take numbers, names and addresses.
bool HasText(std::string_view name) {
  static constexpr std::array<std::string_view, 25> kOthers = {
      "TH", "Dd", "Dt", "Os", "Bl", "El", "Bd", "Ed", "Bk", "Ek", "Sm", "Pp", "TS",
      "TE", "EQ", "EN", "UR", "UE", "MT", "ME", "TP", "RS", "IX", "PD", "Vb"};
  return !name.empty() && name[0] >= 'A' && name[0] <= 'Z' &&
         std::find(kOthers.begin(), kOthers.end(), name) == kOthers.end();
}

// Macros that stand among the arguments of another: "Fl", "Ar".
bool IsCalledMacro(std::string_view word) {
  return word.size() == 2 && word[0] >= 'A' && word[0] <= 'Z' && word[1] >= 'a' && word[1] <= 'z';
}

// Of the escape at the front, which begins with a backslash; what it stands for is no part of a
// word, but for a hyphen, which is put into `text`.
std::size_t LengthOfEscape(std::string_view line, std::string& text) {
  if (line.size() < 2) return line.size();
  constexpr std::string_view kNamed = "fFmMn*gksY";
  constexpr std::string_view kQuoted = "hvwolLDbBANRSxXzZ";
  const char kind = line[1];
  if (kind == '"' || kind == '#') return line.size();
  if (kind == '-') text += '-';
  if (kind == ' ' || kind == '~' || kind == '0' || kind == '(' || kind == '[') text += ' ';
  // A name: one character, two behind a parenthesis, any number in brackets.
  const bool is_special = kind == '(' || kind == '[';
  if (!is_special && kNamed.find(kind) == std::string_view::npos) {
    const bool is_quoted =
        line.size() > 2 && line[2] == '\'' && kQuoted.find(kind) != std::string_view::npos;
    return is_quoted ? 3 + LengthUpTo(line.substr(3), "'") : 2;
  }
  std::size_t at = is_special ? 1 : 2;
  if (kind == 's' && at < line.size() && (line[at] == '+' || line[at] == '-')) ++at;
  if (at >= line.size()) return line.size();
  if (line[at] == '[') return at + LengthUpTo(line.substr(at), "]");
  if (line[at] == '(') return std::min(at + 3, line.size());
  return at + 1;
}

void AppendWithoutEscapes(std::string_view line, std::string& text) {
  while (!line.empty()) {
    const std::size_t before = std::min(line.find('\\'), line.size());
    text += line.substr(0, before);
    line.remove_prefix(before);
    if (!line.empty()) line.remove_prefix(LengthOfEscape(line, text));
  }
}

// A page as its lines, of which some are text.
class PageText {
 public:
  void Add(std::string_view line) {
    if (inside_ != Inside::kText) return Skip(line);
    if (line.starts_with('.') || line.starts_with('\'')) return AddRequest(line);
    AppendWithoutEscapes(line, text_);
    text_ += '\n';
  }
  std::string Take() { return std::move(text_); }

 private:
  // Definitions and what is ignored end with two dots, the formats of a table with one dot.
  enum class Inside { kText, kDefinition, kTableFormats };

  void Skip(std::string_view line) {
    const std::string_view trimmed = Trimmed(line);
    const bool ends =
        inside_ == Inside::kDefinition ? line.starts_with("..") : trimmed.ends_with('.');
    if (ends) inside_ = Inside::kText;
  }

  void AddRequest(std::string_view line) {
    line.remove_prefix(1);
    const std::size_t begin = std::min(line.find_first_not_of(kBlanksAndReturns), line.size());
    line.remove_prefix(begin);
    const std::string_view name = line.substr(0, line.find_first_of(" \t\r\"\\"));
    line.remove_prefix(name.size());
    if (name == "de" || name == "de1" || name == "am" || name == "ig")
      inside_ = Inside::kDefinition;
    if (name == "TS") inside_ = Inside::kTableFormats;
    if (name == "Dd") has_called_macros_ = true;
    if (!HasText(name)) return;
    std::string arguments;
    AppendWithoutEscapes(line, arguments);
    for (const std::string_view word : FieldsOf(arguments, " \t\r\"")) {
      if (!has_called_macros_ || !IsCalledMacro(word)) (text_ += word) += ' ';
    }
    text_ += '\n';
  }

  std::string text_;
  Inside inside_ = Inside::kText;
  bool has_called_macros_ = false;
};

}  // namespace

bool HasTags(std::string_view text) {
  const std::string_view begin = WithoutBlanksBefore(text);
  for (const std::string_view front : {"<!doctype", "<html", "<?xml"}) {
    if (StartsWithAnyCase(begin, front)) return true;
  }
  for (std::size_t at = 0; (at = text.find('<', at)) != std::string_view::npos; ++at) {
    const std::string_view tag = text.substr(at);
    const bool ends = tag.size() > 2 && tag[1] == '/' && IsLetter(tag[2]);
    const bool breaks = StartsWithAnyCase(tag, "<br>") || StartsWithAnyCase(tag, "<br/") ||
                        StartsWithAnyCase(tag, "<br /");
    if ((ends || breaks) && LengthOfTag(tag) > 0) return true;
  }
  return false;
}

bool IsManualPage(std::string_view text) {
  text = WithoutBlanksBefore(text);
  if (!text.starts_with('.') && !text.starts_with('\'')) return false;
  while (!text.empty()) {
    const std::string_view line = TakeLine(text);
    for (const char* request : {".TH ", ".Dd ", ".so "}) {
      if (line.starts_with(request)) return true;
    }
  }
  return false;
}

std::string WithoutTags(std::string_view text) {
  std::string plain;
  while (!text.empty()) {
    const std::size_t before = std::min(text.find('<'), text.size());
    plain += text.substr(0, before);
    text.remove_prefix(before);
    if (text.empty()) break;
    const std::size_t length = LengthOfMark(text);
    plain += length == 0 ? '<' : ' ';
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return plain;
}

std::string WithoutRequests(std::string_view page) {
  PageText text;
  while (!page.empty()) text.Add(TakeLine(page));
  return text.Take();
}

}  // namespace mardle::tools
