// What looks at all bytes of a file: search, lines, comparison, replacing everywhere. The limit is reading the pages one by one.

#include <memory>
#include <optional>

#include "Contents.h"
#include "Ours.h"

namespace {

/// Texts that the content does not have. Their ends are a rare letter of it or its commonest byte.
enum class Needle { kRare, kCommon };
constexpr std::size_t kNeedleSize = 12;
enum class Way { kForward, kBackward, kIgnoringCase };

constexpr const char* TextOf(Needle needle) { return needle == Needle::kRare ? "zone of fizz" : " of the sea "; }
constexpr const TChar* UnitsOf(Needle needle) {
  return needle == Needle::kRare ? TSTR("zone of fizz") : TSTR(" of the sea ");
}

template <Needle kNeedle, Way kWay>
Contestant Find(const Setting& setting) {
  const auto file = Loaded<VFile>(setting);
  const auto find = [=](std::int32_t& at) {
    at = kWay == Way::kBackward ? file->Length() : 0;
    if (kWay == Way::kBackward) return file->FindBack(at, TextOf(kNeedle), false, false);
    return file->Find(at, TextOf(kNeedle), kWay == Way::kIgnoringCase, false);
  };
  const auto run = [=] {
    std::int32_t at = 0;
    Expect(!find(at), "a text was found that is not there");
  };
  // The text is found once it is there, over the border of two pages.
  const auto check = [=] {
    const std::int32_t place = file->Length() / 2 / BlkSize * BlkSize - 5;
    file->SetPos(place);
    file->ReplaceBytes(TextOf(kNeedle), kNeedleSize);
    std::int32_t at = 0;
    const std::int32_t behind = place + std::int32_t{kNeedleSize};
    Expect(find(at) && at == (kWay == Way::kBackward ? place : behind), "a text was not found");
    return 0;
  };
  return {run, check};
}

template <Needle kNeedle>
Contestant FindUnits(const Setting& setting) {
  const auto text = Loaded<TCharVFile>(setting);
  const auto run = [=] {
    std::int32_t at = 0;
    Expect(!text->FindTChars(at, UnitsOf(kNeedle), false, false), "a text was found that is not there");
  };
  const auto check = [=] {
    text->SetTCharPos(text->TCharLength() / 2);
    text->InsertTStr(UnitsOf(kNeedle));
    const std::int32_t behind = text->GetTCharPos();
    std::int32_t at = 0;
    Expect(text->FindTChars(at, UnitsOf(kNeedle), false, false) && at == behind, "a text was not found");
    return 0;
  };
  return {run, check};
}

/// Page by page with `memmem`, behind the end of the page before.
template <Needle kNeedle>
Contestant FindInPages(const Setting& setting) {
  const auto file = std::make_shared<HostFile>(NamelessCopy(setting.directory, setting.content));
  const auto run = [=, pages = PagesIn(setting.size)] {
    constexpr std::size_t kOverlap = kNeedleSize - 1;
    char bytes[kOverlap + kPage] = {};
    for (std::int64_t i = 0; i < pages; ++i) {
      std::memcpy(bytes, bytes + kPage, kOverlap);
      file->ReadPage(i, bytes + kOverlap);
      const void* found = memmem(bytes, sizeof bytes, TextOf(kNeedle), kNeedleSize);
      Expect(found == nullptr, "a text was found that is not there");
    }
  };
  return {run};
}

/// The pages of as many files, in turn.
template <int kFiles>
Contestant PagesInOrder(const Setting& setting) {
  const auto files = std::make_shared<std::vector<HostFile>>();
  for (int i = 0; i < kFiles; ++i) files->push_back(NamelessCopy(setting.directory, setting.content));
  const auto run = [=, pages = PagesIn(setting.size)] {
    char page[kPage];
    for (std::int64_t i = 0; i < pages; ++i) {
      for (const HostFile& file : *files) file.ReadPage(i, page);
    }
  };
  return {run};
}

/// The lines of the content, for comparison: `take` gets the start, the length and the size with the line end of each.
template <typename Take>
void ForLines(const std::string& text, Take take) {
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = std::min(text.find('\n', start), text.size());
    const std::size_t next = std::min(end + 1, text.size());
    take(static_cast<std::int32_t>(start), static_cast<std::int32_t>(end - start),
         static_cast<std::int32_t>(next - start));
    start = next;
  }
}

Contestant WalkLines(const Setting& setting) {
  const auto file = Loaded<VFile>(setting);
  const auto run = [=] {
    std::int32_t start = 0;
    std::int32_t size = 0;
    std::int32_t eolSize = 0;
    for (std::int32_t at = 0; at < setting.size; at = start + size) file->LineSize(at, start, size, eolSize);
  };
  const auto check = [=] {
    ForLines(Content(setting.content), [&](std::int32_t lineStart, std::int32_t length, std::int32_t lineSize) {
      std::int32_t start = 0;
      std::int32_t size = 0;
      std::int32_t eolSize = 0;
      file->LineSize(lineStart, start, size, eolSize);
      Expect(start == lineStart && size == lineSize && eolSize == lineSize - length, "a line");
    });
    return 0;
  };
  return {run, check};
}

Contestant ReadLines(const Setting& setting) {
  const auto file = Loaded<VFile>(setting);
  const auto run = [=] {
    char line[256];
    file->SetPos(0);
    while (!file->Eof()) file->ReadLine(line, sizeof line);
  };
  const auto check = [=] {
    const std::string text = Content(setting.content);
    file->SetPos(0);
    ForLines(text, [&](std::int32_t start, std::int32_t length, std::int32_t) {
      char line[256];
      const std::int32_t read = file->ReadLine(line, sizeof line);
      const bool same =
          read == length && std::memcmp(line, &text[static_cast<std::size_t>(start)], std::strlen(line)) == 0;
      Expect(same, "a line");
    });
    Expect(file->Eof(), "lines behind the end");
    return 0;
  };
  return {run, check};
}

Contestant Compare(const Setting& setting) {
  const auto left = Loaded<VFile>(setting);
  const auto right = Loaded<VFile>(setting);
  const auto check = [=] {
    right->SetPos(right->Length() - 1);
    right->ReplaceByte(0);
    Expect(*left != *right, "files that differ");
    return 0;
  };
  return {[=] { Expect(*left == *right, "equal files"); }, check};
}

constexpr char kNewMark[] = "[failure]";

Contestant ReplaceByLibrary(const Setting& setting) {
  UseSettings(setting);
  const auto file = std::make_shared<std::optional<VFile>>();
  const auto run = [=] {
    const std::int32_t replaced = (*file)->ReplaceGlobal(kMark, kNewMark, false, false);
    Expect(replaced == setting.size / kMarkDistance, "marks");
  };
  const auto prepare = [=] {
    file->reset();
    LoadContent(file->emplace(), setting);
  };
  return {run, [=] { return SumOf(**file); }, prepare};
}

Contestant ReplaceByString(const Setting& setting) {
  const auto out = std::make_shared<std::string>();
  const auto run = [=, text = Content(setting.content)] {
    std::size_t at = 0;
    for (std::size_t hit; (hit = text.find(kMark, at)) != std::string::npos; at = hit + sizeof kMark - 1) {
      out->append(text, at, hit - at).append(kNewMark);
    }
    out->append(text, at);
  };
  return {run, [=] { return SumOf(*out); }, [=] { std::string().swap(*out); }};
}

}  // namespace

std::vector<ContestantEntry> ScanContestants() {
  return {
      {"find/rare", Find<Needle::kRare, Way::kForward>},
      {"find/common", Find<Needle::kCommon, Way::kForward>},
      {"find/rare/back", Find<Needle::kRare, Way::kBackward>},
      {"find/common/back", Find<Needle::kCommon, Way::kBackward>},
      {"find/rare/case", Find<Needle::kRare, Way::kIgnoringCase>},
      {"find/common/case", Find<Needle::kCommon, Way::kIgnoringCase>},
      {"find/rare/units", FindUnits<Needle::kRare>},
      {"find/common/units", FindUnits<Needle::kCommon>},
      {"find/rare/memmem", FindInPages<Needle::kRare>},
      {"find/common/memmem", FindInPages<Needle::kCommon>},
      {"scan/pages", PagesInOrder<1>},
      {"compare/vfile", Compare},
      {"compare/pages", PagesInOrder<2>},
      {"lines/size", WalkLines},
      {"lines/read", ReadLines},
      {"replace/vfile", ReplaceByLibrary},
      {"replace/string", ReplaceByString},
  };
}
