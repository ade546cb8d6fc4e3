// SPDX-License-Identifier: MIT
//
// A span that is indexed by ints, as rows, columns, clusters and nodes are numbered. A written cast
// thus always means a rounding or a width.
#pragma once

#include <concepts>
#include <cstddef>
#include <ranges>
#include <span>
#include <type_traits>
#include <utility>

namespace molva {

template <typename T>
class Span;

template <typename Range, typename T>
concept ConvertsToSpan =
    !std::same_as<std::remove_cvref_t<Range>, Span<T>> && std::convertible_to<Range, std::span<T>>;

// Converts from and to std::span. No index and no count is below 0.
template <typename T>
class Span : public std::span<T> {
  using Base = std::span<T>;

 public:
  constexpr Span() = default;
  template <std::integral Count>
  constexpr Span(T* first, Count count) : Base(first, static_cast<std::size_t>(count)) {}
  template <ConvertsToSpan<T> Range>
  // NOLINTNEXTLINE(google-explicit-constructor): what is a span is one with ints.
  constexpr Span(Range&& range) : Base(std::forward<Range>(range)) {}

  template <std::integral Index>
  constexpr T& operator[](Index i) const {
    return Base::operator[](static_cast<std::size_t>(i));
  }
  template <std::integral Count>
  constexpr Span first(Count count) const {
    return Base::first(static_cast<std::size_t>(count));
  }
};

}  // namespace molva

template <typename T>
constexpr bool std::ranges::enable_borrowed_range<molva::Span<T>> = true;
template <typename T>
constexpr bool std::ranges::enable_view<molva::Span<T>> = true;
