#include "Report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string_view>
#include <sys/utsname.h>
#include <thread>

#include "Measuring.h"

namespace {

std::string Format(const char* format, double value) {
  char text[64];
  std::snprintf(text, sizeof text, format, value);
  return text;
}

/// Three digits.
std::string Digits(double value) { return Format(value < 10 ? "%.2f" : value < 100 ? "%.1f" : "%.0f", value); }

std::string MemoryText(double megabytes) { return Digits(megabytes) + " MB"; }

/// The fastest of those that this build has.
double LimitOf(const Outcome& outcome) {
  double least = HUGE_VAL;
  for (const Result& holder : outcome.holders) {
    if (holder.exists) least = std::min(least, holder.time);
  }
  return least;
}

/// Ours in times of the limit or, of memory, in times of the goal.
double RatioOf(const Row& row, const Outcome& outcome) {
  return row.OfMemory() ? outcome.ours.peak / row.goal.bound : outcome.ours.time / LimitOf(outcome);
}

bool Passes(const Row& row, const Outcome& outcome) {
  return RatioOf(row, outcome) <= (row.OfMemory() ? 1 : row.goal.bound);
}

/// A goal below this is told as a fraction, and so is its ratio.
constexpr double kFraction = 0.2;

std::string GoalText(const Row& row) {
  if (row.OfMemory()) return MemoryText(row.goal.bound);
  if (row.goal.bound < kFraction) return "1/" + Format("%.0f", 1 / row.goal.bound) + " of " + row.goal.limit;
  return Format("%g", row.goal.bound) + " x " + row.goal.limit;
}

std::string RatioText(const Row& row, const Outcome& outcome) {
  const double ratio = RatioOf(row, outcome);
  return row.goal.bound < kFraction ? "1/" + Format("%.1f", 1 / ratio) : Format("%.2f", ratio);
}

/// The peers, and all holders of the limit where there are several.
std::string PeersText(const Outcome& outcome) {
  std::vector<Result> results = outcome.peers;
  if (outcome.holders.size() > 1) results.insert(results.begin(), outcome.holders.begin(), outcome.holders.end());
  std::string text;
  for (const Result& result : results) {
    text += (text.empty() ? "" : ", ") + result.label + " " + (result.exists ? TimeText(result.time) : "not installed");
  }
  return text;
}

/// The columns of a row: work, goal, ours, limit, ratio, verdict, peers.
std::vector<std::string> ColumnsOf(const Row& row, const Outcome& outcome) {
  const bool memory = row.OfMemory();
  return {row.Text(),
          GoalText(row),
          memory ? MemoryText(outcome.ours.peak) : TimeText(outcome.ours.time),
          memory ? MemoryText(row.goal.bound) : TimeText(LimitOf(outcome)),
          RatioText(row, outcome),
          Passes(row, outcome) ? "pass" : "short",
          PeersText(outcome)};
}

void PrintColumns(const std::vector<std::string>& columns) {
  constexpr int kWidths[] = {-45, -30, 8, 8, 7, -5, 0};
  for (std::size_t i = 0; i < columns.size(); ++i) std::printf("%*s ", kWidths[i], columns[i].c_str());
  std::printf("\n");
  std::fflush(stdout);
}

/// Whether it does the whole work, and not only what that asks of the system.
bool IsPeer(const Result& result) {
  constexpr std::string_view kPeers[] = {"rope",           "gap buffer",   "string", "sqlite", "lmdb",
                                         "page in sqlite", "page in lmdb", "icu",    "iconv"};
  return result.exists && std::find(std::begin(kPeers), std::end(kPeers), result.label) != std::end(kPeers);
}

/// The value of a key in a file of the system.
std::string ValueOf(const char* file, const std::string& key) {
  std::ifstream lines(file);
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind(key, 0) == 0) return line.substr(line.find_first_not_of(" \t:", key.size()));
  }
  return "0";
}

/// The type of the file system that the directory is on.
std::string FileSystemOf(const std::string& directory) {
  std::ifstream mounts("/proc/mounts");
  std::string best;
  std::string type;
  for (std::string device, place, kind, rest; mounts >> device >> place >> kind && std::getline(mounts, rest);) {
    const bool holds = (directory + "/").rfind(place == "/" ? place : place + "/", 0) == 0;
    if (!holds || place.size() < best.size()) continue;
    best = place;
    type = kind;
  }
  return type;
}

std::string MachineText(const std::string& directory) {
  utsname system = {};
  uname(&system);
  const double memory = std::stod(ValueOf("/proc/meminfo", "MemTotal")) * 1024 / 1e9;
  return ValueOf("/proc/cpuinfo", "model name") + ", " + std::to_string(std::thread::hardware_concurrency()) +
         " processors, " + Format("%.0f", memory) + " GB, " + system.sysname + " " + system.release + ", files on " +
         FileSystemOf(directory) +
         ", compiled by "
#ifdef __clang__
         "clang++ " __VERSION__;
#else
         "g++ " __VERSION__;
#endif
}

}  // namespace

std::string TimeText(double seconds, double scale) {
  if (scale == 0) scale = seconds;
  if (scale < 1e-6) return Digits(seconds * 1e9) + " ns";
  if (scale < 1e-3) return Digits(seconds * 1e6) + " us";
  if (scale < 1) return Digits(seconds * 1e3) + " ms";
  return Digits(seconds) + " s";
}

void PrintHeading() { PrintColumns({"work", "goal: at most", "ours", "limit", "ratio", "", "peers"}); }

void PrintRow(const Row& row, const Outcome& outcome) { PrintColumns(ColumnsOf(row, outcome)); }

void PrintClosing(const Table& table) {
  const auto passed =
      std::count_if(table.begin(), table.end(), [](const auto& entry) { return Passes(entry.first, entry.second); });
  std::printf("%td of %zu pass\n", passed, table.size());
}

void WriteMarkdown(const std::string& name, const Table& table, const std::string& directory) {
  std::ofstream out(name);
  out << "Machine: " << MachineText(directory) << ".\n\n"
      << "| Work | Goal: at most | Ours | Limit | Ratio | | Peers |\n|---|---|--:|--:|--:|---|---|\n";
  std::string faster;
  for (const auto& [row, outcome] : table) {
    for (const std::string& column : ColumnsOf(row, outcome)) out << "| " << column << ' ';
    out << "|\n";
    std::vector<Result> others = outcome.holders;
    others.insert(others.end(), outcome.peers.begin(), outcome.peers.end());
    for (const Result& other : others) {
      const double times = outcome.ours.time / other.time;
      if (IsPeer(other) && times > 1)
        faster += "- " + row.Text() + ": " + other.label + ", " + Digits(times) + " times\n";
    }
  }
  out << "\nWhere a peer is faster:\n\n" << faster;
  Expect(out.flush().good(), name + ": cannot be written");
}
