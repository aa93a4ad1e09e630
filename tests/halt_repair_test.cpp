// A halt whose procedure gives room and returns: an operation of many steps then tells that one of them was refused, or is right.

#include <functional>
#include <gtest/gtest.h>

#include "support/Chains.h"
#include "support/Disk.h"
#include "support/Files.h"
#include "support/Halts.h"
#include "support/Texts.h"

using support::Chain, support::FailingDisk, support::I32, support::Lengths;

namespace {

/// While it lives, a halt repairs the disk, and the cache has room.
class RepairingHalts {
 public:
  RepairingHalts() {
    InstallHaltProc([](const TChar*) {
      FailingDisk::Repair();
      VFile::SetMaxCacheSize(70);
    });
  }
  ~RepairingHalts() { DeinstallHaltProc(); }
};

std::string Join(std::initializer_list<I32> numbers) {
  std::string joined;
  for (const I32 number : numbers) joined += std::to_string(number) + " ";
  return joined;
}

/// Four blocks with a CR LF, a word and a line cut by their borders.
constexpr I32 kLf = 1024;
std::string Content() {
  std::string content(1023, 'x');
  content += "\r\nconcat cat" + std::string(1012, 'y') + "ca";
  content += "t (cat)\n" + std::string(900, 'z');
  return content + "\n" + std::string(500, ' ') + "end";
}

using FileOperation = std::function<std::string(Chain&)>;
const FileOperation kOnFiles[] = {
    [](Chain& f) {
      char ch = 0;
      f.SetPos(kLf - 1);
      const I32 taken = f.Read(ch);
      return Join({taken, ch, f.pos});
    },
    [](Chain& f) {
      char line[9];
      f.SetPos(kLf - 3);
      const I32 stored = f.ReadLine(line, 9);
      return Join({stored, f.pos}) + line;
    },
    [](Chain& f) { return Join({f.LineStart(kLf)}); },
    [](Chain& f) { return Join({f.LineStart(2500)}); },
    [](Chain& f) {
      I32 start = 7;
      I32 size = 7;
      I32 eolSize = 7;
      f.LineSize(1500, start, size, eolSize);
      EXPECT_TRUE(f.res == resDone || (start == 7 && size == 7 && eolSize == 7));
      return Join({start, size, eolSize});
    },
    [](Chain& f) { return Join({f.LineEnd(500, true)}); },
    [](Chain& f) { return Join({f.LineIndent(3200)}); },
    [](Chain& f) {
      I32 at = 0;
      const bool found = f.Find(at, "cat", false, true);
      return Join({found, at});
    },
    [](Chain& f) {
      I32 at = MaxLen;
      const bool found = f.FindBack(at, "cat", false, true);
      return Join({found, at});
    },
};

void ExpectRightOrTold(const std::function<std::string(I32& res)>& run, const std::string& right) {
  for (int k = 1, failed = true; failed; ++k) {
    SCOPED_TRACE(testing::Message() << "transfer " << k);
    VFile::SetMaxCacheSize(0);
    I32 res = resDone;
    std::string outcome;
    {
      const RepairingHalts repairing;
      const FailingDisk disk(k);
      outcome = run(res);
      failed = FailingDisk::HasFailed();
    }
    EXPECT_TRUE(res != resDone || outcome == right) << outcome << "instead of " << right;
  }
  VFile::SetMaxCacheSize(70);
}

TEST(RepairedHalts, AreToldByReadsOfManySteps) {
  for (const FileOperation& operation : kOnFiles) {
    SCOPED_TRACE(&operation - kOnFiles);
    Chain file({1024, 1024, 900, 600}, Content());
    const std::string right = operation(file);
    ASSERT_EQ(file.res, resDone);
    ExpectRightOrTold(
        [&](I32& res) {
          VFile::ReleaseCache();
          file.SetPos(0);
          const std::string outcome = operation(file);
          res = file.res;
          return outcome;
        },
        right);
  }
}

TEST(RepairedHalts, LeaveWholeWordsAlone) {
  const auto replaced = [](I32& res) {
    Chain file({1024, 1024, 900, 600}, Content());
    // What was refused before is no matter here.
    if (file.res == resDone) file.ReplaceGlobal("cat", "dog", false, true);
    res = file.res;
    FailingDisk::Repair();
    return support::Bytes(file);
  };
  I32 res = resDone;
  const std::string right = replaced(res);
  EXPECT_NE(right.find("concat"), std::string::npos);
  ExpectRightOrTold(replaced, right);
}

class RepairedTexts : public support::InDirectory {};

TEST_F(RepairedTexts, AreLoadedAndSavedRightOrTold) {
  const TString name = Name("text");
  TString units;
  for (int i = 0; i < 3000; ++i) units += static_cast<TChar>(i % 60 == 59 ? 0x20AC : 'a' + i % 26);
  for (const TCharVFile::Encoding form : {TCharVFile::encUtf16, TCharVFile::encUtf16BE, TCharVFile::encUtf8}) {
    SCOPED_TRACE(form);
    TCharVFile original;
    original = units;
    original.SaveText(name, true, form, true);
    ExpectRightOrTold(
        [&](I32& res) {
          TCharVFile text;
          TCharVFile::Encoding found;
          text.LoadText(name, found, FILE_SHARE_READ);
          res = text.res;
          FailingDisk::Repair();
          return support::Bytes(text.ToString());
        },
        support::Bytes(units));
    const std::string right = Content("text");
    ExpectRightOrTold(
        [&](I32& res) {
          original.Reset();
          original.ReplaceTChar(1400, units[1400]);
          original.SaveText(name, true, form, true);
          res = original.res;
          return Content("text");
        },
        right);
  }
}

}  // namespace
