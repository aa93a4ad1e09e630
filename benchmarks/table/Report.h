// The table, on the terminal and as Markdown.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "Rows.h"
#include "Runner.h"

using Table = std::vector<std::pair<Row, Outcome>>;

/// A time as a person reads it, in the unit that fits `scale`, or the time itself.
std::string TimeText(double seconds, double scale = 0);

void PrintHeading();
void PrintRow(const Row& row, const Outcome& outcome);
void PrintClosing(const Table& table);

/// Writes the machine, whose files are in the directory, the table, and the rows in which a peer is faster.
void WriteMarkdown(const std::string& name, const Table& table, const std::string& directory);
