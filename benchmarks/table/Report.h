// The table, on the terminal and as Markdown.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "Rows.h"
#include "Runner.h"

/// The fastest of the limit's contestants that this build has, or null where the limit is a number.
const Result* LimitOf(const Outcome& outcome);
/// Ours in times of the limit or, of memory, in times of the goal.
double RatioOf(const Row& row, const Outcome& outcome);
bool Passes(const Row& row, const Outcome& outcome);

/// A time as a person reads it.
std::string TimeText(double seconds);

void PrintHeading();
void PrintRow(const Row& row, const Outcome& outcome);
void PrintClosing(const std::vector<std::pair<Row, Outcome>>& table);

/// Writes the table, the machine, and the rows in which a peer is faster.
void WriteMarkdown(const std::string& name, const std::vector<std::pair<Row, Outcome>>& table,
                   const std::string& directory);
