// Files and texts on their way in and out of the library.

#include <optional>

#include "Ours.h"
#include "vf/Saving.h"

namespace {

using Form = TCharVFile::Encoding;

/// A new file or text with the content.
template <typename File>
Contestant Load(const Setting& setting) {
  UseSettings(setting);
  const auto file = std::make_shared<std::optional<File>>();
  const auto prepare = [=] {
    file->reset();
    file->emplace();
  };
  return {[=] { LoadContent(**file, setting); }, [=] { return SumOf(**file); }, prepare};
}

template <typename File, void (*kSave)(File& file, const TString& name)>
Contestant Save(const Setting& setting) {
  const auto file = Loaded<File>(setting);
  const auto target = std::make_shared<Target>(setting.directory);
  const auto run = [=] {
    kSave(*file, Units(target->Name()));
    Expect(file->res == resDone, "save");
  };
  return {run, [=] { return SumOfFile(target->Name()); }, [=] { target->Remove(); }};
}

void SaveBytes(VFile& file, const TString& name) { file.Save(name.c_str(), true); }

void SaveWhole(VFile& file, const TString& name) { vf::SaveComplete(file, name); }

template <Form kForm>
void SaveAs(TCharVFile& text, const TString& name) {
  text.SaveText(name, true, kForm, true);
}

/// A load of UTF-8 and a save in every form, as one round.
Contestant AllForms(const Setting& setting) {
  const auto target = std::make_shared<Target>(setting.directory);
  const auto run = [=] {
    const auto text = Loaded<TCharVFile>(setting);
    for (const Form form : {Form::encUtf16, Form::encUtf16BE, Form::encAnsi, Form::encUtf8}) {
      text->SaveText(Units(target->Name()), true, form, true);
      Expect(text->res == resDone, "save");
    }
  };
  const auto check = [=] {
    Expect(SumOfFile(target->Name()) == SumOfFile(setting.content), "the text that was saved");
    return 0;
  };
  return {run, check};
}

}  // namespace

std::vector<ContestantEntry> TransferContestants() {
  return {
      {"load/bytes", Load<VFile>},
      {"load/text", Load<TCharVFile>},
      {"save/bytes", Save<VFile, SaveBytes>},
      {"save/complete", Save<VFile, SaveWhole>},
      {"save/utf8", Save<TCharVFile, SaveAs<Form::encUtf8>>},
      {"save/utf16", Save<TCharVFile, SaveAs<Form::encUtf16>>},
      {"save/utf16be", Save<TCharVFile, SaveAs<Form::encUtf16BE>>},
      {"load/all forms", AllForms},
  };
}
