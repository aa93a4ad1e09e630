#include <gtest/gtest.h>

#include "hsys/HSys.h"

namespace {

constexpr int kAborted = 3;

// The message goes to a box, and neither it nor what follows to standard error.
TEST(HaltDeathTest, TheDefaultShowsABoxAndAborts) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  InstallHaltProc([](const TChar*) { FAIL() << "replaced"; });
  DeinstallHaltProc();
  EXPECT_EXIT(Halt(L"text"), testing::ExitedWithCode(kAborted), "");
  EXPECT_EXIT(Halt(TString(2000, 'x').c_str()), testing::ExitedWithCode(kAborted), "");
}

}  // namespace
