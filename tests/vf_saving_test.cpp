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
      for (const bool onDisk : {false, true}) {
        SCOPED_TRACE(testing::Message() << form.name << overwrite << onDisk);
        const std::string target = overwrite ? "old" : "new";
        TCharVFile text = Text();
        TCharVFile same = Text();
        form.save(text, Name(target), {overwrite, onDisk});
        form.plainSave(same, Name("plain"), true);
        EXPECT_EQ(text.res, resDone);
        EXPECT_EQ(text.GetTCharPos(), same.GetTCharPos());
        EXPECT_EQ(Content(target), Content("plain"));
        std::filesystem::remove(Path("plain"));
        EXPECT_EQ(Names(), overwrite ? before : "dir locked new old ");
        std::filesystem::remove(Path("new"));
      }
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
      const TString full = name.empty() ? TString() : Name(name);
      for (const Form& form : kForms) {
        SCOPED_TRACE(testing::Message() << name << overwrite << form.name);
        TCharVFile text = Text();
        form.save(text, full, {overwrite, true});
        EXPECT_NE(text.res, resDone);
        EXPECT_EQ(text.GetTCharPos(), kPosition);
        VFile bytes;
        bytes.WriteFile(full.c_str(), overwrite);
        EXPECT_EQ(text.res, bytes.res);
        EXPECT_EQ(Names(), all);
        EXPECT_EQ(Content("old") + Content("locked"), "oldlocked");
      }
    }
  }
}

TEST_F(Saves, AFullDiskLeavesWhatWasThere) {
  for (const Form& form : kForms) {
    TCharVFile text = Text();
    form.plainSave(text, Name("plain"), true);
    const auto size = static_cast<std::uint32_t>(Content("plain").size());
    std::filesystem::remove(Path("plain"));
    for (const std::uint32_t room : {0u, 1u, 1024u, 1500u, size - 1, size}) {
      for (const char* target : {"new", "old"}) {
        SCOPED_TRACE(testing::Message() << form.name << " " << room << target);
        text.Reset();
        {
          const support::FullDisk disk(room);
          form.save(text, Name(target), {true, true});
        }
        EXPECT_EQ(text.res, room < size ? resDiskFull : resDone);
        if (room == size) continue;
        EXPECT_EQ(Names(), before);
        EXPECT_EQ(Content("old"), "old");
      }
    }
    Put("old", "old");
    std::filesystem::remove(Path("new"));
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
        const auto save = [&] { form.save(text, Name("old"), {true, true}); };
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
  EXPECT_EQ(Names(), before);
  EXPECT_EQ(Content("old"), "old");
}

TEST_F(Saves, DoNothingBehindAFailureOrOnAnotherThread) {
  for (const Form& form : kForms) {
    TCharVFile text = Text();
    text.res = resNotFound;
    form.save(text, Name("old"), {true, true});
    EXPECT_EQ(text.res, resNotFound);
    text.res = resDone;
    std::thread([&] { EXPECT_ASSERTION("VFile", form.save(text, Name("old"), {true, true})); }).join();
    EXPECT_EQ(text.GetTCharPos(), kPosition);
    EXPECT_EQ(Content("old"), "old");
    EXPECT_EQ(Names(), before);
  }
}

// What is read and written are one file, and names are UTF-8.
TEST_F(Saves, ReplaceWhatWasLoaded) {
  Put("old", "teh old");
  const vf::Name name(Path("old"));
  VFile file;
  file.Load(name, FILE_SHARE_READ);
  file.ReplaceGlobal("teh", "the", false, true);
  vf::SaveComplete(file, name);
  EXPECT_EQ(file.res, resAlreadyExists);
  file.Reset();
  vf::SaveComplete(file, name, {.overwrite = true});
  EXPECT_EQ(file.res, resDone);
  EXPECT_EQ(Content("old"), "the old");
}

}  // namespace
