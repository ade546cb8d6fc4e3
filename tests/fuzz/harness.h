// SPDX-License-Identifier: MIT
//
// What the fuzz targets share. A target is a function of some bytes; it throws Broken when the code
// under test breaks a promise, and nothing else. The fuzzers and the replay of the corpora call the
// same functions.
#pragma once

#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "lib/support/alloc.h"
#include "lib/support/fatal.h"

namespace fuzzing {

using Bytes = std::span<const std::uint8_t>;

struct Target {
  const char* name;  // also of its file in corpus/
  void (*run)(Bytes);
};

void FuzzMatrix(Bytes bytes);       // matrix files, sparse and dense
void FuzzLabels(Bytes bytes);       // label and class files
void FuzzCommandLine(Bytes bytes);  // command lines, no file opened
void FuzzNumbers(Bytes bytes);      // one number of a matrix file
void FuzzLibrary(Bytes bytes);      // the entry points of molva.h
void FuzzProgram(Bytes bytes);      // whole runs
void FuzzPlots(Bytes bytes);        // plot files
void FuzzImport(Bytes bytes);       // inputs of mardle-import
void FuzzArrays(Bytes bytes);       // binary inputs of mardle-import
void FuzzExport(Bytes bytes);       // files for mardle-export
void FuzzArithmetic(Bytes bytes);   // clusterings under both arithmetics
void FuzzWide(Bytes bytes);         // operations on two wide numbers

inline constexpr Target kProgramTargets[] = {
    {"matrix", FuzzMatrix},   {"labels", FuzzLabels},         {"command_line", FuzzCommandLine},
    {"numbers", FuzzNumbers}, {"library", FuzzLibrary},       {"program", FuzzProgram},
    {"plots", FuzzPlots},     {"arithmetic", FuzzArithmetic}, {"wide", FuzzWide},
};
// Of the programs beside mardle.
inline constexpr Target kToolTargets[] = {
    {"import", FuzzImport}, {"arrays", FuzzArrays}, {"export", FuzzExport}};

// Those that this build has.
std::span<const Target> Targets();

// A promise that was not kept.
struct Broken : std::runtime_error {
  using std::runtime_error::runtime_error;
};
void Require(bool kept, const std::string& promise);

// Takes values off the front of the bytes; behind the end everything is 0 or empty.
class Input {
 public:
  explicit Input(Bytes bytes) : rest_(bytes) {}

  std::uint8_t Byte();
  int Below(int n) { return Byte() % n; }
  bool Flag() { return (Byte() & 1) != 0; }
  // Mostly 0 to 27, now and then negative, at a limit, or any.
  int AnyInt();
  // Mostly small multiples of 0.25, now and then infinite, not a number, tiny, huge, or any.
  float AnyFloat();
  // -2 to `most`, or a number of ints that is refused for want of memory.
  int Count(int most);
  // Up to the next byte of this value, which is skipped, or all the rest.
  std::string Until(std::uint8_t separator);
  Bytes Rest() { return std::exchange(rest_, {}); }
  bool empty() const { return rest_.empty(); }

 private:
  Bytes rest_;
};

// The text of a file: as it stands, except that the four bytes 0xff c h l mean the character c
// 3 (256 h + l) times, so that small inputs reach the ends of large buffers.
std::string Expanded(Bytes bytes);

// printf into a string, for the messages that are expected.
[[gnu::format(printf, 1, 2)]] std::string Format(const char* format, ...);

// A file that lives in memory and is opened by its path like any other.
class MemoryFile {
 public:
  explicit MemoryFile(std::string_view text = {});
  ~MemoryFile();
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  const char* path() const { return path_.c_str(); }
  std::string Text() const;

 private:
  int descriptor_;
  std::string path_;
};

// While it lives, the process behaves as the code under test wants it: early ends throw Ended,
// standard output and error go to memory, and allocation obeys the limits below.
struct Ended {
  std::string message;  // empty for an end without an error
};

struct Memory {
  std::uint8_t fill = 0;          // what fresh blocks hold; a result must not depend on it
  int blocks = INT_MAX;           // as many are handed out
  std::size_t largest = 4 << 20;  // bytes of a block; larger ones are refused
};

class Sandbox {
 public:
  explicit Sandbox(const Memory& memory);
  ~Sandbox();
  Sandbox(const Sandbox&) = delete;
  Sandbox& operator=(const Sandbox&) = delete;

  std::string Output();
  std::string ErrorOutput();

 private:
  class Capture {
   public:
    explicit Capture(std::FILE*& stream);
    ~Capture();
    std::string Text();

   private:
    std::FILE*& stream_;
    std::FILE* replaced_;
    char* text_ = nullptr;
    std::size_t size_ = 0;
  };

  molva::FatalHandler fatal_;
  molva::EndHandler end_;
  molva::AllocateFunction allocate_;
  Memory memory_;
  Capture output_{stdout};
  Capture error_{stderr};
};

// Runs the statement; the message of the fatal error that ended it, or "". Every message of ours
// says something, so "" means a regular end.
template <typename Statement>
std::string FatalMessageOf(Statement statement) {
  try {
    statement();
  } catch (const Ended& end) {
    return end.message;
  }
  return "";
}

// The bits of results, so that not-a-number equals itself.
class Record {
 public:
  template <typename T>
  void Add(std::span<const T> values) {
    bytes_.append(reinterpret_cast<const char*>(values.data()), values.size_bytes());
  }
  template <typename T>
  void Add(const std::vector<T>& values) {
    Add(std::span<const T>(values));
  }
  template <typename T>
  void Add(const molva::Array<T>& values) {
    Add(std::span<const T>(values));
  }
  void Add(const std::string& text) { bytes_ += text + '\0'; }
  friend bool operator==(const Record&, const Record&) = default;

 private:
  std::string bytes_;
};

}  // namespace fuzzing
