// The limit of loads and saves: the same bytes in the same calls of the system, with a public converter between them where the
// form of a text changes.

#include <memory>

#include "Contestant.h"
#include "Converters.h"
#include "HostFile.h"
#include "Measuring.h"

namespace {

using Convert = Converted (*)(std::string_view text, ContentKind kind, Direction direction);
constexpr Convert kNone = nullptr;

constexpr std::size_t MarkSize(ContentKind kind) {
  return kind == ContentKind::kText ? 0 : kind == ContentKind::kUtf8 ? 3 : 2;
}

std::shared_ptr<HostFile> Swap(const Setting& setting) {
  return std::make_shared<HostFile>(HostFile::Nameless(setting.directory));
}

void WriteInPieces(HostFile& file, std::string_view bytes) {
  for (std::size_t at = 0; at < bytes.size(); at += kPage) {
    file.Write(bytes.data() + at, std::min(kPage, bytes.size() - at));
  }
}

/// Moves `size` bytes in pieces: `in` brings some, to a buffer, and `out` takes them. The text keeps them all, if there is one.
template <typename In, typename Out>
void MovePieces(std::size_t size, char* text, In in, Out out) {
  char piece[kPage];
  for (std::size_t at = 0; at < size; at += kPage) {
    char* bytes = text == nullptr ? piece : text + at;
    const std::size_t count = std::min(kPage, size - at);
    in(at, bytes, count);
    out(bytes, count);
  }
}

template <Convert kConvert>
std::unique_ptr<char[]> RoomForText(std::size_t size) {
  return std::unique_ptr<char[]>(kConvert == kNone ? nullptr : new char[size]);
}

/// As the bytes do not stay in memory, they go to a file like the swap file. Converted ones then go to another.
template <ContentKind kKind, Convert kConvert>
Contestant LoadLoop(const Setting& setting) {
  const auto raw = Swap(setting);
  const auto units = Swap(setting);
  const auto run = [=] {
    HostFile source = HostFile::Open(setting.content);
    char mark[MarkSize(kKind) + 1];
    source.Read(mark, MarkSize(kKind));
    const std::size_t size = static_cast<std::size_t>(setting.size) - MarkSize(kKind);
    const auto text = RoomForText<kConvert>(size);
    MovePieces(
        size, text.get(), [&](std::size_t, char* bytes, std::size_t count) { source.Read(bytes, count); },
        [&](const char* bytes, std::size_t count) { raw->Write(bytes, count); });
    if constexpr (kConvert != kNone) {
      WriteInPieces(*units, kConvert({text.get(), size}, kKind, Direction::kToUnits).View());
    }
  };
  const auto prepare = [=] {
    *raw = HostFile::Nameless(setting.directory);
    *units = HostFile::Nameless(setting.directory);
  };
  return {run, [=] { return SumOf(kConvert == kNone ? *raw : *units); }, prepare};
}

/// The bytes or units come from a file like the swap file.
template <ContentKind kKind, Convert kConvert>
Contestant SaveLoop(const Setting& setting) {
  const auto swap = Swap(setting);
  const std::string content = Content(setting.content);
  const std::string mark = content.substr(0, MarkSize(kKind));
  const std::string_view whole = std::string_view(content).substr(mark.size());
  if constexpr (kConvert == kNone) {
    WriteInPieces(*swap, whole);
  } else {
    WriteInPieces(*swap, kConvert(whole, kKind, Direction::kToUnits).View());
  }
  const auto target = std::make_shared<Target>(setting.directory);
  const auto run = [=] {
    HostFile file = HostFile::Create(target->Name());
    file.Write(mark.data(), mark.size());
    const auto size = static_cast<std::size_t>(swap->Size());
    const auto text = RoomForText<kConvert>(size);
    MovePieces(
        size, text.get(),
        [&](std::size_t at, char* bytes, std::size_t count) {
          swap->ReadAt(static_cast<std::int64_t>(at), bytes, count);
        },
        [&](const char* bytes, std::size_t count) {
          if (kConvert == kNone) file.Write(bytes, count);
        });
    if constexpr (kConvert != kNone) {
      WriteInPieces(file, kConvert({text.get(), size}, kKind, Direction::kFromUnits).View());
    }
  };
  return {run, [=] { return SumOfFile(target->Name()); }, [=] { target->Remove(); }};
}

}  // namespace

std::vector<ContestantEntry> LoopContestants() {
  using enum ContentKind;
  return {
      {"load/bytes/loop", LoadLoop<kText, kNone>},
      {"save/bytes/loop", SaveLoop<kText, kNone>},
      {"load/utf16/loop", LoadLoop<kUtf16, kNone>},
      {"save/utf16/loop", SaveLoop<kUtf16, kNone>},
      {"load/utf8/iconv", LoadLoop<kUtf8, ConvertByIconv>},
      {"save/utf8/iconv", SaveLoop<kUtf8, ConvertByIconv>},
      {"load/utf16be/iconv", LoadLoop<kUtf16Be, ConvertByIconv>},
      {"save/utf16be/iconv", SaveLoop<kUtf16Be, ConvertByIconv>},
#ifdef TABLE_HAS_ICU
      {"load/utf8/icu", LoadLoop<kUtf8, ConvertByIcu>},
      {"save/utf8/icu", SaveLoop<kUtf8, ConvertByIcu>},
      {"load/utf16be/icu", LoadLoop<kUtf16Be, ConvertByIcu>},
      {"save/utf16be/icu", SaveLoop<kUtf16Be, ConvertByIcu>},
#endif
  };
}
