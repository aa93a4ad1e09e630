// vfile_table: measures the library against what the machine allows and against other ways to do the same work.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <optional>
#include <string>
#include <unistd.h>
#include <vector>

#include "Measuring.h"
#include "Pictures.h"
#include "Report.h"
#include "Rows.h"
#include "Runner.h"

namespace {

constexpr char kUsage[] =
    "vfile_table [--quick] [--cpu] [--only TEXT] [--markdown FILE] [--pictures DIRECTORY]\n"
    "Measures, and prints a table. --quick takes fewer rounds and leaves out contents of more than 128 MiB, --only "
    "takes\n"
    "the rows in whose work the text occurs. Files are made in the directory that TMPDIR names, else in /var/tmp.\n";

/// Larger contents are left out of a quick run.
constexpr std::int64_t kQuickSize = 128 * kMiB;

struct Options {
  bool quick = false;
  bool processorTime = false;
  std::string only;
  std::string markdown;
  std::string pictures;
};

Options OptionsOf(const std::vector<std::string>& arguments) {
  Options options;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& word = arguments[i];
    bool* flag = word == "--quick" ? &options.quick : word == "--cpu" ? &options.processorTime : nullptr;
    std::string* text = word == "--only"       ? &options.only
                        : word == "--markdown" ? &options.markdown
                        : word == "--pictures" ? &options.pictures
                                               : nullptr;
    Expect(flag != nullptr || (text != nullptr && i + 1 < arguments.size()), kUsage);
    if (flag != nullptr) *flag = true;
    if (text != nullptr) *text = arguments[++i];
  }
  return options;
}

/// A directory for the time of the program.
class Scratch {
 public:
  Scratch() {
    const char* parent = std::getenv("TMPDIR");
    name_ = std::string(parent != nullptr ? parent : "/var/tmp") + "/vfile-table-XXXXXX";
    Expect(mkdtemp(name_.data()) != nullptr, name_ + ": cannot be made");
  }
  ~Scratch() {
    std::error_code ignored;
    std::filesystem::remove_all(name_, ignored);
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  const std::string& Name() const { return name_; }

 private:
  std::string name_;
};

Effort EffortFor(const Row& row, const Options& options) {
  if (row.measure == Measure::kMemory) return {1, 1, 0, 0, false};
  if (options.quick) return {2, 5, 1, 0.7, options.processorTime};
  if (row.size > kQuickSize) return {3, 9, 1, 4, options.processorTime};
  return {5, 15, 3, 4, options.processorTime};
}

std::vector<Row> RowsFor(const Options& options) {
  std::vector<Row> rows;
  std::size_t large = 0;
  for (const Row& row : TableRows()) {
    if (row.work.find(options.only) == std::string::npos) continue;
    if (options.quick && row.size > kQuickSize) {
      ++large;
    } else {
      rows.push_back(row);
    }
  }
  if (large > 0) std::printf("%zu rows of more than 128 MiB are left out.\n", large);
  return rows;
}

/// Tells on the terminal what is going on.
void ShowProgress(const std::string& text) {
  if (isatty(STDERR_FILENO) != 0) std::fprintf(stderr, "\r\033[K%s", text.c_str());
}

void MeasureAll(const Options& options) {
  const Scratch scratch;
  std::vector<std::pair<Row, Outcome>> table;
  const std::vector<Row> rows = RowsFor(options);
  PrintHeading();
  for (const Row& row : rows) {
    ShowProgress("[" + std::to_string(table.size() + 1) + "/" + std::to_string(rows.size()) + "] " + row.work);
    const Outcome outcome = RunRow(row, scratch.Name(), EffortFor(row, options));
    ShowProgress("");
    table.emplace_back(row, outcome);
    PrintRow(row, outcome);
  }
  PrintClosing(table);
  if (!options.markdown.empty()) WriteMarkdown(options.markdown, table, scratch.Name());
  if (!options.pictures.empty()) DrawPictures(options.pictures, scratch.Name(), options.quick, ShowProgress);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    if (!arguments.empty() && arguments[0] == "--contestant") {
      arguments.erase(arguments.begin());
      return ServeContestant(arguments);
    }
    MeasureAll(OptionsOf(arguments));
    return 0;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
  }
}
