#include "hfile/HFile.h"

#include <gtest/gtest.h>

#include "support/HFiles.h"

namespace {

using support::HFiles;

TEST_F(HFiles, OpenOperationsKnowWhatExistsAndShareOnlyReading) {
  constexpr std::int32_t kOnMissing[] = {14, 0, 0, 0, 0, 0, 14, 14}, kOnExisting[] = {0, 0, 6, 0, 6, 0, 0, 0};
  for (int i = 0; i < 16; ++i) {
    const int way = i / 2;
    std::filesystem::remove(name);
    if (i % 2 != 0) Put("file", "abc");
    file.res = resDiskFull;
    const bool opened = Open(file, way);
    EXPECT_EQ(file.res, i % 2 != 0 ? kOnExisting[way] : kOnMissing[way]) << way;
    EXPECT_TRUE(opened == file.IsOpen() && opened == (file.res == resDone));
    EXPECT_EQ(file.Length(), opened && i % 2 != 0 && way != 3 && way != 5 ? 3 : 0) << way;
    for (int second = 0; opened && second < 8; ++second) {
      HFile other;
      EXPECT_EQ(Open(other, second), way == 7 && second == 7) << way << second;
      EXPECT_EQ(other.res, way == 7 && second == 7 ? 0 : second == 2 || second == 4 ? 6 : 17) << way << second;
      EXPECT_FALSE(Open(file, second));
      EXPECT_TRUE(file.res == resCallError && file.IsOpen());
    }
    if (opened) file.Close();
  }
}

TEST_F(HFiles, ReadingTellsTheEndAndFailuresStand) {
  OpenTen(6);
  file.SetPos(-4, 2);
  EXPECT_TRUE(file.ReadBytes(buffer, 4) == 4 && !file.eof && file.ReadBytes(buffer, 1) == 0 && file.eof);
  file.ReadBytes(nullptr, 0);
  file.WriteBytes(nullptr, 0);
  EXPECT_TRUE(file.eof && file.res == resDone) << "nothing asked, nothing done";
  file.SetPos(0, 3);
  EXPECT_TRUE(!file.eof && file.res == resCallError);
  file.SetPos(INT32_MAX);
  EXPECT_TRUE(!file.eof && file.GetPos() == 10 && file.res == resDone);
  file.SetPos(-6, 1);
  EXPECT_TRUE(file.ReadBytes(buffer, 10) == 6 && std::string(buffer, 6) == "456789" && file.eof);
  file.WriteBytes(nullptr, 1);
  file.WriteBytes("x", 1);
  file.Write('x', 1);
  EXPECT_TRUE(file.ReadBytes(buffer, 1) == 0 && file.res == resCallError && file.eof && file.Length() == 10);
  file.SetPos(5);
  file.Truncate();
  EXPECT_TRUE(file.res == resDone && !file.eof && file.Length() == 5 && file.GetPos() == 5);
  file.SetPos(-6, 2);
  EXPECT_TRUE(file.res == resCallError && file.GetPos() == 5);
  file.Close();
  EXPECT_EQ(file.res, resDone);
  file.Close();
  EXPECT_EQ(file.res, resCallError);
}

TEST_F(HFiles, EachWayToOpenAllowsWhatItIsFor) {
  const struct {
    std::int32_t read, readRes, writeRes, changeRes;
  } rows[] = {{10, 0, 0, 0}, {10, 0, 0, 0}, {0, 0, 0, 0},  {0, 0, 0, 0},
              {0, 17, 0, 0}, {0, 17, 0, 0}, {10, 0, 0, 0}, {10, 0, 17, 17}};
  for (int way = 0; way < 8; ++way) {
    const auto& row = rows[way];
    Put("file", "0123456789");
    if (way == 2 || way == 4) std::filesystem::remove(name);
    ASSERT_TRUE(Open(file, way)) << way;
    EXPECT_EQ(file.ReadBytes(buffer, 10), row.read) << way;
    EXPECT_TRUE(file.res == row.readRes && (row.readRes == 0 || !file.eof)) << way;
    file.Reset();
    file.WriteBytes("x", 1);
    EXPECT_EQ(file.res, row.writeRes) << way;
    file.Flush();
    EXPECT_EQ(file.res, row.changeRes) << way;
    // How a file that cannot be written refuses this is the host's.
    file.Truncate();
    EXPECT_EQ(file.res == resDone, row.changeRes == resDone) << way;
    file.Close();
    EXPECT_EQ(Content("file"), row.changeRes == 0 ? "x" : "0123456789") << way;
  }
}

TEST_F(HFiles, RefusalsOfTheHostAreResults) {
  HFile other;
  const TString directory = support::Units(Directory());
  for (const bool reads : {false, true}) {
    EXPECT_FALSE(reads ? other.OpenSeqRead(directory.c_str()) : other.Open(directory.c_str()));
    EXPECT_EQ(other.res, resNoPermission);
  }
}

}  // namespace
