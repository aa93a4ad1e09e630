#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <random>

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
    for (int count = 1 + Below(4); count > 0; --count) text += "aabA/\\"[Below(6)];
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
  const std::string operations = "bbbcchhppqqtttttssrrxxnweffglkdmmouu=";
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

}  // namespace
