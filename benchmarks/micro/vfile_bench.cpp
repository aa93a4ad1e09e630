// Virtual files: edits, transfer and search, each against what a program would do by hand where there is such a thing.

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

#include "vfile/VFile.h"

namespace {

constexpr std::int32_t kBig = 64 << 20;

/// Text without the letter z, in lines.
std::string BigText() {
  std::mt19937 random(1);
  std::string text(kBig, ' ');
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto value = random() % 32;
    text[i] = i % 80 == 79 ? '\n' : value < 25 ? static_cast<char>('a' + value) : ' ';
  }
  return text;
}

const std::string& Text() {
  static const std::string text = BigText();
  return text;
}

/// The text as a file on the disk, and a name for another beside it.
class Disk {
 public:
  Disk() {
    const int file = mkstemp(name_.data());
    const ssize_t written = write(file, Text().data(), Text().size());
    if (written != kBig) std::abort();
    close(file);
  }
  ~Disk() {
    unlink(name_.c_str());
    unlink(OutName().c_str());
  }
  const std::string& InName() const { return name_; }
  std::string OutName() const { return name_ + ".out"; }
  static TString Units(const std::string& name) { return {name.begin(), name.end()}; }

 private:
  std::string name_ = "/var/tmp/vfile-bench-XXXXXX";
};

void ByteEditsInBlock(benchmark::State& state) {
  VFile file('x', 1000);
  std::int32_t at = 0;
  for (auto _ : state) {
    file.SetPos(at);
    file.InsertByte('y');
    file.Delete(at, 1);
    at = at == 900 ? 0 : at + 1;
  }
  state.SetItemsProcessed(2 * state.iterations());
}
BENCHMARK(ByteEditsInBlock);

/// Inserts and deletes of 16 bytes at random places of a file of 64 MiB. Argument: the cache in kilobytes.
void RandomEdits(benchmark::State& state) {
  VFile::SetMaxCacheSize(static_cast<std::int16_t>(state.range(0)));
  VFile file;
  file.AppendBytes(Text().data(), kBig);
  std::mt19937 random(2);
  for (auto _ : state) {
    file.SetPos(static_cast<std::int32_t>(random() % kBig));
    file.InsertBytes("0123456789abcdef", 16);
    file.Delete(static_cast<std::int32_t>(random() % kBig), 16);
  }
  state.SetItemsProcessed(2 * state.iterations());
}
BENCHMARK(RandomEdits)->Arg(70)->Arg(32767)->Unit(benchmark::kMicrosecond);

/// The cache of the transfers and the search: the default.
void UseDefaultCache() { VFile::SetMaxCacheSize(70); }

void Load(benchmark::State& state) {
  UseDefaultCache();
  const Disk disk;
  const TString name = Disk::Units(disk.InName());
  for (auto _ : state) {
    VFile file;
    file.Load(name.c_str(), FILE_SHARE_READ);
    if (file.Length() != kBig) state.SkipWithError("not loaded");
  }
  state.SetBytesProcessed(state.iterations() * kBig);
}
BENCHMARK(Load)->Unit(benchmark::kMillisecond);

/// The same host calls: reads of 1024 bytes, and, as the bytes do not stay in memory, writes to another file.
void LoadByHand(benchmark::State& state) {
  const Disk disk;
  for (auto _ : state) {
    const int in = open(disk.InName().c_str(), O_RDONLY);
    const int swap = open(disk.OutName().c_str(), O_RDWR | O_CREAT | O_TRUNC, 0600);
    char piece[1024];
    while (read(in, piece, sizeof piece) > 0) benchmark::DoNotOptimize(write(swap, piece, sizeof piece));
    close(in);
    close(swap);
  }
  state.SetBytesProcessed(state.iterations() * kBig);
}
BENCHMARK(LoadByHand)->Unit(benchmark::kMillisecond);

void Save(benchmark::State& state) {
  UseDefaultCache();
  const Disk disk;
  VFile file;
  file.AppendBytes(Text().data(), kBig);
  const TString name = Disk::Units(disk.OutName());
  for (auto _ : state) {
    file.Save(name.c_str(), true);
    if (file.res != resDone) state.SkipWithError("not saved");
  }
  state.SetBytesProcessed(state.iterations() * kBig);
}
BENCHMARK(Save)->Unit(benchmark::kMillisecond);

/// Reads of 1024 bytes from one file, as the bytes are not in memory, and writes to another.
void SaveByHand(benchmark::State& state) { LoadByHand(state); }
BENCHMARK(SaveByHand)->Unit(benchmark::kMillisecond);

void FindAbsent(benchmark::State& state) {
  UseDefaultCache();
  VFile file;
  file.AppendBytes(Text().data(), kBig);
  const bool ignoreCase = state.range(0) != 0;
  const bool rare = state.range(1) != 0;
  for (auto _ : state) {
    std::int32_t at = 0;
    if (file.Find(at, rare ? "zebra" : "ebraz", ignoreCase, false)) state.SkipWithError("found");
  }
  state.SetBytesProcessed(state.iterations() * kBig);
}
BENCHMARK(FindAbsent)
    ->ArgNames({"ignoreCase", "rareFirst"})
    ->Args({0, 1})
    ->Args({0, 0})
    ->Args({1, 1})
    ->Unit(benchmark::kMillisecond);

void FindAbsentByMemmem(benchmark::State& state) {
  const char* wanted = state.range(0) != 0 ? "zebra" : "ebraz";
  for (auto _ : state) benchmark::DoNotOptimize(memmem(Text().data(), kBig, wanted, 5));
  state.SetBytesProcessed(state.iterations() * kBig);
}
BENCHMARK(FindAbsentByMemmem)->ArgName("rareFirst")->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond);

}  // namespace
