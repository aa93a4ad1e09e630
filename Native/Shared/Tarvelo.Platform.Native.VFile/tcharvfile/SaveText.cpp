#include <algorithm>
#include <memory>

#include "host/Host.h"
#include "tcharvfile/Encodings.h"
#include "tcharvfile/Room.h"
#include "tcharvfile/TCharVFile.h"

namespace {

/// Bytes on the way into a file; null where the heap has no room for them.
struct Converted {
  explicit Converted(std::size_t size) : bytes(tcharvfile::Room<char>(size)), count(size) {}

  std::unique_ptr<char[]> bytes;
  std::size_t count;
};

Converted ToUtf8(TString& text) {
  Converted converted(tcharvfile::Utf8Length(text.data(), text.size()));
  if (converted.bytes != nullptr) tcharvfile::UnitsToUtf8(text.data(), text.size(), converted.bytes.get());
  return converted;
}

/// Also where the ANSI code page is UTF-8, an unpaired surrogate is "?" in this form.
Converted ToAnsi(TString& text) {
  if (host::GetACP() == host::CP_UTF8) {
    tcharvfile::ReplaceUnpaired(text, TChar{'?'});
    return ToUtf8(text);
  }
  Converted converted(host::WideCharToMultiByte(text.data(), text.size(), nullptr, 0));
  if (converted.bytes != nullptr) {
    host::WideCharToMultiByte(text.data(), text.size(), converted.bytes.get(), converted.count);
  }
  return converted;
}

/// Writes swapped units in pieces of up to 1024 bytes, with the outcome of one write for each unit: what is left of a piece that
/// the host took in part goes out unit by unit, so that the next unit meets the reason.
void WriteSwapped(HFile& file, TString& text) {
  constexpr std::size_t kPiece = 1024 / sizeof(TChar);
  for (std::size_t i = 0; i < text.size() && file.res == resDone; i += kPiece) {
    TChar* next = text.data() + i;
    TChar* end = next + std::min(kPiece, text.size() - i);
    std::for_each(next, end, tcharvfile::SwapTChar);
    const std::int32_t before = file.GetPos();
    file.WriteBytes(next, static_cast<std::int32_t>((end - next) * 2));
    const std::int32_t written = file.res == resDiskFull ? file.GetPos() - before : 1;
    if (written % 2 != 0) continue;
    file.res = resDone;
    for (next += written / 2; next < end && file.res == resDone; ++next) file.WriteBytes(next, sizeof *next);
  }
}

void WriteAll(HFile& file, const Converted& text) {
  if (text.count > static_cast<std::size_t>(MaxLen)) {
    file.res = resTooLong;
  } else if (text.bytes == nullptr) {
    file.res = resHeapOverflow;
  } else {
    file.WriteBytes(text.bytes.get(), static_cast<std::int32_t>(text.count));
  }
}

}  // namespace

void TCharVFile::SaveText(const TChar* fileName, bool overwrite, Encoding encoding, bool withBom) {
  SetPos(0);
  if (res != resDone) return;
  HFile file;
  if (!file.CreateSeqWrite(fileName, overwrite)) {
    res = GetFileRes(file);
    return;
  }
  const auto takeOver = [&] {
    if (file.res != resDone) res = GetFileRes(file);
  };
  const auto writeConverted = [&](Converted (*convert)(TString&)) {
    TString text = ToString();
    if (res == resDone) WriteAll(file, convert(text));
    takeOver();
  };
  switch (encoding) {
    case encUtf16:
      if (withBom) file.WriteBytes("\xFF\xFE", 2);
      takeOver();
      WriteToFile(file, length);
      break;
    case encUtf16BE: {
      if (withBom) file.WriteBytes("\xFE\xFF", 2);
      takeOver();
      TString text = ToString();
      if (text.empty() || res != resDone) break;
      WriteSwapped(file, text);
      takeOver();
      break;
    }
    case encUtf8:
      for (const char* byte = "\xEF\xBB\xBF"; withBom && *byte != '\0'; ++byte) file.WriteBytes(byte, 1);
      writeConverted(ToUtf8);
      break;
    default:
      writeConverted(ToAnsi);
  }
}

void TCharVFile::SaveText(const TString& fileName, bool overwrite, Encoding encoding, bool withBom) {
  SaveText(fileName.c_str(), overwrite, encoding, withBom);
}
