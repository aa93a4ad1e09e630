// Which operations clear a failure that stands in `res`, and which keep it. Those that keep it and change or transfer something
// do nothing.

#include <functional>
#include <gtest/gtest.h>

#include "support/Files.h"
#include "support/Texts.h"

namespace {

template <typename File>
struct Row {
  const char* operation;
  std::function<void(File&)> run;
};

#define ROW(operation) \
  { #operation, DO(f.operation) }

using Result = support::InDirectory;

TEST_F(Result, AFailureIsClearedByWhatMovesFirst) {
  Put("in", "ab\rc");
  const TString in = Name("in");
  const TString out = Name("out");
  VFile other("other");
  HFile reader;
  HFile writer;
  ASSERT_TRUE(reader.OpenSeqRead(in.c_str()));
  ASSERT_TRUE(writer.Create(Name("writer").c_str(), false));
  std::int32_t at = 0;
  char bytes[9];
  unsigned char byte;
  TChar units[9];
  // clang-format off
  const Row<VFile> clearing[] = {
      ROW(SetPos(2)), ROW(SetPos(0, 2)), ROW(Reset()), ROW(Find(at, "b", false, false)), ROW(LineStart(2)),
      ROW(FindBack(at, "b", false, false)), ROW(ReplaceGlobal("z", "y", false, false)), ROW(AfterCRLF(2)),
      ROW(BeforeCRLF(2)), ROW(BetweenCRLF(2)), ROW(LineSize(2, at, at, at)), ROW(LineEnd(2, true)), ROW(LineIndent(2)),
      ROW(ReadTxt(bytes, 9, 0, 2)), ROW(ReadLine(bytes, 9)), ROW(operator>>(other)), ROW(Save(out.c_str(), true)),
      ROW(Load(in.c_str(), FILE_SHARE_READ))};
  const Row<TCharVFile> clearingText[] = {
      ROW(SetTCharPos(2)), ROW(FindTChars(at, TSTR("b"), false, false)), ROW(ReadLine(units, 9)), ROW(ToString()),
      ROW(FindBackTChars(at, TSTR("b"), false, false)), ROW(ReplaceGlobalTChars(TSTR("z"), TSTR("y"), false, false)),
      ROW(SaveText(out, true, TCharVFile::encUtf8, true)), ROW(LoadText(in, FILE_SHARE_READ))};
  const Row<VFile> keeping[] = {
      ROW(Insert("x")), ROW(ReplaceByte('x')), ROW(Append("x")), ROW(Prepend('x', 3)), ROW(Delete(0, 1)), ROW(Truncate()),
      ROW(operator=("x")), ROW(operator<<(1)), ROW(operator+=(other)), ROW(InsertFromFile(INVALID_HANDLE_VALUE, 1)),
      ROW(SetFlags(vfInsert)), ROW(ReadFile(in.c_str(), FILE_SHARE_READ)), ROW(WriteFile(out.c_str(), true)),
      ROW(ReadFromFile(reader, 1)), ROW(WriteToFile(writer, 1)), ROW(ReadByte(byte)), ROW(ReadBytes(bytes, 2)), ROW(ReadPrevByte(byte)), ROW(Flush())};
  // clang-format on
  for (const auto& [operation, run] : clearing) {
    VFile file("ab\rc");
    file.Reset();
    file.res = resNotDone;
    run(file);
    EXPECT_EQ(file.res, resDone) << operation;
  }
  for (const auto& [operation, run] : clearingText) {
    TCharVFile text;
    text = TSTR("ab\rc");
    text.Reset();
    text.res = resNotDone;
    run(text);
    EXPECT_EQ(text.res, resDone) << operation;
  }
  for (const auto& [operation, run] : keeping) {
    VFile file("ab\rc");
    file.Reset();
    file.res = resNotDone;
    run(file);
    EXPECT_EQ(file.res, resNotDone) << operation;
    EXPECT_TRUE(file == "ab\rc" && file.GetFlags() == 0) << operation;
  }
  EXPECT_EQ(writer.Length(), 0);
}

}  // namespace
