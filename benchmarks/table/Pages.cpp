// Reads at random and accesses to a page that is cached, by the library and by the system; the life of a file.

#include <memory>
#include <random>

#include "Ours.h"
#include "Reads.h"
#include "vmem/VMem.h"

namespace {

/// Reads of pages of a space with the content.
class PagesOfSpace : public RandomReads {
 public:
  explicit PagesOfSpace(const Setting& setting) : RandomReads(setting, kPage, kPage) {
    space_.SetMaxCacheSize(setting.cache);
    space_.SetTempDir(Units(setting.directory).c_str());
    const HostFile file = HostFile::Open(setting.content);
    char bytes[kPage];
    for (std::int64_t page = 0; page < setting.size / kPage; ++page) {
      std::int32_t addr = -1;
      space_.AllocPage(addr);
      Expect(addr == page * kPage, "address of a page");
      file.ReadPage(page, bytes);
      space_.Set(addr, bytes, kPage);
    }
    space_.FlushCache();
  }
  void Run() override {
    ReadAll([&](std::int32_t place, char* bytes) { space_.Get(place, bytes, kPage); });
  }

 private:
  VMem space_;
};

class PagesOfFile : public RandomReads {
 public:
  explicit PagesOfFile(const Setting& setting)
      : RandomReads(setting, kPage, kPage), file_(NamelessCopy(setting.directory, setting.content)) {}
  void Run() override {
    ReadAll([&](std::int32_t place, char* bytes) { file_.ReadAt(place, bytes, kPage); });
  }

 private:
  const HostFile file_;
};

/// A move and a read of 100 bytes.
class Seeks : public RandomReads {
 public:
  explicit Seeks(const Setting& setting) : RandomReads(setting, 1, 100) {
    UseSettings(setting);
    file_ = std::make_unique<VFile>();
    LoadContent(*file_, setting);
  }
  void Run() override {
    ReadAll([&](std::int32_t place, char* bytes) {
      file_->SetPos(place);
      file_->ReadBytes(bytes, 100);
    });
  }

 private:
  std::unique_ptr<VFile> file_;
};

/// Accesses to four bytes in each of 64 cached pages in turn.
enum class Access { kGet, kSet, kCheck };

template <Access kAccess>
class CachedPages : public Contestant {
 public:
  explicit CachedPages(const Setting& setting) : count_(setting.count) {
    for (int i = 0; i < kSpace / kPage; ++i) {
      std::int32_t addr = -1;
      space_.AllocPage(addr);
      space_.Set(addr, 1);
    }
  }
  void Run() override {
    std::int32_t addr = 0;
    for (std::int32_t i = 0; i < count_; ++i) {
      int value = i;
      if constexpr (kAccess == Access::kGet) space_.Get(addr, value);
      if constexpr (kAccess == Access::kSet) space_.Set(addr, value);
      if constexpr (kAccess == Access::kCheck) space_.Get(addr, &value, 0);
      sum_ += static_cast<std::uint32_t>(value);
      addr = (addr + kStep) & (kSpace - 1);
    }
    Keep(&sum_);
  }
  std::uint64_t Check() override {
    space_.Set(kStep, 12345);
    int value = 0;
    space_.Get(kStep, value);
    Expect(value == 12345, "a value of the space");
    return 0;
  }

 private:
  static constexpr std::int32_t kSpace = 64 * kPage;
  static constexpr std::int32_t kStep = kPage + 4;
  const std::int32_t count_;
  std::uint64_t sum_ = 0;
  VMem space_;
};

/// A file that comes, takes 100 bytes, gives them back and goes.
template <bool kBeside>
class Life : public Contestant {
 public:
  explicit Life(const Setting& setting) : count_(setting.count) {
    UseSettings(setting);
    if (kBeside) other_ = std::make_unique<VFile>();
  }
  void Run() override {
    for (std::int32_t i = 0; i < count_; ++i) {
      VFile file;
      file.InsertBytes(kBytes, sizeof kBytes);
      file.SetPos(0);
      file.ReadBytes(out_, sizeof out_);
    }
  }
  std::uint64_t Check() override {
    Expect(std::memcmp(out_, kBytes, sizeof out_) == 0, "bytes of a file");
    return 0;
  }

 private:
  static constexpr char kBytes[100] = "a hundred bytes";
  const std::int32_t count_;
  char out_[sizeof kBytes] = {};
  std::unique_ptr<VFile> other_;
};

}  // namespace

std::vector<ContestantEntry> PageContestants() {
  return {
      {"page/vmem", Make<PagesOfSpace>},
      {"page/file", Make<PagesOfFile>},
      {"seek/vfile", Make<Seeks>},
      {"hit/get", Make<CachedPages<Access::kGet>>},
      {"hit/set", Make<CachedPages<Access::kSet>>},
      {"hit/check", Make<CachedPages<Access::kCheck>>},
      {"life/only", Make<Life<false>>},
      {"life/beside", Make<Life<true>>},
  };
}
