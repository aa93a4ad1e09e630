#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <vector>

#include "host/Host.h"
#include "support/Saves.h"
#include "support/posix/Process.h"
#include "support/posix/Tracing.h"
#include "vf/Saving.h"

namespace {

namespace fs = std::filesystem;
using support::kKillIt;
using support::kMakeIt;
using support::Saves;
using support::SystemCall;

constexpr uid_t kNobody = 65534;
constexpr vf::Saving kOver = {.overwrite = true, .onDisk = true};

/// Owner, group and mode.
using Rights = std::tuple<uid_t, gid_t, mode_t>;

struct HostSaves : Saves {
  Rights RightsOf(const std::string& name) const {
    struct stat status = {};
    EXPECT_EQ(stat(Path(name).c_str(), &status), 0) << name;
    return {status.st_uid, status.st_gid, status.st_mode & 07777};
  }
  std::int32_t Save(const std::string& name, vf::Saving how = kOver, bool traced = false) const {
    VFile file;
    file = kNew.c_str();
    const vf::Name target(Path(name));
    if (traced) support::BeginTracing();
    vf::SaveComplete(file, target, how);
    return file.res;
  }

  const std::string kNew = std::string(1500, 'n') + std::string(1500, 'N');
  const bool isRoot = geteuid() == 0;
};

// ---- What the new file is ----

/// An access list in the system's form: the owner may all, one other user and the group may read.
const std::string kList(
    "\2\0\0\0\1\0\6\0\xFF\xFF\xFF\xFF\2\0\4\0\x64\0\0\0\4\0\4\0\xFF\xFF\xFF\xFF"
    "\x10\0\4\0\xFF\xFF\xFF\xFF\x20\0\0\0\xFF\xFF\xFF\xFF",
    44);

TEST_F(HostSaves, KeepTheAccessListAndTakeNoneFromTheDirectory) {
  constexpr char kOfFile[] = "system.posix_acl_access";
  const auto listOf = [&](const std::string& name) {
    char list[256];
    const ssize_t size = getxattr(Path(name).c_str(), kOfFile, list, sizeof list);
    return std::string(list, size < 0 ? 0 : static_cast<std::size_t>(size));
  };
  Put("without", "old");
  Put("with", "old");
  ASSERT_EQ(chmod(Path("without").c_str(), 0664), 0);
  if (setxattr(Path("with").c_str(), kOfFile, kList.data(), kList.size(), 0) != 0)
    GTEST_SKIP() << "no access lists here";
  ASSERT_EQ(setxattr(Directory().c_str(), "system.posix_acl_default", kList.data(), kList.size(), 0), 0);
  for (const char* name : {"with", "without"}) {
    const Rights rights = RightsOf(name);
    EXPECT_EQ(Save(name), resDone);
    EXPECT_EQ(RightsOf(name), rights);
  }
  EXPECT_EQ(listOf("with"), kList);
  EXPECT_EQ(listOf("without"), "");
}

TEST_F(HostSaves, NewFilesHaveTheModeThatTheUmaskLeaves) {
  const mode_t old = umask(027);
  EXPECT_EQ(Save("new", {}), resDone);
  umask(old);
  EXPECT_EQ(std::get<2>(RightsOf("new")), 0640u);
}

TEST_F(HostSaves, AreRefusedToWhoMayNotKeepTheOwner) {
  if (!isRoot) GTEST_SKIP() << "only root can take another's place";
  for (const char* name : {"mine", "others", "group"}) {
    Put(name, name);
    ASSERT_EQ(chmod(Path(name).c_str(), 0666), 0);
  }
  ASSERT_EQ(chown(Path("mine").c_str(), kNobody, kNobody), 0);
  ASSERT_EQ(chown(Path("group").c_str(), kNobody, 0), 0);
  const std::string all = Names();
  // In a directory that the process may not write to, and in one that it may.
  for (const bool mayWrite : {false, true}) {
    ASSERT_EQ(chmod(Directory().c_str(), mayWrite ? 0777 : 0755), 0);
    support::InChild([&] {
      ASSERT_TRUE(setresgid(kNobody, kNobody, kNobody) == 0 && setresuid(kNobody, kNobody, kNobody) == 0);
      EXPECT_EQ(Save("mine"), mayWrite ? resDone : resNoPermission);
      EXPECT_EQ(Save("others"), resNoPermission);
      EXPECT_EQ(Save("group"), resNoPermission);
      EXPECT_TRUE(mayWrite || Save("new") == resNoPermission);
    });
    EXPECT_EQ(Content("mine"), mayWrite ? kNew : "mine");
    EXPECT_EQ(Content("others") + Content("group"), "othersgroup");
    EXPECT_EQ(Names(), all);
  }
}

TEST_F(HostSaves, GoByANameAsItIs) {
  if (!isRoot) GTEST_SKIP() << "root may pass every directory";
  ASSERT_EQ(mkdir(Path("closed").c_str(), 0700), 0);
  ASSERT_EQ(mkdir(Path("closed/open").c_str(), 0755), 0);
  Put("closed/open/file", "old");
  ASSERT_EQ(chown(Path("closed/open").c_str(), kNobody, kNobody), 0);
  ASSERT_EQ(chown(Path("closed/open/file").c_str(), kNobody, kNobody), 0);
  support::InChild([&] {
    ASSERT_EQ(chdir(Path("closed/open").c_str()), 0);
    ASSERT_TRUE(setresgid(kNobody, kNobody, kNobody) == 0 && setresuid(kNobody, kNobody, kNobody) == 0);
    VFile file(kNew.c_str());
    vf::SaveComplete(file, "file", {.overwrite = true});
    EXPECT_EQ(file.res, resDone);
  });
  EXPECT_EQ(Content("closed/open/file"), kNew);
}

// ---- What the name leads to ----

TEST_F(HostSaves, FollowLinks) {
  fs::create_symlink("old", Path("link"));
  fs::create_symlink(Path("link"), Path("dir/to link"));
  fs::create_symlink("dir/far", Path("dangling"));
  fs::create_symlink("circle", Path("circle"));
  fs::create_symlink("none/far", Path("lost"));
  const std::string all = Names();
  EXPECT_EQ(Save("dir/to link"), resDone);
  EXPECT_EQ(Content("old"), kNew);
  EXPECT_EQ(Save("dangling", {}), resAlreadyExists);
  for (const char* name : {"circle", "lost"}) EXPECT_NE(Save(name), resDone) << name;
  EXPECT_EQ(Names(), all);
  EXPECT_EQ(Save("dangling"), resDone);
  EXPECT_EQ(Content("dir/far"), kNew);
  EXPECT_TRUE(fs::is_symlink(Path("link")) && fs::is_symlink(Path("dir/to link")) && fs::is_symlink(Path("dangling")));
}

TEST_F(HostSaves, WriteWhatIsNoRegularFileAsItIs) {
  ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
  const int reader = open(Path("pipe").c_str(), O_RDWR | O_NONBLOCK);
  EXPECT_EQ(Save("pipe", kOver), resDone);
  std::string piped(kNew.size(), '?');
  EXPECT_EQ(read(reader, piped.data(), piped.size()), static_cast<ssize_t>(piped.size()));
  close(reader);
  EXPECT_EQ(piped, kNew);
  EXPECT_TRUE(fs::is_fifo(Path("pipe")));
}

TEST_F(HostSaves, OtherNamesAndNamesThatAreTakenStay) {
  const std::string taken = "~save" + std::to_string(host::GetCurrentThreadId()) + "-0.tmp";
  Put(taken, "taken");
  fs::create_hard_link(Path("old"), Path("other"));
  const std::string all = Names();
  EXPECT_EQ(Save("old"), resDone);
  EXPECT_EQ(Content("old"), kNew);
  EXPECT_EQ(Content("other"), "old");
  EXPECT_EQ(Content(taken), "taken");
  EXPECT_EQ(Names(), all);
}

// ---- What others do meanwhile ----

struct TracedSaves : HostSaves {
  support::End TraceSave(const std::string& name, vf::Saving how, const support::Answering& answer) const {
    return support::Trace([&] { return Save(name, how, true); }, answer);
  }

  void SetUp() override {
    if (!support::kAnswersCalls) GTEST_SKIP() << "calls cannot be answered here";
    Mark();
    rights = RightsOf("old");
  }
  /// Gives "old" rights that a new file would not have.
  void Mark() const {
    const std::string path = Path("old").string();
    ASSERT_EQ(chown(path.c_str(), isRoot ? kNobody : geteuid(), getegid()), 0);
    ASSERT_EQ(chmod(path.c_str(), 04640), 0);
  }

  Rights rights;
};

TEST_F(TracedSaves, WhatGotTheNameMeanwhileStays) {
  for (const auto& [name, overwrite, res] :
       {std::tuple("old", true, resNoPermission), {"new", true, resNoPermission}, {"new", false, resAlreadyExists}}) {
    SCOPED_TRACE(testing::Message() << name << overwrite);
    bool done = false;
    const auto replace = [&](const SystemCall& call) {
      if (done || call.call != SYS_write) return kMakeIt;
      done = true;
      Put("other", "other");
      fs::rename(Path("other"), Path(name));
      return kMakeIt;
    };
    EXPECT_EQ(TraceSave(name, {overwrite, true}, replace).status, res);
    EXPECT_EQ(Content(name), "other");
    fs::remove(Path("new"));
    EXPECT_EQ(Names(), before);
  }
}

// The rights are those that the old file has when it is replaced.
TEST_F(TracedSaves, KeepOthersFromTheOldFileAndTheRightsThatItWasGiven) {
  int tries = 0;
  const auto look = [&](const SystemCall& call) {
    if (call.call != SYS_write) return kMakeIt;
    HFile other;
    EXPECT_FALSE(other.OpenSeqRead(Name("old").c_str()));
    EXPECT_EQ(other.res, resNoPermission);
    EXPECT_EQ(chmod(Path("old").c_str(), 0604), 0);
    ++tries;
    return kMakeIt;
  };
  EXPECT_EQ(TraceSave("old", kOver, look).status, resDone);
  EXPECT_GT(tries, 0);
  EXPECT_EQ(std::get<2>(RightsOf("old")), 0604u);
}

// The content is on the disk before it gets the name, and the name when the save returns.
TEST_F(TracedSaves, AreOnTheDiskIfAsked) {
  for (const bool onDisk : {false, true}) {
    for (const char* name : {"old", "new"}) {
      std::string calls;
      const auto note = [&](const SystemCall& call) {
        if (call.call == SYS_write && !calls.ends_with("write ")) calls += "write ";
        if (call.call == SYS_fsync) calls += "flush ";
        if (call.call == SYS_linkat) calls += "link ";
        return kMakeIt;
      };
      EXPECT_EQ(TraceSave(name, {true, onDisk}, note).status, resDone);
      EXPECT_EQ(calls, onDisk ? "write flush link flush " : "write link ") << name;
    }
    fs::remove(Path("new"));
  }
}

// ---- An end or an error at every call ----

struct Way {
  const char* name;
  const char* target;
  /// What the system does not have.
  bool hasNamelessFiles, renamesToFree;
};
constexpr Way kWays[] = {{"replaces", "old", true, true},
                         {"new", "new", true, true},
                         {"replaces, by a named file", "old", false, true},
                         {"new, by a named file", "new", false, true},
                         {"new, by a named file that gets a second name", "new", false, false}};

/// What the system answers.
int AnswerOf(const Way& way, const SystemCall& call) {
  if (!way.hasNamelessFiles && call.call == SYS_openat && (call.arguments[2] & O_TMPFILE) == O_TMPFILE)
    return EOPNOTSUPP;
  return !way.renamesToFree && call.call == SYS_renameat2 ? EINVAL : kMakeIt;
}

/// Whether the call is one of files, rather than of memory and the process.
bool IsOfFiles(const SystemCall& call) {
  constexpr long kOthers[] = {SYS_brk,       SYS_mmap,           SYS_munmap,       SYS_mremap,      SYS_madvise,
                              SYS_mprotect,  SYS_futex,          SYS_getpid,       SYS_gettid,      SYS_tgkill,
                              SYS_getrandom, SYS_rt_sigprocmask, SYS_rt_sigaction, SYS_sigaltstack, SYS_exit_group};
  return std::ranges::find(kOthers, call.call) == std::end(kOthers);
}

/// Whether a signal may interrupt the call, which is then made again.
bool WaitsForOthers(const SystemCall& call) {
  return call.call == SYS_openat || call.call == SYS_flock || call.call == SYS_write || call.call == SYS_fsync;
}

struct BrokenSaves : TracedSaves {
  /// Looks at what is there after a save, puts it back as it was, and gives the other names that it found.
  std::vector<std::string> CheckAndRepair(const Way& way, bool mayBeOld, bool mayBeNew) {
    const std::string target = way.target;
    const bool replaces = target == "old";
    const bool isOld = replaces ? Content("old") == "old" : !fs::exists(Path("new"));
    const bool isNew = Content(target) == kNew;
    EXPECT_TRUE((isOld && mayBeOld) || (isNew && mayBeNew)) << Content(target).size() << " bytes";
    EXPECT_EQ(RightsOf("old"), rights);
    std::vector<std::string> others;
    for (const fs::path& entry : fs::directory_iterator(Directory())) {
      const std::string name = entry.filename().string();
      if (name.starts_with("~save")) others.push_back(Content(name));
      if (name.starts_with("~save") || name == "new") fs::remove(entry);
    }
    EXPECT_EQ(Names(), before);
    if (!replaces || !isNew) return others;
    fs::remove(Path("old"));
    Put("old", "old");
    Mark();
    return others;
  }
};

TEST_F(BrokenSaves, LeaveTheOldOrTheNewFile) {
  for (const Way& way : kWays) {
    for (const int end : {kKillIt, EIO, EINTR}) {
      std::size_t left = 0;
      int broken = 0;
      bool reached = true;
      for (int k = 1; reached; ++k) {
        SystemCall last = {};
        const auto answer = [&](const SystemCall& call) {
          if (call.number != k) return AnswerOf(way, call);
          last = call;
          return end == kKillIt || IsOfFiles(call) ? end : kMakeIt;
        };
        const auto [killed, res] = TraceSave(way.target, kOver, answer);
        SCOPED_TRACE(testing::Message() << way.name << ", " << end << " at " << k << ", number " << last.call);
        const bool isDone = !killed && res == resDone;
        const bool isFlush = last.call == SYS_fsync;
        EXPECT_EQ(killed, end == kKillIt && last.number == k);
        EXPECT_TRUE(isDone || end != EINTR || !WaitsForOthers(last)) << res;
        EXPECT_FALSE(isDone && isFlush && end == EIO);
        const auto others = CheckAndRepair(way, !isDone, isDone || killed || isFlush);
        EXPECT_TRUE(others.empty() || (killed && (!way.hasNamelessFiles || others[0] == kNew)));
        left += others.size();
        broken += isDone ? 0 : 1;
        reached = last.number == k && last.call != SYS_exit_group;
        if (HasFailure()) return;
      }
      EXPECT_GT(broken, 1) << way.name;
      // A killed one leaves a file before the look at the old name, and before the rename.
      const std::size_t window = end == kKillIt && way.target == std::string("old") ? 2 : 0;
      EXPECT_TRUE(left == window || !way.hasNamelessFiles) << left;
    }
  }
}

}  // namespace
