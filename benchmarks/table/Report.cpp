#include "Report.h"

#include <cmath>
#include <cstdio>
#include <fstream>
#include <sys/utsname.h>
#include <thread>
#include <unistd.h>

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

std::string GoalText(const Row& row) {
  if (row.measure == Measure::kMemory) return MemoryText(row.goal);
  if (row.goal < 0.2) return "1/" + Format("%.0f", 1 / row.goal) + " of " + row.limitName;
  return Format("%.2f", row.goal) + " x " + row.limitName;
}

std::string OursText(const Row& row, const Outcome& outcome) {
  return row.measure == Measure::kMemory ? MemoryText(outcome.ours.peak) : TimeText(outcome.ours.time);
}

std::string LimitText(const Row& row, const Outcome& outcome) {
  const Result* limit = LimitOf(outcome);
  return limit == nullptr ? MemoryText(row.goal) : TimeText(limit->time);
}

/// The peers, and of a limit that several could be all of them.
std::string PeersText(const Outcome& outcome) {
  std::string text;
  const auto append = [&](const Result& result) {
    text += text.empty() ? "" : ", ";
    text += result.label + " " + (result.exists ? TimeText(result.time) : "not installed");
  };
  if (outcome.limits.size() > 1) {
    for (const Result& result : outcome.limits) append(result);
  }
  for (const Result& result : outcome.peers) append(result);
  return text;
}

/// A ratio below 0.2 has its goal as a fraction.
std::string RatioText(const Row& row, const Outcome& outcome) {
  const double ratio = RatioOf(row, outcome);
  return row.goal < 0.2 ? "1/" + Format("%.1f", 1 / ratio) : Format("%.2f", ratio);
}

std::string FirstLineWith(const char* file, const std::string& key) {
  std::ifstream lines(file);
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind(key, 0) != 0) continue;
    const std::size_t value = line.find_first_not_of(" \t:", key.size());
    return value == std::string::npos ? "" : line.substr(value);
  }
  return "unknown";
}

/// The type of the file system that the directory is on.
std::string FileSystemOf(const std::string& directory) {
  std::ifstream mounts("/proc/mounts");
  std::string best;
  std::string type = "unknown";
  for (std::string device, place, kind, rest; mounts >> device >> place >> kind && std::getline(mounts, rest);) {
    const std::string prefix = place == "/" ? place : place + "/";
    if ((directory + "/").rfind(prefix, 0) != 0 || place.size() < best.size()) continue;
    best = place;
    type = kind;
  }
  return type;
}

}  // namespace

const Result* LimitOf(const Outcome& outcome) {
  const Result* least = nullptr;
  for (const Result& limit : outcome.limits) {
    if (limit.exists && (least == nullptr || limit.time < least->time)) least = &limit;
  }
  return least;
}

double RatioOf(const Row& row, const Outcome& outcome) {
  return row.measure == Measure::kMemory ? outcome.ours.peak / row.goal : outcome.ours.time / LimitOf(outcome)->time;
}

bool Passes(const Row& row, const Outcome& outcome) {
  return RatioOf(row, outcome) <= (row.measure == Measure::kMemory ? 1 : row.goal);
}

std::string TimeText(double seconds) {
  if (seconds < 1e-6) return Digits(seconds * 1e9) + " ns";
  if (seconds < 1e-3) return Digits(seconds * 1e6) + " us";
  if (seconds < 1) return Digits(seconds * 1e3) + " ms";
  return Digits(seconds) + " s";
}

namespace {

void PrintColumns(const std::string& work, const std::string& goal, const std::string& ours, const std::string& limit,
                  const std::string& ratio, const std::string& verdict, const std::string& peers) {
  std::printf("%-53s %-32s %8s %8s %7s  %-5s %s\n", work.c_str(), goal.c_str(), ours.c_str(), limit.c_str(),
              ratio.c_str(), verdict.c_str(), peers.c_str());
  std::fflush(stdout);
}

}  // namespace

void PrintHeading() { PrintColumns("work", "goal: at most", "ours", "limit", "ratio", "", "peers"); }

void PrintRow(const Row& row, const Outcome& outcome) {
  PrintColumns(row.work, GoalText(row), OursText(row, outcome), LimitText(row, outcome), RatioText(row, outcome),
               Passes(row, outcome) ? "pass" : "SHORT", PeersText(outcome));
}

void PrintClosing(const std::vector<std::pair<Row, Outcome>>& table) {
  std::size_t passed = 0;
  for (const auto& [row, outcome] : table) passed += Passes(row, outcome) ? 1 : 0;
  std::printf("%zu of %zu pass\n", passed, table.size());
}

void WriteMarkdown(const std::string& name, const std::vector<std::pair<Row, Outcome>>& table,
                   const std::string& directory) {
  std::ofstream out(name);
  utsname system = {};
  uname(&system);
  out << "Machine: " << FirstLineWith("/proc/cpuinfo", "model name") << ", " << std::thread::hardware_concurrency()
      << " processors, " << std::lround(std::stod(FirstLineWith("/proc/meminfo", "MemTotal")) / 1e6) << " GB, "
      << system.sysname << " " << system.release << ", swap files on " << FileSystemOf(directory) << "; compiled by "
#ifdef __clang__
      << "clang++ "
#else
      << "g++ "
#endif
      << __VERSION__
      << ".\n\n| Work | Goal: at most | Ours | Limit | Ratio | | Peers |\n|---|---|--:|--:|--:|---|---|\n";
  for (const auto& [row, outcome] : table) {
    out << "| " << row.work << " | " << GoalText(row) << " | " << OursText(row, outcome) << " | "
        << LimitText(row, outcome) << " | " << RatioText(row, outcome) << " | "
        << (Passes(row, outcome) ? "pass" : "short") << " | " << PeersText(outcome) << " |\n";
  }
  out << "\nWhere a peer is faster:\n\n";
  for (const auto& [row, outcome] : table) {
    for (const Result& peer : outcome.peers) {
      if (!peer.exists || peer.time >= outcome.ours.time) continue;
      out << "- " << row.work << ": " << peer.label << ", " << Format("%.1f", outcome.ours.time / peer.time)
          << " times\n";
    }
  }
  Expect(out.flush().good(), name + ": cannot be written");
}
