// The relational operators: two worked out for each kind of right side, the others by them.

#include <algorithm>
#include <cstring>

#include "vfile/Meter.h"
#include "vfile/Require.h"
#include "vfile/VFile.h"

namespace vfile {

class Comparison {
 public:
  static bool Equal(const VFile& left, const VFile& right);
  static bool Equal(const VFile& left, const char* right);
  /// Below, at or above 0 as `left` is less, equal or greater; above 0 also behind a halt that returned, and where a procedure has ended it.
  static int Order(const VFile& left, const VFile& right);
  static int Order(const VFile& left, const char* right);

 private:
  class FileBytes;
  class StringBytes;

  static bool OnOwnerThread(const VFile& left, const VFile& right) {
    return left.OnOwnerThread() && Require(right.threadId == left.threadId);
  }
  template <typename Right>
  static int Difference(const VFile& left, Right& right, std::size_t count);
  template <typename Right>
  static int Order(const VFile& left, Right right);
};

/// A file's content from its start on, piece by piece.
class Comparison::FileBytes {
 public:
  explicit FileBytes(const VFile& file) : file_(file) { file_.SetPosC(reader_, 0); }

  std::size_t Length() const { return static_cast<std::size_t>(file_.length); }
  Meter* MeterOf() const { return file_.meter; }
  /// The next `count` bytes, at most `BlkSize`, which are there; null behind a halt that returned. Good until the next call.
  const unsigned char* Next(std::size_t count) {
    return file_.ReadBytesC(reader_, bytes_, static_cast<std::int32_t>(count)) ? bytes_ : nullptr;
  }

 private:
  const VFile& file_;
  BlkRdr reader_;
  unsigned char bytes_[BlkSize];
};

/// The same of a string.
class Comparison::StringBytes {
 public:
  explicit StringBytes(const char* text) : next_(text), length_(std::strlen(text)) {}

  std::size_t Length() const { return length_; }
  static Meter* MeterOf() { return nullptr; }
  const char* Next(std::size_t count) {
    const char* bytes = next_;
    next_ += count;
    return bytes;
  }

 private:
  const char* next_;
  std::size_t length_;
};

/// How the first `count` bytes of both sides compare, as `memcmp` tells it.
template <typename Right>
int Comparison::Difference(const VFile& left, Right& right, std::size_t count) {
  FileBytes bytes(left);
  Pass pass(left.meter != nullptr ? left.meter : right.MeterOf(), static_cast<std::int64_t>(count));
  int difference = 0;
  while (count > 0 && difference == 0) {
    const std::size_t chunk = std::min(count, std::size_t{BlkSize});
    // Which page is read first is an outcome.
    const void* leftBytes = bytes.Next(chunk);
    const void* rightBytes = right.Next(chunk);
    if (leftBytes == nullptr || rightBytes == nullptr) return 1;
    difference = std::memcmp(leftBytes, rightBytes, chunk);
    count -= chunk;
    if (!pass.Advance(static_cast<std::int64_t>(chunk))) return 1;
  }
  return difference;
}

template <typename Right>
int Comparison::Order(const VFile& left, Right right) {
  const auto length = static_cast<std::size_t>(left.length);
  const int difference = Difference(left, right, std::min(length, right.Length()));
  if (difference != 0 || length == right.Length()) return difference;
  return length < right.Length() ? -1 : 1;
}

bool Comparison::Equal(const VFile& left, const VFile& right) {
  if (!OnOwnerThread(left, right) || left.length != right.length) return false;
  FileBytes bytes(right);
  return Difference(left, bytes, bytes.Length()) == 0;
}

bool Comparison::Equal(const VFile& left, const char* right) {
  if (!left.OnOwnerThread()) return false;
  StringBytes bytes(right);
  return bytes.Length() == static_cast<std::size_t>(left.length) && Difference(left, bytes, bytes.Length()) == 0;
}

int Comparison::Order(const VFile& left, const VFile& right) {
  return OnOwnerThread(left, right) ? Order(left, FileBytes(right)) : 1;
}

int Comparison::Order(const VFile& left, const char* right) {
  return left.OnOwnerThread() ? Order(left, StringBytes(right)) : 1;
}

}  // namespace vfile

using vfile::Comparison;

bool operator==(const VFile& left, const VFile& right) { return Comparison::Equal(left, right); }
bool operator!=(const VFile& left, const VFile& right) { return !(left == right); }
bool operator<(const VFile& left, const VFile& right) { return Comparison::Order(left, right) < 0; }
bool operator<=(const VFile& left, const VFile& right) { return Comparison::Order(left, right) <= 0; }
bool operator>(const VFile& left, const VFile& right) { return right < left; }
bool operator>=(const VFile& left, const VFile& right) { return right <= left; }

bool operator==(const VFile& left, const char* right) { return Comparison::Equal(left, right); }
bool operator!=(const VFile& left, const char* right) { return !(left == right); }
bool operator<(const VFile& left, const char* right) { return Comparison::Order(left, right) < 0; }
bool operator<=(const VFile& left, const char* right) { return Comparison::Order(left, right) <= 0; }
bool operator>(const VFile& left, const char* right) { return !(left <= right); }
bool operator>=(const VFile& left, const char* right) { return !(left < right); }

bool operator==(const char* left, const VFile& right) { return right == left; }
bool operator!=(const char* left, const VFile& right) { return !(right == left); }
bool operator<(const char* left, const VFile& right) { return !(right <= left); }
bool operator<=(const char* left, const VFile& right) { return !(right < left); }
bool operator>(const char* left, const VFile& right) { return right < left; }
bool operator>=(const char* left, const VFile& right) { return right <= left; }
