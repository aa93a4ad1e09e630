// The table of what is measured, and against what.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Contents.h"

/// A contestant as it takes part in a row.
struct Contender {
  Contender(const char* contestant, std::int16_t kilobytes = 70, std::int32_t operations = 0)
      : name(contestant), cache(kilobytes), count(operations) {}
  /// The last step of its name.
  std::string Label() const { return name.substr(name.rfind('/') + 1); }

  std::string name;    ///< see Contestant.h
  std::int16_t cache;  ///< in kilobytes
  std::int32_t count;  ///< operations in a round; 0 for those of the row
};

/// What ours is held to.
struct Goal {
  double bound = 0;                     ///< in times of the limit, or in MB of memory
  std::string limit = {};               ///< what the limit is; empty for one of memory
  std::vector<Contender> holders = {};  ///< the fastest of them is the limit
};

struct Row {
  std::string Text() const;                               ///< the work with its size
  bool OfMemory() const { return goal.holders.empty(); }  ///< or of time

  std::string work;
  std::int64_t size;  ///< of the content, in bytes; 0 for none
  Contender ours;
  Goal goal;
  std::vector<Contender> peers = {};  ///< for information
  std::int32_t count = 1;             ///< operations in a round; a time is that of one
  ContentKind content = ContentKind::kText;
};

constexpr std::int64_t kMiB = 1 << 20;

const std::vector<Row>& TableRows();
