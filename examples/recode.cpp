// recode: writes a text file in another form: ansi, utf8, utf16 or utf16be, the last three with a mark. Tells how many
// characters the forms could not keep.

#include <cstdio>
#include <exception>

#include "Forms.h"
#include "System.h"
#include "Terminal.h"
#include "vf/Saving.h"

int Run(const Arguments& arguments) {
  TCharVFile::Encoding form;
  if (arguments.size() != 3 || !GetForm(arguments[0].Utf8(), form)) {
    std::fputs("usage: recode ansi|utf8|utf16|utf16be IN OUT\n", stderr);
    return 2;
  }
  try {
    const vf::Name& in = arguments[1];
    const vf::Name& out = arguments[2];
    TCharVFile text;
    TCharVFile::Encoding found;
    vf::Losses lostIn;
    vf::Losses lostOut;
    {
      Shown shown(text, "loading");
      lostIn = vf::LoadText(text, in, found, FILE_SHARE_READ);
      vf::Check(text.res, in);
      shown.Next("saving");
      lostOut = vf::SaveTextComplete(text, out, form, true);
      vf::Check(text.res, out);
    }
    Tell(lostIn, in);
    Tell(lostOut, out);
    std::printf("%s: %s, %d units; %s: %s\n", in.Utf8().c_str(), kForms[found].data(), text.TCharLength(),
                out.Utf8().c_str(), kForms[form].data());
    return 0;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "recode: %s\n", failure.what());
    return 1;
  }
}
