#include "support/Chains.h"
#include "support/Files.h"
#include "support/FullDisk.h"

using support::Bytes, support::Chain, support::I32, support::Lengths, support::Pattern, support::Peek;

namespace {

using Transfer = support::InDirectory;

TEST_F(Transfer, SavesAndLoadsTheBytes) {
  const TString name = Name("file");
  for (const Lengths& lens : {Lengths{}, {1024, 17, 1024, 500}}) {
    Chain file(lens);
    file.SetPos(100);
    file.WriteFile(name.c_str(), false);
    EXPECT_TRUE(file.res == resDone && file.Eof());
    EXPECT_EQ(Content("file"), Bytes(file));
    Peek loaded("old");
    loaded.Load(name.c_str(), FILE_SHARE_READ);
    EXPECT_TRUE(loaded.res == resDone && loaded.Bof());
    EXPECT_EQ(Bytes(loaded), Bytes(file));
    loaded = "ab";
    loaded.WriteFile(name.c_str(), false);
    EXPECT_EQ(loaded.res, resAlreadyExists);
    loaded.Save(name.c_str(), true);
    EXPECT_EQ(Content("file"), "ab");
    for (const auto& [flags, expected] : {std::pair(0, "aab"), {I32{vfInsert}, "aabab"}}) {
      loaded.SetPos(1);
      loaded.SetFlags(flags);
      loaded.ReadFile(name.c_str(), 0);
      EXPECT_EQ(Bytes(loaded), expected);
      EXPECT_EQ(loaded.GetPos(), 3);
    }
    remove(Path("file"));
    loaded.Load(name.c_str(), 0);
    EXPECT_EQ(loaded.res, resNotFound);
    EXPECT_EQ(loaded.Length(), 0);
  }
}

TEST_F(Transfer, WritesUpToACountInPiecesOf1024) {
  const auto [reader, writer] = support::OpenChannel();
  HFile target(writer);
  HFile other(reader);
  Chain file({1000, 1000, 1000});
  file.SetPos(1);
  file.WriteToFile(target, 0);
  file.WriteToFile(target, 1500);
  EXPECT_EQ(file.GetPos(), 1501);
  file.WriteToFile(writer, 1028);
  file.WriteToFile(target, MaxLen);
  EXPECT_EQ(file.res, resDone);
  EXPECT_TRUE(file.Eof());
  std::string sent;
  for (const int size : {1024, 476, 1024, 4, 471}) {
    char piece[2000];
    EXPECT_EQ(other.ReadBytes(piece, 2000), size);
    sent.append(piece, support::Size(size));
  }
  EXPECT_EQ(sent, Pattern(2999, 1));
}

// A disk that is full, and a chain that holds less than the length, as behind a halt that returned.
TEST_F(Transfer, EndsWithWhatThereIs) {
  const TString name = Name("file");
  Chain file({1024, 1000});
  {
    const support::FullDisk disk(1500);
    file.Save(name.c_str(), false);
  }
  EXPECT_EQ(std::pair(file.res, file.GetPos()), std::pair(I32{resDiskFull}, 2024));
  EXPECT_EQ(Content("file"), Pattern(1500));
  file.length += 10;
  file.Save(name.c_str(), true);
  file.length -= 10;
  EXPECT_EQ(file.res, resNotDone);
  EXPECT_EQ(Content("file"), Pattern(2024));
}

TEST_F(Transfer, RefusalsAndFailuresStopIt) {
  Put("two", "XY");
  const HANDLE full =
      host::CreateFileW(Name("full").c_str(), host::GENERIC_WRITE, 0, host::CREATE_NEW, host::FILE_ATTRIBUTE_NORMAL);
  const support::Pipe unwritable("");
  const TString two = Name("two");
  const TString none = Name("none");
  const TString deep = Name("none/deep");
  HFile closed;
  HFile fullFile(full);
  HFile reader;
  EXPECT_TRUE(reader.OpenSeqRead(two.c_str()));
  // clang-format off
  const std::tuple<std::function<void(Peek&)>, I32, I32> rows[] = {
      {DO(f.WriteToFile(closed, 1)), resCallError, 0}, {DO(f.WriteToFile(INVALID_HANDLE_VALUE, 0)), resCallError, 0},
      {DO(f.WriteToFile(full, -1)), resCallError, 0}, {DO(f.WriteToFile(full, MaxLen)), resDiskFull, 1024},
      {DO(f.WriteToFile(fullFile, 5)), resDiskFull, 5}, {DO(f.WriteToFile(unwritable.Handle(), 1100)), resNoPermission, 1024},
      {DO(f.res = resNotDone; f.WriteToFile(full, -1)), resNotDone, 0},
      {DO(f.res = resNotDone; f.ReadFile(none.c_str(), 0)), resNotDone, 0},
      {DO(f.WriteFile(deep.c_str(), true)), resIllegalPath, 0}, {DO(f.ReadFile(none.c_str(), 0)), resNotFound, 0},
      {DO(f.flags = vfLocked | vfReadOnly; f.ReadFile(none.c_str(), 0)), resContextError, 0},
      {DO(f.flags = vfReadOnly; f.Load(two.c_str(), 0)), resReadOnly, 0},
      {DO(f.ReadFile(two.c_str(), 0)), resNoPermission, 0}, {DO(f.WriteFile(two.c_str(), true)), resNoPermission, 0},
      {DO(f.ReadFromFile(reader, 3)), resNotDone, 0}};
  // clang-format on
  for (const auto& [transfer, res, pos] : rows) {
    Chain file({1000, 500});
    file.Reset();
    {
      const support::FullDisk disk(0);
      transfer(file);
    }
    EXPECT_EQ(file.res, res) << "at position " << pos;
    EXPECT_EQ(file.GetPos(), pos) << "with result " << res;
    EXPECT_EQ(Bytes(file), Pattern(1500));
    EXPECT_EQ(Content("two"), "XY");
  }
}

}  // namespace
