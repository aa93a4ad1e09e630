// Text goes out a piece at a time: units are read, converted and written before the next ones are looked at.

#include <algorithm>
#include <cstring>

#include "host/Host.h"
#include "host/Utf8.h"
#include "tcharvfile/Encodings.h"
#include "tcharvfile/TCharVFile.h"
#include "vfile/Meter.h"

namespace {

/// Units that are converted at once.
constexpr std::int32_t kPiece = BlkSize / sizeof(TChar);

/// Reads the whole units of a text from its start on.
class UnitReader {
 public:
  explicit UnitReader(TCharVFile& text) : text_(text), left_(text.TCharLength()) { text.Reset(); }

  /// Reads up to `kPiece` units and gives how many; the text's `res` tells if they could not be had.
  std::int32_t Next(TChar* units) {
    const std::int32_t count = std::min(left_, kPiece);
    text_.ReadTChars(units, count);
    left_ -= count;
    return count;
  }
  bool IsAtEnd() const { return left_ == 0; }
  /// Moves behind the last unit, wherever the reading ended.
  void Finish() {
    if (!IsAtEnd()) text_.SetTCharPos(text_.TCharLength());
  }

 private:
  TCharVFile& text_;
  std::int32_t left_;
};

// ---- Conversions ----
//
// Each converts `count` units, but for what waits for the next ones, moves `units` and `count` on and gives the bytes that came out.
// A unit comes out as `kMostOfUnit` bytes at most.

template <std::uint32_t kReplacement>
class ToUtf8 {
 public:
  static constexpr std::int32_t kMostOfUnit = 3;

  explicit ToUtf8(host::LossRecord* losses) : losses_(losses) {}

  bool IsOpen() const { return true; }

  std::size_t Convert(const TChar*& units, std::size_t& count, char* bytes, std::size_t /*room*/, bool last) {
    const bool isCut = !last && count > 0 && host::IsHighSurrogate(units[count - 1]);
    const std::size_t whole = count - (isCut ? 1 : 0);
    const std::size_t written = tcharvfile::UnitsToUtf8(units, whole, bytes, kReplacement, losses_);
    units += whole;
    count -= whole;
    return written;
  }

 private:
  host::LossRecord* losses_;
};

class ToCodePage {
 public:
  /// With what brings it about in a character set with shift states.
  static constexpr std::int32_t kMostOfUnit = 16;

  explicit ToCodePage(host::LossRecord* losses) : conversion_(host::CodePageConversion::kToBytes, losses) {}

  bool IsOpen() const { return conversion_.IsOpen(); }

  std::size_t Convert(const TChar*& units, std::size_t& count, char* bytes, std::size_t room, bool last) {
    const char* in = reinterpret_cast<const char*>(units);
    std::size_t left = count * sizeof(TChar);
    char* out = bytes;
    conversion_.Convert(in, left, out, room, last);
    units += count - left / sizeof(TChar);
    count = left / sizeof(TChar);
    return static_cast<std::size_t>(out - bytes);
  }

 private:
  host::CodePageConversion conversion_;
};

// ---- Where converted bytes go ----

template <typename Conversion>
constexpr std::size_t kRoom = (kPiece + 1) * Conversion::kMostOfUnit + 64;

/// Counts them.
template <typename Conversion>
class Counter {
 public:
  char* Room() { return bytes_; }
  void Add(std::size_t count) { total_ += count; }
  bool GoesOn() const { return true; }
  std::size_t Total() const { return total_; }

 private:
  char bytes_[kRoom<Conversion>];
  std::size_t total_ = 0;
};

/// Writes them in pieces of up to 1024.
template <typename Conversion>
class Writer {
 public:
  explicit Writer(HFile& file) : file_(file) {}

  char* Room() { return bytes_ + size_; }
  void Add(std::size_t count) {
    size_ += count;
    std::size_t written = 0;
    for (; size_ - written >= BlkSize; written += BlkSize) file_.WriteBytes(bytes_ + written, BlkSize);
    size_ -= written;
    std::memmove(bytes_, bytes_ + written, size_);
  }
  bool GoesOn() const { return file_.res == resDone; }
  void Finish() { file_.WriteBytes(bytes_, static_cast<std::int32_t>(size_)); }

 private:
  HFile& file_;
  char bytes_[BlkSize + kRoom<Conversion>];
  std::size_t size_ = 0;
};

/// Converts a whole text; false if its units could not be had, or the user of the meter ended it. `losses`, unless null, goes with the
/// pieces.
template <typename Conversion, typename Sink>
bool ConvertAll(TCharVFile& text, vfile::Meter* meter, Conversion& conversion, Sink& sink, host::LossRecord* losses) {
  vfile::Pass pass(meter, std::int64_t{2} * text.TCharLength());
  TChar units[1 + kPiece];
  std::size_t waiting = 0;
  UnitReader reader(text);
  do {
    const std::int32_t got = reader.Next(units + waiting);
    if (text.res != resDone) return false;
    const TChar* next = units;
    std::size_t count = waiting + static_cast<std::size_t>(got);
    sink.Add(conversion.Convert(next, count, sink.Room(), kRoom<Conversion>, reader.IsAtEnd()));
    if (losses != nullptr) losses->units += next - units;
    std::copy(next, next + count, units);
    waiting = count;
    if (!pass.Advance(2 * got)) return false;
  } while (!reader.IsAtEnd() && sink.GoesOn());
  reader.Finish();
  return true;
}

/// Whether the converted text can be written as one, of up to 2^31-1 bytes. True too where the counting ended with a failure in the
/// text's `res`.
template <typename Conversion>
bool Fits(TCharVFile& text, vfile::Meter* meter) {
  if (text.TCharLength() <= MaxLen / Conversion::kMostOfUnit) return true;
  Conversion conversion(nullptr);
  Counter<Conversion> counter;
  return !conversion.IsOpen() || !ConvertAll(text, meter, conversion, counter, nullptr) ||
         counter.Total() <= std::size_t{MaxLen};
}

template <typename Conversion>
void WriteConverted(TCharVFile& text, vfile::Meter* meter, HFile& file, host::LossRecord* losses) {
  Conversion conversion(losses);
  if (!conversion.IsOpen()) {
    file.res = resHeapOverflow;
  } else if (!Fits<Conversion>(text, meter)) {
    file.res = resTooLong;
  } else if (text.res == resDone) {
    Writer<Conversion> writer(file);
    if (ConvertAll(text, meter, conversion, writer, losses)) writer.Finish();
  }
}

/// Writes swapped units in pieces of up to 1024 bytes, with the outcome of one write for each unit: what is left of a piece that
/// the host took in part goes out unit by unit, so that the next unit meets the reason.
void WriteSwapped(TCharVFile& text, vfile::Meter* meter, HFile& file) {
  vfile::Pass pass(meter, std::int64_t{2} * text.TCharLength());
  TChar units[kPiece];
  UnitReader reader(text);
  for (std::int32_t before = file.GetPos(); !reader.IsAtEnd() && file.res == resDone;) {
    const std::int32_t count = reader.Next(units);
    if (text.res != resDone) return;
    tcharvfile::SwapUnits(reinterpret_cast<unsigned char*>(units), static_cast<std::size_t>(count));
    file.WriteBytes(units, count * 2);
    if (file.res == resDiskFull) {
      // A file without positions tells none.
      const std::int32_t written = std::max(file.GetPos() - before, 0);
      if (written % 2 == 0) file.res = resDone;
      for (std::int32_t i = written / 2; i < count && file.res == resDone; ++i)
        file.WriteBytes(units + i, sizeof *units);
    }
    before += count * 2;
    if (!pass.Advance(2 * count)) return;
  }
  reader.Finish();
}

}  // namespace

void TCharVFile::SaveText(const TChar* fileName, bool overwrite, Encoding encoding, bool withBom) {
  SaveText(fileName, overwrite, encoding, withBom, nullptr);
}

/// Tells `losses`, unless null, what of the text does not come into the file.
void TCharVFile::SaveText(const TChar* fileName, bool overwrite, Encoding encoding, bool withBom,
                          host::LossRecord* losses) {
  SetPos(0);
  if (res != resDone) return;
  HFile file;
  if (!file.CreateSeqWrite(fileName, overwrite)) {
    res = GetFileRes(file);
    return;
  }
  WriteText(file, encoding, withBom, losses);
}

void TCharVFile::SaveText(const TString& fileName, bool overwrite, Encoding encoding, bool withBom) {
  SaveText(fileName.c_str(), overwrite, encoding, withBom);
}

/// Writes the text from its start, where it stands, to an open file.
void TCharVFile::WriteText(HFile& file, Encoding encoding, bool withBom, host::LossRecord* losses) {
  switch (encoding) {
    case encUtf16:
      if (withBom) file.WriteBytes("\xFF\xFE", 2);
      if (file.res != resDone) res = GetFileRes(file);
      WriteToFile(file, length);
      return;
    case encUtf16BE:
      if (withBom) file.WriteBytes("\xFE\xFF", 2);
      WriteSwapped(*this, meter, file);
      break;
    case encUtf8:
      for (const char* byte = "\xEF\xBB\xBF"; withBom && *byte != '\0'; ++byte) file.WriteBytes(byte, 1);
      WriteConverted<ToUtf8<host::kReplacementCharacter>>(*this, meter, file, losses);
      break;
    default:
      // Also where the ANSI code page is UTF-8, an unpaired surrogate is "?" in this form.
      if (host::GetACP() == host::CP_UTF8) {
        WriteConverted<ToUtf8<'?'>>(*this, meter, file, losses);
      } else {
        WriteConverted<ToCodePage>(*this, meter, file, losses);
      }
  }
  if (file.res != resDone) res = GetFileRes(file);
  if (res == resDone && losses != nullptr) losses->LeaveOut(length % 2, TCharLength());
}
