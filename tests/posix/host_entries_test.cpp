#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <thread>

#include "support/Entries.h"
#include "support/posix/Process.h"
#include "support/posix/SystemCalls.h"

namespace {

using namespace host;
namespace fs = std::filesystem;

struct LinkedEntries : support::Entries {
  LinkedEntries() {
    fs::create_symlink("nowhere", Path("dangling"));
    fs::create_hard_link(Path("file"), Path("same"));
  }

  /// Gives the file an owner, a mode and a time of its own.
  void Mark(const std::string& name) const {
    const std::string path = Path(name).string();
    const timespec times[] = {{5, 0}, written};
    EXPECT_EQ(chown(path.c_str(), owner, getegid()), 0);
    EXPECT_EQ(chmod(path.c_str(), 04640), 0);
    EXPECT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
  }
  static bool IsWrittenThen(const struct stat& status) {
    return status.st_mtim.tv_sec == written.tv_sec && status.st_mtim.tv_nsec == written.tv_nsec;
  }

  static constexpr timespec written = {1000000000, 123456789};
  const uid_t owner = geteuid() == 0 ? 65534 : geteuid();
  const std::string before = "content,old,locked,content,,6";
};

TEST_F(LinkedEntries, LinksAreRefusedAsWhatTheyLeadTo) {
  const Refusal rows[] = {{"file", "same", 80, 32, 183},
                          {"file", "dangling", 80, 0, 183},
                          {"file", "new/", 123, 123, 123},
                          {"file/", "new", 123, 123, 123}};
  CheckRefusals(rows);
  EXPECT_EQ(Delete("file/"), 123u);
}

TEST_F(LinkedEntries, CopiesAreCompleteAndMovesKeepTheEntry) {
  std::string large;
  for (int i = 0; i < 300000; ++i) large += static_cast<char>(i * 7 % 251);
  Put("file", large);
  fs::create_symlink("old", Path("link"));
  fs::create_symlink(Path("dir/far"), Path("absolute"));
  std::string tooLong;
  for (int i = 0; i < 2047; ++i) tooLong += "x/";
  fs::create_symlink(tooLong, Path("too long"));
  const std::string firstName = "~copy" + std::to_string(GetCurrentThreadId()) + "-0.tmp";
  Put(firstName, "taken");
  Mark("file");
  EXPECT_EQ(chown(Path("file").c_str(), geteuid(), getegid()), 0);
  EXPECT_EQ(chmod(Path("file").c_str(), 04640), 0);
  EXPECT_EQ(chown(Path("old").c_str(), owner, getegid()), 0);
  for (const char* to : {"new", "link", "dangling", "absolute"}) {
    EXPECT_TRUE(Copy("file", to, false) == 0 && Content(to) == large) << to;
    struct stat status;
    EXPECT_TRUE(stat(Path(to).c_str(), &status) == 0 && (status.st_uid == owner || std::string(to) != "link"));
    EXPECT_TRUE((status.st_mode & 07777) == 0640 && IsWrittenThen(status));
  }
  EXPECT_EQ(Copy("file", "too long", false), 206u);
  EXPECT_EQ(Content(firstName), "taken");
  EXPECT_TRUE(Content("old") == large && fs::is_symlink(Path("link")));
  EXPECT_TRUE(Content("nowhere") == large && fs::is_symlink(Path("dangling")));
  // Files of the system that tell no size are copied as well.
  EXPECT_TRUE(Copy("/proc/self/status", "status", true) == 0 && Content("status").starts_with("Name:"));
  EXPECT_TRUE(Delete("link") == 0 && Content("old") == large && Delete("same") == 0 && Content("file") == large);
}

TEST_F(LinkedEntries, CopiesKeepHoles) {
  constexpr int kSize = 8 << 20;
  const int file = open(Path("sparse").c_str(), O_WRONLY | O_CREAT, 0600);
  ASSERT_EQ(ftruncate(file, kSize), 0);
  ASSERT_EQ(pwrite(file, "middle", 6, kSize / 2), 6);
  ASSERT_EQ(close(file), 0);
  ASSERT_EQ(Copy("sparse", "new", true), 0u);
  support::InChild([&] {
    ASSERT_TRUE(support::AnswerCalls({{SYS_copy_file_range, ENOSYS}}));
    ASSERT_EQ(Copy("sparse", "by pieces", true), 0u);
  });
  struct stat source;
  ASSERT_EQ(stat(Path("sparse").c_str(), &source), 0);
  for (const char* name : {"new", "by pieces"}) {
    struct stat copy;
    ASSERT_EQ(stat(Path(name).c_str(), &copy), 0);
    EXPECT_TRUE(Content(name) == Content("sparse"));
    EXPECT_TRUE(copy.st_blocks < kSize / 512 / 2 || source.st_blocks >= kSize / 512 / 2) << name;
  }
}

// What a file system or a system does not do, other calls do, or the failure is told.
TEST_F(LinkedEntries, GetAlongWithoutWhatTheSystemLacks) {
  support::InChild([&] {
    fs::create_directories(Path("dir/one"));
    fs::create_directories(Path("dir/two"));
    ASSERT_TRUE(support::AnswerCalls({{SYS_renameat2, EINVAL}, {SYS_linkat, EPERM}, {SYS_flock, ENOLCK}}));
    EXPECT_EQ(Move("dir/one", "dir/two"), 183u);
    EXPECT_EQ(Move("dir/one", "dir/three/"), 0u);
    EXPECT_EQ(Copy("old", "file", true), 80u);
    EXPECT_EQ(Move("old", "file"), 183u);
    EXPECT_EQ(Move("old", "old"), 0u);
    ASSERT_EQ(Listing(), before);
    EXPECT_EQ(Copy("old", "new", true), 0u);
    EXPECT_EQ(Move("dangling", "nowhere"), 0u);
    EXPECT_EQ(Move("locked", "moved"), 0u);
    EXPECT_EQ(Listing(), "content,old,,content,old,7");
    EXPECT_EQ(Content("moved"), "locked");
  });
  Put("file", std::string(100000, 'x'));
  const std::string all = Listing();
  support::InChild([&] {
    ASSERT_TRUE(support::AnswerCalls({{SYS_copy_file_range, ENOSYS}, {SYS_write, 0}}));
    EXPECT_EQ(Copy("file", "none", true), 112u);
    EXPECT_EQ(Copy("file", "old", false), 112u);
  });
  EXPECT_EQ(Listing(), all);
}

TEST_F(LinkedEntries, ACopyReplacesOnlyTheFileThatItLookedAt) {
  ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
  for (const std::string target : {"old", "new"}) {
    std::uint32_t error = 0;
    const auto entries = std::distance(fs::directory_iterator(Directory()), {});
    std::thread copier([&] { error = Copy("pipe", target, false); });
    const int writer = open(Path("pipe").c_str(), O_WRONLY);
    while (std::distance(fs::directory_iterator(Directory()), {}) == entries) std::this_thread::yield();
    // The copy is anybody's to replace, and nobody's to read.
    fs::path begun;
    for (const fs::path& entry : fs::directory_iterator(Directory())) {
      if (entry.filename().string().starts_with("~copy")) begun = entry;
    }
    EXPECT_EQ(fs::status(begun).permissions(), fs::perms{0600});
    for (const fs::path& name : {begun, Path(target)}) {
      Put("other", "other");
      fs::rename(Path("other"), name);
    }
    EXPECT_EQ(write(writer, "copied", 6), 6);
    close(writer);
    copier.join();
    EXPECT_EQ(error, 32u) << target;
    EXPECT_EQ(Content(target), "other");
    EXPECT_EQ(Content(begun.filename()), "other");
    fs::remove(begun);
  }
}

TEST_F(LinkedEntries, ACopyWritesWhatIsNoRegularFileAsItIs) {
  const int reader = mkfifo(Path("pipe").c_str(), 0600) == 0 ? open(Path("pipe").c_str(), O_RDWR | O_NONBLOCK) : -1;
  std::string piped(40000, '?');
  fs::resize_file(Path("old"), piped.size());
  EXPECT_EQ(Copy("old", "pipe", false), 0u);
  EXPECT_EQ(read(reader, piped.data(), piped.size()), 40000);
  EXPECT_TRUE(piped == Content("old"));
  EXPECT_TRUE(fs::is_fifo(Path("pipe")) && close(reader) == 0);
}

TEST_F(LinkedEntries, FilesMoveToAnotherFileSystem) {
  struct stat here;
  struct stat there;
  if (stat(Directory().c_str(), &here) != 0 || stat("/dev/shm", &there) != 0 || here.st_dev == there.st_dev)
    GTEST_SKIP() << "no second file system at /dev/shm";
  const std::string far = "/dev/shm/" + Directory().filename().string();
  Mark("file");
  EXPECT_TRUE(Move("file", far) == 0 && !fs::exists(Path("file")) && Move("old", far) == 183 &&
              Content("old") == "old");
  EXPECT_EQ(stat(far.c_str(), &there), 0);
  EXPECT_EQ(there.st_uid, owner);
  EXPECT_EQ(there.st_mode & 07777, 04640u);
  EXPECT_TRUE(IsWrittenThen(there));
  EXPECT_TRUE(Move("dir", far + "d") == 17 && fs::exists(Path("dir/inner")) && !fs::exists(far + "d"));
  EXPECT_TRUE(Move("dangling", far + "d") == 17 && Move(far, "back") == 0 && Content("back") == "content");
  EXPECT_FALSE(fs::exists(far));
}

}  // namespace
