#include "host/Host.h"

#include <gtest/gtest.h>

#include "support/Halts.h"
#include "support/HostFiles.h"

namespace {

using support::ErrorOf;
using support::HostFiles;

TEST_F(HostFiles, OpenByNameAndDisposition) {
  const OpenRow rows[] = {{"file", {80, 183, 0, 183}}, {"new", {0, 0, 2, 0}},         {"no/x", {3, 3, 3, 3}},
                          {"file/x", {3, 3, 3, 3}},    {"sub", {80, 5, 5, 5}},        {"sub/", {80, 5, 5, 5}},
                          {"locked", {80, 5, 5, 5}},   {"sub\\..\\new", {0, 0, 2, 0}}};
  CheckOpens(rows);
  EXPECT_EQ(Open("locked", host::GENERIC_READ, 0, host::OPEN_EXISTING), 0u);
  EXPECT_EQ(Open("locked", host::GENERIC_READ, 0, host::CREATE_ALWAYS), 5u);
  EXPECT_TRUE(host::GetFileAttributesW(Name("locked").c_str()) == 0x21 &&
              host::_waccess(Name("locked").c_str(), 2) == -1);
  EXPECT_TRUE(host::GetFileAttributesW(Name("sub").c_str()) == 0x10 && host::_waccess(Name("sub").c_str(), 2) == 0);
  for (const TChar* none : {TSTR(""), static_cast<const TChar*>(nullptr)}) {
    const HANDLE file = host::CreateFileW(none, host::GENERIC_READ, 0, host::OPEN_ALWAYS, 0);
    EXPECT_EQ(ErrorOf(file != INVALID_HANDLE_VALUE), 3u);
  }
}

TEST(HostNumbers, HaveTheirDigitsIfTheyFit) {
  // clang-format off
  const struct {
    std::int64_t value;
    int base;
    std::string narrow, wide;  // of 32 and of 64 bits
  } rows[] = {
      {0, 2, "0", "0"}, {-1, 2, std::string(32, '1'), std::string(64, '1')}, {-1, 8, "37777777777", "1777777777777777777777"},
      {-1, 10, "-1", "-1"}, {-1, 16, "ffffffff", "ffffffffffffffff"}, {-42, 16, "ffffffd6", "ffffffffffffffd6"},
      {-42, 36, "1z141xy", "3w5e11264sgra"}, {INT32_MIN, 10, "-2147483648", "-2147483648"}, {INT32_MAX, 36, "zik0zj", "zik0zj"}};
  // clang-format on
  char text[66];
  TChar units[66];
  for (const auto& [value, base, narrow, wide] : rows) {
    const auto low = static_cast<std::int32_t>(value);
    EXPECT_TRUE(host::_itoa_s(low, text, narrow.size() + 1, base) == 0 && text == narrow) << value << ' ' << base;
    EXPECT_TRUE(host::_ltow_s(low, units, 66, base) == 0 && support::Narrow(units) == narrow) << value << ' ' << base;
    EXPECT_TRUE(host::_i64toa_s(value, text, 66, base) == 0 && text == wide) << value << ' ' << base;
    EXPECT_TRUE(host::_i64tow_s(value, units, wide.size() + 1, base) == 0 && support::Narrow(units) == wide) << value;
    EXPECT_TRUE(host::_itoa_s(low, text, narrow.size(), base) == 34 && text[0] == 0) << value << ' ' << base;
    EXPECT_TRUE(host::_i64tow_s(value, units, wide.size(), base) == 34 && units[0] == 0) << value << ' ' << base;
  }
  EXPECT_TRUE(host::_ui64toa_s(UINT64_MAX, text, 66, 10) == 0 && text == std::string("18446744073709551615"));
  EXPECT_TRUE(host::_ultow_s(UINT32_MAX, units, 66, 10) == 0 && support::Narrow(units) == "4294967295");
  for (const int base : {1, 37}) {
    text[0] = 'x';
    EXPECT_TRUE(host::_ltoa_s(1, text, 66, base) == 22 && text[0] == 0) << base;
  }
  EXPECT_TRUE(host::_itow_s(1, nullptr, 4, 10) == 22 && host::_itow_s(1, units, 0, 10) == 22);
}

}  // namespace
