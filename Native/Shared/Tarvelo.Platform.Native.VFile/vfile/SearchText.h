/// @file
/// A text that is searched for in the runs of a file: bytes or units.
#pragma once

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "host/Unit.h"
#include "vfile/Blocks.h"
#include "vfile/Lanes.h"

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

/// The elements that count as one: up to two are compared by lanes.
template <typename Element>
struct Variants {
  std::int32_t count = 0;
  Element first = 0;
  Element second = 0;

  void Add(Element element) {
    (count == 0 ? first : second) = element;
    if (count++ == 0) second = element;
  }
};

/// Bytes, of which `toupper` decides what counts where case does not.
class SearchedBytes {
 public:
  using Element = unsigned char;

  explicit SearchedBytes(bool ignoreCase) : sensitive_(!ignoreCase) {
    for (int byte = 0; ignoreCase && byte < 256; ++byte) {
      upper_[byte] = static_cast<std::int16_t>(std::toupper(static_cast<signed char>(byte)));
    }
  }

  bool IsSensitive() const { return sensitive_; }
  /// What counts of a byte.
  std::int16_t Folded(unsigned char byte) const { return sensitive_ ? byte : upper_[byte]; }
  /// All bytes that count as this one.
  Variants<unsigned char> VariantsOf(unsigned char wanted) const {
    Variants<unsigned char> variants;
    if (sensitive_) {
      variants.Add(wanted);
    } else {
      for (int byte = 0; byte < 256; ++byte) {
        if (upper_[byte] == upper_[wanted]) variants.Add(static_cast<unsigned char>(byte));
      }
    }
    return variants;
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

  bool IsSensitive() const { return !ignoreCase_; }
  TChar Folded(TChar unit) const {
    return ignoreCase_ && unit >= 'a' && unit <= 'z' ? static_cast<TChar>(unit - kCaseDistance) : unit;
  }
  Variants<TChar> VariantsOf(TChar wanted) const {
    Variants<TChar> variants;
    variants.Add(Folded(wanted));
    if (ignoreCase_ && variants.first >= 'A' && variants.first <= 'Z') {
      variants.Add(static_cast<TChar>(variants.first + kCaseDistance));
    }
    return variants;
  }

 private:
  static constexpr std::int32_t kCaseDistance = 'a' - 'A';

  bool ignoreCase_;
};

/// The text of a search and how much of it the elements fed so far have matched, in order from its start or from its end. Elements
/// are fed as the bytes of the file, run by run, at any alignment.
///
/// Inside a run, places where the first and the last element of the text stand as far apart as they should are found many elements
/// at a time, and compared. What a border between runs cuts is matched element by element, as told at `Shift`, and so is the rest of
/// a run where too many places turn out wrong: the cost stays linear in the elements, whatever they are.
template <typename Searched>
class SearchText {
 public:
  using Element = typename Searched::Element;
  enum Direction { kForward, kBackward };

  /// `text` of `length` elements, at least one, outlives this.
  SearchText(const Element* text, std::int32_t length, Direction direction, bool ignoreCase)
      : searched_(ignoreCase),
        text_(text),
        length_(length),
        direction_(direction),
        first_(searched_.VariantsOf(text[0])),
        middle_(searched_.VariantsOf(text[length / 2])),
        last_(searched_.VariantsOf(text[length - 1])) {}

  /// Forgets what was matched, for a search from somewhere else.
  void Restart() { k_ = 0; }

  /// Feeds `count` elements in the order in which they lie; gives how many it took if the text was then matched, else -1.
  std::int32_t FeedForward(const unsigned char* bytes, std::int32_t count) {
    std::int32_t i = 0;
    while (k_ > 0 && i < count) {
      if (Take(ElementAt(bytes, i++))) return i;
    }
    const std::int32_t places = count - length_ + 1;
    for (std::int32_t patience = count; HasFilter() && patience > 0 && i < places; patience -= length_) {
      i = NextPlace(bytes, i, places);
      if (i == places) break;
      if (MatchesAt(bytes, i)) return i + length_;
      ++i;
    }
    while (i < count) {
      if (Take(ElementAt(bytes, i++))) return i;
    }
    return -1;
  }

  /// Feeds `count` elements from the last to the first; gives how many it took if the text was then matched, else -1.
  std::int32_t FeedBackward(const unsigned char* bytes, std::int32_t count) {
    std::int32_t i = count;
    while (k_ > 0 && i > 0) {
      if (Take(ElementAt(bytes, --i))) return count - i;
    }
    for (std::int32_t patience = count; HasFilter() && patience > 0 && i >= length_; patience -= length_) {
      const std::int32_t places = PlacesUpToLast(bytes, i - length_ + 1);
      i = places + length_ - 1;
      if (places == 0) break;
      if (MatchesAt(bytes, places - 1)) return count - (places - 1);
      --i;
    }
    while (i > 0) {
      if (Take(ElementAt(bytes, --i))) return count - i;
    }
    return -1;
  }

 private:
  using ElementLanes = Lanes<Element>;

  static const unsigned char* At(const unsigned char* bytes, std::int32_t i) {
    return bytes + static_cast<std::size_t>(i) * sizeof(Element);
  }

  static Element ElementAt(const unsigned char* bytes, std::int32_t i) {
    Element element;
    std::memcpy(&element, At(bytes, i), sizeof element);
    return element;
  }

  bool HasFilter() const { return first_.count <= 2 && middle_.count <= 2 && last_.count <= 2; }

  /// Which of the places from `i` on, as many as there are lanes, have the right element at both ends, and in the middle too.
  std::uint32_t Places(const unsigned char* bytes, std::int32_t i) const {
    const auto having = [&](const Variants<Element>& variants, std::int32_t offset) {
      return ElementLanes::Either(At(bytes, i + offset), variants.first, variants.second);
    };
    const std::uint32_t ends = having(first_, 0) & having(last_, length_ - 1);
    return ends == 0 ? 0 : ends & having(middle_, length_ / 2);
  }

  bool IsPlace(const unsigned char* bytes, std::int32_t i) const {
    return Folded(bytes, i) == Wanted(0) && Folded(bytes, i + length_ - 1) == Wanted(length_ - 1);
  }

  /// The first such place from `i` on, or `places`.
  std::int32_t NextPlace(const unsigned char* bytes, std::int32_t i, std::int32_t places) const {
    for (; i + ElementLanes::kCount <= places; i += ElementLanes::kCount) {
      const std::uint32_t mask = Places(bytes, i);
      if (mask != 0) return i + std::countr_zero(mask);
    }
    while (i < places && !IsPlace(bytes, i)) ++i;
    return i;
  }

  /// How many of the first `places` places there are up to the last such one.
  std::int32_t PlacesUpToLast(const unsigned char* bytes, std::int32_t places) const {
    for (; places >= ElementLanes::kCount; places -= ElementLanes::kCount) {
      const std::uint32_t mask = Places(bytes, places - ElementLanes::kCount);
      if (mask != 0) return places - ElementLanes::kCount + static_cast<std::int32_t>(std::bit_width(mask));
    }
    while (places > 0 && !IsPlace(bytes, places - 1)) --places;
    return places;
  }

  /// Whether the text stands at a place whose ends are right.
  bool MatchesAt(const unsigned char* bytes, std::int32_t i) const {
    if (length_ <= 2) return true;
    if (searched_.IsSensitive()) {
      return std::memcmp(At(bytes, i + 1), text_ + 1, static_cast<std::size_t>(length_ - 2) * sizeof(Element)) == 0;
    }
    std::int32_t j = 1;
    while (j < length_ - 1 && Folded(bytes, i + j) == Wanted(j)) ++j;
    return j == length_ - 1;
  }

  auto Folded(const unsigned char* bytes, std::int32_t i) const { return searched_.Folded(ElementAt(bytes, i)); }
  /// What counts of the element `i` of the text.
  auto Wanted(std::int32_t i) const { return searched_.Folded(text_[i]); }
  /// The same in the order of the search.
  auto InOrder(std::int32_t i) const { return Wanted(direction_ == kForward ? i : length_ - 1 - i); }

  /// Goes on by one element; whether the text is matched.
  bool Take(Element element) {
    const auto folded = searched_.Folded(element);
    while (k_ > 0 && folded != InOrder(k_)) {
      k_ -= Shift(k_, [this](std::int32_t i, std::int32_t j) { return InOrder(i) == InOrder(j); });
    }
    if (folded == InOrder(k_)) ++k_;
    return k_ == length_;
  }

  Searched searched_;
  const Element* text_;
  std::int32_t length_;
  Direction direction_;
  Variants<Element> first_;
  Variants<Element> middle_;
  Variants<Element> last_;
  std::int32_t k_ = 0;  // elements matched, below `length_`
};

}  // namespace vfile
