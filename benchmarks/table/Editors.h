// Things that bytes go into and out of: the library's file, three ways to hold a text in memory, and two that do only the part
// of an edit that nobody can avoid. Each is made from a setting, loads its content, and gives the sum of it.
#pragma once

#include <cstdint>
#include <cstring>
#include <ext/rope>
#include <string>
#include <vector>

#include "Contestant.h"
#include "HostFile.h"
#include "Measuring.h"
#include "Ours.h"

/// The library's.
class VirtualFile {
 public:
  explicit VirtualFile(const Setting& setting) {
    UseSettings(setting);
    LoadContent(file_, setting);
  }
  void Insert(std::int32_t at, const char* bytes, std::int32_t count) {
    file_.SetPos(at);
    if (count == 1) {
      file_.InsertByte(static_cast<unsigned char>(*bytes));
    } else {
      file_.InsertBytes(bytes, count);
    }
  }
  void Delete(std::int32_t at, std::int32_t count) { file_.Delete(at, count); }
  std::uint64_t Sum() { return SumOf(file_); }

 private:
  VFile file_;
};

class Rope {
 public:
  explicit Rope(const Setting& setting) {
    const std::string content = Content(setting.content);
    rope_ = __gnu_cxx::crope(content.data(), content.size());
  }
  void Insert(std::int32_t at, const char* bytes, std::int32_t count) {
    rope_.insert(static_cast<std::size_t>(at), bytes, static_cast<std::size_t>(count));
  }
  void Delete(std::int32_t at, std::int32_t count) {
    rope_.erase(static_cast<std::size_t>(at), static_cast<std::size_t>(count));
  }
  std::uint64_t Sum() const {
    Checksum sum;
    std::vector<char> piece(1 << 16);
    for (std::size_t at = 0; at < rope_.size(); at += piece.size()) {
      const std::size_t count = std::min(piece.size(), rope_.size() - at);
      rope_.copy(at, count, piece.data());
      sum.Add(piece.data(), count);
    }
    return sum.Value();
  }

 private:
  __gnu_cxx::crope rope_;
};

class String {
 public:
  explicit String(const Setting& setting) : text_(Content(setting.content)) {}
  void Insert(std::int32_t at, const char* bytes, std::int32_t count) {
    text_.insert(static_cast<std::size_t>(at), bytes, static_cast<std::size_t>(count));
  }
  void Delete(std::int32_t at, std::int32_t count) {
    text_.erase(static_cast<std::size_t>(at), static_cast<std::size_t>(count));
  }
  std::uint64_t Sum() const {
    Checksum sum;
    sum.Add(text_.data(), text_.size());
    return sum.Value();
  }

 private:
  std::string text_;
};

/// An array with its free room where the last edit was.
class GapBuffer {
 public:
  explicit GapBuffer(const Setting& setting) : bytes_(Content(setting.content)), gap_(bytes_.size()), end_(gap_) {}
  void Insert(std::int32_t at, const char* bytes, std::int32_t count) {
    const auto size = static_cast<std::size_t>(count);
    if (end_ - gap_ < size) Grow(size);
    MoveTo(static_cast<std::size_t>(at));
    std::memcpy(&bytes_[gap_], bytes, size);
    gap_ += size;
  }
  void Delete(std::int32_t at, std::int32_t count) {
    MoveTo(static_cast<std::size_t>(at));
    end_ += static_cast<std::size_t>(count);
  }
  std::uint64_t Sum() {
    MoveTo(bytes_.size() - (end_ - gap_));
    Checksum sum;
    sum.Add(bytes_.data(), gap_);
    return sum.Value();
  }

 private:
  void MoveTo(std::size_t at) {
    if (at < gap_) {
      std::memmove(&bytes_[end_ - (gap_ - at)], &bytes_[at], gap_ - at);
    } else {
      std::memmove(&bytes_[gap_], &bytes_[end_], at - gap_);
    }
    end_ = end_ - gap_ + at;
    gap_ = at;
  }
  void Grow(std::size_t count) {
    const std::size_t more = bytes_.size() / 2 + count;
    bytes_.insert(end_, more, ' ');
    end_ += more;
  }

  std::string bytes_;  ///< text, gap, text
  std::size_t gap_;    ///< start of the gap
  std::size_t end_;    ///< its end
};

/// The least that an edit of a file costs whose pages are not in memory: a page in, a move in it, and the page out.
class PageEdits {
 public:
  explicit PageEdits(const Setting& setting)
      : file_(NamelessCopy(setting.directory, setting.content)), pages_(setting.size / kPage) {}
  void Insert(std::int32_t at, const char* bytes, std::int32_t count) {
    const auto size = static_cast<std::size_t>(count);
    Edit(at, size, [&](char* place, std::size_t behind) {
      std::memmove(place + size, place, behind);
      std::memcpy(place, bytes, size);
    });
  }
  void Delete(std::int32_t at, std::int32_t count) {
    const auto size = static_cast<std::size_t>(count);
    Edit(at, size, [&](char* place, std::size_t behind) { std::memmove(place, place + size, behind); });
  }
  static std::uint64_t Sum() { return 0; }

 private:
  template <typename Move>
  void Edit(std::int32_t at, std::size_t size, Move move) {
    char bytes[kPage];
    const std::int64_t page = at / kPage % pages_;
    const std::size_t ix = std::min(static_cast<std::size_t>(at % kPage), sizeof bytes - size);
    file_.ReadPage(page, bytes);
    move(bytes + ix, sizeof bytes - ix - size);
    file_.WritePage(page, bytes);
  }

  HostFile file_;
  std::int64_t pages_;
};

/// The least that an edit of a block in memory costs: the move.
class OneBlock {
 public:
  explicit OneBlock(const Setting&) {}
  void Insert(std::int32_t at, const char* bytes, std::int32_t count) {
    const auto ix = static_cast<std::size_t>(at % kPage);
    const std::size_t size = std::min(static_cast<std::size_t>(count), sizeof bytes_ - ix);
    std::memmove(bytes_ + ix + size, bytes_ + ix, sizeof bytes_ - ix - size);
    std::memcpy(bytes_ + ix, bytes, size);
    Keep(bytes_);
  }
  void Delete(std::int32_t at, std::int32_t count) {
    const auto ix = static_cast<std::size_t>(at % kPage);
    const std::size_t size = std::min(static_cast<std::size_t>(count), sizeof bytes_ - ix);
    std::memmove(bytes_ + ix, bytes_ + ix + size, sizeof bytes_ - ix - size);
    Keep(bytes_);
  }
  static std::uint64_t Sum() { return 0; }

 private:
  char bytes_[kPage] = {};
};
