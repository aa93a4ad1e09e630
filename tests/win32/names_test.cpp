#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <tuple>

#include "host/Host.h"
#include "support/HFiles.h"
#include "support/Halts.h"
#include "support/win32/Wine.h"

namespace {

using support::Narrow;
using NativeNames = support::InDirectory;

TEST_F(NativeNames, AreMadeFull) {
  std::filesystem::create_directories(Path("facts/crt"));
  const support::CurrentDirectory here(Path("facts/crt"));
  const TString top = Name("facts");
  const TString in = Name("facts\\crt");
  const TString drive = in.substr(0, 2);
  const std::pair<TString, TString> rows[] = {{L"", in},
                                              {L".", in},
                                              {L"a", in + L"\\a"},
                                              {L"..", top},
                                              {L"..\\a", top + L"\\a"},
                                              {L"..\\..\\..\\..\\..\\..\\..\\..\\..\\a", drive + L"\\a"},
                                              {L"a.", in + L"\\a"},
                                              {L"a..", in + L"\\a"},
                                              {L"a ", in + L"\\a"},
                                              {L"a .", in + L"\\a"},
                                              {L" a", in + L"\\ a"},
                                              {L"a\\", in + L"\\a\\"},
                                              {L"a/", in + L"\\a\\"},
                                              {L"a\\\\b", in + L"\\a\\b"},
                                              {L"a//b", in + L"\\a\\b"},
                                              {L"a\\.\\b", in + L"\\a\\b"},
                                              {L"a\\..\\b", in + L"\\b"},
                                              {L"a\\..", in},
                                              {L"a/./../b/", in + L"\\b\\"},
                                              {L"a.\\b", in + L"\\a\\b"},
                                              {L"a \\b", in + L"\\a \\b"},
                                              {L"\\", drive + L"\\"},
                                              {L"\\x", drive + L"\\x"},
                                              {drive + L"x", in + L"\\x"},
                                              {drive + L"..", top},
                                              {drive + L".", in},
                                              {drive + L"/", drive + L"\\"},
                                              {L"c:\\x\\..\\y", L"c:\\y"},
                                              {drive + L"\\..", drive + L"\\"},
                                              {drive + L"\\a\\", drive + L"\\a\\"},
                                              {L"Q:x", L"Q:\\x"},
                                              {L"*.txt", in + L"\\*.txt"},
                                              {L"a|b<c>", in + L"\\a|b<c>"},
                                              {L"\\\\srv\\shr\\..\\..\\a", L"\\\\srv\\shr\\a"},
                                              {L"//srv/shr/a/../b", L"\\\\srv\\shr\\b"}};
  TChar full[300];
  for (const auto& [name, expected] : rows) {
    EXPECT_TRUE(host::_wfullpath(full, name.c_str(), 300) == full && full == expected)
        << Narrow(name.c_str()) << " is " << Narrow(full);
  }
  EXPECT_TRUE(host::_wfullpath(full, nullptr, 300) == full && full == in);
  // A drive alone may come with its separator.
  EXPECT_TRUE(host::_wfullpath(full, drive.c_str(), 300) == full && TString(full).starts_with(in));
  full[0] = L'?';
  EXPECT_TRUE(host::_wfullpath(full, L"C:\\abc", 6) == nullptr && full[0] == L'?');
  EXPECT_TRUE(host::_wfullpath(full, L"C:\\abc", 7) == full && full == TString(L"C:\\abc"));
  EXPECT_TRUE(host::_wfullpath(full, full, 300) == full && full == TString(L"C:\\abc"));
}

TEST_F(NativeNames, BeginningWithOneSlashAreOfTheCurrentDrive) {
  SKIP_UNDER_WINE("a name that begins with one slash is a name of the system below, on the drive that leads there");
  TChar full[300];
  const TString drive = Name("").substr(0, 2);
  for (const auto& [name, expected] : {std::pair(L"/", L"\\"), std::pair(L"/x/y", L"\\x\\y")}) {
    EXPECT_TRUE(host::_wfullpath(full, name, 300) == full && full == drive + expected) << Narrow(full);
  }
}

TEST_F(NativeNames, HaveAnyUnitForADrive) {
  const std::tuple<const TChar*, const TChar*, const TChar*, const TChar*> rows[] = {
      {L"1:\\a", L"1:", L"\\", L"a"}, {L"::a", L"::", L"", L"a"}, {L"\\\\?\\C:\\a\\b", L"", L"\\\\?\\C:\\a\\", L"b"}};
  for (const auto& [path, drive, dir, name] : rows) {
    TChar parts[3][16];
    EXPECT_EQ(host::_wsplitpath_s(path, parts[0], 16, parts[1], 16, parts[2], 16, nullptr, 0), 0);
    EXPECT_TRUE(parts[0] == TString(drive) && parts[1] == TString(dir) && parts[2] == TString(name)) << Narrow(path);
  }
}

// What the C runtime would end the process for.
TEST_F(NativeNames, RefuseRoomAndNullWithAnError) {
  TChar a[8] = L"x";
  EXPECT_EQ(host::_wsplitpath_s(nullptr, a, 8, nullptr, 0, nullptr, 0, nullptr, 0), 22);
  EXPECT_EQ(host::_wsplitpath_s(L"a", a, 0, nullptr, 0, nullptr, 0, nullptr, 0), 22);
  EXPECT_EQ(host::_wsplitpath_s(L"a", nullptr, 3, nullptr, 0, nullptr, 0, nullptr, 0), 22);
  EXPECT_EQ(host::_wsplitpath_s(L"a", nullptr, 0, nullptr, 0, nullptr, 0, nullptr, 0), 0);
  EXPECT_TRUE(host::_wsplitpath_s(L"C:abcdefgh", a, 8, nullptr, 0, a + 4, 4, nullptr, 0) == 34 && a[0] == 0 &&
              a[4] == 0);
  EXPECT_EQ(host::_wsplitpath_s(L"a", a, 1, nullptr, 0, nullptr, 0, nullptr, 0), 0);
  EXPECT_EQ(host::_wmakepath_s(nullptr, 8, nullptr, nullptr, L"f", nullptr), 22);
  EXPECT_EQ(host::_wmakepath_s(a, 0, nullptr, nullptr, L"f", nullptr), 22);
  const std::tuple<const TChar*, const TChar*, const TChar*, const TChar*, const TChar*> rows[] = {
      {L"C:\\z", L"d/", L"f", L"x", L"C:d/f.x"}, {L"CD", L"d", L"f", nullptr, L"C:d\\f"},
      {L":", L"d", L"f", nullptr, L"::d\\f"},    {nullptr, nullptr, nullptr, nullptr, L""},
      {L"C", nullptr, nullptr, nullptr, L"C:"},  {nullptr, L"d", L"\\f", nullptr, L"d\\\\f"},
      {nullptr, nullptr, L"f", L".", L"f."},     {nullptr, L"a/b", L"f", L"t", L"a/b\\f.t"}};
  for (const auto& [drive, dir, name, ext, made] : rows) {
    TChar full[16];
    const std::size_t room = TString(made).size() + 1;
    EXPECT_TRUE(host::_wmakepath_s(full, room, drive, dir, name, ext) == 0 && full == TString(made)) << Narrow(full);
    if (room == 1) continue;
    EXPECT_TRUE(host::_wmakepath_s(full, room - 1, drive, dir, name, ext) == 34 && full[0] == 0) << Narrow(made);
  }
}

TEST_F(NativeNames, OfVariablesHaveValues) {
  const TChar* const name = L"VFILE_TEST";
  TChar buffer[8] = L"x";
  std::size_t size = 9;
  EXPECT_TRUE(host::_wgetenv_s(&size, buffer, 8, name) == 0 && size == 0);
  EXPECT_TRUE(host::_wgetenv_s(&size, buffer, 8, nullptr) == 0 && size == 0);
  ASSERT_EQ(_wputenv_s(name, L"value"), 0);
  EXPECT_TRUE(host::_wgetenv_s(&size, buffer, 6, L"vfile_Test") == 0 && size == 6 && buffer == TString(L"value"));
  for (const std::size_t room : {5u, 1u}) {
    EXPECT_TRUE(host::_wgetenv_s(&size, buffer, room, name) == 34 && size == 6) << room;
  }
  ASSERT_EQ(_wputenv_s(name, L""), 0);
  EXPECT_TRUE(host::_wgetenv_s(&size, buffer, 8, name) == 0 && size == 0);
}

/// Sets a variable until the end of the scope.
class Variable {
 public:
  Variable(const TChar* name, const TString& value) : name_(name) {
    const TChar* before = _wgetenv(name);
    if (before != nullptr) before_ = before;
    _wputenv_s(name, value.c_str());
  }
  ~Variable() { _wputenv_s(name_, before_.c_str()); }
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;

 private:
  const TChar* const name_;
  TString before_;
};

TEST_F(NativeNames, OfTheTemporaryDirectoryAreTheFirstUsable) {
  Put("file", "");
  std::filesystem::create_directory(Path("one"));
  std::filesystem::create_directory(Path("two"));
  const TString one = Name("one");
  const TString two = Name("two");
  const TString none = Name("none");
  const TString file = Name("file");
  const std::tuple<TString, TString, TString> rows[] = {
      {one, two, one + L"\\"},  {one + L"\\", two, one + L"\\"},
      {file, two, two + L"\\"}, {none, two, two + L"\\"},
      {L"", two, two + L"\\"},  {TString(400, L'x'), two, two + L"\\"},
      {none, file, L"C:\\"},    {L"", L"", L"C:\\"}};
  for (const auto& [first, second, expected] : rows) {
    const Variable tmp(L"TMP", first);
    const Variable temp(L"TEMP", second);
    TChar directory[261];
    HFile::GetTempDir(directory, 261);
    EXPECT_EQ(Narrow(directory), Narrow(expected.c_str()));
    HFile::GetTempDir(directory, 3);
    EXPECT_EQ(Narrow(directory), Narrow(expected.substr(0, 2).c_str()));
  }
}

}  // namespace
