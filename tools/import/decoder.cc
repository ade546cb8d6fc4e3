// SPDX-License-Identifier: MIT
#include "tools/import/decoder.h"

#include <unicode/stringpiece.h>
#include <unicode/ucnv_err.h>
#include <unicode/unistr.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <stdexcept>
#include <utility>

#include "tools/text/fields.h"

namespace mardle::tools {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 14;

using Converter = std::unique_ptr<UConverter, void (*)(UConverter*)>;

Converter Open(const std::string& encoding) {
  UErrorCode status = U_ZERO_ERROR;
  // Without a name ICU would take the encoding of the locale.
  Converter converter(encoding.empty() ? nullptr : ucnv_open(encoding.c_str(), &status),
                      &ucnv_close);
  if (!converter) {
    throw std::invalid_argument("there is no encoding " + Quoted(encoding) +
                                "; names are latin1, windows-1252, UTF-16, Shift_JIS, GB18030, "
                                "KOI8-R and others that 'iconv -l' lists");
  }
  ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
  return converter;
}

}  // namespace

void RequireEncoding(const std::string& encoding) { Open(encoding); }

Decoder::Decoder(const std::string& encoding, std::string name, ByteSource source)
    : encoding_(encoding),
      name_(std::move(name)),
      source_(std::move(source)),
      converter_(Open(encoding)) {}

std::size_t Decoder::Read(char* block, std::size_t size) {
  while (taken_ == decoded_.size() && !ended_) DecodeMore();
  const std::size_t count = std::min(size, decoded_.size() - taken_);
  std::memcpy(block, decoded_.data() + taken_, count);
  taken_ += count;
  return count;
}

void Decoder::DecodeMore() {
  std::array<char, kBlock> bytes;
  const std::size_t count = source_(bytes.data(), bytes.size());
  ended_ = count == 0;
  decoded_.clear();
  taken_ = 0;
  const char* rest = bytes.data();
  const char* const end = rest + count;
  for (UErrorCode status = U_BUFFER_OVERFLOW_ERROR; status == U_BUFFER_OVERFLOW_ERROR;) {
    std::array<UChar, kBlock> units;
    UChar* last = units.data();
    status = U_ZERO_ERROR;
    ucnv_toUnicode(converter_.get(), &last, units.data() + units.size(), &rest, end, nullptr,
                   ended_ ? 1 : 0, &status);
    Append(units.data(), static_cast<std::int32_t>(last - units.data()));
    if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
    if (U_FAILURE(status) && status != U_BUFFER_OVERFLOW_ERROR) {
      throw FileError({name_, line_}, "bytes that are not " + encoding_);
    }
  }
}

// A pair of surrogates may come in two pieces.
void Decoder::Append(const UChar* text, std::int32_t length) {
  icu::UnicodeString whole;
  if (half_ != 0) whole.append(std::exchange(half_, u'\0'));
  whole.append(text, length);
  if (!ended_ && !whole.isEmpty() && U16_IS_LEAD(whole[whole.length() - 1])) {
    half_ = whole[whole.length() - 1];
    whole.truncate(whole.length() - 1);
  }
  line_ += std::count(text, text + length, u'\n');
  whole.toUTF8String(decoded_);
}

}  // namespace mardle::tools
