// Files of bytes on their way in and out: the library, and the same bytes in the same calls of the system.

#include <optional>

#include "Ours.h"

namespace {

class LoadByLibrary : public Contestant {
 public:
  explicit LoadByLibrary(const Setting& setting) : setting_(setting) { UseSettings(setting); }
  void Prepare() override {
    file_.reset();
    file_.emplace();
  }
  void Run() override { LoadContent(*file_, setting_); }
  std::uint64_t Check() override { return SumOf(*file_); }

 private:
  const Setting setting_;
  std::optional<VFile> file_;
};

/// As the bytes do not stay in memory, they go to a file like the swap file.
class LoadByLoop : public Contestant {
 public:
  explicit LoadByLoop(const Setting& setting) : setting_(setting), swap_(HostFile::Nameless(setting.directory)) {}
  void Prepare() override { swap_ = HostFile::Nameless(setting_.directory); }
  void Run() override {
    HostFile source = HostFile::Open(setting_.content);
    char piece[kPage];
    while (const std::size_t count = source.Read(piece, sizeof piece)) swap_.Write(piece, count);
  }
  std::uint64_t Check() override { return SumOf(swap_); }

 private:
  const Setting setting_;
  HostFile swap_;
};

class SaveByLibrary : public OnFile {
 public:
  explicit SaveByLibrary(const Setting& setting) : OnFile(setting), target_(setting.directory) { Load(); }
  void Prepare() override { target_.Remove(); }
  void Run() override {
    file_.Save(Units(target_.Name()).c_str(), false);
    Expect(file_.res == resDone, "save");
  }
  std::uint64_t Check() override { return SumOf(target_.Name()); }

 private:
  const Target target_;
};

class SaveByLoop : public Contestant {
 public:
  explicit SaveByLoop(const Setting& setting)
      : pages_(setting.size / kPage),
        swap_(NamelessCopy(setting.directory, setting.content)),
        target_(setting.directory) {}
  void Prepare() override { target_.Remove(); }
  void Run() override {
    HostFile file = HostFile::Create(target_.Name());
    char piece[kPage];
    for (std::int64_t page = 0; page < pages_; ++page) {
      swap_.ReadPage(page, piece);
      file.Write(piece, sizeof piece);
    }
  }
  std::uint64_t Check() override { return SumOf(target_.Name()); }

 private:
  const std::int64_t pages_;
  const HostFile swap_;
  const Target target_;
};

}  // namespace

std::vector<ContestantEntry> TransferContestants() {
  return {{"load/vfile", Make<LoadByLibrary>},
          {"load/loop", Make<LoadByLoop>},
          {"save/vfile", Make<SaveByLibrary>},
          {"save/loop", Make<SaveByLoop>}};
}
