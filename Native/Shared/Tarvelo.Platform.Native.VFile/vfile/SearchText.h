/// @file
/// A text that is searched for, one element of the file at a time: bytes or units.
#pragma once

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "host/Unit.h"
#include "vfile/Blocks.h"

namespace vfile {

/// The length of a text as a search takes it. One that is no count counts as the largest, which no file holds: a search
/// for it goes through the file and finds nothing.
constexpr std::int32_t SearchLength(std::size_t length) {
  return static_cast<std::int32_t>(std::min(length, std::size_t{MaxLen}));
}

/// The smallest shift `s` from 1 up after which a match of the first `k` elements of a pattern may still be one: the
/// pattern from `s` to `k` - 1 equals the pattern from 0 to `k` - `s` - 1. It is the shift of Knuth, Morris and Pratt,
/// computed from the pattern when it is needed, so that a search has no table. `equal(i, j)` compares two elements.
template <typename Equal>
std::int32_t Shift(std::int32_t k, Equal equal) {
  std::int32_t s = 1;
  for (std::int32_t t = 0; s + t < k;) {
    if (equal(s + t, t)) {
      ++t;
    } else {
      ++s;
      t = 0;
    }
  }
  return s;
}

/// Bytes, of which `toupper` decides what counts where case does not.
class SearchedBytes {
 public:
  using Element = unsigned char;

  explicit SearchedBytes(bool ignoreCase) : sensitive_(!ignoreCase) {
    for (int byte = 0; ignoreCase && byte < 256; ++byte) {
      upper_[byte] = static_cast<std::int16_t>(std::toupper(static_cast<signed char>(byte)));
    }
  }

  /// What counts of a byte.
  std::int16_t Folded(unsigned char byte) const { return sensitive_ ? byte : upper_[byte]; }

  /// The index from `i` on of a byte of which `wanted` counts, or `count`.
  std::int32_t FindFirst(const unsigned char* bytes, std::int32_t i, std::int32_t count, std::int16_t wanted) const {
    if (sensitive_) {
      const void* found = std::memchr(bytes + i, wanted, static_cast<std::size_t>(count - i));
      return found == nullptr ? count : static_cast<std::int32_t>(static_cast<const unsigned char*>(found) - bytes);
    }
    while (i < count && Folded(bytes[i]) != wanted) ++i;
    return i;
  }

 private:
  bool sensitive_;
  std::int16_t upper_[256];  // filled where case does not count
};

/// UTF-16 units, of which the ASCII letters alone have two cases.
class SearchedUnits {
 public:
  using Element = TChar;

  explicit SearchedUnits(bool ignoreCase) : ignoreCase_(ignoreCase) {}

  TChar Folded(TChar unit) const {
    return ignoreCase_ && unit >= 'a' && unit <= 'z' ? static_cast<TChar>(unit - ('a' - 'A')) : unit;
  }

  std::int32_t FindFirst(const unsigned char* bytes, std::int32_t i, std::int32_t count, TChar wanted) const;

 private:
  bool ignoreCase_;
};

/// The text of a search and how much of it the elements fed so far have matched, in order from its start or from its end. No
/// element is looked at twice. Elements are fed as the bytes of the file, at any alignment.
template <typename Searched>
class SearchText {
 public:
  using Element = typename Searched::Element;
  enum Direction { kForward, kBackward };

  /// `text` of `length` elements, at least one, outlives this.
  SearchText(const Element* text, std::int32_t length, Direction direction, bool ignoreCase)
      : searched_(ignoreCase), text_(text), length_(length), direction_(direction) {}

  /// Feeds `count` elements in the order in which they lie; gives how many it took if the text was then matched, else -1.
  std::int32_t FeedForward(const unsigned char* bytes, std::int32_t count) {
    for (std::int32_t i = 0; i < count;) {
      if (k_ == 0) {
        i = searched_.FindFirst(bytes, i, count, At(0));
        if (i == count) break;
      }
      if (Take(ElementAt(bytes, i++))) return i;
    }
    return -1;
  }

  /// Feeds `count` elements from the last to the first; gives how many it took if the text was then matched, else -1.
  std::int32_t FeedBackward(const unsigned char* bytes, std::int32_t count) {
    for (std::int32_t i = count; i > 0;) {
      if (k_ == 0) {
        while (i > 0 && searched_.Folded(ElementAt(bytes, i - 1)) != At(0)) --i;
        if (i == 0) break;
      }
      if (Take(ElementAt(bytes, --i))) return count - i;
    }
    return -1;
  }

  static Element ElementAt(const unsigned char* bytes, std::int32_t i) {
    Element element;
    std::memcpy(&element, bytes + static_cast<std::size_t>(i) * sizeof element, sizeof element);
    return element;
  }

 private:
  /// What counts of the element `i` of the text in the order of the search.
  auto At(std::int32_t i) const { return searched_.Folded(text_[direction_ == kForward ? i : length_ - 1 - i]); }

  /// Goes on by one element; whether the text is matched.
  bool Take(Element element) {
    const auto folded = searched_.Folded(element);
    while (k_ > 0 && folded != At(k_)) {
      k_ -= Shift(k_, [this](std::int32_t i, std::int32_t j) { return At(i) == At(j); });
    }
    if (folded == At(k_)) ++k_;
    return k_ == length_;
  }

  Searched searched_;
  const Element* text_;
  std::int32_t length_;
  Direction direction_;
  std::int32_t k_ = 0;  // elements matched, below `length_`
};

inline std::int32_t SearchedUnits::FindFirst(const unsigned char* bytes, std::int32_t i, std::int32_t count,
                                             TChar wanted) const {
  while (i < count && Folded(SearchText<SearchedUnits>::ElementAt(bytes, i)) != wanted) ++i;
  return i;
}

}  // namespace vfile
