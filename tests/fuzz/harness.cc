// SPDX-License-Identifier: MIT
#include "tests/fuzz/harness.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <memory>

#ifdef __has_feature
#if __has_feature(memory_sanitizer)
#include <sanitizer/msan_interface.h>
#define MARDLE_MSAN
#endif
#endif

namespace fuzzing {
namespace {

// The limits of the sandbox that lives; the allocation function takes no arguments of ours.
Memory* limits = nullptr;

// A fresh block holds what the sandbox says; a memory sanitizer still takes it as unset. Of large
// ones, the buffers for lines, only the beginning is filled: touching every page of a buffer costs
// more than reading most files.
void* AllocateWithinLimits(std::size_t nbytes) {
  constexpr std::size_t kMostFilled = 8192;
  if (nbytes > limits->largest || limits->blocks <= 0) return nullptr;
  --limits->blocks;
  void* block = std::malloc(nbytes);
  if (block == nullptr) return nullptr;
  std::memset(block, limits->fill, std::min(nbytes, kMostFilled));
#ifdef MARDLE_MSAN
  __msan_poison(block, nbytes);
#endif
  return block;
}

[[noreturn]] void GiveUp(const char* what) {
  std::perror(what);
  std::abort();
}

template <typename T>
T FromBytes(Input& input) {
  std::array<std::uint8_t, sizeof(T)> bytes;
  for (std::uint8_t& byte : bytes) byte = input.Byte();
  T value;
  std::memcpy(&value, bytes.data(), sizeof(T));
  return value;
}

}  // namespace

void Require(bool kept, const std::string& promise) {
  if (!kept) throw Broken(promise);
}

std::uint8_t Input::Byte() {
  if (rest_.empty()) return 0;
  const std::uint8_t byte = rest_.front();
  rest_ = rest_.subspan(1);
  return byte;
}

int Input::AnyInt() {
  static constexpr int kEdges[] = {INT_MIN, INT_MIN + 1, -65537,      -1,          255,
                                   256,     46341,       65535,       65536,       65537,
                                   1 << 24, 1 << 30,     INT_MAX / 2, INT_MAX - 1, INT_MAX};
  const int choice = Byte();
  if (choice < 0xe0) return choice % 28;
  if (choice < 0xe8) return -(choice - 0xdf);
  if (choice < 0xff) return kEdges[static_cast<std::size_t>(choice - 0xe8) % std::size(kEdges)];
  return FromBytes<int>(*this);
}

float Input::AnyFloat() {
  using Limits = std::numeric_limits<float>;
  static constexpr float kEdges[] = {Limits::quiet_NaN(),
                                     -Limits::quiet_NaN(),
                                     Limits::infinity(),
                                     -Limits::infinity(),
                                     Limits::max(),
                                     -Limits::max(),
                                     Limits::min(),
                                     Limits::denorm_min(),
                                     -Limits::denorm_min(),
                                     -0.0F,
                                     1e30F,
                                     1e-30F,
                                     1e19F,
                                     -1e19F,
                                     0.1F};
  const int choice = Byte();
  if (choice < 0xe0) return static_cast<float>(choice % 32 - 8) * 0.25F;
  if (choice < 0xfe) return kEdges[static_cast<std::size_t>(choice - 0xe0) % std::size(kEdges)];
  return FromBytes<float>(*this);
}

int Input::Count(int most) {
  const int n = AnyInt();
  if (n >= 1 << 24) return n;
  return n < 0 ? std::max(n, -2) : n % (most + 1);
}

std::string Input::Until(std::uint8_t separator) {
  const auto end = std::find(rest_.begin(), rest_.end(), separator);
  std::string text(rest_.begin(), end);
  rest_ = rest_.subspan(std::min(text.size() + 1, rest_.size()));
  return text;
}

std::string Expanded(Bytes bytes) {
  constexpr std::size_t kLongest = 600000;
  std::string text;
  Input input(bytes);
  while (!input.empty() && text.size() < kLongest) {
    const std::uint8_t byte = input.Byte();
    if (byte != 0xff) {
      text += static_cast<char>(byte);
      continue;
    }
    const auto character = static_cast<char>(input.Byte());
    const std::size_t high = input.Byte();
    text.append(3 * (256 * high + input.Byte()), character);
  }
  return text;
}

std::string Format(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  char* text = nullptr;
  const int length = vasprintf(&text, format, arguments);
  va_end(arguments);
  if (length < 0) GiveUp("vasprintf");
  const std::unique_ptr<char, decltype(&std::free)> owner(text, std::free);
  return text;
}

MemoryFile::MemoryFile(std::string_view text)
    : descriptor_(memfd_create("fuzz", MFD_CLOEXEC)),
      path_("/proc/self/fd/" + std::to_string(descriptor_)) {
  if (descriptor_ < 0) GiveUp("memfd_create");
  while (!text.empty()) {
    const ssize_t written = write(descriptor_, text.data(), text.size());
    if (written < 0) GiveUp("write");
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

MemoryFile::~MemoryFile() { close(descriptor_); }

std::string MemoryFile::Text() const {
  std::string text;
  std::array<char, 65536> block;
  for (;;) {
    const ssize_t count =
        pread(descriptor_, block.data(), block.size(), static_cast<off_t>(text.size()));
    if (count < 0) GiveUp("pread");
    if (count == 0) return text;
    text.append(block.data(), static_cast<std::size_t>(count));
  }
}

Sandbox::Sandbox(const Memory& memory)
    : fatal_(molva::SetFatalHandler([](const char* message) { throw Ended{message}; })),
      end_(molva::SetEndHandler([] { throw Ended{}; })),
      allocate_(molva::SetAllocateFunction(AllocateWithinLimits)),
      memory_(memory) {
  limits = &memory_;
}

Sandbox::~Sandbox() {
  molva::SetAllocateFunction(allocate_);
  molva::SetEndHandler(end_);
  molva::SetFatalHandler(fatal_);
  limits = nullptr;
}

std::string Sandbox::Output() { return output_.Text(); }
std::string Sandbox::ErrorOutput() { return error_.Text(); }

Sandbox::Capture::Capture(std::FILE*& stream) : stream_(stream), replaced_(stream) {
  std::FILE* memory = open_memstream(&text_, &size_);
  if (memory == nullptr) GiveUp("open_memstream");
  stream_ = memory;
}

Sandbox::Capture::~Capture() {
  std::fclose(std::exchange(stream_, replaced_));
  std::free(text_);
}

std::string Sandbox::Capture::Text() {
  std::fflush(stream_);
  return {text_, size_};
}

}  // namespace fuzzing
