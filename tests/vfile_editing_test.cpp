#include <gtest/gtest.h>

#include "support/Chains.h"
#include "support/FullDisk.h"
#include "support/Halts.h"
#include "tcharvfile/TCharVFile.h"
#include "vfile/ThreadValues.h"

using support::Bytes, support::Chain, support::I32, support::Peek, support::Pipe, support::Size;

namespace {

/// Notes the primitives in place of the changes: the position, the bytes out, the source and its count.
struct Recorder : Chain {
  Recorder() : Chain({2, 4}, "abcdef") { SetPos(2); }
  using VFile::operator=;

  static std::string Text(I32 number) {
    return number == SameLen ? "same" : number == MaxLen ? "max" : std::to_string(number);
  }
  void Note(const char* name, I32 at, I32 del, const std::string& source, I32 count) {
    log += name + Text(at) + " " + Text(del) + " " + source + " " + Text(count) + ";";
  }
  void ReplaceBuf(I32 at, I32 del, const void* bytes, I32 count) override {
    Note("Buf ", at, del, std::string(bytes != nullptr ? static_cast<const char*>(bytes) : "null", Size(count)), count);
  }
  void ReplaceCh(I32 at, I32 del, char ch, I32 count) override { Note("Ch ", at, del, {ch}, count); }
  void ReplaceTxt(I32 at, I32 del, const VFile& file, I32 from, I32 count) override {
    Note("Txt ", at, del, Text(file.Length()) + "@" + Text(from), count);
  }
  void ReplaceFile(I32 at, I32 del, HFile& file, I32 count) override {
    Note("HFile ", at, del, Text(file.radix), count);
  }
  void ReplaceFile(I32 at, I32 del, HANDLE file, I32 count) override {
    Note("Handle ", at, del, Text(static_cast<I32>(reinterpret_cast<std::intptr_t>(file))), count);
  }

  std::string log;
};

// clang-format off
#define VERBS(suffix, ...) {DO(f.Insert##suffix(__VA_ARGS__)), DO(f.Replace##suffix(__VA_ARGS__)), \
    DO(f.Write##suffix(__VA_ARGS__)), DO(f.Append##suffix(__VA_ARGS__)), DO(f.Prepend##suffix(__VA_ARGS__))}
// clang-format on

TEST(Editing, EachVerbOfEachSourceIsOneCallOfAPrimitive) {
  const VFile source("012345678");
  const HANDLE handle = reinterpret_cast<HANDLE>(std::intptr_t{77});
  const signed char s = 'x';
  const unsigned char u = 'x';
  const std::int64_t q = 0x4847464544434241;
  const long long ll = q;
  const auto uq = static_cast<std::uint64_t>(q);
  HFile file;
  // clang-format off
  const std::tuple<std::vector<std::function<void(Recorder&)>>, std::string, std::string, std::string> rows[] = {
      {VERBS(Byte, 0xE9), "Buf ", "1", "\xE9 1;"}, {VERBS(Bytes, "xyz", 2), "Buf ", "2", "xy 2;"},
      {VERBS(Word, std::int16_t{0x4241}), "Buf ", "2", "AB 2;"},
      {VERBS(Word, std::uint16_t{0x4241}), "Buf ", "2", "AB 2;"}, {VERBS(DWord, 0x44434241), "Buf ", "4", "ABCD 4;"},
      {VERBS(DWord, 0x44434241U), "Buf ", "4", "ABCD 4;"}, {VERBS(QWord, ll), "Buf ", "8", "ABCDEFGH 8;"},
      {VERBS(QWord, static_cast<unsigned long long>(q)), "Buf ", "8", "ABCDEFGH 8;"},
      {VERBS(QWord, q), "Buf ", "8", "ABCDEFGH 8;"}, {VERBS(QWord, uq), "Buf ", "8", "ABCDEFGH 8;"},
      {VERBS(, 'x', 3), "Ch ", "3", "x 3;"}, {VERBS(, s, 3), "Ch ", "3", "x 3;"}, {VERBS(, u, 3), "Ch ", "3", "x 3;"},
      {VERBS(, "xyz"), "Buf ", "same", "xyz 3;"}, {VERBS(, source, 4, 7), "Txt ", "same", "9@4 7;"},
      {VERBS(, file, 7), "HFile ", "same", "10 7;"}, {VERBS(FromFile, handle, 7), "Handle ", "same", "77 7;"}};
  // clang-format on
  for (const auto& [verbs, primitive, overwrite, passed] : rows) {
    for (std::size_t verb = 0; verb < 10; ++verb) {
      const std::string over = "2 " + overwrite;
      const std::string places[] = {"2 0", over, verb > 4 ? "2 0" : over, "6 0", "0 0"};
      Recorder recorder;
      recorder.SetFlag(vfInsert, verb > 4);
      verbs[verb % 5](recorder);
      EXPECT_EQ(recorder.log, primitive + places[verb % 5] + " " + passed) << verb;
    }
  }
  Peek other("other");
  // clang-format off
  const std::tuple<std::function<void(Recorder&)>, std::string, std::string> others[] = {
      {DO(f.ReadFromFile(handle, 7)), "Handle 2 same 77 7;", "Handle 2 0 77 7;"},
      {DO(f.ReadFromFile(file, 7)), "HFile 2 same 10 7;", "HFile 2 0 10 7;"},
      {DO(f << 'x'), "Buf 2 1 x 1;", "Buf 2 0 x 1;"},
      {DO(f << s << u), "Buf 2 1 x 1;Buf 2 1 x 1;", "Buf 2 0 x 1;Buf 2 0 x 1;"},
      {DO(f << -12 << ~0U), "Buf 2 same -12 3;Buf 2 same 4294967295 10;", "Buf 2 0 -12 3;Buf 2 0 4294967295 10;"},
      {DO(f << std::int16_t{-1} << std::uint16_t{65535}), "Buf 2 same -1 2;Buf 2 same 65535 5;",
       "Buf 2 0 -1 2;Buf 2 0 65535 5;"},
      {DO(f.radix = 36; f << ll << uq), "Buf 2 same 13ki3x4o8d4xt 13;Buf 2 same 13ki3x4o8d4xt 13;",
       "Buf 2 0 13ki3x4o8d4xt 13;Buf 2 0 13ki3x4o8d4xt 13;"},
      {DO(f << "" << source), "Buf 2 same  0;Txt 2 same 9@0 max;", "Buf 2 0  0;Txt 2 0 9@0 max;"},
      {DO(f.Delete(1, 9); f.Truncate()), "Buf 1 9  0;Buf 2 max  0;", ""},
      {DO(f = source; f = "xy"), "Txt 0 6 9@0 max;Buf 0 6 xy 2;", ""},
      {DO(f = s; f = 'x'; f = u), "Buf 0 6 x 1;Buf 0 6 x 1;Buf 0 6 x 1;", ""},
      {DO(f += 'x'; f += "xy"), "Buf 6 0 x 1;Buf 6 0 xy 2;", ""}, {DO((f += s) += u), "Buf 6 0 x 1;Buf 6 0 x 1;", ""},
      {DO(f += source), "Txt 6 0 9@0 max;", ""}, {DO(other.SetPos(2); other >> f), "Txt 0 max 5@2 max;", ""}};
  // clang-format on
  for (const auto& [call, log, inserting] : others) {
    for (const bool insert : {false, true}) {
      Recorder recorder;
      recorder.SetFlag(vfInsert, insert);
      call(recorder);
      EXPECT_EQ(recorder.log, insert && !inserting.empty() ? inserting : log);
    }
  }
}

TEST(Editing, ConstructorsPutTheContentInAndStandBehindIt) {
  HFile closed;
  Peek source("0123456789");
  source.SetFlags(vfInsert);
  source.Reset();
  const auto show = [](const Peek& f) {
    return Bytes(f) + (f.Eof() && f.GetFlags() == 0 ? " " : "!") + std::to_string(f.res);
  };
  const std::string chars =
      show({'x', 3}) + show({static_cast<signed char>('y'), 1}) + show({static_cast<unsigned char>(0), -1});
  EXPECT_EQ(chars + show(Peek("abc")) + show({Pipe("abcd").Handle(), 3}) + show({closed, 3}), "xxx 0y 0 2abc 0abc 0 2");
  EXPECT_EQ(show({source, 8, 7}) + show(source) + show(Peek(source)), "89 00123456789!00123456789 0");
}

// Each needs more pages than the cache has, and the disk has no room for them.
TEST(Editing, AConstructorThatHaltsLeavesNothingOfItself) {
  const std::string text(5000, 'x');
  VFile::SetMaxCacheSize(2);
  {
    const VFile source(text.c_str());
    const support::FullDisk disk(0);
#define CONSTRUCT(...) [&] { __VA_ARGS__; }
    const Pipe pipe(text);
    HFile file(support::OpenPipe(text));
    const std::function<void()> constructions[] = {CONSTRUCT(VFile('x', 5000)), CONSTRUCT(VFile(text.c_str())),
                                                   CONSTRUCT(VFile(pipe.Handle(), 5000)), CONSTRUCT(VFile(file, 5000)),
                                                   CONSTRUCT(VFile{source})};
    for (const auto& construct : constructions) {
      EXPECT_NE(support::HaltOf(construct), "") << &construct - constructions;
      EXPECT_EQ(vfile::GetOpenFileCount(), 1) << &construct - constructions;
    }
  }
  EXPECT_EQ(vfile::GetThreadVMem(), nullptr);
  VFile::SetMaxCacheSize(70);
}

// ---- What compiles ----

#define TAKES(call) \
  requires(VFile & f, Source s) { f.call; }

// clang-format off
template <typename Source>
constexpr int kHandleForms = std::is_constructible_v<HFile, Source> + std::is_constructible_v<VFile, Source, int> +
    TAKES(ReplaceFile(0, 0, s, 1)) + TAKES(InsertFromFile(s, 1)) + TAKES(ReplaceFromFile(s, 1)) +
    TAKES(WriteFromFile(s, 1)) + TAKES(AppendFromFile(s, 1)) + TAKES(PrependFromFile(s, 1)) + TAKES(ReadFromFile(s, 1)) +
    TAKES(WriteToFile(s, 1));
// clang-format on
template <int forms, typename... Source>
constexpr bool kAllTake = (... && (kHandleForms<Source> == forms));

static_assert(kAllTake<10, HANDLE, std::nullptr_t, int*, HFile*>);
static_assert(kAllTake<0, char*, signed char*, unsigned char*, wchar_t*, char8_t*, char16_t*, char32_t*, const char*,
                       const unsigned char*, const TChar*, char (&)[3], const wchar_t (&)[3]>);

template <typename File, typename Value>
concept Writes = requires(File& file, Value value) {
  file << value;
};
template <typename File, typename... Value>
constexpr int kWritten = (0 + ... + Writes<File, Value>);
#define OF_ALL short, unsigned, long, unsigned long long, Res
#define OF_NONE bool, char8_t, char32_t, std::conditional_t<std::is_same_v<TChar, wchar_t>, char16_t, wchar_t>

static_assert(kWritten<VFile, OF_ALL, char, signed char, unsigned char, const char*, const VFile&> == 10);
static_assert(kWritten<HFile, OF_ALL, char, signed char, unsigned char, const char*> == 9);
static_assert(kWritten<TCharVFile, OF_ALL, TChar, const TChar*, const TString&, const TCharVFile&> == 9);
static_assert(kWritten<VFile, OF_NONE, wchar_t, char16_t, const TChar*> == 0);
static_assert(kWritten<HFile, OF_NONE, wchar_t, char16_t, const TChar*> == 0);
static_assert(kWritten<TCharVFile, OF_NONE, char, signed char, unsigned char, const char*> == 0);

}  // namespace
