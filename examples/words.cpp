// words: prints the ten words that a file has most often. What counts them is written for any std::istream, such as one over a file.

#include <algorithm>
#include <iostream>
#include <istream>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "System.h"
#include "Terminal.h"
#include "vf/Streams.h"

namespace {

constexpr std::size_t kShown = 10;

using Counted = std::vector<std::pair<std::string, int>>;

/// The most frequent words, those that are equally frequent in their order.
Counted MostFrequent(std::istream& in) {
  std::map<std::string, int> counts;
  for (std::string word; in >> word;) ++counts[word];
  Counted words(counts.begin(), counts.end());
  std::stable_sort(words.begin(), words.end(), [](const auto& a, const auto& b) { return a.second > b.second; });
  words.resize(std::min(words.size(), kShown));
  return words;
}

}  // namespace

int Run(const Arguments& arguments) {
  if (arguments.size() != 1) {
    std::cerr << "usage: words FILE\n";
    return 2;
  }
  try {
    VFile file;
    {
      const Shown shown(file, "loading");
      file.Load(arguments[0], FILE_SHARE_READ);
      vf::Check(file.res, arguments[0]);
    }
    vf::IStream in(file);
    for (const auto& [word, count] : MostFrequent(in)) std::cout << count << ' ' << word << '\n';
    return std::cout.flush() && !in.bad() ? 0 : 1;
  } catch (const std::exception& failure) {
    std::cerr << "words: " << failure.what() << '\n';
    return 1;
  }
}
