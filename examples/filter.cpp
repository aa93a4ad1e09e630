// filter: copies standard input to standard output and replaces in each line what a regular expression matches, as std::regex_replace
// does. The input may be any size up to 2^31-1 bytes; it goes through a file, so no more than the cache is in memory.

#include <algorithm>
#include <iostream>
#include <iterator>
#include <regex>
#include <string>

#include "System.h"
#include "Terminal.h"
#include "vf/Ranges.h"
#include "vf/Streams.h"

namespace {

/// False if the user has ended it.
bool Filter(const VFile& text, const std::regex& wanted, const std::string& replacement, Shown& shown) {
  const vf::Bytes bytes(text);
  std::ostreambuf_iterator<char> out(std::cout);
  for (auto line = bytes.begin(); line != bytes.end();) {
    const auto end = std::find(line, bytes.end(), '\n');
    out = std::regex_replace(out, line, end, wanted, replacement);
    line = end;
    if (line != bytes.end()) *out++ = *line++;
    if (!shown.Show(line.Position(), text.Length())) return false;
  }
  return true;
}

}  // namespace

int Run(const Arguments& arguments) {
  if (arguments.size() != 2) {
    std::cerr << "usage: filter EXPRESSION REPLACEMENT <IN >OUT\n";
    return 2;
  }
  try {
    std::ios::sync_with_stdio(false);
    const std::regex wanted(arguments[0].Utf8());
    VFile text;
    Shown shown(text, "reading");
    vf::OStream(text) << std::cin.rdbuf();
    vf::Check(text.res);
    shown.Next("filtering");
    const bool done = Filter(text, wanted, arguments[1].Utf8(), shown);
    return done && std::cout.flush() ? 0 : 1;
  } catch (const std::exception& failure) {
    std::cerr << "filter: " << failure.what() << '\n';
    return 1;
  }
}
