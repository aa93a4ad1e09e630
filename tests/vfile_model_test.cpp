#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <random>
#include <vector>

#include "fuzz/Machine.h"
#include "support/Halts.h"

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
      const int count = Below(Below(3) == 0 ? 3000 : 20);
      const std::string counts[] = {"-1", "max", std::to_string(count + 1), "0"};
      const std::string del = Below(5) == 0 ? "same" : Place(Below(3) == 0 ? length : std::min(length, 9));
      line << Place(length) << ' ' << del << ' ' << (Below(9) == 0 ? counts[Below(4)] : std::to_string(count)) << ' ';
      line << (operation == 't' ? Below(3) : count) << ' ' << Place(length);
    } else {
      line << (Below(3) == 0 ? std::to_string(Below(9) - 1) : Place(length)) << ' ' << Below(Below(4) == 0 ? 4000 : 8);
    }
    line << ' ' << Text() << ' ' << Text();
    return line.str();
  }

  std::mt19937 random;
};

TEST(Model, FilesAreStringsUnderAllOperations) {
  const std::string operations = "bbbcchhppqqtttttssrrxxnnwiiieffgllkdmmouu=";
  const char* given = std::getenv("VFILE_SEED");
  const auto seed = given != nullptr ? static_cast<unsigned>(std::atoll(given)) : std::random_device()();
  std::fprintf(stderr, "VFILE_SEED=%u\n", seed);
  const support::ThrowHalts throwing;
  Writer writer{std::mt19937(seed)};
  fuzz::Machine machine;
  for (int step = 0; step < 20000 && !HasFailure(); ++step) {
    const int file = writer.Below(3);
    const std::string line = writer.Line(operations[fuzz::Size(writer.Below(fuzz::Count(operations.size())))], file,
                                         machine.pairs[file].Length());
    EXPECT_NO_THROW(machine.Step(line)) << "step " << step << ": " << line;
    // A failure stands for a step or two.
    if (machine.pair->res != resDone && writer.Below(2) == 0) machine.Rewind();
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
