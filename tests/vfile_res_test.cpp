// Which operations clear a failure that stands in `res`, and which keep it. Those that keep it and change or transfer something
// do nothing.

#include <functional>
#include <gtest/gtest.h>

#include "hfile/HFile.h"
#include "support/Files.h"
#include "tcharvfile/TCharVFile.h"

namespace {

constexpr char kContent[] = "ab\rc";

class Result : public support::InDirectory {
 protected:
  Result() { Put("in", kContent); }

  const TString in_ = Name("in");
  const TString out_ = Name("out");
  std::int32_t at_ = 0;
  std::int32_t ignored_ = 0;
  char bytes_[9] = {};
  unsigned char byte_ = 0;
  TChar units_[9] = {};
  TCharVFile::Encoding form_ = TCharVFile::encUtf16;
};

template <typename File>
struct Row {
  const char* operation;
  std::function<void(File&)> run;
};

#define ROW(operation)                              \
  {                                                 \
#operation, [&](auto& file) { file.operation; } \
  }

TEST_F(Result, OfAFileIsClearedByWhatMovesFirst) {
  VFile other;
  const Row<VFile> rows[] = {
      ROW(SetPos(2)),
      ROW(SetPos(0, 2)),
      ROW(Reset()),
      ROW(Find(at_, "b", false, false)),
      ROW(FindBack(at_, "b", false, false)),
      ROW(ReplaceGlobal("z", "y", false, false)),
      ROW(AfterCRLF(2)),
      ROW(BeforeCRLF(2)),
      ROW(BetweenCRLF(2)),
      ROW(LineStart(2)),
      ROW(LineSize(2, at_, ignored_, ignored_)),
      ROW(LineEnd(2, true)),
      ROW(LineIndent(2)),
      ROW(ReadTxt(bytes_, 9, 0, 2)),
      ROW(ReadLine(bytes_, 9)),
      ROW(operator>>(other)),
      ROW(Save(out_.c_str(), true)),
      ROW(Load(in_.c_str(), 0)),
  };
  for (const Row<VFile>& row : rows) {
    VFile file(kContent);
    file.Reset();
    file.res = resReadOnly;
    row.run(file);
    EXPECT_EQ(file.res, resDone) << row.operation;
  }
}

TEST_F(Result, OfAFileIsKeptByTheRest) {
  VFile other("other");
  HFile reader;
  HFile writer;
  ASSERT_TRUE(reader.OpenSeqRead(in_.c_str()));
  ASSERT_TRUE(writer.Create(out_.c_str(), false));
  const Row<VFile> rows[] = {
      ROW(Insert("x")),
      ROW(ReplaceByte('x')),
      ROW(Append("x")),
      ROW(Prepend('x', 3)),
      ROW(Delete(0, 1)),
      ROW(Truncate()),
      ROW(operator=("x")),
      ROW(operator<<(1)),
      ROW(operator+=(other)),
      ROW(InsertFromFile(INVALID_HANDLE_VALUE, 1)),
      ROW(SetFlags(vfInsert)),
      ROW(ReadFile(in_.c_str(), 0)),
      ROW(WriteFile(out_.c_str(), true)),
      ROW(ReadFromFile(reader, 1)),
      ROW(WriteToFile(writer, 1)),
      ROW(ReadByte(byte_)),
      ROW(ReadBytes(bytes_, 2)),
      ROW(ReadPrevByte(byte_)),
      ROW(Flush()),
  };
  for (const Row<VFile>& row : rows) {
    VFile file(kContent);
    file.Reset();
    file.res = resNotDone;
    row.run(file);
    EXPECT_EQ(file.res, resNotDone) << row.operation;
    EXPECT_TRUE(file == kContent) << row.operation;
    EXPECT_EQ(file.GetFlags() & vfInsert, VFile().GetFlags() & vfInsert) << row.operation;
  }
  EXPECT_EQ(writer.Length(), 0);
}

TEST_F(Result, OfATextIsClearedByWhatMovesFirst) {
  const Row<TCharVFile> rows[] = {
      ROW(SetTCharPos(2)),
      ROW(FindTChars(at_, TSTR("b"), false, false)),
      ROW(FindBackTChars(at_, TSTR("b"), false, false)),
      ROW(ReplaceGlobalTChars(TSTR("z"), TSTR("y"), false, false)),
      ROW(ReadLine(units_, 9)),
      ROW(ToString()),
      ROW(SaveText(out_, true, TCharVFile::encUtf8, true)),
      ROW(LoadText(in_, form_, 0)),
  };
  for (const Row<TCharVFile>& row : rows) {
    TCharVFile text;
    text << TSTR("ab\rc");
    text.Reset();
    text.res = resReadOnly;
    row.run(text);
    EXPECT_EQ(text.res, resDone) << row.operation;
  }
}

}  // namespace
