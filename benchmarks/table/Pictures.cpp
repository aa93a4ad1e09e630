#include "Pictures.h"

#include <algorithm>
#include <filesystem>

#include "Chart.h"

namespace {

constexpr std::int32_t kCount = 100000;

/// Measures a row for each mark and gives the lines of ours and its peers. `rowOf` makes it from a mark.
template <typename RowOf>
std::vector<Series> Lines(const Chart& chart, const std::vector<std::string>& names, const std::string& directory,
                          const Effort& effort, RowOf rowOf) {
  std::vector<Series> lines;
  for (const std::string& name : names) lines.push_back({name, {}});
  for (const auto& [mark, text] : chart.marks) {
    const Outcome outcome = RunRow(rowOf(mark), directory, effort);
    lines[0].points.emplace_back(mark, outcome.ours.time);
    for (std::size_t i = 1; i < lines.size(); ++i) lines[i].points.emplace_back(mark, outcome.peers[i - 1].time);
  }
  return lines;
}

std::vector<std::pair<double, std::string>> SizeMarks(std::int64_t largest) {
  std::vector<std::pair<double, std::string>> marks;
  for (std::int64_t size = kMiB; size <= largest; size *= 4) {
    const std::int64_t count = size / kMiB;
    marks.emplace_back(static_cast<double>(size), count < 1024 ? std::to_string(count) + " MiB" : "1 GiB");
  }
  return marks;
}

/// As many edits as move about 20 GB in a text that is one array.
std::int32_t CountInArray(std::int64_t size) {
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(20000 * kMiB / size, 20, kCount));
}

}  // namespace

void DrawPictures(const std::string& target, const std::string& directory, std::int64_t largest, const Effort& effort) {
  std::filesystem::create_directories(target);
  Chart edits = {"An insert or delete of 16 bytes at a random place", "size of the file", SizeMarks(largest), true, {}};
  edits.series = Lines(edits, {"VFile", "rope", "gap buffer", "std::string"}, directory, effort, [](double mark) {
    const auto size = static_cast<std::int64_t>(mark);
    const std::int32_t few = CountInArray(size);
    return Row{
        "edits", size, "random/vfile", {}, {"random/rope", {"random/gap buffer", 70, few}, {"random/string", 70, few}},
        kCount};
  });
  WriteChart(target + "/edits.svg", edits);

  Chart seeks = {"A move to a random place and a read of 100 bytes", "size of the file", SizeMarks(largest), false, {}};
  seeks.series = Lines(seeks, {"VFile", "pread, 1 KiB"}, directory, effort, [](double mark) {
    return Row{"seeks", static_cast<std::int64_t>(mark), "seek/vfile", {}, {"page/pread"}, kCount};
  });
  WriteChart(target + "/seeks.svg", seeks);

  Chart cache = {
      "An insert or delete of 16 bytes at a random place of 64 MiB", "bound of the cache in KB", {}, false, {}};
  for (const int bound : {70, 256, 1024, 4096, 16384, 32767}) cache.marks.emplace_back(bound, std::to_string(bound));
  cache.series = Lines(cache, {"VFile", "pread, pwrite"}, directory, effort, [](double mark) {
    return Row{"cache", 64 * kMiB, {"random/vfile", static_cast<std::int16_t>(mark)}, {}, {"random/pages"}, kCount};
  });
  WriteChart(target + "/cache.svg", cache);
}
