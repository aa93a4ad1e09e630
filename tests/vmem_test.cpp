#include <cstring>
#include <functional>
#include <memory>
#include <thread>

#include "support/Heap.h"
#include "support/VMemPeek.h"

using namespace support;

namespace {

class VMemTest : public testing::Test {
 protected:
  Peek vm;
};

TEST_F(VMemTest, Settings) {
  const std::tuple<std::int16_t, std::int16_t, std::int16_t> rows[] = {
      {-32768, 0, 0}, {1, 1, 0}, {2, 2, 1}, {70, 70, 69}, {32767, 32767, 32387}};
  for (const auto& [set, bound, limit] : rows) {
    vm.SetMaxCacheSize(set);
    EXPECT_EQ(std::tuple(vm.GetMaxCacheSize(), vm.cacheLimit), std::tuple(bound, limit)) << set;
  }
  vm.maxAddress = 400 * 1024;
  for (const auto& [pages, kilobytes] : {std::pair(0, 0), {1, 1}, {84, 84}, {85, 85}, {86, 87}, {400, 404}}) {
    for (std::int32_t page = 0; page < pages; ++page) vm.Touch({page});
    EXPECT_EQ(vm.GetCacheSize(), kilobytes);
  }
  vm.SetTempDir(TSTR(""));
  EXPECT_EQ(vm.GetTempDir(), nullptr);
}

TEST_F(VMemTest, OtherThreadsAreRefused) {
  std::int32_t addr = vm.Take(100);
  vm.Write(0, "content");
  const std::function<void()> refused[] = {
      [&] { vm.GetTempDir(); },       [&] { vm.SetTempDir(TSTR("/")); }, [&] { vm.FlushCache(); },
      [&] { vm.SetMaxCacheSize(1); }, [&] { vm.GetMaxCacheSize(); },     [&] { vm.DeallocAll(); },
      [&] { vm.Alloc(addr, 10); },    [&] { vm.AllocPage(addr); },       [&] { vm.ReleaseCache(); },
      [&] { vm.Dealloc(addr, 100); }, [&] { vm.DeallocPage(addr); },     [&] { vm.CopyBytes(10, 0, 7); }};
  const auto before = vm.Shape();
  std::thread([&] {
    const NoteHalts notes;
    for (const auto& call : refused) call();
    EXPECT_EQ(vm.Read(0, 7), "content");
    EXPECT_EQ(notes.Noted().size(), std::size(refused));
    for (const auto& note : notes.Noted()) EXPECT_PRED2(IsAssertion, note, "VMem");
  }).join();
  EXPECT_EQ(std::tuple(vm.Shape(), vm.GetMaxCacheSize(), vm.GetTempDir()), std::tuple(before, 70, nullptr));
}

TEST_F(VMemTest, WrongCallsHaltAndDoNothing) {
  const std::string above = "illegal address (>max.address)", exhausted = "address space exhausted";
  const std::int32_t end = vm.maxAddress = 0x7ffffc00;  // 1023 bytes below the end of any space
  std::int32_t addr = 1;
  vm.Write(0, Pattern(5000));
  // clang-format off
  const std::tuple<std::string, std::string, std::function<void()>> rows[] = {
      {"Get", "length of specified virt.memory must be >0", [&] { vm.Get(-1, nullptr, -1); }},
      {"Get", "illegal address (<0)", [&] { vm.Get(-1, nullptr, 32767); }},
      {"Get", above, [&] { vm.Get(0x7fffffff, nullptr, 32767); }}, {"Set", above, [&] { vm.CopyBytes(end - 1, 0, 2); }},
      {"Set", "buffer address must not be 0", [&] { vm.Set(end - 1, nullptr, 1); }},
      {"CopyBytes", "len must be >=0", [&] { vm.CopyBytes(0, -9, -9); }},
      {"Alloc", "len must be >0", [&] { vm.Alloc(addr, 0); }}, {"Alloc", exhausted, [&] { vm.Alloc(addr, 1024); }},
      {"AllocPage", exhausted, [&] { vm.Take(0); }}, {"Dealloc0", above, [&] { vm.Free(end - 3, 3); }},
      {"Dealloc0", "illegal address (<0)", [&] { vm.Free(-1, 1); }}, {"Dealloc0", "len must be >0", [&] { vm.Free(0, 0); }},
      {"DeallocPage", "address is not a page address", [&] { vm.DeallocPage(addr); }}};
  // clang-format on
  const std::tuple before(vm.Shape(), Pattern(5000));
  for (const auto& [proc, message, call] : rows) {
    const NoteHalts notes;
    call();
    EXPECT_EQ(notes.Noted(), std::vector<std::string>(1, "VMem, " + proc + "():\n" + message));
    EXPECT_EQ(std::tuple(vm.Shape(), vm.Read(0, 5000)), before);
  }
  EXPECT_EQ(vm.Take(1023), end);
}

TEST(VMemHeapTest, ExhaustedAtEachAllocation) {
  for (int failing = 1; failing == 1 || FailingHeap::HasFailed(); ++failing) {
    std::unique_ptr<Peek> vm;
    const std::string halt = HaltOf([&] {
      const FailingHeap heap(failing);
      vm = std::make_unique<Peek>();
      vm->SetTempDir(TSTR("none"));
      EXPECT_EQ(vm->GetTempDir() == nullptr, heap.HasFailed());
      vm->maxAddress = 3000;
      vm->Write(0, Pattern(3000));
      vm->ReleaseCache();
      EXPECT_EQ(vm->Read(0, 3000), Pattern(3000));
    });
    EXPECT_EQ(halt, FailingHeap::HasFailed() ? "VMem, NewCachePtr():\np==NIL" : "") << failing;
    EXPECT_EQ(vm != nullptr ? vm->Rule() : "", "");
  }
}

/// Sets and gets a value at the ends of pages and of the space, and one byte beyond.
template <typename Value>
void TestTypedForm(Value value) {
  constexpr std::int32_t kWidth = sizeof(Value);
  const std::string bytes(reinterpret_cast<const char*>(&value), kWidth);
  Peek vm;
  vm.maxAddress = 2100;
  for (const std::int32_t addr : {0, 1024 - kWidth, 1025 - kWidth, 1023, 1024, 2100 - kWidth}) {
    std::string expected(2100, '#');
    vm.Write(0, expected);
    vm.ReleaseCache();
    vm.Set(addr, value);
    vm.ReleaseCache();
    expected.replace(static_cast<std::size_t>(addr), kWidth, bytes);
    EXPECT_EQ(vm.Read(0, 2100), expected) << kWidth << " bytes at " << addr;
    Value read = {};
    vm.Get(addr, read);
    EXPECT_EQ(std::memcmp(&read, &value, kWidth), 0) << kWidth << " bytes at " << addr;
  }
  for (const std::int32_t addr : {-1, -1024, 2101 - kWidth, 0x7fffffff}) {
    const std::string message = addr < 0 ? "illegal address (<0)" : "illegal address (>max.address)";
    EXPECT_HALT("VMem, Get():\n" + message, vm.Get(addr, value)) << addr;
    EXPECT_HALT("VMem, Set():\n" + message, vm.Set(addr, value)) << addr;
  }
}

template <typename... Value>
void TestTypedForms(Value... value) {
  (TestTypedForm(value), ...);
}

TEST_F(VMemTest, TypedFormsMoveTheirWidth) {
  TestTypedForms(char{'x'}, static_cast<signed char>(-77), static_cast<unsigned char>(200), TChar{0x1234}, 1.5F, -2.25,
                 static_cast<short>(-12345), static_cast<unsigned short>(0xABCD), -123456789, 0x89ABCDEFU, -1234567890L,
                 0x89ABCDEFUL, -0x123456789ABCDEFLL, 0xFEDCBA9876543210ULL, static_cast<void*>(&vm));
  // Stored as a double.
  vm.maxAddress = 1031;
  vm.Set(1023, 1.0L);
  EXPECT_EQ(vm.Read(1023, 8), std::string("\0\0\0\0\0\0\xf0\x3f", 8));
  long double number = 0;
  vm.Get(1023, number);
  EXPECT_EQ(number, 1.0L);
}

// Its end is no 32-bit number.
TEST_F(VMemTest, TheLastPageOfTheSpaceIsAPage) {
  vm.maxAddress = 0x7ffff800;
  EXPECT_EQ(vm.PagesLeft(), 1);
  EXPECT_EQ(vm.Take(0), 0x7ffff800);
  EXPECT_EQ(vm.PagesLeft(), 0);
  vm.Write(0x7ffff800, Pattern(1024));
  EXPECT_EQ(vm.Read(0x7ffff800, 1024), Pattern(1024));
  EXPECT_HALT("VMem, AllocPage():\naddress space exhausted", vm.Take(0));
  EXPECT_EQ(vm.Take(1023), 0x7ffffc00);
  EXPECT_HALT("VMem, Alloc():\naddress space exhausted", vm.Take(1));
}

TEST_F(VMemTest, PagesLeftCountsFreeOnesAndTheGap) {
  EXPECT_EQ(vm.PagesLeft(), 0x1FFFFF);
  for (const auto& [used, left] : {std::pair(1, 0x1FFFFE), {1020, 0x1FFFFE}, {1021, 0x1FFFFD}, {1024, 0x1FFFFE}}) {
    vm.maxAddress = used;
    EXPECT_EQ(vm.PagesLeft(), left) << used;
  }
  const std::int32_t page = vm.Take(0);
  vm.Take(0);
  vm.Free(page, 1024);
  EXPECT_EQ(vm.PagesLeft(), 0x1FFFFE - 1);
}

}  // namespace
