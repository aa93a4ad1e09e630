// Runs the contestants of a row, each in a process of its own, round by round in turn.
#pragma once

#include <string>
#include <vector>

#include "Rows.h"

/// How long a row may take.
struct Effort {
  std::size_t leastRounds;
  std::size_t mostRounds;
  std::size_t peerRounds;  ///< of those that take part for information
  double seconds;          ///< no round begins behind them, once the least are done
  bool processorTime;      ///< measure that, for a machine that has other work
};

/// What came out for one contestant.
struct Result {
  std::string label;
  bool exists = true;  ///< whether this build has it
  double time = 0;     ///< of one operation, in seconds: the median of the rounds
  double peak = 0;     ///< of the process, in MB
};

struct Outcome {
  Result ours;
  std::vector<Result> limits;
  std::vector<Result> peers;
  std::size_t rounds = 0;
};

/// Measures a row with files in the directory. Throws if a contestant fails or the contents that they leave differ.
Outcome RunRow(const Row& row, const std::string& directory, const Effort& effort);

/// What a contestant's process does: `arguments` are those that `RunRow` starts it with.
int ServeContestant(const std::vector<std::string>& arguments);
