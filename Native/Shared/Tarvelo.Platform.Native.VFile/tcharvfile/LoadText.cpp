// Text files come in as raw bytes first; their conversion then goes into new blocks a piece at a time, so that no more than that is
// ever in process memory.

#include <algorithm>
#include <cstring>

#include "host/Host.h"
#include "tcharvfile/Encodings.h"
#include "tcharvfile/TCharVFile.h"
#include "vfile/ContentSource.h"
#include "vfile/Meter.h"

const TCharVFile::Encoding TCharVFile::DefaultEncoding = encUtf16;

namespace {

constexpr std::int32_t kUtf16Mark = 2;
constexpr std::int32_t kUtf8Mark = 3;

// ---- Conversions: each takes the bytes of a piece, but for what waits for the next one ----

class FromUtf8 {
 public:
  explicit FromUtf8(host::LossRecord* losses) : losses_(losses) {}

  bool IsOpen() const { return true; }

  /// Converts `left` bytes at `in` to `out`, which has room for more units than that, and moves all on. True if what is left waits
  /// for more bytes.
  bool Convert(const char*& in, std::size_t& left, TChar*& out, std::size_t& /*room*/, bool last) {
    const std::size_t whole = last ? left : left - tcharvfile::Utf8Rest(in, left);
    out += tcharvfile::Utf8ToUnits(in, whole, out, losses_);
    in += whole;
    left -= whole;
    return true;
  }

 private:
  host::LossRecord* losses_;
};

class FromCodePage {
 public:
  explicit FromCodePage(host::LossRecord* losses) : conversion_(host::CodePageConversion::kToUnits, losses) {}

  bool IsOpen() const { return conversion_.IsOpen(); }

  /// The same, also false if there was no room for all.
  bool Convert(const char*& in, std::size_t& left, TChar*& out, std::size_t& room, bool last) {
    char* bytes = reinterpret_cast<char*>(out);
    std::size_t size = room * sizeof(TChar);
    const bool done = conversion_.Convert(in, left, bytes, size, last);
    out = reinterpret_cast<TChar*>(bytes);
    room = size / sizeof(TChar);
    return done;
  }

 private:
  host::CodePageConversion conversion_;
};

// ---- Content that a text gets ----

/// UTF-16 with its high byte first, from the position on. A last odd byte is dropped.
class SwappedContent final : public vfile::ContentSource {
 public:
  explicit SwappedContent(VFile& raw) : raw_(raw) {}

  std::int32_t Next(unsigned char* bytes) override {
    const std::int32_t units = raw_.ReadBytes(bytes, BlkSize) / 2;
    if (raw_.res != resDone) return -1;
    tcharvfile::SwapUnits(bytes, static_cast<std::size_t>(units));
    return units * 2;
  }

 private:
  VFile& raw_;
};

/// Bytes from the position on, up to the first 0 byte, by a conversion.
template <typename Conversion>
class ConvertedContent final : public vfile::ContentSource {
 public:
  ConvertedContent(VFile& raw, Conversion& conversion, host::LossRecord* losses)
      : raw_(raw), conversion_(conversion), losses_(losses) {}

  std::int32_t Next(unsigned char* bytes) override {
    constexpr std::ptrdiff_t kWanted = BlkSize / sizeof(TChar);
    while (end_ - begin_ < kWanted && !done_) {
      if (!Refill()) return -1;
    }
    const std::ptrdiff_t count = std::min(end_ - begin_, kWanted);
    std::memcpy(bytes, begin_, static_cast<std::size_t>(count) * sizeof(TChar));
    begin_ += count;
    return static_cast<std::int32_t>(count) * 2;
  }

  /// The bytes up to where the text ends.
  std::int32_t Used() const { return used_; }

 private:
  /// Reads on where all that was read has been converted, and converts.
  bool Refill() {
    end_ = std::copy(begin_, end_, units_);
    begin_ = units_;
    if (needsMore_ && !ended_ && !ReadPiece()) return false;
    const char* in = bytes_;
    const TChar* given = end_;
    std::size_t room = static_cast<std::size_t>(units_ + kRoom - end_);
    needsMore_ = conversion_.Convert(in, size_, end_, room, ended_);
    if (losses_ != nullptr) losses_->units += end_ - given;
    std::memmove(bytes_, in, size_);
    done_ = ended_ && needsMore_;
    return true;
  }

  bool ReadPiece() {
    char* bytes = bytes_ + size_;
    const std::int32_t got = raw_.ReadBytes(bytes, BlkSize);
    if (raw_.res != resDone) return false;
    const void* zero = std::memchr(bytes, 0, static_cast<std::size_t>(got));
    ended_ = zero != nullptr || got < BlkSize;
    const std::ptrdiff_t used = zero != nullptr ? static_cast<const char*>(zero) - bytes : got;
    size_ += static_cast<std::size_t>(used);
    used_ += static_cast<std::int32_t>(used);
    return true;
  }

  /// More than a character of any code page takes.
  static constexpr std::size_t kMostWaiting = 64;
  /// Units of less than a block, and those of a piece.
  static constexpr std::size_t kRoom = BlkSize / sizeof(TChar) + BlkSize + kMostWaiting;

  VFile& raw_;
  Conversion& conversion_;
  host::LossRecord* losses_;
  std::int32_t used_ = 0;
  char bytes_[kMostWaiting + BlkSize];  // `size_` of them are to be converted
  std::size_t size_ = 0;
  TChar units_[kRoom];  // those from `begin_` to `end_` are to be given out
  TChar* begin_ = units_;
  TChar* end_ = units_;
  bool needsMore_ = true;  // what is left of the bytes waits for more
  bool ended_ = false;     // no more bytes will come
  bool done_ = false;      // nor units
};

}  // namespace

void TCharVFile::LoadText(const TChar* fileName, Encoding& encoding, std::uint32_t shareMode) {
  LoadText(fileName, encoding, shareMode, nullptr);
}

/// Tells `losses`, unless null, what of the file does not come into the text.
void TCharVFile::LoadText(const TChar* fileName, Encoding& encoding, std::uint32_t shareMode,
                          host::LossRecord* losses) {
  encoding = DefaultEncoding;
  // The raw bytes come in, and are gone through once more.
  vfile::Pass pass(meter, -1, 2);
  Load(fileName, shareMode);
  if (res != resDone) return;
  const Encoding marked = ReadMark();
  if (res != resDone) return;
  encoding = marked;
  switch (encoding) {
    case encUtf16:
      ReplaceBuf(0, kUtf16Mark, nullptr, 0);
      break;
    case encUtf16BE:
      SwapContent(losses);
      break;
    case encUtf8:
      ConvertContent<FromUtf8>(kUtf8Mark, losses);
      break;
    case encAnsi:
      if (host::GetACP() == host::CP_UTF8) {
        ConvertContent<FromUtf8>(0, losses);
      } else {
        ConvertContent<FromCodePage>(0, losses);
      }
      break;
  }
  if (res == resDone) SetPos(0);
}

void TCharVFile::LoadText(const TChar* fileName, std::uint32_t shareMode) {
  Encoding encoding;
  LoadText(fileName, encoding, shareMode);
}

void TCharVFile::LoadText(const TString& fileName, Encoding& encoding, std::uint32_t shareMode) {
  LoadText(fileName.c_str(), encoding, shareMode);
}

void TCharVFile::LoadText(const TString& fileName, std::uint32_t shareMode) { LoadText(fileName.c_str(), shareMode); }

/// Tells the form of the raw content by its first bytes. A missing byte reads as 0.
TCharVFile::Encoding TCharVFile::ReadMark() {
  unsigned char b1;
  unsigned char b2;
  unsigned char b3;
  MoveOn(0);
  ReadByte(b1);
  ReadByte(b2);
  if (b1 == 0xFF && b2 == 0xFE) return encUtf16;
  if (b1 == 0xFE && b2 == 0xFF) return encUtf16BE;
  if (b1 != 0xEF || b2 != 0xBB) return encAnsi;
  ReadByte(b3);
  return b3 == 0xBF ? encUtf8 : encAnsi;
}

/// Replaces the raw content, UTF-16 with its high byte first, behind its mark.
void TCharVFile::SwapContent(host::LossRecord* losses) {
  if (!MoveOn(kUtf16Mark)) return;
  const std::int32_t oddBytes = length % 2;
  SwappedContent swapped(*this);
  ReplaceContent(swapped);
  if (res == resDone && losses != nullptr) losses->LeaveOut(oddBytes, TCharLength());
}

/// Replaces the raw content behind a mark of `mark` bytes by its conversion. Without memory for one the object is empty.
template <typename Conversion>
void TCharVFile::ConvertContent(std::int32_t mark, host::LossRecord* losses) {
  Conversion conversion(losses);
  if (!conversion.IsOpen()) {
    ReplaceBuf(0, MaxLen, nullptr, 0);
    res = resHeapOverflow;
    return;
  }
  if (!MoveOn(mark)) return;
  const std::int32_t rawBytes = length - mark;
  ConvertedContent converted(*this, conversion, losses);
  ReplaceContent(converted);
  if (res == resDone && losses != nullptr) losses->LeaveOut(rawBytes - converted.Used(), TCharLength());
}
