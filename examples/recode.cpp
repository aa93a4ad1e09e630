// recode: writes a text file in another form: ansi, utf8, utf16 or utf16be, the last three with a mark. Tells how many
// characters the forms could not keep.

#include <cstdio>
#include <exception>
#include <string>

#include "Losses.h"
#include "System.h"
#include "Texts.h"
#include "tcharvfile/TCharVFile.h"

namespace {

constexpr const char* kForms[] = {"ansi", "utf16", "utf16be", "utf8"};  // by the value of Encoding

TCharVFile::Encoding FormOf(const TString& argument) {
  const std::string name = NativeNameOf(argument);
  for (int form = TCharVFile::encAnsi; form <= TCharVFile::encUtf8; ++form) {
    if (name == kForms[form]) return static_cast<TCharVFile::Encoding>(form);
  }
  throw std::runtime_error(name + ": no such form");
}

}  // namespace

int Run(const Arguments& arguments) {
  if (arguments.size() != 3) {
    std::fputs("usage: recode ansi|utf8|utf16|utf16be IN OUT\n", stderr);
    return 2;
  }
  try {
    const TCharVFile::Encoding form = FormOf(arguments[0]);
    const TString& in = arguments[1];
    const TString& out = arguments[2];
    TCharVFile text;
    TCharVFile::Encoding found;
    text.LoadText(in, found, FILE_SHARE_READ);
    Check(text.res, in);
    TellLossOfLoading(text, in, found);
    text.SaveText(out, false, form, true);
    Check(text.res, out);
    TellLossOfSaving(text, out, form, out);
    std::printf("%s: %s, %d units; %s: %s\n", NativeNameOf(in).c_str(), kForms[found], text.TCharLength(),
                NativeNameOf(out).c_str(), kForms[form]);
    return 0;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "recode: %s\n", failure.what());
    return 1;
  }
}
