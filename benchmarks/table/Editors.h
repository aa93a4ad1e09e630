// Things that bytes go into and out of: the library's file, three ways to hold a text in memory, and two that do only the part
// of an edit that nobody can avoid. Each is made from a setting, with the content, and gives the sum of what it holds.
#pragma once

#include <cstring>
#include <ext/rope>
#include <string>
#include <string_view>

#include "HostFile.h"
#include "Measuring.h"
#include "Ours.h"

/// The library's.
class VirtualFile {
 public:
  explicit VirtualFile(const Setting& setting) : file_(Loaded<VFile>(setting)) {}
  void Insert(std::size_t at, std::string_view bytes) {
    file_->SetPos(static_cast<std::int32_t>(at));
    if (bytes.size() == 1) {
      file_->InsertByte(static_cast<unsigned char>(bytes[0]));
    } else {
      file_->InsertBytes(bytes.data(), static_cast<std::int32_t>(bytes.size()));
    }
  }
  void Delete(std::size_t at, std::size_t count) {
    file_->Delete(static_cast<std::int32_t>(at), static_cast<std::int32_t>(count));
  }
  std::uint64_t Sum() { return SumOf(*file_); }

 private:
  std::shared_ptr<VFile> file_;
};

class Rope {
 public:
  explicit Rope(const Setting& setting) {
    const std::string content = Content(setting.content);
    rope_ = __gnu_cxx::crope(content.data(), content.size());
  }
  void Insert(std::size_t at, std::string_view bytes) { rope_.insert(at, bytes.data(), bytes.size()); }
  void Delete(std::size_t at, std::size_t count) { rope_.erase(at, count); }
  std::uint64_t Sum() const {
    std::size_t at = 0;
    return SumOfReads([&](char* piece) {
      const std::size_t count = rope_.copy(at, 1 << 16, piece);
      at += count;
      return static_cast<std::int32_t>(count);
    });
  }

 private:
  __gnu_cxx::crope rope_;
};

class String {
 public:
  explicit String(const Setting& setting) : text_(Content(setting.content)) {}
  void Insert(std::size_t at, std::string_view bytes) { text_.insert(at, bytes); }
  void Delete(std::size_t at, std::size_t count) { text_.erase(at, count); }
  std::uint64_t Sum() const { return SumOf(text_); }

 private:
  std::string text_;
};

/// An array with its free room where the last edit was.
class GapBuffer {
 public:
  explicit GapBuffer(const Setting& setting) : bytes_(Content(setting.content)), gap_(bytes_.size()), end_(gap_) {}
  void Insert(std::size_t at, std::string_view bytes) {
    if (end_ - gap_ < bytes.size()) Grow(bytes_.size() / 2 + bytes.size());
    MoveTo(at);
    std::memcpy(&bytes_[gap_], bytes.data(), bytes.size());
    gap_ += bytes.size();
  }
  void Delete(std::size_t at, std::size_t count) {
    MoveTo(at);
    end_ += count;
  }
  std::uint64_t Sum() {
    MoveTo(bytes_.size() - (end_ - gap_));
    return SumOf(std::string_view(bytes_).substr(0, gap_));
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
    bytes_.insert(end_, count, ' ');
    end_ += count;
  }

  std::string bytes_;  ///< text, gap, text
  std::size_t gap_;    ///< start of the gap
  std::size_t end_;    ///< its end
};

/// A block in memory and the moves of edits in it: the least that they cost.
class OneBlock {
 public:
  explicit OneBlock(const Setting&) {}
  void Insert(std::size_t at, std::string_view bytes) {
    const std::size_t ix = Place(at, bytes.size());
    std::memmove(bytes_ + ix + bytes.size(), bytes_ + ix, kPage - ix - bytes.size());
    std::memcpy(bytes_ + ix, bytes.data(), bytes.size());
    Keep(bytes_);
  }
  void Delete(std::size_t at, std::size_t count) {
    const std::size_t ix = Place(at, count);
    std::memmove(bytes_ + ix, bytes_ + ix + count, kPage - ix - count);
    Keep(bytes_);
  }
  static std::uint64_t Sum() { return 0; }
  char* Bytes() { return bytes_; }

 private:
  static std::size_t Place(std::size_t at, std::size_t size) { return std::min(at % kPage, kPage - size); }

  char bytes_[kPage] = {};
};

/// The same where the pages are not in memory: a page comes in and goes out for each edit.
class PageEdits {
 public:
  explicit PageEdits(const Setting& setting)
      : file_(NamelessCopy(setting.directory, setting.content)), pages_(PagesIn(setting.size)), block_(setting) {}
  void Insert(std::size_t at, std::string_view bytes) {
    file_.ReadPage(PageOf(at), block_.Bytes());
    block_.Insert(at, bytes);
    file_.WritePage(PageOf(at), block_.Bytes());
  }
  void Delete(std::size_t at, std::size_t count) {
    file_.ReadPage(PageOf(at), block_.Bytes());
    block_.Delete(at, count);
    file_.WritePage(PageOf(at), block_.Bytes());
  }
  static std::uint64_t Sum() { return 0; }

 private:
  std::int64_t PageOf(std::size_t at) const { return static_cast<std::int64_t>(at / kPage) % pages_; }

  HostFile file_;
  std::int64_t pages_;
  OneBlock block_;
};
