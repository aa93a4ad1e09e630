// recode: writes a text file in another form: ansi, utf8, utf16 or utf16be, the last three with a mark. Tells how many
// characters the forms could not keep.

#include <cstdio>
#include <exception>
#include <string>

#include "Losses.h"
#include "Texts.h"
#include "tcharvfile/TCharVFile.h"

namespace {

constexpr const char* kForms[] = {"ansi", "utf16", "utf16be", "utf8"};  // by the value of Encoding

TCharVFile::Encoding FormOf(const std::string& name) {
  for (int form = TCharVFile::encAnsi; form <= TCharVFile::encUtf8; ++form) {
    if (name == kForms[form]) return static_cast<TCharVFile::Encoding>(form);
  }
  throw std::runtime_error(name + ": no such form");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fputs("usage: recode ansi|utf8|utf16|utf16be IN OUT\n", stderr);
    return 2;
  }
  try {
    const TCharVFile::Encoding form = FormOf(argv[1]);
    TCharVFile text;
    TCharVFile::Encoding found;
    text.LoadText(NameOf(argv[2]), found, FILE_SHARE_READ);
    Check(text.res, argv[2]);
    TellLossOfLoading(text, argv[2], found);
    text.SaveText(NameOf(argv[3]), false, form, true);
    Check(text.res, argv[3]);
    TellLossOfSaving(text, argv[3], form, argv[3]);
    std::printf("%s: %s, %d units; %s: %s\n", argv[2], kForms[found], text.TCharLength(), argv[3], kForms[form]);
    return 0;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "recode: %s\n", failure.what());
    return 1;
  }
}
