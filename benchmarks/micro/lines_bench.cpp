// Lines, comparison and copies of files, each against what a program would do by hand.

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "vfile/VFile.h"

namespace {

constexpr std::int32_t kBig = 64 << 20;
constexpr std::int32_t kLineSize = 80;

const std::string& Text() {
  static const std::string text = [] {
    std::string line(kLineSize - 1, 'x');
    line += '\n';
    std::string lines;
    while (lines.size() < kBig) lines += line;
    return lines.substr(0, kBig);
  }();
  return text;
}

void WalkLines(benchmark::State& state) {
  VFile file;
  file.AppendBytes(Text().data(), kBig);
  for (auto _ : state) {
    std::int32_t start = 0;
    std::int32_t size = 0;
    std::int32_t eolSize = 0;
    for (std::int32_t at = 0; at < kBig; at = start + size) file.LineSize(at, start, size, eolSize);
  }
  state.SetItemsProcessed(state.iterations() * (kBig / kLineSize));
}
BENCHMARK(WalkLines)->Unit(benchmark::kMillisecond);

/// The same in memory.
void WalkLinesByMemchr(benchmark::State& state) {
  for (auto _ : state) {
    const char* end = Text().data() + kBig;
    for (const char* at = Text().data(); at < end; ++at) {
      const void* eol = std::memchr(at, '\n', static_cast<std::size_t>(end - at));
      if (eol == nullptr) break;
      at = static_cast<const char*>(eol);
      benchmark::DoNotOptimize(at);
    }
  }
  state.SetItemsProcessed(state.iterations() * (kBig / kLineSize));
}
BENCHMARK(WalkLinesByMemchr)->Unit(benchmark::kMillisecond);

/// One line without an end, from its middle.
void OneLongLine(benchmark::State& state) {
  VFile file('x', kBig);
  for (auto _ : state) benchmark::DoNotOptimize(file.LineEnd(kBig / 2, true));
  state.SetBytesProcessed(state.iterations() * kBig);
}
BENCHMARK(OneLongLine)->Unit(benchmark::kMillisecond);

void CompareEqual(benchmark::State& state) {
  VFile left;
  left.AppendBytes(Text().data(), kBig);
  const VFile right(left);
  for (auto _ : state) benchmark::DoNotOptimize(left == right);
  state.SetBytesProcessed(state.iterations() * kBig);
}
BENCHMARK(CompareEqual)->Unit(benchmark::kMillisecond);

/// A file on the disk and the name of a copy of it.
struct Disk {
  Disk() { std::ofstream(from, std::ios::binary) << Text(); }
  ~Disk() {
    std::filesystem::remove(from);
    std::filesystem::remove(to);
  }
  const std::filesystem::path from = "/var/tmp/vfile-bench-copy";
  const std::filesystem::path to = "/var/tmp/vfile-bench-copy.out";
};

void CopyFile(benchmark::State& state) {
  const Disk disk;
  const std::u16string from = disk.from.u16string();
  const std::u16string to = disk.to.u16string();
  const TString source(from.begin(), from.end());
  const TString target(to.begin(), to.end());
  for (auto _ : state) {
    if (!HFile::Copy(source.c_str(), target.c_str(), true)) state.SkipWithError("copy");
  }
  state.SetBytesProcessed(state.iterations() * kBig);
}
BENCHMARK(CopyFile)->Unit(benchmark::kMillisecond);

void CopyFileByHand(benchmark::State& state) {
  const Disk disk;
  for (auto _ : state) {
    std::filesystem::copy_file(disk.from, disk.to, std::filesystem::copy_options::overwrite_existing);
  }
  state.SetBytesProcessed(state.iterations() * kBig);
}
BENCHMARK(CopyFileByHand)->Unit(benchmark::kMillisecond);

}  // namespace
