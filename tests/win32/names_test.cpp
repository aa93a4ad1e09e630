#include <gtest/gtest.h>
#include <tuple>

#include "host/Host.h"
#include "support/Environment.h"
#include "support/HFiles.h"
#include "support/Halts.h"
#include "support/win32/Wine.h"

namespace {

using support::Narrow;
using NativeNames = support::InDirectory;

TEST_F(NativeNames, AreMadeFull) {
  std::filesystem::create_directory(Path("sub"));
  const support::CurrentDirectory here(Path("sub"));
  const TString in = Name("sub");
  const TString top = support::Units(Directory());
  const TString drive = in.substr(0, 2);
  // clang-format off
  const std::pair<TString, TString> rows[] = {
      {L"", in}, {L"..\\a", top + L"\\a"}, {L"..\\..\\..\\..\\..\\..\\..\\..\\..\\a", drive + L"\\a"}, {L"a. .", in + L"\\a"},
      {L" a/", in + L"\\ a\\"}, {L"a\\\\b/./..", in + L"\\a"}, {L"\\x", drive + L"\\x"}, {drive + L"x", in + L"\\x"},
      {drive + L"..", top}, {drive + L"\\..", drive + L"\\"}, {L"Q:x", L"Q:\\x"}, {L"a|b*", in + L"\\a|b*"},
      {L"//srv/shr/a/../b", L"\\\\srv\\shr\\b"}};
  // clang-format on
  TChar full[300];
  for (const auto& [name, expected] : rows) {
    EXPECT_TRUE(host::_wfullpath(full, name.c_str(), 300) == full && full == expected)
        << Narrow(name.c_str()) << " is " << Narrow(full);
  }
  EXPECT_TRUE(host::_wfullpath(full, nullptr, 300) == full && full == in);
  full[0] = L'?';
  EXPECT_TRUE(host::_wfullpath(full, L"C:\\abc", 6) == nullptr && full[0] == L'?');
  EXPECT_TRUE(host::_wfullpath(full, L"C:\\abc", 7) == full && full == TString(L"C:\\abc"));
  EXPECT_TRUE(host::_wfullpath(full, full, 300) == full && full == TString(L"C:\\abc"));
}

TEST_F(NativeNames, BeginningWithOneSlashAreOfTheCurrentDrive) {
  SKIP_UNDER_WINE("a name that begins with one slash is a name of the system below, on the drive that leads there");
  TChar full[300];
  EXPECT_TRUE(host::_wfullpath(full, L"/x/y", 300) == full && full == Name("").substr(0, 2) + L"\\x\\y");
}

// What the C runtime would end the process for.
TEST_F(NativeNames, RefuseRoomAndNullWithAnError) {
  TChar a[8] = L"x";
  const auto split = [&](const TChar* path, TChar* drive, std::size_t driveSize, std::size_t nameSize = 0) {
    return host::_wsplitpath_s(path, drive, driveSize, nullptr, 0, nameSize > 0 ? a + 4 : nullptr, nameSize, nullptr,
                               0);
  };
  EXPECT_TRUE(split(nullptr, a, 8) == 22 && split(L"a", a, 0) == 22 && split(L"a", nullptr, 3) == 22);
  EXPECT_TRUE(split(L"a", nullptr, 0) == 0 && split(L"a", a, 1) == 0);
  EXPECT_TRUE(split(L"C:abcdefgh", a, 8, 4) == 34 && a[0] == 0 && a[4] == 0);
  EXPECT_EQ(host::_wmakepath_s(nullptr, 8, nullptr, nullptr, L"f", nullptr), 22);
  EXPECT_EQ(host::_wmakepath_s(a, 0, nullptr, nullptr, L"f", nullptr), 22);
  // clang-format off
  const std::tuple<const TChar*, const TChar*, const TChar*, const TChar*, const TChar*> rows[] = {
      {L"C:\\z", L"d/", L"f", L"x", L"C:d/f.x"}, {L":", L"d", L"f", nullptr, L"::d\\f"},
      {nullptr, nullptr, nullptr, nullptr, L""}, {nullptr, L"d", L"\\f", L".", L"d\\\\f."}};
  // clang-format on
  for (const auto& [drive, dir, name, ext, made] : rows) {
    TChar full[16];
    const std::size_t room = TString(made).size() + 1;
    EXPECT_TRUE(host::_wmakepath_s(full, room, drive, dir, name, ext) == 0 && full == TString(made)) << Narrow(full);
    if (room == 1) continue;
    EXPECT_TRUE(host::_wmakepath_s(full, room - 1, drive, dir, name, ext) == 34 && full[0] == 0) << Narrow(made);
  }
}

TEST_F(NativeNames, OfVariablesHaveValues) {
  TChar buffer[8] = L"x";
  std::size_t size = 9;
  const support::Variable value("VFILE_TEST", "value");
  EXPECT_TRUE(host::_wgetenv_s(&size, buffer, 6, L"vfile_Test") == 0 && size == 6 && buffer == TString(L"value"));
  EXPECT_TRUE(host::_wgetenv_s(&size, buffer, 5, L"VFILE_TEST") == 34 && size == 6);
  for (const TChar* name : {L"VFILE_NONE", static_cast<const wchar_t*>(nullptr)}) {
    size = 9;
    EXPECT_TRUE(host::_wgetenv_s(&size, buffer, 8, name) == 0 && size == 0);
  }
}

TEST_F(NativeNames, OfTheTemporaryDirectoryAreTheFirstUsable) {
  Put("file", "");
  std::filesystem::create_directory(Path("one"));
  std::filesystem::create_directory(Path("two"));
  // clang-format off
  const std::tuple<support::Value, const char*, TString> rows[] = {
      {Path("one"), "two", Name("one\\")}, {Path("file"), "two", Name("two\\")},
      {Path("none"), "two", Name("two\\")}, {std::nullopt, "two", Name("two\\")},
      {std::string(400, 'x'), "two", Name("two\\")}, {Path("none"), "file", L"C:\\"}};
  // clang-format on
  for (const auto& [first, second, expected] : rows) {
    const support::Variable tmp("TMP", first);
    const support::Variable temp("TEMP", Path(second));
    TChar directory[261];
    HFile::GetTempDir(directory, 261);
    EXPECT_EQ(Narrow(directory), Narrow(expected.c_str()));
    HFile::GetTempDir(directory, 3);
    EXPECT_EQ(Narrow(directory), Narrow(expected.substr(0, 2).c_str()));
  }
}

}  // namespace
