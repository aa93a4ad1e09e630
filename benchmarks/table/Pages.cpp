// Reads at random and accesses to a page that is cached, by the library and by the system; the life of a file.

#include <memory>

#include "Ours.h"
#include "Reads.h"
#include "vmem/VMem.h"

namespace {

constexpr std::int32_t kPageSize = kPage;

/// A space of pages.
std::shared_ptr<VMem> Space(std::int64_t pages) {
  auto space = std::make_shared<VMem>();
  for (std::int64_t i = 0; i < pages; ++i) {
    std::int32_t addr = -1;
    space->AllocPage(addr);
    Expect(addr == i * kPageSize, "address of a page");
  }
  return space;
}

/// Pages of a space with the content.
Contestant PagesOfSpace(const Setting& setting) {
  const std::int64_t pages = PagesIn(setting.size);
  const auto space = Space(pages);
  space->SetMaxCacheSize(setting.cache);
  space->SetTempDir(Units(setting.directory).c_str());
  const HostFile file = HostFile::Open(setting.content);
  for (std::int64_t page = 0; page < pages; ++page) {
    char bytes[kPage];
    file.ReadPage(page, bytes);
    space->Set(static_cast<std::int32_t>(page * kPageSize), bytes, kPageSize);
  }
  space->FlushCache();
  const auto read = [=](std::int32_t place, char* bytes) { space->Get(place, bytes, kPageSize); };
  return RandomReads(setting, kPageSize, kPage, read);
}

Contestant PagesOfFile(const Setting& setting) {
  const auto file = std::make_shared<HostFile>(NamelessCopy(setting.directory, setting.content));
  const auto read = [=](std::int32_t place, char* bytes) { file->ReadAt(place, bytes, kPage); };
  return RandomReads(setting, kPageSize, kPage, read);
}

/// A move and a read of 100 bytes.
Contestant Seeks(const Setting& setting) {
  const auto file = Loaded<VFile>(setting);
  const auto read = [=](std::int32_t place, char* bytes) {
    file->SetPos(place);
    file->ReadBytes(bytes, 100);
  };
  return RandomReads(setting, 1, 100, read);
}

enum class Access { kGet, kSet, kCheck };

/// Accesses to four bytes in each of 64 cached pages in turn.
template <Access kAccess>
Contestant CachedPages(const Setting& setting) {
  constexpr std::int32_t kSize = 64 * kPageSize;
  constexpr std::int32_t kStep = kPageSize + 4;
  const auto pages = Space(64);
  const auto run = [=] {
    VMem& space = *pages;
    std::int32_t addr = 0;
    std::int64_t sum = 0;
    for (std::int32_t i = 0; i < setting.count; ++i) {
      int value = i;
      if constexpr (kAccess == Access::kGet) space.Get(addr, value);
      if constexpr (kAccess == Access::kSet) space.Set(addr, value);
      if constexpr (kAccess == Access::kCheck) space.Get(addr, &value, 0);
      sum += value;
      addr = (addr + kStep) & (kSize - 1);
    }
    Keep(&sum);
  };
  const auto check = [=] {
    pages->Set(kStep, 12345);
    int value = 0;
    pages->Get(kStep, value);
    Expect(value == 12345, "a value of the space");
    return 0;
  };
  return {run, check};
}

/// A file that comes, takes 100 bytes, gives them back and goes.
template <bool kBeside>
Contestant Life(const Setting& setting) {
  UseSettings(setting);
  const auto run = [=, other = kBeside ? std::make_shared<VFile>() : nullptr] {
    constexpr char kBytes[100] = "a hundred bytes";
    char out[sizeof kBytes] = {};
    for (std::int32_t i = 0; i < setting.count; ++i) {
      VFile file;
      file.InsertBytes(kBytes, sizeof kBytes);
      file.SetPos(0);
      file.ReadBytes(out, sizeof out);
    }
    Expect(std::memcmp(out, kBytes, sizeof out) == 0, "bytes of a file");
  };
  return {run};
}

}  // namespace

std::vector<ContestantEntry> PageContestants() {
  return {
      {"page/vmem", PagesOfSpace},
      {"page/pread", PagesOfFile},
      {"seek/vfile", Seeks},
      {"hit/get", CachedPages<Access::kGet>},
      {"hit/set", CachedPages<Access::kSet>},
      {"hit/check", CachedPages<Access::kCheck>},
      {"life/only", Life<false>},
      {"life/beside", Life<true>},
  };
}
