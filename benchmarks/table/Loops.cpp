// The limit of loads and saves: the same bytes in the same calls of the system, with a public converter between them where the
// form of a text changes.

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

void WriteInPieces(HostFile& file, std::string_view bytes) {
  for (std::size_t at = 0; at < bytes.size(); at += kPage) {
    file.Write(bytes.data() + at, std::min<std::size_t>(kPage, bytes.size() - at));
  }
}

/// As the bytes do not stay in memory, they go to a file like the swap file. Converted ones then go to another.
template <ContentKind kKind, Convert kConvert>
class LoadLoop : public Contestant {
 public:
  explicit LoadLoop(const Setting& setting)
      : setting_(setting), raw_(HostFile::Nameless(setting.directory)), units_(HostFile::Nameless(setting.directory)) {}
  void Prepare() override {
    raw_ = HostFile::Nameless(setting_.directory);
    units_ = HostFile::Nameless(setting_.directory);
  }
  void Run() override {
    HostFile source = HostFile::Open(setting_.content);
    const auto size = static_cast<std::size_t>(setting_.size) - MarkSize(kKind);
    const std::unique_ptr<char[]> text(kConvert == kNone ? nullptr : new char[size]);
    char piece[kPage];
    source.Read(piece, MarkSize(kKind));
    for (std::size_t at = 0; at < size; at += kPage) {
      char* bytes = kConvert == kNone ? piece : &text[at];
      raw_.Write(bytes, source.Read(bytes, std::min<std::size_t>(kPage, size - at)));
    }
    if (kConvert == kNone) return;
    const Converted units = kConvert({text.get(), size}, kKind, Direction::kToUnits);
    WriteInPieces(units_, {units.bytes.get(), units.count});
  }
  std::uint64_t Check() override { return SumOf(kConvert == kNone ? raw_ : units_); }

 private:
  const Setting setting_;
  HostFile raw_;
  HostFile units_;
};

/// The bytes or units come from a file like the swap file.
template <ContentKind kKind, Convert kConvert>
class SaveLoop : public Contestant {
 public:
  explicit SaveLoop(const Setting& setting) : target_(setting.directory), swap_(HostFile::Nameless(setting.directory)) {
    const std::string content = Content(setting.content);
    mark_ = content.substr(0, MarkSize(kKind));
    const std::string_view text = std::string_view(content).substr(mark_.size());
    if (kConvert == kNone) {
      WriteInPieces(swap_, text);
    } else {
      const Converted units = kConvert(text, kKind, Direction::kToUnits);
      WriteInPieces(swap_, {units.bytes.get(), units.count});
    }
  }
  void Prepare() override { target_.Remove(); }
  void Run() override {
    HostFile file = HostFile::Create(target_.Name());
    file.Write(mark_.data(), mark_.size());
    const auto size = static_cast<std::size_t>(swap_.Size());
    const std::unique_ptr<char[]> text(kConvert == kNone ? nullptr : new char[size]);
    char piece[kPage];
    for (std::size_t at = 0; at < size; at += kPage) {
      char* bytes = kConvert == kNone ? piece : &text[at];
      const std::size_t count = std::min<std::size_t>(kPage, size - at);
      swap_.ReadAt(static_cast<std::int64_t>(at), bytes, count);
      if (kConvert == kNone) file.Write(bytes, count);
    }
    if (kConvert == kNone) return;
    const Converted bytes = kConvert({text.get(), size}, kKind, Direction::kFromUnits);
    WriteInPieces(file, {bytes.bytes.get(), bytes.count});
  }
  std::uint64_t Check() override { return SumOf(target_.Name()); }

 private:
  const Target target_;
  std::string mark_;
  HostFile swap_;
};

}  // namespace

std::vector<ContestantEntry> LoopContestants() {
  using enum ContentKind;
  return {
      {"load/bytes/loop", Make<LoadLoop<kText, kNone>>},
      {"save/bytes/loop", Make<SaveLoop<kText, kNone>>},
      {"load/utf16/loop", Make<LoadLoop<kUtf16, kNone>>},
      {"save/utf16/loop", Make<SaveLoop<kUtf16, kNone>>},
      {"load/utf8/iconv", Make<LoadLoop<kUtf8, ConvertByIconv>>},
      {"save/utf8/iconv", Make<SaveLoop<kUtf8, ConvertByIconv>>},
      {"load/utf16be/iconv", Make<LoadLoop<kUtf16Be, ConvertByIconv>>},
      {"save/utf16be/iconv", Make<SaveLoop<kUtf16Be, ConvertByIconv>>},
#ifdef TABLE_HAS_ICU
      {"load/utf8/icu", Make<LoadLoop<kUtf8, ConvertByIcu>>},
      {"save/utf8/icu", Make<SaveLoop<kUtf8, ConvertByIcu>>},
      {"load/utf16be/icu", Make<LoadLoop<kUtf16Be, ConvertByIcu>>},
      {"save/utf16be/icu", Make<SaveLoop<kUtf16Be, ConvertByIcu>>},
#endif
  };
}
