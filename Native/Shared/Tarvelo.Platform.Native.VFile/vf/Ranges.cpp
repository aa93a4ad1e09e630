#include "vf/Ranges.h"

#include "tcharvfile/Inside.h"
#include "vfile/Require.h"

using vfile::Inside;

namespace vf {

/// The pieces, each of a block, or of the one unit that two blocks share.
struct Window::Store {
  static constexpr int kPieces = 4;

  struct Piece {
    std::int32_t first = 0;
    std::int32_t count = 0;
    alignas(TChar) unsigned char bytes[BlkSize];
  };

  Store(const VFile& source, std::int32_t elementWidth) : file(source), width(elementWidth) {}

  void Load(Piece& piece, std::int32_t index);

  const VFile& file;
  const std::int32_t width;  // bytes of an element
  BlkRdr cursor;
  Piece pieces[kPieces];
  int oldest = 0;
};

void Window::Store::Load(Piece& piece, std::int32_t index) {
  piece.count = 0;
  const std::int32_t position = index * width;
  Inside::Seek(file, cursor, position);
  // An element that begins on an odd place of a block cannot begin at the block's first byte.
  const std::int32_t skipped = cursor.base % width;
  const std::int32_t count = (cursor.ptr->len - skipped) / width;
  const std::int32_t first = (cursor.base + skipped) / width;
  if (index >= first && index < first + count) {
    const BlkRdr start = {cursor.ptr, cursor.base, static_cast<std::int16_t>(skipped)};
    if (!Inside::Copy(file, start, piece.bytes, static_cast<std::int16_t>(count * width))) return;
    piece.first = first;
    piece.count = count;
  } else if (file.ReadAt(position, piece.bytes, width) == width) {
    piece.first = index;
    piece.count = 1;
  }
}

Window::Window(const VFile& file, std::int32_t width)
    : length_(file.Length() / width),
      changes_(&Inside::ChangesOf(file)),
      changesSeen_(*changes_),
      store_(std::make_unique<Store>(file, width)) {}

Window::Window(const VFile& file) : Window(file, 1) {}

Window::Window(const TCharVFile& text) : Window(Inside::FileOf(text), sizeof(TChar)) {}

Window::~Window() = default;

void Window::Fetch(std::int32_t index) {
  count_ = 0;
  if (index < 0 || index >= length_ || *changes_ != changesSeen_) return;
  Store::Piece* found = nullptr;
  for (Store::Piece& piece : store_->pieces) {
    if (index >= piece.first && index < piece.first + piece.count) found = &piece;
  }
  if (found == nullptr) {
    found = &store_->pieces[store_->oldest];
    store_->oldest = (store_->oldest + 1) % Store::kPieces;
    store_->Load(*found, index);
  }
  bytes_ = found->bytes;
  first_ = found->first;
  count_ = found->count;
}

void Window::HaltChanged() const { vfile::Require(TSTR("Ranges"), false, TSTR("the file has changed")); }

}  // namespace vf
