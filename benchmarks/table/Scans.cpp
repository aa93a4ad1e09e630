// What looks at all bytes of a file: search, lines, comparison, replacing everywhere. The limit is reading the pages one by one.

#include <memory>
#include <optional>

#include "Contents.h"
#include "Ours.h"
#include "tcharvfile/TCharVFile.h"

namespace {

/// Texts that the content does not have. Their ends are its rarest letter and its commonest byte.
enum class Needle { kRare, kCommon };
enum class Way { kForward, kBackward, kIgnoringCase };

template <typename Char>
const Char* TextOf(Needle needle);
template <>
const char* TextOf(Needle needle) {
  return needle == Needle::kRare ? "zone of fizz" : " of the sea ";
}
template <>
const TChar* TextOf(Needle needle) {
  return needle == Needle::kRare ? TSTR("zone of fizz") : TSTR(" of the sea ");
}

template <Needle kNeedle, Way kWay>
class Find : public OnFile {
 public:
  explicit Find(const Setting& setting) : OnFile(setting) { Load(); }
  void Run() override {
    std::int32_t at = kWay == Way::kBackward ? file_.Length() : 0;
    const bool found = kWay == Way::kBackward
                           ? file_.FindBack(at, TextOf<char>(kNeedle), false, false)
                           : file_.Find(at, TextOf<char>(kNeedle), kWay == Way::kIgnoringCase, false);
    Expect(!found, "a text was found that is not there");
  }
  /// The text is found once it is there, over the border of two pages.
  std::uint64_t Check() override {
    const std::int32_t place = file_.Length() / 2 / 1024 * 1024 - 5;
    file_.SetPos(place);
    file_.ReplaceBytes(TextOf<char>(kNeedle), 12);
    std::int32_t at = kWay == Way::kBackward ? file_.Length() : 0;
    const bool found = kWay == Way::kBackward
                           ? file_.FindBack(at, TextOf<char>(kNeedle), false, false)
                           : file_.Find(at, TextOf<char>(kNeedle), kWay == Way::kIgnoringCase, false);
    Expect(found && at == (kWay == Way::kBackward ? place : place + 12), "a text was not found");
    return 0;
  }
};

template <Needle kNeedle>
class FindUnits : public Contestant {
 public:
  explicit FindUnits(const Setting& setting) {
    UseSettings(setting);
    text_.emplace();
    text_->LoadText(Units(setting.content), FILE_SHARE_READ);
    Expect(text_->res == resDone && text_->TCharLength() == (setting.size - 2) / 2, "load");
  }
  void Run() override {
    std::int32_t at = 0;
    Expect(!text_->FindTChars(at, TextOf<TChar>(kNeedle), false, false), "a text was found that is not there");
  }
  std::uint64_t Check() override {
    const std::int32_t place = text_->TCharLength() / 2;
    text_->SetTCharPos(place);
    text_->InsertTStr(TextOf<TChar>(kNeedle));
    std::int32_t at = 0;
    Expect(text_->FindTChars(at, TextOf<TChar>(kNeedle), false, false) && at == place + 12, "a text was not found");
    return 0;
  }

 private:
  std::optional<TCharVFile> text_;
};

/// `count` files of these pages, read page by page in turn.
class PagesInOrder : public Contestant {
 public:
  explicit PagesInOrder(const Setting& setting) : pages_(setting.size / kPage) {
    for (std::int32_t i = 0; i < setting.count; ++i) files_.push_back(NamelessCopy(setting.directory, setting.content));
  }
  void Run() override {
    char page[kPage];
    for (std::int64_t i = 0; i < pages_; ++i) {
      for (const HostFile& file : files_) file.ReadPage(i, page);
    }
  }

 private:
  const std::int64_t pages_;
  std::vector<HostFile> files_;
};

/// Page by page with `memmem`, behind the end of the page before.
template <Needle kNeedle>
class FindInPages : public Contestant {
 public:
  explicit FindInPages(const Setting& setting)
      : pages_(setting.size / kPage), file_(NamelessCopy(setting.directory, setting.content)) {}
  void Run() override {
    constexpr std::size_t kOverlap = 11;
    char bytes[kOverlap + kPage] = {};
    for (std::int64_t i = 0; i < pages_; ++i) {
      std::memcpy(bytes, bytes + kPage, kOverlap);
      file_.ReadPage(i, bytes + kOverlap);
      Expect(memmem(bytes, sizeof bytes, TextOf<char>(kNeedle), 12) == nullptr, "a text was found that is not there");
    }
  }

 private:
  const std::int64_t pages_;
  const HostFile file_;
};

/// The lines of the content, for comparison: `take` gets the start, the length and the size with the line end of each.
template <typename Take>
void ForLines(const std::string& text, Take take) {
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t eol = text.find('\n', start);
    const std::size_t end = eol == std::string::npos ? text.size() : eol;
    const std::size_t next = std::min(end + 1, text.size());
    take(start, end - start, next - start);
    start = next;
  }
}

class WalkLines : public OnFile {
 public:
  explicit WalkLines(const Setting& setting) : OnFile(setting) { Load(); }
  void Run() override {
    std::int32_t start = 0;
    std::int32_t size = 0;
    std::int32_t eolSize = 0;
    for (std::int32_t at = 0; at < setting_.size; at = start + size) file_.LineSize(at, start, size, eolSize);
  }
  std::uint64_t Check() override {
    ForLines(Content(setting_.content), [&](std::size_t lineStart, std::size_t length, std::size_t lineSize) {
      std::int32_t start = 0;
      std::int32_t size = 0;
      std::int32_t eolSize = 0;
      file_.LineSize(static_cast<std::int32_t>(lineStart), start, size, eolSize);
      const bool right = start == static_cast<std::int32_t>(lineStart) && size == static_cast<std::int32_t>(lineSize) &&
                         eolSize == static_cast<std::int32_t>(lineSize - length);
      Expect(right, "a line");
    });
    return 0;
  }
};

class ReadLines : public OnFile {
 public:
  explicit ReadLines(const Setting& setting) : OnFile(setting) { Load(); }
  void Run() override {
    file_.SetPos(0);
    while (!file_.Eof()) file_.ReadLine(line_, sizeof line_);
  }
  std::uint64_t Check() override {
    const std::string text = Content(setting_.content);
    file_.SetPos(0);
    ForLines(text, [&](std::size_t start, std::size_t length, std::size_t) {
      const std::int32_t read = file_.ReadLine(line_, sizeof line_);
      Expect(text.compare(start, length, line_, static_cast<std::size_t>(read)) == 0, "a line");
    });
    Expect(file_.Eof(), "lines behind the end");
    return 0;
  }

 private:
  char line_[256];
};

class Compare : public OnFile {
 public:
  explicit Compare(const Setting& setting) : OnFile(setting) {
    Load();
    LoadContent(other_, setting);
  }
  void Run() override { Expect(file_ == other_, "equal files"); }
  std::uint64_t Check() override {
    other_.SetPos(other_.Length() - 1);
    other_.ReplaceByte(0);
    Expect(file_ != other_, "files that differ");
    return 0;
  }

 private:
  VFile other_;
};

constexpr char kNewMark[] = "[failure]";

class ReplaceByLibrary : public Contestant {
 public:
  explicit ReplaceByLibrary(const Setting& setting) : setting_(setting) { UseSettings(setting); }
  void Prepare() override {
    file_.reset();
    file_.emplace();
    LoadContent(*file_, setting_);
  }
  void Run() override {
    const std::int32_t replaced = file_->ReplaceGlobal(kMark, kNewMark, false, false);
    Expect(replaced == setting_.size / kMarkDistance, "marks");
  }
  std::uint64_t Check() override { return SumOf(*file_); }

 private:
  const Setting setting_;
  std::optional<VFile> file_;
};

class ReplaceByString : public Contestant {
 public:
  explicit ReplaceByString(const Setting& setting) : text_(Content(setting.content)) {}
  void Prepare() override { std::string().swap(out_); }
  void Run() override {
    std::size_t at = 0;
    for (std::size_t hit; (hit = text_.find(kMark, at)) != std::string::npos; at = hit + sizeof kMark - 1) {
      out_.append(text_, at, hit - at).append(kNewMark);
    }
    out_.append(text_, at);
  }
  std::uint64_t Check() override {
    Checksum sum;
    sum.Add(out_.data(), out_.size());
    return sum.Value();
  }

 private:
  const std::string text_;
  std::string out_;
};

}  // namespace

std::vector<ContestantEntry> ScanContestants() {
  return {
      {"find/rare", Make<Find<Needle::kRare, Way::kForward>>},
      {"find/common", Make<Find<Needle::kCommon, Way::kForward>>},
      {"find/rare/back", Make<Find<Needle::kRare, Way::kBackward>>},
      {"find/common/back", Make<Find<Needle::kCommon, Way::kBackward>>},
      {"find/rare/case", Make<Find<Needle::kRare, Way::kIgnoringCase>>},
      {"find/common/case", Make<Find<Needle::kCommon, Way::kIgnoringCase>>},
      {"find/rare/units", Make<FindUnits<Needle::kRare>>},
      {"find/common/units", Make<FindUnits<Needle::kCommon>>},
      {"find/rare/memmem", Make<FindInPages<Needle::kRare>>},
      {"find/common/memmem", Make<FindInPages<Needle::kCommon>>},
      {"scan/pages", Make<PagesInOrder>},
      {"lines/size", Make<WalkLines>},
      {"lines/read", Make<ReadLines>},
      {"compare", Make<Compare>},
      {"replace/vfile", Make<ReplaceByLibrary>},
      {"replace/string", Make<ReplaceByString>},
  };
}
