// SPDX-License-Identifier: MIT
#include "tools/import/file_kind.h"

#include <algorithm>
#include <array>

namespace mardle::tools {
namespace {

using namespace std::literals;

struct Kind {
  std::string_view beginning;
  std::string_view name;
};

constexpr std::array<Kind, 18> kKinds = {{
    {"%PDF-"sv, "a PDF document; pdftotext makes a text of it"sv},
    {"\x7f"
     "ELF"sv,
     "a program"sv},
    {"PK\x03\x04"sv, "a ZIP archive, as .xlsx, .docx and .odt are; save it as text or CSV"sv},
    {"\xd0\xcf\x11\xe0"sv, "an office document (.xls, .doc); save it as text or CSV"sv},
    {"{\\rtf"sv, "an RTF document; save it as text"sv},
    {"\xfd"
     "7zXZ\0"sv,
     "compressed by xz; decompress it first"sv},
    {"BZh"sv, "compressed by bzip2; decompress it first"sv},
    {"\x28\xb5\x2f\xfd"sv, "compressed by zstd; decompress it first"sv},
    {"7z\xbc\xaf"sv, "a 7-Zip archive; unpack it first"sv},
    {"\x93NUMPY"sv, "an array of NumPy; --format npy reads it"sv},
    {"\x89HDF\r\n"sv, "an HDF5 file"sv},
    {"SQLite format 3\0"sv, "an SQLite database"sv},
    {"PAR1"sv, "a Parquet file"sv},
    {"\x89PNG"sv, "a picture"sv},
    {"\xff\xd8\xff"sv, "a picture"sv},
    {"GIF8"sv, "a picture"sv},
    {"\x80\x04\x95"sv, "a pickle of Python"sv},
    {"%!PS"sv, "a PostScript document; ps2ascii makes a text of it"sv},
}};

constexpr std::array<Kind, 4> kWideTexts = {{
    {"\xff\xfe\0\0"sv, "text in UTF-32; --encoding UTF-32 reads it"sv},
    {"\0\0\xfe\xff"sv, "text in UTF-32; --encoding UTF-32 reads it"sv},
    {"\xff\xfe"sv, "text in UTF-16; --encoding UTF-16 reads it"sv},
    {"\xfe\xff"sv, "text in UTF-16; --encoding UTF-16 reads it"sv},
}};

template <typename Kinds>
std::string_view NameAmong(const Kinds& kinds, std::string_view beginning) {
  const auto kind = std::find_if(kinds.begin(), kinds.end(), [beginning](const Kind& each) {
    return beginning.starts_with(each.beginning);
  });
  return kind == kinds.end() ? std::string_view() : kind->name;
}

}  // namespace

std::string_view KindOfNoText(std::string_view beginning, bool decoded) {
  const std::string_view name = NameAmong(kKinds, beginning);
  return name.empty() && !decoded ? NameAmong(kWideTexts, beginning) : name;
}

}  // namespace mardle::tools
