#include <gtest/gtest.h>
#include <random>

#include "support/Chains.h"
#include "support/Disk.h"
#include "support/Halts.h"
#include "support/HugeString.h"
#include "support/Seed.h"
#include "vf/Streams.h"

using support::Bytes, support::Chain, support::Count, support::I32, support::Pattern, support::Peek, support::Size;

namespace {

/// A stream over a file, and what one over a string would do that inserts as well.
struct Pair {
  Peek file;
  vf::IOStream stream{file};
  std::string content;
  I32 place = 0;
  I32 written = 0;  // the place behind what was written last
  std::mt19937 random;

  explicit Pair(unsigned seed) : random(seed) {}
  int Below(int bound) { return static_cast<int>(random() % static_cast<unsigned>(bound)); }
  /// A place, most often in the content or at an end of it.
  int Some() {
    const int size = Count(content.size());
    const int places[] = {Below(size + 1), Below(9000), 0, size, size + 1, -1};
    return places[Below(6)];
  }

  std::string Take(std::size_t count) {
    const std::string bytes = content.substr(Size(place), count);
    place += Count(bytes.size());
    return bytes;
  }
  void ExpectMove(bool moved, I32 to) {
    const bool valid = to >= 0 && to <= Count(content.size());
    EXPECT_EQ(moved, valid) << to;
    if (valid) place = to;
  }
  void ExpectSame() {
    stream.clear();
    EXPECT_EQ(stream.tellg(), place);
    EXPECT_TRUE(stream.flush());
    EXPECT_EQ(stream.tellp(), place);
    EXPECT_EQ(Bytes(file), content);
  }

  void Read() {
    std::string bytes(Size(std::max(Some(), 0)), '?');
    stream.read(bytes.data(), std::ssize(bytes));
    EXPECT_EQ(stream.eof(), stream.gcount() < std::ssize(bytes));
    EXPECT_EQ(bytes.substr(0, static_cast<std::size_t>(stream.gcount())), Take(bytes.size()));
  }
  void ReadLine() {
    std::string line;
    std::getline(stream, line);
    EXPECT_EQ(line, Take(content.find('\n', Size(place)) - Size(place)));
    Take(1);
  }
  void Write() {
    const std::string bytes = Pattern(Below(Below(4) == 0 ? 9000 : 30), Below(200));
    if (Below(2) == 0) {
      stream << bytes;
    } else {
      for (const char byte : bytes) stream.put(byte);
    }
    content.replace(Size(place), file.FlagOn(vfInsert) ? 0 : bytes.size(), bytes);
    place += Count(bytes.size());
    if (!bytes.empty()) written = place;
  }
  void Seek() {
    const I32 to = Some();
    const std::ios::seekdir origins[] = {std::ios::beg, std::ios::cur, std::ios::end};
    const I32 bases[] = {0, place, Count(content.size())};
    const int origin = Below(3);
    ExpectMove(stream.seekg(to - bases[origin], origins[origin]).good(), to);
  }
  void StepBack() {
    for (int count = Below(9) == 0 ? 5000 : 1; count > 0; --count, stream.clear())
      ExpectMove(stream.unget().good(), place - 1);
    if (place == 0) return;
    const char before = content[Size(place - 1)];
    EXPECT_FALSE(stream.putback(static_cast<char>(before + 1)));
    stream.clear();
    ExpectMove(stream.putback(before).good(), place - 1);
  }
  void Look() {
    const bool atEnd = place == Count(content.size());
    EXPECT_EQ(stream.peek(), atEnd ? std::char_traits<char>::eof() : static_cast<unsigned char>(content[Size(place)]));
  }
  void Toggle() {
    stream.flush();
    file.ToggleFlag(vfInsert);
  }
};

TEST(Streams, DoWhatAStreamOverAStringDoes) {
  constexpr void (Pair::*kOperations[])() = {&Pair::Read,  &Pair::ReadLine, &Pair::Write,
                                             &Pair::Write, &Pair::Seek,     &Pair::StepBack,
                                             &Pair::Look,  &Pair::Toggle,   &Pair::ExpectSame};
  const unsigned seed = support::Seed();
  for (unsigned i = 0; i < 10; ++i) {
    Pair pair(seed + i);
    for (int step = 0; step < 300 && !HasFailure(); ++step) {
      SCOPED_TRACE(step);
      pair.stream.clear();
      (pair.*kOperations[pair.Below(9)])();
    }
    pair.ExpectSame();
    EXPECT_EQ(pair.file.pos, pair.written);
  }
}

TEST(Streams, BeginAtThePositionOfTheFileAndLeaveItToReading) {
  Chain file({1024, 700}, Pattern(1000) + "12 word" + Pattern(717));
  file.SetPos(1000);
  file.res = resNotFound;
  vf::IStream in(file);
  int number = 0;
  in >> number;
  EXPECT_EQ(std::tuple(number, file.pos, file.eof, file.res), std::tuple(12, 1000, false, I32{resNotFound}));
  vf::StreamBuffer constant(std::as_const(file));
  EXPECT_EQ(constant.sputc('x'), std::char_traits<char>::eof());
  EXPECT_EQ(constant.sgetc(), '1');
}

TEST(Streams, FollowAFileThatOthersChanged) {
  VFile file("0123456789");
  vf::IOStream stream(file);
  EXPECT_EQ(stream.seekg(2).get(), '2');
  file.Delete(3, 4);
  EXPECT_EQ(stream.get(), '3') << "read before";
  stream.sync();
  EXPECT_EQ(stream.get(), '8');
  char none = 0;
  EXPECT_EQ(stream.rdbuf()->sgetn(&none, -3), 0);
  EXPECT_EQ(stream.tellg(), 5);
  file.Delete(2, MaxLen);
  stream.sync();
  EXPECT_EQ(stream.tellp(), 2);
}

/// Counts its changes, and can be made to refuse or to throw.
struct Counted : Peek {
  I32 PreChange(I32, I32, I32) const override {
    ++asked;
    if (throwing) throw support::Halted{"thrown"};
    return answer;
  }
  mutable int asked = 0;
  bool throwing = false;
  I32 answer = resDone;
};

TEST(Streams, GatherWhatIsWritten) {
  Counted file;
  {
    vf::OStream out(file);
    for (int i = 0; i < 4097; ++i) out.put('x');
    EXPECT_EQ(std::pair(file.asked, file.length), std::pair(1, 4096));
    out.write(Pattern(5000).data(), 5000);
    EXPECT_EQ(std::pair(file.asked, file.length), std::pair(3, 9097)) << "what waited, and the rest from where it lies";
    out << "end";
  }
  EXPECT_EQ(Bytes(file), std::string(4097, 'x') + Pattern(5000) + "end");
}

TEST(Streams, TellARefusedChange) {
  // clang-format off
  const std::tuple<std::function<void(Counted&)>, I32> rows[] = {
      {DO(f.SetFlags(vfReadOnly)), resReadOnly}, {DO(f.res = resNotFound), resNotFound},
      {DO(f.answer = resNotSupported), resNotSupported}, {DO(f.throwing = true), resDone}};
  const std::pair<std::function<void(std::iostream&)>, bool> writes[] = {  // and whether it is a writing that fails
      {DO(f << "x" << std::flush), true}, {DO(f << std::string(5000, 'x')), true},
      {DO(for (int i = 0; i < 4097; ++i) f.put('x')), true}, {DO(f << "x"; f.seekp(0)), false}, {DO(f << "x"; f.get()), false}};
  // clang-format on
  for (const auto& [refuse, res] : rows) {
    for (const auto& [write, writing] : writes) {
      Counted file;
      file.Insert("012");
      refuse(file);
      {
        vf::IOStream stream(file);
        stream.seekp(1);
        const bool halted = !support::HaltOf([&] { write(stream); }).empty();
        EXPECT_TRUE(stream.fail() || halted) << res;
        EXPECT_EQ(stream.bad() || halted, writing || file.throwing) << res;
        EXPECT_EQ(file.res, res);
        stream.clear();
        stream << "dropped in silence";
      }
      EXPECT_EQ(Bytes(file), "012");
    }
  }
  if (!support::kHasHugeStrings) return;
  const support::HugeString huge;
  VFile file;
  vf::OStream out(file);
  out.write(huge.Bytes(support::HugeString::kCutToOne), support::HugeString::kCutToOne);
  EXPECT_EQ(std::tuple(out.bad(), file.res, file.Length()), std::tuple(true, I32{resTooLong}, 0));
}

TEST(Streams, EndWhereAPageIsRefused) {
  VFile::SetMaxCacheSize(0);
  const Chain file({1024, 1024, 1024, 1024, 1024, 1024});
  vf::IStream in(file);
  in.seekg(5000);
  VFile::ReleaseCache();
  const std::pair<std::function<void(std::istream&)>, int> rows[] = {
      {DO(f.get()), 1}, {DO(f.unget()), 1}, {DO(f.unget()), 2}};
  for (const auto& [read, failing] : rows) {
    const support::FailingDisk disk(failing, support::FailingDisk::kReads);
    const support::NoteHalts noting;
    read(in);
    EXPECT_TRUE(in.fail());
    in.clear();
    EXPECT_EQ(in.tellg(), 5000);
  }
  EXPECT_EQ(in.get(), static_cast<unsigned char>(Pattern(1, 5000)[0]));
  VFile::SetMaxCacheSize(70);
}

template <typename File>
constexpr int kStreams = std::is_constructible_v<vf::IStream, File> + std::is_constructible_v<vf::OStream, File> +
                         std::is_constructible_v<vf::IOStream, File> + std::is_constructible_v<vf::StreamBuffer, File>;
static_assert(kStreams<VFile&> == 4 && kStreams<const VFile&> == 2 && kStreams<Peek&> == 4);
static_assert(kStreams<VFile> + kStreams<const VFile> + kStreams<Peek> == 0);

}  // namespace
