#include <gtest/gtest.h>
#include <thread>

#include "support/Chains.h"
#include "support/Disk.h"
#include "support/FullDisk.h"
#include "support/Halts.h"
#include "support/Saves.h"
#include "vf/Progress.h"
#include "vf/Saving.h"

namespace {

using support::FailingDisk;
using support::Saves;

TEST_F(Saves, GiveTheNameWhatSaveWrites) {
  for (const Form& form : kForms) {
    for (const bool overwrite : {false, true}) {
      SCOPED_TRACE(testing::Message() << form.name << overwrite);
      const std::string target = overwrite ? "old" : "new";
      TCharVFile text = Text();
      TCharVFile same = Text();
      form.Save(text, Name(target), {overwrite});
      form.SavePlain(same, Name("plain"));
      EXPECT_EQ(std::pair(text.res, text.GetTCharPos()), std::pair(std::int32_t{resDone}, same.GetTCharPos()));
      EXPECT_EQ(Content(target), Content("plain"));
      std::filesystem::remove(Path("plain"));
      EXPECT_EQ(Names(), overwrite ? before : "dir locked new old ");
      std::filesystem::remove(Path("new"));
    }
  }
}

// Each leaves all as it was, and tells what `WriteFile` tells.
TEST_F(Saves, AreRefusedWhereSaveIs) {
  HFile open;
  HFile read;
  Put("open", "open");
  Put("read", "read");
  ASSERT_TRUE(open.Open(Name("open").c_str()) && read.OpenSeqRead(Name("read").c_str()));
  const std::string all = Names();
  for (const std::string name :
       {"old", "locked", "open", "read", "dir", "dir/", "new/", "no/new", "old/new", "dir/none/new", ""}) {
    for (const bool overwrite : {false, true}) {
      if (name == "old" && overwrite) continue;
      SCOPED_TRACE(testing::Message() << name << overwrite);
      const TString full = name.empty() ? TString() : Name(name);
      TCharVFile text = Text();
      kForms[3].Save(text, full, {overwrite, true});
      VFile bytes;
      bytes.WriteFile(full.c_str(), overwrite);
      EXPECT_NE(text.res, resDone);
      EXPECT_EQ(std::pair(text.res, text.GetTCharPos()), std::pair(bytes.res, kPosition));
      EXPECT_EQ(Names(), all);
      EXPECT_EQ(Content("old") + Content("locked"), "oldlocked");
    }
  }
}

TEST_F(Saves, AFullDiskLeavesWhatWasThere) {
  for (const Form& form : kForms) {
    TCharVFile text = Text();
    form.SavePlain(text, Name("plain"));
    const auto size = static_cast<std::uint32_t>(Content("plain").size());
    std::filesystem::remove(Path("plain"));
    for (const std::uint32_t room : {0u, 1500u, size - 1, size}) {
      SCOPED_TRACE(testing::Message() << form.name << " " << room);
      text.Reset();
      {
        const support::FullDisk disk(room);
        form.Save(text, Name("old"), {true, true});
      }
      EXPECT_EQ(text.res, room < size ? resDiskFull : resDone);
      if (room < size) ExpectAsBefore();
    }
    Put("old", "old");
  }
}

TEST_F(Saves, AHaltLeavesWhatWasThere) {
  for (const Form& form : kForms) {
    for (const bool throwing : {true, false}) {
      bool halted = true;
      for (int k = 1; halted; ++k) {
        SCOPED_TRACE(testing::Message() << form.name << k << throwing);
        TCharVFile text = Text();
        TCharVFile::SetMaxCacheSize(0);
        VFile::ReleaseCache();
        const auto save = [&] { form.Save(text, Name("old"), {true, true}); };
        const FailingDisk disk(k, FailingDisk::kReads);
        if (throwing) {
          halted = !support::HaltOf(save).empty();
        } else {
          const support::NoteHalts noting;
          save();
          halted = !noting.Noted().empty();
          EXPECT_EQ(halted, text.res != resDone);
        }
        EXPECT_TRUE(halted || k > 2);
        EXPECT_EQ(Names(), before);
        EXPECT_EQ(Content("old") == "old", halted);
      }
      Put("old", "old");
    }
  }
  VFile::SetMaxCacheSize(70);
}

TEST_F(Saves, OneThatIsEndedLeavesWhatWasThere) {
  VFile file;
  file = std::string(3 << 20, 'x').c_str();
  const vf::Progress progress(file, [](std::int64_t, std::int64_t) { return false; });
  vf::SaveComplete(file, Name("old"), {true, true});
  EXPECT_EQ(file.res, resNotDone);
  ExpectAsBefore();
}

TEST_F(Saves, DoNothingBehindAFailureOrOnAnotherThread) {
  for (const Form& form : kForms) {
    TCharVFile text = Text();
    text.res = resNotFound;
    form.Save(text, Name("old"), {true, true});
    EXPECT_EQ(text.res, resNotFound);
    text.res = resDone;
    std::thread([&] { EXPECT_ASSERTION("VFile", form.Save(text, Name("old"), {true, true})); }).join();
    EXPECT_EQ(text.GetTCharPos(), kPosition);
    ExpectAsBefore();
  }
}

}  // namespace
