/// @file
/// The content of a file as ranges: by pieces, by bytes and by units.
///
///     const VFile file = vf::FileFrom("one two two\n");
///     std::size_t size = 0;
///     for (const std::string_view piece : vf::Pieces(file)) size += piece.size();
///     const vf::Bytes bytes(file);
///     const std::string_view two = "two";
///     const auto at = std::search(bytes.begin(), bytes.end(), two.begin(), two.end());
///     return size == 12 && at.Position() == 4 ? resDone : resNotDone;
///
/// All of them read the file without moving it, also a const one, and own nothing but a buffer; the file must outlive them.
///
/// Validity: a change of the file's content ends that of the range and of all that came from it, and so do a move and an exchange of the
/// file; in a checking build using them then halts ("VFile", "Ranges", "the file has changed"), elsewhere elements are the old ones, or 0. Moving the file's position, reading,
/// searching and flags change nothing. `from` and `to` are taken once, when the range is made, and clamped to the content; a
/// negative one counts as 0.
///
/// Temporaries: iterators need their range, and the range needs its file. These do not compile or dangle:
///
///     for (auto piece : vf::Pieces(MakeFile()))                     does not compile: the file would be gone
///     auto at = std::ranges::find(vf::Bytes(file), 'x');            `at` is std::ranges::dangling
///     auto at = vf::Bytes(file).begin();                            does not compile
///     auto at = std::begin(vf::Bytes(file));                        dangles: the range is gone
///
/// Behind a halt of the virtual memory that returned an element reads as 0, and pieces end. Heap: 4 KB for each range, `std::bad_alloc`
/// where there is no room. Thread: the file's.
#pragma once

#include <algorithm>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <memory>
#include <string_view>

#include "host/Export.h"
#include "hsys/Checked.h"
#include "tcharvfile/TCharVFile.h"

namespace vf {

/// The pieces of a file that were read last, for the ranges below. Indexes and counts are elements: bytes of a `VFile`, units of a
/// `TCharVFile`.
class VFILE_API Window {
 public:
  /// @{
  /// Of a file that outlives it.
  explicit Window(const VFile& file);
  explicit Window(const TCharVFile& text);
  /// @}
  ~Window();
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  /// How many elements there were.
  std::int32_t Length() const { return length_; }
  /// @{
  /// The piece that `Fetch` found last: where its elements lie, the index of the first, how many they are.
  const unsigned char* Bytes() const { return bytes_; }
  std::int32_t First() const { return first_; }
  std::int32_t Count() const { return count_; }
  /// @}
  /// Finds the piece that has the element `index`, which is there; one of none where it cannot be had.
  void Fetch(std::int32_t index);
  /// In a checking build halts if the file has changed.
  void CheckUnchanged() const {
    if constexpr (hsys::kChecked) {
      if (*changes_ != changesSeen_) HaltChanged();
    }
  }

 private:
  struct VFILE_LOCAL Store;

  VFILE_LOCAL Window(const VFile& file, std::int32_t width);
  void HaltChanged() const;

  const unsigned char* bytes_ = nullptr;
  std::int32_t first_ = 0;
  std::int32_t count_ = 0;
  std::int32_t length_;
  const std::uint32_t* changes_;
  std::uint32_t changesSeen_;
  std::unique_ptr<Store> store_;
};

/// A part of a file as a random-access range of elements by value. Works with the algorithms of `<algorithm>`, `std::ranges` and
/// `<regex>`. Movable, which leaves its iterators valid.
template <typename File, typename Element>
class Elements {
 public:
  /// A place in the range. Two compare by their places alone and must be of one range. State: the place and a pointer.
  ///
  /// Dereferencing gives the element itself, so there is no address to take. It costs some nanoseconds while it stays in one of the
  /// four pieces of up to a block that were looked at last; the next one is found by a step, one far away as the file finds a position.
  class Iterator {
   public:
    /// @{
    /// What the standard library asks of a random-access iterator.
    using iterator_concept = std::random_access_iterator_tag;
    using iterator_category = std::random_access_iterator_tag;
    using value_type = Element;
    using difference_type = std::ptrdiff_t;
    using reference = Element;
    using pointer = void;

    Iterator() = default;

    /// The place in the file, in elements.
    std::int32_t Position() const { return index_; }

    Element operator*() const {
      window_->CheckUnchanged();
      auto offset = static_cast<std::uint32_t>(index_ - window_->First());
      if (offset >= static_cast<std::uint32_t>(window_->Count())) [[unlikely]] {
        window_->Fetch(index_);
        if (window_->Count() == 0) return Element();
        offset = static_cast<std::uint32_t>(index_ - window_->First());
      }
      Element element;
      std::memcpy(&element, window_->Bytes() + offset * sizeof(Element), sizeof element);
      return element;
    }
    Element operator[](difference_type n) const { return *(*this + n); }

    Iterator& operator++() { return *this += 1; }
    Iterator& operator--() { return *this -= 1; }
    Iterator operator++(int) {
      const Iterator before = *this;
      ++*this;
      return before;
    }
    Iterator operator--(int) {
      const Iterator before = *this;
      --*this;
      return before;
    }
    Iterator& operator+=(difference_type n) {
      index_ = static_cast<std::int32_t>(index_ + n);
      return *this;
    }
    Iterator& operator-=(difference_type n) { return *this += -n; }
    friend Iterator operator+(Iterator at, difference_type n) { return at += n; }
    friend Iterator operator+(difference_type n, Iterator at) { return at += n; }
    friend Iterator operator-(Iterator at, difference_type n) { return at -= n; }
    friend difference_type operator-(const Iterator& left, const Iterator& right) { return left.index_ - right.index_; }
    friend bool operator==(const Iterator& left, const Iterator& right) { return left.index_ == right.index_; }
    friend std::strong_ordering operator<=>(const Iterator& left, const Iterator& right) {
      return left.index_ <=> right.index_;
    }
    /// @}

   private:
    friend class Elements;
    Iterator(Window* window, std::int32_t index) : window_(window), index_(index) {}

    Window* window_ = nullptr;
    std::int32_t index_ = 0;
  };

  /// @{
  /// As of a container of the standard library.
  using value_type = Element;
  using iterator = Iterator;
  using const_iterator = Iterator;
  /// @}

  /// The elements from `from` up to, not including, `to`.
  explicit Elements(const File& file, std::int32_t from = 0, std::int32_t to = MaxLen)
      : window_(std::make_unique<Window>(file)),
        from_(std::clamp(from, 0, window_->Length())),
        to_(std::clamp(to, from_, window_->Length())) {}
  explicit Elements(const File&& file, std::int32_t from = 0, std::int32_t to = MaxLen) = delete;

  /// @{
  /// As of a container; those of a temporary would dangle.
  Iterator begin() const& { return {window_.get(), from_}; }
  Iterator end() const& { return {window_.get(), to_}; }
  Iterator begin() const&& = delete;
  Iterator end() const&& = delete;
  std::size_t size() const { return static_cast<std::size_t>(to_ - from_); }
  bool empty() const { return from_ == to_; }
  Element operator[](std::size_t n) const { return begin()[static_cast<std::ptrdiff_t>(n)]; }
  /// @}

 private:
  std::unique_ptr<Window> window_;
  std::int32_t from_;
  std::int32_t to_;
};

/// Bytes of a file, as `char`; `static_cast<unsigned char>` makes numbers of them.
using Bytes = Elements<VFile, char>;
/// Units of a text.
using Units = Elements<TCharVFile, TChar>;

/// A part of a file as its pieces, of a block each, one after another: an input range of views, since the next piece takes the place of the
/// last. A view is valid until the iterator moves on; none is empty. Nearly as fast as memory, see docs/performance.md.
template <typename Element>
class PieceRange {
 public:
  using View = std::basic_string_view<Element>;  ///< A piece.

  /// An input iterator: one that moves on takes the view from its copies. Equal to the sentinel where no piece is left.
  class Iterator {
   public:
    /// @{
    /// What the standard library asks of an input iterator.
    using iterator_concept = std::input_iterator_tag;
    using value_type = View;
    using difference_type = std::ptrdiff_t;

    View operator*() const {
      range_->window_.CheckUnchanged();
      const std::int32_t skipped = at_ - range_->window_.First();
      const auto* elements = reinterpret_cast<const Element*>(range_->window_.Bytes());
      return {elements + skipped, static_cast<std::size_t>(count_)};
    }
    Iterator& operator++() {
      at_ += count_;
      Find();
      return *this;
    }
    void operator++(int) { ++*this; }
    bool operator==(std::default_sentinel_t) const { return count_ == 0; }
    /// @}

   private:
    friend class PieceRange;
    Iterator(const PieceRange* range, std::int32_t at) : range_(range), at_(at) { Find(); }

    void Find() {
      range_->window_.CheckUnchanged();
      count_ = 0;
      if (at_ >= range_->to_) return;
      range_->window_.Fetch(at_);
      if (range_->window_.Count() == 0) return;
      const std::int32_t behind = range_->window_.First() + range_->window_.Count();
      count_ = std::min(behind, range_->to_) - at_;
    }

    const PieceRange* range_;
    std::int32_t at_;
    std::int32_t count_ = 0;
  };

  /// See `Pieces`.
  template <typename File>
  PieceRange(const File& file, std::int32_t from, std::int32_t to)
      : window_(file), from_(std::clamp(from, 0, window_.Length())), to_(std::clamp(to, from_, window_.Length())) {}

  /// To be called once at a time: a second one takes the pieces of the first.
  Iterator begin() const { return Iterator(this, from_); }
  std::default_sentinel_t end() const { return {}; }  ///< Where no piece is left.

 private:
  mutable Window window_;
  std::int32_t from_;
  std::int32_t to_;
};

/// @{
/// The pieces from `from` up to, not including, `to`: `std::string_view` of a file, `vf::TStringView` of a text.
inline PieceRange<char> Pieces(const VFile& file, std::int32_t from = 0, std::int32_t to = MaxLen) {
  return {file, from, to};
}
inline PieceRange<TChar> Pieces(const TCharVFile& text, std::int32_t from = 0, std::int32_t to = MaxLen) {
  return {text, from, to};
}
PieceRange<char> Pieces(const VFile&& file, std::int32_t from = 0, std::int32_t to = MaxLen) = delete;
PieceRange<TChar> Pieces(const TCharVFile&& text, std::int32_t from = 0, std::int32_t to = MaxLen) = delete;
/// @}

}  // namespace vf
