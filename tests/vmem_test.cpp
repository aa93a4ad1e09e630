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

TEST_F(VMemTest, BoundOfCache) {
  const std::tuple<std::int16_t, std::int16_t, std::int16_t> rows[] = {
      {-32768, 0, 0}, {1, 1, 0}, {2, 2, 1}, {70, 70, 69}, {32767, 32767, 32387}};
  for (const auto& [set, bound, limit] : rows) {
    vm.SetMaxCacheSize(set);
    EXPECT_EQ(std::tuple(vm.GetMaxCacheSize(), vm.cacheLimit), std::tuple(bound, limit)) << set;
  }
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
      vm->SetTempDir(TSTR("/tmp"));
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

TEST_F(VMemTest, TypedFormsMoveTheirWidth) {
  vm.maxAddress = 1040;
  vm.Set(1020, 0x01020304);
  vm.Set(1023, 1.0L);
  EXPECT_EQ(vm.Read(1019, 13), std::string("\0\4\3\2\0\0\0\0\0\0\xf0\x3f\0", 13));
  long double number = 0;
  vm.Get(1023, number);
  EXPECT_EQ(number, 1.0L);
}

}  // namespace
