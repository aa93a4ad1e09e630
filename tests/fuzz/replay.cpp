// Runs a fuzz target over the files of a directory, without a fuzzer.

#include <cstdio>
#include <fstream>
#include <iterator>

#include "fuzz/Fuzz.h"

int main(int argc, char** argv) {
  int count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::absolute(argc > 1 ? argv[1] : "."))) {
    std::ifstream file(entry.path(), std::ios::binary);
    const std::string input(std::istreambuf_iterator<char>(file), {});
    std::printf("%d: %s\n", ++count, entry.path().string().c_str());
    std::fflush(stdout);
    LLVMFuzzerTestOneInput(reinterpret_cast<const unsigned char*>(input.data()), input.size());
  }
  return count > 0 ? 0 : 1;
}
