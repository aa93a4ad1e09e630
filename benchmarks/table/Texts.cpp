// Text files in their forms: the library, and the calls of the system with a public converter between them.

#include <optional>

#include "Contents.h"
#include "Converters.h"
#include "Ours.h"
#include "tcharvfile/TCharVFile.h"

namespace {

using Form = TCharVFile::Encoding;
using Convert = Converted (*)(std::string_view text, ContentKind kind, Direction direction);

constexpr ContentKind KindOf(Form form) {
  return form == Form::encUtf8    ? ContentKind::kUtf8
         : form == Form::encUtf16 ? ContentKind::kUtf16
                                  : ContentKind::kUtf16Be;
}

constexpr std::size_t MarkSize(Form form) { return form == Form::encUtf8 ? 3 : 2; }

void LoadText(TCharVFile& text, const Setting& setting) {
  text.LoadText(Units(setting.content), FILE_SHARE_READ);
  Expect(text.res == resDone, "load of a text");
}

std::uint64_t SumOf(TCharVFile& text) {
  Checksum sum;
  std::vector<TChar> piece(1 << 15);
  text.SetTCharPos(0);
  while (const std::int32_t count = text.ReadTChars(piece.data(), static_cast<std::int32_t>(piece.size()))) {
    sum.Add(reinterpret_cast<const char*>(piece.data()), static_cast<std::size_t>(count) * 2);
  }
  return sum.Value();
}

void WriteInPieces(HostFile& file, const char* bytes, std::size_t count) {
  for (std::size_t at = 0; at < count; at += kPage) {
    file.Write(bytes + at, std::min<std::size_t>(kPage, count - at));
  }
}

class LoadByLibrary : public Contestant {
 public:
  explicit LoadByLibrary(const Setting& setting) : setting_(setting) { UseSettings(setting); }
  void Prepare() override {
    text_.reset();
    text_.emplace();
  }
  void Run() override { LoadText(*text_, setting_); }
  std::uint64_t Check() override { return SumOf(*text_); }

 private:
  const Setting setting_;
  std::optional<TCharVFile> text_;
};

/// The raw bytes go through a file like the swap file; converted ones then go to another. Without a converter the raw bytes stay.
template <Form kForm, Convert kConvert>
class LoadByLoop : public Contestant {
 public:
  explicit LoadByLoop(const Setting& setting)
      : setting_(setting), raw_(HostFile::Nameless(setting.directory)), units_(HostFile::Nameless(setting.directory)) {}
  void Prepare() override {
    raw_ = HostFile::Nameless(setting_.directory);
    units_ = HostFile::Nameless(setting_.directory);
  }
  void Run() override {
    HostFile source = HostFile::Open(setting_.content);
    const auto size = static_cast<std::size_t>(setting_.size);
    const std::unique_ptr<char[]> text(kConvert == nullptr ? nullptr : new char[size + kPage]);
    char piece[kPage];
    source.Read(piece, MarkSize(kForm));
    for (char* next = text.get();; next += kConvert == nullptr ? 0 : kPage) {
      char* bytes = kConvert == nullptr ? piece : next;
      const std::size_t count = source.Read(bytes, kPage);
      if (count == 0) break;
      raw_.Write(bytes, count);
    }
    if (kConvert == nullptr) return;
    const Converted units = kConvert({text.get(), size - MarkSize(kForm)}, KindOf(kForm), Direction::kToUnits);
    WriteInPieces(units_, units.bytes.get(), units.count);
  }
  std::uint64_t Check() override { return ::SumOf(kConvert == nullptr ? raw_ : units_); }

 private:
  const Setting setting_;
  HostFile raw_;
  HostFile units_;
};

template <Form kForm>
class SaveByLibrary : public Contestant {
 public:
  explicit SaveByLibrary(const Setting& setting) : target_(setting.directory) {
    UseSettings(setting);
    text_.emplace();
    LoadText(*text_, setting);
  }
  void Prepare() override { target_.Remove(); }
  void Run() override {
    text_->SaveText(Units(target_.Name()), false, kForm, true);
    Expect(text_->res == resDone, "save of a text");
  }
  std::uint64_t Check() override { return ::SumOf(target_.Name()); }

 private:
  const Target target_;
  std::optional<TCharVFile> text_;
};

/// The units come from a file like the swap file.
template <Form kForm, Convert kConvert>
class SaveByLoop : public Contestant {
 public:
  explicit SaveByLoop(const Setting& setting)
      : target_(setting.directory), units_(HostFile::Nameless(setting.directory)) {
    const std::string content = Content(setting.content);
    mark_ = content.substr(0, MarkSize(kForm));
    const std::string_view text = std::string_view(content).substr(mark_.size());
    if (kConvert == nullptr) {
      units_.Write(text.data(), text.size());
    } else {
      const Converted units = kConvert(text, KindOf(kForm), Direction::kToUnits);
      WriteInPieces(units_, units.bytes.get(), units.count);
    }
  }
  void Prepare() override { target_.Remove(); }
  void Run() override {
    HostFile file = HostFile::Create(target_.Name());
    file.Write(mark_.data(), mark_.size());
    const auto size = static_cast<std::size_t>(units_.Size());
    const std::unique_ptr<char[]> text(kConvert == nullptr ? nullptr : new char[size]);
    char piece[kPage];
    for (std::size_t at = 0; at < size; at += kPage) {
      char* bytes = kConvert == nullptr ? piece : text.get() + at;
      const std::size_t count = std::min<std::size_t>(kPage, size - at);
      units_.ReadAt(static_cast<std::int64_t>(at), bytes, count);
      if (kConvert == nullptr) file.Write(bytes, count);
    }
    if (kConvert == nullptr) return;
    const Converted bytes = kConvert({text.get(), size}, KindOf(kForm), Direction::kFromUnits);
    WriteInPieces(file, bytes.bytes.get(), bytes.count);
  }
  std::uint64_t Check() override { return ::SumOf(target_.Name()); }

 private:
  const Target target_;
  std::string mark_;
  HostFile units_;
};

/// A load of UTF-8 and a save in every form, as one round.
class LoadAndSaveForms : public Contestant {
 public:
  explicit LoadAndSaveForms(const Setting& setting) : setting_(setting), target_(setting.directory) {
    UseSettings(setting);
  }
  void Run() override {
    TCharVFile text;
    LoadText(text, setting_);
    for (const Form form : {Form::encUtf16, Form::encUtf16BE, Form::encAnsi, Form::encUtf8}) {
      target_.Remove();
      text.SaveText(Units(target_.Name()), false, form, true);
      Expect(text.res == resDone, "save of a text");
    }
  }
  std::uint64_t Check() override {
    Expect(::SumOf(target_.Name()) == ::SumOf(setting_.content), "the text that was saved");
    return 0;
  }

 private:
  const Setting setting_;
  const Target target_;
};

constexpr Convert kNone = nullptr;

}  // namespace

std::vector<ContestantEntry> TextContestants() {
  return {
      {"text/load", Make<LoadByLibrary>},
      {"text/load/utf8/iconv", Make<LoadByLoop<Form::encUtf8, ConvertByIconv>>},
      {"text/load/utf16/loop", Make<LoadByLoop<Form::encUtf16, kNone>>},
      {"text/load/utf16be/iconv", Make<LoadByLoop<Form::encUtf16BE, ConvertByIconv>>},
      {"text/save/utf8", Make<SaveByLibrary<Form::encUtf8>>},
      {"text/save/utf16", Make<SaveByLibrary<Form::encUtf16>>},
      {"text/save/utf16be", Make<SaveByLibrary<Form::encUtf16BE>>},
      {"text/save/utf8/iconv", Make<SaveByLoop<Form::encUtf8, ConvertByIconv>>},
      {"text/save/utf16/loop", Make<SaveByLoop<Form::encUtf16, kNone>>},
      {"text/save/utf16be/iconv", Make<SaveByLoop<Form::encUtf16BE, ConvertByIconv>>},
#ifdef TABLE_HAS_ICU
      {"text/load/utf8/icu", Make<LoadByLoop<Form::encUtf8, ConvertByIcu>>},
      {"text/load/utf16be/icu", Make<LoadByLoop<Form::encUtf16BE, ConvertByIcu>>},
      {"text/save/utf8/icu", Make<SaveByLoop<Form::encUtf8, ConvertByIcu>>},
      {"text/save/utf16be/icu", Make<SaveByLoop<Form::encUtf16BE, ConvertByIcu>>},
#endif
      {"text/peak", Make<LoadAndSaveForms>},
  };
}
