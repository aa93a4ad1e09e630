/// @file
/// A text that is searched for, one byte of the file at a time.
#pragma once

#include <cctype>
#include <cstdint>
#include <cstring>

namespace vfile {

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

/// The text of a search and how much of it the bytes fed so far have matched, in order from its start or from its end. No
/// byte is looked at twice.
class SearchText {
 public:
  enum Direction { kForward, kBackward };

  /// `text` is not empty and outlives this.
  SearchText(const char* text, Direction direction, bool ignoreCase)
      : text_(text),
        length_(static_cast<std::int32_t>(std::strlen(text))),
        direction_(direction),
        sensitive_(!ignoreCase) {
    for (int byte = 0; ignoreCase && byte < 256; ++byte) {
      folded_[byte] = static_cast<std::int16_t>(std::toupper(static_cast<signed char>(byte)));
    }
  }

  std::int32_t Length() const { return length_; }

  /// Feeds bytes in the order in which they lie; gives how many it took if the text was then matched, else -1.
  std::int32_t FeedForward(const unsigned char* bytes, std::int32_t count) {
    for (std::int32_t i = 0; i < count;) {
      if (k_ == 0) {
        i = FindStart(bytes, i, count);
        if (i == count) break;
      }
      if (Take(bytes[i++])) return i;
    }
    return -1;
  }

  /// Feeds bytes from the last to the first; gives how many it took if the text was then matched, else -1.
  std::int32_t FeedBackward(const unsigned char* bytes, std::int32_t count) {
    for (std::int32_t i = count; i > 0;) {
      if (k_ == 0) {
        while (i > 0 && Folded(bytes[i - 1]) != At(0)) --i;
        if (i == 0) break;
      }
      if (Take(bytes[--i])) return count - i;
    }
    return -1;
  }

 private:
  /// What counts of a byte.
  std::int16_t Folded(unsigned char byte) const { return sensitive_ ? byte : folded_[byte]; }

  /// The element `i` of the text in the order of the search.
  std::int16_t At(std::int32_t i) const {
    return Folded(static_cast<unsigned char>(text_[direction_ == kForward ? i : length_ - 1 - i]));
  }

  /// The index from `i` on of a byte with which a match can begin, or `count`.
  std::int32_t FindStart(const unsigned char* bytes, std::int32_t i, std::int32_t count) const {
    if (sensitive_) {
      const void* found =
          std::memchr(bytes + i, static_cast<unsigned char>(text_[0]), static_cast<std::size_t>(count - i));
      return found == nullptr ? count : static_cast<std::int32_t>(static_cast<const unsigned char*>(found) - bytes);
    }
    const std::int16_t wanted = At(0);
    while (i < count && Folded(bytes[i]) != wanted) ++i;
    return i;
  }

  /// Goes on by one byte; whether the text is matched.
  bool Take(unsigned char byte) {
    const std::int16_t ch = Folded(byte);
    while (k_ > 0 && ch != At(k_)) k_ -= Shift(k_, [this](std::int32_t i, std::int32_t j) { return At(i) == At(j); });
    if (ch == At(k_)) ++k_;
    return k_ == length_;
  }

  const char* text_;
  std::int32_t length_;
  Direction direction_;
  bool sensitive_;
  std::int32_t k_ = 0;        // elements matched, below `length_`
  std::int16_t folded_[256];  // by `toupper`; filled where case does not count
};

}  // namespace vfile
