#include <gtest/gtest.h>
#include <numeric>
#include <random>
#include <vector>

#include "fuzz/Machine.h"
#include "support/Halts.h"
#include "support/Seed.h"

namespace {

/// Writes lines of a script.
struct Writer {
  int Below(int bound) { return static_cast<int>(random() % static_cast<unsigned>(bound)); }
  std::string Place(int end) {
    const char* special[] = {"-1", "max", "end", "0", "1024", "2048"};
    return Below(3) == 0 ? special[Below(6)] : std::to_string(Below(end + 1));
  }
  std::string Text() {
    std::string text;
    for (int count = 1 + Below(4); count > 0; --count) text += "aabA/\\_"[Below(7)];
    return text;
  }
  std::string Line(char operation, int file, int length) {
    std::ostringstream line;
    line << operation << ' ' << file << ' ';
    if (fuzz::Machine::IsOneOf("bchpqt", operation)) {
      const int count = Below(Below(3) == 0 ? most : 20);
      const std::string counts[] = {"-1", "max", std::to_string(count + 1), "0"};
      const std::string some =
          most < 3000 ? std::to_string(Below(most)) : Place(Below(3) == 0 ? length : std::min(length, 9));
      const std::string del = Below(5) == 0 ? "same" : some;
      line << Place(length) << ' ' << del << ' ' << (Below(9) == 0 ? counts[Below(4)] : std::to_string(count)) << ' ';
      line << (operation == 't' ? Below(3) : count) << ' ' << Place(length);
    } else if (operation == 'v') {
      line << Place(length) << ' ' << Below(8) << ' ' << Below(length + 1) << ' ' << Below(60) << ' ' << Below(60);
    } else {
      line << (Below(3) == 0 ? std::to_string(Below(9) - 1) : Place(length)) << ' ' << Below(Below(4) == 0 ? 4000 : 8);
    }
    line << ' ' << Text() << ' ' << Text();
    return line.str();
  }

  std::mt19937 random{support::Seed()};
  int most = 3000;  // bytes that go in or out, but for all that there are
};

/// Runs lines of these operations; each begins with a move if `moves`.
void Drive(fuzz::Machine& machine, Writer& writer, const std::string& operations, int steps, bool moves) {
  const support::ThrowHalts throwing;
  for (int step = 0; step < steps && !testing::Test::HasFailure(); ++step) {
    const int file = writer.Below(3);
    const int length = machine.pairs[file].Length();
    const char operation = operations[fuzz::Size(writer.Below(fuzz::Count(operations.size())))];
    const std::string line = writer.Line(operation, file, length);
    const std::string move = "s " + std::to_string(file) + ' ' + std::to_string(writer.Below(length + 1));
    if (moves) machine.Step(move);
    EXPECT_NO_THROW(machine.Step(line)) << "step " << step << ": " << line;
    // A failure stands for a step or two.
    if (machine.pair->res != resDone && writer.Below(2) == 0) machine.Rewind();
  }
}

TEST(Model, FilesAreStringsUnderAllOperations) {
  Writer writer;
  fuzz::Machine machine;
  Drive(machine, writer, "bbbcchhpqqtttttssrrxxnnwiiieffvvgllkdmmouu=", 20000, false);
  VFile::SetMaxCacheSize(70);
}

// The index comes with the first far move in 192 blocks and goes with those below 96.
TEST(Model, FilesOfManyBlocksAreStringsToo) {
  VFile::SetMaxCacheSize(30000);
  Writer writer;
  writer.most = 60;
  fuzz::Machine machine;
  machine.most = 200000;
  const fuzz::Pair& pair = machine.pairs[0];
  const auto step = [&](const std::string& line) { machine.Step(line); };
  for (const int blocks : {20000, 99, 103, 300, 106, 700, 2000, 120}) {
    for (int left = blocks; left > 0; left -= 1000) step("y 0 " + std::to_string(std::min(left, 1000)) + " ab");
    step("s 0 0 0");
    const support::Lengths lens = support::Lens(pair.file);
    step("s 0 " + std::to_string(std::accumulate(lens.begin(), lens.begin() + std::ssize(lens) / 2, 0)) + " 0");
    EXPECT_EQ(pair.file.index != nullptr, pair.file.blockCount >= 192) << pair.file.blockCount;
    Drive(machine, writer, "bbbbhpqttttrxnweivlu=y", 200, true);
    step("s 0 0 0");
    step("b 0 0 " + std::to_string(pair.Length() / 3 * 2));
    while (pair.file.blockCount > 99) {
      const int del = pair.Length() / (3 + writer.Below(30)) + 1;
      step("b 0 " + std::to_string(writer.Below(pair.Length() - del + 1)) + " " + std::to_string(del));
    }
    Drive(machine, writer, "bbnp", 60, true);
    step("s 0 0 0");
    while (pair.file.blockCount >= 96) step("b 0 0 1");
    EXPECT_EQ(pair.file.index, nullptr);
  }
  VFile::SetMaxCacheSize(70);
}

// Every text of up to five of four bytes, cut at every place; then lines of several blocks.
TEST(Model, LinesAreFoundInEveryShortTextAndInLongOnes) {
  const support::ThrowHalts throwing;
  const auto walk = [](const std::vector<std::string>& blocks, const std::vector<std::string>& places) {
    fuzz::Machine machine;
    for (const std::string& block : blocks) {
      const std::string size = std::to_string(block.size());
      machine.Step("p 0 end 0 " + size + " " + size + " " + block);
    }
    for (const std::string& at : places)
      EXPECT_NO_THROW(machine.Step("l 0 " + at)) << testing::PrintToString(blocks) << at;
    for (int i = 0; i < 7; ++i) EXPECT_NO_THROW(machine.Step("i 0")) << testing::PrintToString(blocks);
  };
  for (std::size_t n = 1; n <= 5; ++n) {
    for (int i = 0; i < 1 << (2 * n); ++i) {
      std::string text;
      for (std::size_t k = 0; k < n; ++k) text += "a_\\/"[i >> (2 * k) & 3];
      for (std::size_t cut = 0; cut < n; ++cut) {
        walk({text.substr(0, cut), text.substr(cut)}, {"-1", "0", "1", "2", "3", "4", "5", "6", "max"});
      }
    }
  }
  const std::string blanks(1024, '_');
  walk({blanks, blanks, std::string(1024, 'x'), std::string(500, 'x') + "\\", "/" + blanks.substr(9), blanks},
       {"1", "2000", "3100", "3571", "3572", "3573", "3574", "4602", "end"});
}

}  // namespace
