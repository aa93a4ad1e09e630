#include <gtest/gtest.h>
#include <iomanip>
#include <iterator>
#include <random>
#include <sstream>

#include "support/Disk.h"
#include "support/Halts.h"
#include "support/HugeString.h"
#include "support/Seed.h"
#include "support/Texts.h"
#include "vf/Streams.h"

using support::Bytes, support::Chain, support::Count, support::I32, support::Pattern, support::Peek, support::Size;

namespace {

/// What a stream over a string would do, where it inserts as well.
struct Model {
  std::string content;
  std::size_t place = 0;

  std::string Read(std::size_t count) {
    const std::string bytes = content.substr(place, count);
    place += bytes.size();
    return bytes;
  }
  std::string Line() {
    const std::string line = Read(content.find('\n', place) - place);
    if (place < content.size()) ++place;
    return line;
  }
  void Write(const std::string& bytes, bool inserting) {
    content.replace(place, inserting ? 0 : bytes.size(), bytes);
    place += bytes.size();
  }
  bool Seek(std::int64_t to) {
    if (to < 0 || to > std::ssize(content)) return false;
    place = static_cast<std::size_t>(to);
    return true;
  }
};

/// Does the same, at random, to a stream and to a model.
class Driver {
 public:
  explicit Driver(unsigned seed) : random_(seed) {}

  void Run(int steps) {
    vf::IOStream stream(file_);
    for (int i = 0; i < steps && !testing::Test::HasFailure(); ++i) {
      SCOPED_TRACE(i);
      stream.clear();
      Step(stream, Below(12));
      if (Below(3) == 0) ExpectSame(stream);
    }
    ExpectSame(stream);
    EXPECT_EQ(file_.pos, written_);
  }

 private:
  int Below(int bound) { return static_cast<int>(random_() % static_cast<unsigned>(bound)); }
  int Some() { return Below(Below(4) == 0 ? 9000 : 30); }

  void ExpectSame(std::iostream& stream) {
    stream.clear();
    EXPECT_EQ(stream.tellg(), std::streamoff(model_.place));
    EXPECT_TRUE(stream.flush());
    EXPECT_EQ(stream.tellp(), std::streamoff(model_.place));
    EXPECT_EQ(Bytes(file_), model_.content);
  }

  void Write(std::iostream& stream, const std::string& bytes, bool inChars) {
    if (inChars) {
      std::copy(bytes.begin(), bytes.end(), std::ostreambuf_iterator<char>(stream));
    } else {
      stream << bytes;
    }
    model_.Write(bytes, file_.FlagOn(vfInsert));
    if (!bytes.empty()) written_ = Count(model_.place);
  }

  void Step(std::iostream& stream, int operation) {
    const std::streamoff to = Below(3) == 0 ? Below(20) - 10 : Below(Count(model_.content.size()) + 2);
    const auto here = static_cast<std::streamoff>(model_.place);
    const auto end = static_cast<std::streamoff>(model_.content.size());
    std::string bytes(Size(Some()), '?');
    switch (operation) {
      case 0:
        stream.read(bytes.data(), std::ssize(bytes));
        EXPECT_EQ(bytes.substr(0, Size(Count(static_cast<std::size_t>(stream.gcount())))), model_.Read(bytes.size()));
        EXPECT_EQ(stream.eof(), static_cast<std::size_t>(stream.gcount()) < bytes.size());
        break;
      case 1:
        bytes.clear();
        std::getline(stream, bytes);
        EXPECT_EQ(bytes, model_.Line());
        break;
      case 2:
      case 3:
      case 4:
        Write(stream, Pattern(Count(bytes.size()), Below(200)), operation == 2);
        break;
      case 5:
        EXPECT_EQ(stream.seekg(to).good(), model_.Seek(to));
        break;
      case 6:
        EXPECT_EQ(stream.seekp(to - here, std::ios::cur).good(), model_.Seek(to));
        break;
      case 7:
        EXPECT_EQ(stream.seekg(to - end, std::ios::end).good(), model_.Seek(to));
        break;
      case 8:
        for (int count = Below(9) == 0 ? 5000 : Below(3); count > 0; --count) {
          EXPECT_EQ(stream.unget().good(), model_.Seek(static_cast<std::int64_t>(model_.place) - 1));
          stream.clear();
        }
        break;
      case 9:
        if (model_.place == 0) break;
        EXPECT_FALSE(stream.putback(static_cast<char>(model_.content[model_.place - 1] + 1)));
        stream.clear();
        EXPECT_TRUE(stream.putback(model_.content[--model_.place]));
        break;
      case 10:
        // What waits goes by the flag of the moment in which it goes.
        stream.flush();
        file_.ToggleFlag(vfInsert);
        break;
      case 11:
        EXPECT_EQ(stream.peek(), model_.place == model_.content.size()
                                     ? std::char_traits<char>::eof()
                                     : static_cast<unsigned char>(model_.content[model_.place]));
        EXPECT_EQ(stream.rdbuf()->in_avail() > 0, model_.place < model_.content.size());
        break;
    }
  }

  std::mt19937 random_;
  Peek file_;
  Model model_;
  I32 written_ = 0;  // the place behind what was written last
};

TEST(Streams, DoWhatAStreamOverAStringDoes) {
  const unsigned seed = support::Seed();
  for (unsigned i = 0; i < 10; ++i) Driver(seed + i).Run(300);
}

TEST(Streams, FormatAndScan) {
  VFile file("12 0x1f 2.5 word\n");
  vf::IOStream stream(file);
  stream.seekg(0);
  int number = 0;
  int hex = 0;
  double real = 0;
  std::string word;
  stream >> number >> std::hex >> hex >> real >> word;
  EXPECT_EQ(std::tuple(number, hex, real, word), std::tuple(12, 31, 2.5, std::string("word")));
  stream << std::setw(4) << 26 << '|' << std::flush;
  EXPECT_TRUE(file == "12 0x1f 2.5 word  1a|") << "at the place where reading ended";
  const VFile unchanged(file);
  vf::IStream in(unchanged);
  in.seekg(3);
  std::ostringstream copy;
  copy << in.rdbuf();
  EXPECT_EQ(copy.str(), "0x1f 2.5 word  1a|");
}

TEST(Streams, BeginAtThePositionOfTheFileAndLeaveItToReading) {
  Chain file({1024, 700});
  file.SetPos(1000);
  file.eof = true;
  file.res = resNotFound;
  vf::IStream in(file);
  std::string bytes(800, '?');
  EXPECT_FALSE(in.read(bytes.data(), 800));
  EXPECT_EQ(bytes.substr(0, 724), Pattern(724, 1000));
  EXPECT_EQ(std::tuple(in.gcount(), file.pos, file.eof, file.res), std::tuple(724, 1000, true, I32{resNotFound}));
  vf::StreamBuffer constant(std::as_const(file));
  EXPECT_EQ(constant.sputc('x'), std::char_traits<char>::eof());
  EXPECT_EQ(constant.sputn(Pattern(5000).data(), 5000), 0);
  EXPECT_EQ(constant.sgetc(), static_cast<unsigned char>(Pattern(1, 1000)[0]));
  EXPECT_EQ(file.res, resNotFound);
}

TEST(Streams, FollowAFileThatOthersChanged) {
  VFile file("0123456789");
  vf::IOStream stream(file);
  EXPECT_EQ(stream.seekg(2).get(), '2');
  file.Delete(3, 4);
  EXPECT_EQ(stream.get(), '3') << "read before";
  stream.sync();
  EXPECT_EQ(stream.get(), '8');
  file.Delete(2, MaxLen);
  stream.sync();
  stream << "x" << std::flush;
  EXPECT_EQ(stream.tellp(), 3);
  EXPECT_TRUE(file == "01x");
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
    for (int i = 0; i < 4096; ++i) out.put('x');
    EXPECT_EQ(std::pair(file.asked, file.length), std::pair(0, 0));
    out << "yz";
    EXPECT_EQ(std::pair(file.asked, file.length), std::pair(1, 4096));
    out.write(Pattern(5000).data(), 5000);
    EXPECT_EQ(std::pair(file.asked, file.length), std::pair(3, 9098)) << "what waited, and the rest from where it lies";
    out << "end";
  }
  EXPECT_EQ(Bytes(file), std::string(4096, 'x') + "yz" + Pattern(5000) + "end");
}

TEST(Streams, TellARefusedChange) {
  // clang-format off
  const std::tuple<std::function<void(Counted&)>, I32> rows[] = {
      {DO(f.SetFlags(vfReadOnly)), resReadOnly}, {DO(f.flags = vfLocked), resContextError}, {DO(f.res = resNotFound), resNotFound},
      {DO(f.answer = resNotSupported), resNotSupported}, {DO(f.throwing = true), resDone}};
  const struct {
    std::function<void(std::iostream&)> run;
    bool byWriting = true;
  } writes[] = {{DO(f << "x" << std::flush)}, {DO(f << std::string(5000, 'x'))}, {DO(for (int i = 0; i < 4097; ++i) f.put('x'))},
      {DO(f << "x"; f.seekp(0)), false}, {DO(f << "x"; f.get()), false}};
  // clang-format on
  for (const auto& [refuse, res] : rows) {
    for (const auto& write : writes) {
      Counted file;
      file.Insert("012");
      refuse(file);
      {
        vf::IOStream stream(file);
        stream.seekp(1);
        bool passed = false;
        try {
          write.run(stream);
        } catch (const support::Halted&) {
          passed = true;
        }
        EXPECT_TRUE(stream.fail() || passed) << res << ", " << &write - writes;
        EXPECT_EQ(stream.bad() || passed, write.byWriting || file.throwing) << res << ", " << &write - writes;
        file.answer = resNotDone;
        stream.clear();
        stream << "dropped in silence";
      }
      EXPECT_EQ(Bytes(file), "012");
    }
    Counted file;
    refuse(file);
    vf::OStream passing(file);
    passing.exceptions(std::ios::badbit);
    const auto write = [&] { passing << 'x' << std::flush; };
    if (file.throwing) {
      EXPECT_THROW(write(), support::Halted);
    } else {
      EXPECT_THROW(write(), std::ios_base::failure);
    }
    EXPECT_TRUE(file.res == res || file.res == resNotDone);
  }
  if (!support::kHasHugeStrings) return;
  const support::HugeString huge;
  VFile file;
  vf::OStream out(file);
  out.write(huge.Bytes(support::HugeString::kCutToOne), support::HugeString::kCutToOne);
  EXPECT_TRUE(out.bad());
  EXPECT_EQ(std::pair(file.res, file.Length()), std::pair(I32{resTooLong}, 0));
}

TEST(Streams, EndWhereAPageIsRefused) {
  VFile::SetMaxCacheSize(0);
  Chain file({1024, 1024, 1024, 1024, 1024, 1024});
  file.SetPos(5);
  vf::IStream in(file);
  in.seekg(5000);
  VFile::ReleaseCache();
  for (const auto& read : {std::function<void(std::istream&)>(DO(f.get())), {DO(f.unget())}}) {
    const support::FailingDisk disk(1, support::FailingDisk::kReads);
    const support::NoteHalts noting;
    in.clear();
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
static_assert(kStreams<VFile> + kStreams<const VFile> + kStreams<Peek> + kStreams<TCharVFile&> == 0);

}  // namespace
