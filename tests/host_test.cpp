#include "host/Host.h"

#include <gtest/gtest.h>

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

}  // namespace
