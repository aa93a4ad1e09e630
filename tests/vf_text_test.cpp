#include <gtest/gtest.h>
#include <thread>

#include "support/Halts.h"
#include "support/HugeString.h"
#include "support/Seed.h"
#include "support/Texts.h"
#include "vf/Text.h"

using support::Bytes, support::Chain, support::Count, support::HugeString, support::I32, support::Lengths,
    support::Size, support::TextPeek;
using std::string_view_literals::operator""sv, std::string_literals::operator""s;

namespace {

/// Notes the changes by a buffer that go through its slot.
struct Recorder : Chain {
  Recorder() : Chain({2, 4}, "abcdef") { SetPos(2); }

  void ReplaceBuf(I32 at, I32 del, const void* bytes, I32 count) override {
    const auto shown = [](I32 n) { return n == SameLen ? "same"s : n == MaxLen ? "max"s : std::to_string(n); };
    log += " b" + shown(at) + "," + shown(del) + "," + shown(count);
    VFile::ReplaceBuf(at, del, bytes, count);
  }

  std::string log;
};

/// The bytes with "." for 0, the position, `res` and the log.
std::string Outcome(std::string bytes, I32 position, I32 res, const std::string& log) {
  std::replace(bytes.begin(), bytes.end(), '\0', '.');
  return bytes + " " + std::to_string(position) + " " + std::to_string(res) + log;
}

#define ROW(...) #__VA_ARGS__, DO(__VA_ARGS__)

TEST(Text, GoesIntoAFileByView) {
  // clang-format off
  const std::tuple<const char*, std::function<void(Recorder&)>, std::string> rows[] = {
      {ROW(vf::Insert(f, "x\0y"sv)), "abx.ycdef 5 0 b2,0,3"}, {ROW(vf::Replace(f, "x\0"s)), "abx.ef 4 0 b2,same,2"},
      {ROW(vf::Replace(f, "uvwxyz")), "abuvwxyz 8 0 b2,same,6"}, {ROW(vf::Append(f, "x")), "abcdefx 7 0 b6,0,1"},
      {ROW(vf::Assign(f, "x\0"sv)), "x. 2 0 b0,max,2"}, {ROW(vf::Assign(f, "")), " 0 0 b0,max,0"},
      {ROW(vf::Append(f, std::string_view())), "abcdef 6 0 b6,0,0"}, {ROW(vf::Insert(f, ""s)), "abcdef 2 0 b2,0,0"},
      {ROW(f << "x\0"s << "y"sv << 'z'), "abx.yz 6 0 b2,same,2 b4,same,1 b5,1,1"},
      {ROW(f.SetFlags(vfInsert); f << "xy"s << "z"), "abxyzcdef 5 0 b2,0,2 b4,0,1"},
      {ROW(f.res = resNotFound; vf::Append(f, "x")), "abcdef 2 14 b6,0,1"},
      {ROW(f.SetFlags(vfReadOnly); vf::Assign(f, "x")), "abcdef 2 4 b0,max,1"}};
  // clang-format on
  for (const auto& [what, change, outcome] : rows) {
    Recorder file;
    change(file);
    EXPECT_EQ(Outcome(Bytes(file), file.GetPos(), file.res, file.log), outcome) << what;
  }
  EXPECT_TRUE(vf::FileFrom("x\0"sv) == "x\0"sv);
}

// The text "abc" with half a unit behind it.
TEST(Text, GoesIntoATextByView) {
  const TString zero(1, 0);
  // clang-format off
  const std::tuple<const char*, std::function<void(TextPeek&)>, std::string> rows[] = {
      {ROW(vf::Insert(f, TSTR("x") + zero)), "a.x...b.c.d 6 0 b2,0,4"},
      {ROW(f << vf::TStringView(zero) << TSTR("x")), "a...x.b.c.d 6 0 b2,0,2 b4,0,2"},
      {ROW(vf::Replace(f, TSTR("xy"))), "a.x.y.d 6 0 b2,-2147483648,4"},
      {ROW(vf::Append(f, TSTR("x"))), "a.b.c.dx. 9 0 b7,0,2"}, {ROW(vf::Assign(f, zero)), ".. 2 0 b0,max,2"},
      {ROW(f.SetFlags(vfReadOnly); vf::Insert(f, TSTR("x"))), "a.b.c.d 2 4 b2,0,2"}};
  // clang-format on
  for (const auto& [what, change, outcome] : rows) {
    TextPeek text;
    text.ReplaceBuf(0, 0, "a\0b\0c\0d", 7);
    text.SetTCharPos(1);
    text.log.clear();
    change(text);
    std::string bytes(Size(text.length), '?');
    text.ReadAt(0, bytes.data(), text.length);
    EXPECT_EQ(Outcome(bytes, text.pos, text.res, text.log), outcome) << what;
  }
}

TEST(Text, ComesOutAsAString) {
  const Chain file({3, 5, 2}, "0123456789");
  TextPeek text;
  for (const char unit : "0123456789"s) text.ReplaceBuf(text.length, 0, std::string{unit, 0}.data(), 2);
  text.ReplaceBuf(20, 0, "x", 1);
  // clang-format off
  const std::tuple<I32, I32, std::string> rows[] = {{0, MaxLen, "0123456789"}, {2, 4, "2345"}, {8, 9, "89"}, {9, MaxLen, "9"},
      {10, 1, ""}, {MaxLen, MaxLen, ""}, {-1, 3, ""}, {INT32_MIN, MaxLen, ""}, {3, 0, ""}, {3, -1, ""}};
  // clang-format on
  for (const auto& [at, count, part] : rows) {
    EXPECT_EQ(vf::ToString(file, at, count), part) << at << ", " << count;
    EXPECT_EQ(vf::ToTString(text, at, count), TString(part.begin(), part.end())) << at << ", " << count;
  }
  EXPECT_EQ(std::tuple(text.pos, text.res, text.eof), std::tuple(21, I32{resDone}, false));
}

/// Whether all the ways to compare tell the order of the strings.
template <typename File, typename String>
void ExpectOrder(const File& file, const String& content, const String& other) {
  const std::strong_ordering order = content <=> other;
  EXPECT_EQ(vf::Compare(file, other), order) << content.size() << " to " << other.size();
  EXPECT_EQ(std::pair(file == other, other < file), std::pair(order == 0, order > 0));
}

TEST(Text, IsOrderedAsTheStringsAre) {
  std::mt19937 random(support::Seed());
  for (const Lengths& lens : {Lengths{}, Lengths{1}, Lengths{3, 1024, 1, 1, 700, 5}}) {
    Chain file(lens);
    if (file.length > 1500) file.ReplaceBuf(1500, 1, "!", 1);
    const std::string content = Bytes(file);
    TextPeek text;
    support::FillInSmallBlocks(text, content, random);
    for (int place = 0; place <= file.length; place += place < 6 || place > 1022 ? 1 : 101) {
      for (const auto& [del, ins] : {std::pair(0, ""sv), {9999, ""sv}, {1, "\0"sv}, {1, "\xFF"sv}, {0, "\xFF"sv}}) {
        const std::string changed = std::string(content).replace(Size(place), Size(del), ins);
        ExpectOrder(file, content, changed);
        if (place % 32 > 3) continue;
        const TString units(reinterpret_cast<const TChar*>(changed.data()), changed.size() / 2);
        ExpectOrder(text, text.Units(), units);
        EXPECT_EQ(vf::Compare(text, vf::TextFrom(units)), text.Units() <=> units);
      }
    }
  }
  const VFile file;
  const TCharVFile text;
  std::thread([&] {
    EXPECT_ASSERTION("VFile", (void)vf::Compare(file, ""));
    EXPECT_ASSERTION("VFile", (void)vf::Compare(text, text));
  }).join();
}

TEST(Text, ThatIsTooLongIsNeverCut) {
  if (!support::kHasHugeStrings) GTEST_SKIP() << "no room for them";
  const HugeString huge;
  const std::string_view bytes(huge.Bytes(HugeString::kCutToOne), HugeString::kCutToOne);
  const vf::TStringView units(huge.Units(HugeString::kNoCount), HugeString::kNoCount / 2);
  VFile file("x");
  TCharVFile text;
  file << bytes;
  text << units;
  EXPECT_EQ(std::tuple(file.res, text.res, text.TCharLength()), std::tuple(I32{resTooLong}, I32{resTooLong}, 0));
  EXPECT_TRUE(file == "x"s && file != bytes && file < bytes);
  file.Reset();
  file.SetFlags(vfReadOnly);
  file << bytes;
  EXPECT_EQ(file.res, resReadOnly);
}

// ---- What compiles ----

// clang-format off
template <typename File, typename Source>
constexpr int kForms = requires(File& f, Source s) { vf::Insert(f, s); } + requires(File& f, Source s) { vf::Replace(f, s); } +
    requires(File& f, Source s) { vf::Append(f, s); } + requires(File& f, Source s) { vf::Assign(f, s); } +
    requires(File& f, Source s) { vf::Compare(f, s); } +
    (std::is_same_v<File, VFile> ? requires(Source s) { vf::FileFrom(s); } : requires(Source s) { vf::TextFrom(s); });
// clang-format on
template <typename File, int forms, typename... Source>
constexpr bool kAllTake = (... && (kForms<File, Source> == forms));

static_assert(kAllTake<VFile, 6, std::string, std::string_view, const char*, const char (&)[3]>);
static_assert(kAllTake<TCharVFile, 6, TString, vf::TStringView, const TChar*, const TChar (&)[3]>);
#define OF_NONE std::nullptr_t, bool, char, int, unsigned, long, double, wchar_t, char8_t, std::u8string, std::u32string
static_assert(kAllTake<VFile, 0, OF_NONE, TString, const TChar*, vf::TStringView>);
static_assert(kAllTake<TCharVFile, 0, OF_NONE, std::string, const char*, std::string_view>);

}  // namespace
