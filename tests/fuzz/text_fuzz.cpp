// Text files of all bytes and in every form, loaded and saved.
//
// An input is a line of three numbers: of letters to put first, so that what follows lies across the border of a block, the
// form to save in, and 1 for a mark in it; then the bytes of the text, where "\" with two hexadecimal digits stands for a byte.
// The bytes are loaded behind each of the four marks.

#include <sstream>

#include "fuzz/Forms.h"
#include "support/Environment.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  static const support::Variable utf8("LC_ALL", "C.UTF-8");
  static const fuzz::Scratch scratch;
  const std::string input(reinterpret_cast<const char*>(data), size);
  int letters = 0;
  int form = 0;
  bool withMark = false;
  std::istringstream(input) >> letters >> form >> withMark;
  const TString rest = fuzz::Unescaped(input.substr(std::min(input.find('\n'), input.size() - 1) + 1), '\\', 2);
  const std::string bytes =
      std::string(support::Size(std::abs(letters % 3000)), 'a') + std::string(rest.begin(), rest.end());
  for (const std::string& mark : fuzz::kMarks) fuzz::CheckForm(scratch.path / "text", mark + bytes, form, withMark);
  return 0;
}
