// The table of what is measured, and against what.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Contents.h"

/// A contestant as it takes part in a row.
struct Contender {
  std::string name;         ///< see Contestant.h
  std::string label;        ///< in the table
  std::int16_t cache = 70;  ///< kilobytes
  std::int32_t count = 0;   ///< operations in a round; 0 for those of the row
};

enum class Measure { kTime, kMemory };

struct Row {
  std::string work;
  double goal = 0;             ///< bound of ours, in times of the limit or, of memory, in MB
  std::string limitName = {};  ///< what the limit is
  Contender ours;
  std::vector<Contender> limits = {};  ///< the fastest of them is the limit
  std::vector<Contender> peers = {};   ///< for information
  ContentKind content = ContentKind::kText;
  std::int64_t size = 0;   ///< of the content, in bytes
  std::int32_t count = 1;  ///< operations in a round; a time is that of one
  Measure measure = Measure::kTime;
};

constexpr std::int64_t kMiB = 1 << 20;
constexpr std::int16_t kLargeCache = 32767;

std::vector<Row> TableRows();
