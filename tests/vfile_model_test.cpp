#include <cstdlib>
#include <gtest/gtest.h>
#include <random>

#include "support/Chains.h"
#include "support/Halts.h"

using support::Bytes, support::Count, support::I32, support::Pattern, support::Peek, support::Pipe, support::Size;

namespace {

/// A file and all that a user must see of it.
struct Pair {
  I32 Length() const { return Count(bytes.size()); }
  std::string Part(I32 at, I32 count) const { return bytes.substr(Size(std::min(at, Length())), Size(count)); }
  void Move(I32 to, bool atEnd) { pos = std::clamp(to, 0, Length()), eof = atEnd; }
  void Seek(I32 to) { (res = to < 0 ? resCallError : resDone) == resDone ? Move(to, false) : void(); }

  Peek file;
  std::string bytes;
  I32 pos = 0, res = resDone;
  bool eof = false;
};

struct Model {
  I32 Below(I32 bound) { return Count(random() % Size(bound)); }
  I32 Place(I32 end) {
    const I32 special[] = {-1, MaxLen, end, 0};
    return Below(4) == 0 ? special[Below(4)] : Below(end + 1);
  }
  std::string Text(I32 count) {
    std::string text;
    while (count-- > 0) text += "aabA\r\n"[Below(6)];
    return text;
  }

  void Change(Pair& p, const Pair& other) {
    const I32 at = Place(p.Length()), from = Place(other.Length()), kind = Below(5);
    I32 del = Below(5) == 0 ? SameLen : Place(Below(3) == 0 ? p.Length() : std::min(p.Length(), 9));
    const I32 count = Below(20) == 0 ? -1 : Below(Below(3) == 0 ? 3000 : 20);
    const I32 wanted = kind < 3 || Below(3) > 0 ? count : Below(2) == 0 ? MaxLen : std::max(count, 0) + 1;
    std::string put = kind == 1 ? std::string(Size(std::max(count, 0)), 'c') : Text(count);
    const Pipe pipe(put);
    HFile file(host::HandleFromDescriptor(dup(pipe.ends[0])));
    if (kind == 0) p.file.ReplaceBuf(at, del, put.data(), count);
    if (kind == 1) p.file.ReplaceCh(at, del, 'c', count);
    if (kind == 2) p.file.ReplaceTxt(at, del, other.file, from, count);
    if (kind == 3) p.file.ReplaceFile(at, del, pipe.Handle(), wanted);
    if (kind == 4) p.file.ReplaceFile(at, del, file, wanted);
    if (p.res != resDone) return;
    const bool called = at >= 0 && (del >= 0 || del == SameLen) && wanted >= 0 && (kind != 2 || from >= 0);
    const bool isShort = wanted != MaxLen && wanted > std::max(count, 0);
    p.res = !called ? resCallError : p.file.FlagOn(vfReadOnly) ? resReadOnly : isShort ? resNotDone : resDone;
    if (p.res != resDone) return;
    if (kind == 2) put = other.Part(from, count);
    if (del == SameLen) del = kind == 1 ? std::min(count, BlkSize) : Count(put.size());
    p.Seek(at);
    p.bytes.replace(Size(p.pos), Size(del), put);
    p.pos += Count(put.size());
  }

  void Position(Pair& p, I32 offset, I32 origin) {
    const I32 bases[] = {0, p.pos, p.Length(), 0};
    const auto to = static_cast<std::int64_t>(bases[origin]) + offset;
    p.file.SetPos(offset, origin);
    p.Seek(origin == 3 || to > MaxLen ? -1 : static_cast<I32>(to));
  }

  void Read(Pair& p) {
    char buffer[4000];
    unsigned char byte = 7;
    const I32 count = Below(Below(2) == 0 ? 4000 : 9) - 1, at = Place(p.Length()), kind = Below(4), from = p.pos;
    I32 got = 1;
    std::string expected(1, '\0');
    if (kind < 2) {
      kind == 0 ? p.file.ReadByte(byte) : p.file.ReadPrevByte(byte), buffer[0] = static_cast<char>(byte);
      p.Move(kind == 0 ? from + 1 : from - 1, from == (kind == 0 ? p.Length() : 0));
      if (!p.eof) expected = p.Part(std::min(from, p.pos), 1);
    } else {
      got = kind == 2 ? p.file.ReadBytes(buffer, count) : p.file.ReadTxt(buffer, 4000, at, count);
      const bool called = count >= 0 && (kind == 2 || at >= 0);
      expected = called ? p.Part(kind == 2 ? from : at, count) : "";
      if (kind == 3 || !called) p.Seek(called ? at : -1);
      if (called) p.Move(p.pos + Count(expected.size()), kind == 2 && Count(expected.size()) < count);
    }
    EXPECT_EQ(std::string(buffer, Size(got)), expected);
  }

  void Find(Pair& p) {
    const std::string text = Text(1 + Below(4));
    const I32 n = Count(text.size()), from = Below(p.Length() + 1), back = Below(2);
    I32 at = from;
    const bool found = (p.file.*(back ? &VFile::FindBack : &VFile::Find))(at, text.c_str(), false, false);
    std::size_t i = back ? p.bytes.substr(0, Size(from)).rfind(text) : p.bytes.find(text, Size(from));
    const I32 end = i == std::string::npos ? (back ? -1 : p.Length() + 1) : Count(i) + (back ? 0 : n);
    EXPECT_TRUE(found == (i != std::string::npos) && at == end);
    p.res = resDone, p.Move(back ? end - 1 : end + 1, !found || end == (back ? 0 : p.Length()));
  }

  void Step() {
    Pair &p = pairs[Below(3)], &other = pairs[Below(3)];
    const I32 place = Place(p.Length()), kind = Below(16);
    if (kind == 0) Position(p, place, Below(4));
    if (kind == 1) p.file.Flush();
    if (kind == 2) VFile::ReleaseCache();
    if (kind == 3) VFile::SetMaxCacheSize(std::int16_t{limits[Below(5)]});
    if (kind == 4) p.file.SetFlag(vfReadOnly, Below(4) == 0);
    if (kind == 5) Find(p);
    if (kind > 5 && kind < 9) Read(p);
    if (kind > 8) Change(p, other);
    EXPECT_HALT("", p.file.CheckInvariants());
    EXPECT_TRUE(p.file.GetPos() == p.pos && p.file.Length() == p.Length() && p.file.res == p.res &&
                p.file.eof == p.eof && p.file.Bof() == (p.pos == 0) && p.file.Eof() == (p.pos == p.Length()));
    EXPECT_TRUE(Bytes(p.file) == p.bytes);
    // A failure stands for a step or two; a file that grew long starts again.
    if (p.res != resDone && Below(2) == 0) p.file.Reset(), p.Seek(0);
    if (p.Length() > 9000) p.file.Reset(), p.file.SetFlags(0), p.file.Truncate(), p.bytes.clear(), p.Seek(0);
  }

  static constexpr std::int16_t limits[] = {0, 1, 2, 3, 70};
  std::mt19937 random;
  Pair pairs[3];
};

TEST(Model, FilesAreStringsUnderAllOperations) {
  const char* given = std::getenv("VFILE_SEED");
  const auto seed = given != nullptr ? static_cast<unsigned>(std::atoll(given)) : std::random_device()();
  Model model{std::mt19937(seed), {}};
  for (int step = 0; step < 20000 && !HasFailure(); ++step) {
    SCOPED_TRACE(testing::Message() << "VFILE_SEED=" << seed << ", step " << step);
    model.Step();
  }
  VFile::SetMaxCacheSize(70);
}

}  // namespace
