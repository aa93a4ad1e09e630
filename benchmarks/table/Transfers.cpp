// Files and texts on their way in and out of the library.

#include <optional>

#include "Ours.h"

namespace {

using Form = TCharVFile::Encoding;

/// A new file or text with the content.
template <typename File>
class Load : public Contestant {
 public:
  explicit Load(const Setting& setting) : setting_(setting) { UseSettings(setting); }
  void Prepare() override {
    file_.reset();
    file_.emplace();
  }
  void Run() override { LoadContent(*file_, setting_); }
  std::uint64_t Check() override { return SumOf(*file_); }

 private:
  const Setting setting_;
  std::optional<File> file_;
};

/// Saves by `kSave` to a new name.
template <typename File, void (*kSave)(File& file, const TString& name)>
class Save : public Contestant {
 public:
  explicit Save(const Setting& setting) : target_(setting.directory) {
    UseSettings(setting);
    file_.emplace();
    LoadContent(*file_, setting);
  }
  void Prepare() override { target_.Remove(); }
  void Run() override {
    kSave(*file_, Units(target_.Name()));
    Expect(file_->res == resDone, "save");
  }
  std::uint64_t Check() override { return SumOf(target_.Name()); }

 private:
  const Target target_;
  std::optional<File> file_;
};

void SaveBytes(VFile& file, const TString& name) { file.Save(name.c_str(), true); }

template <Form kForm>
void SaveAs(TCharVFile& text, const TString& name) {
  text.SaveText(name, true, kForm, true);
}

/// A load of UTF-8 and a save in every form, as one round.
class AllForms : public Contestant {
 public:
  explicit AllForms(const Setting& setting) : setting_(setting), target_(setting.directory) { UseSettings(setting); }
  void Run() override {
    TCharVFile text;
    LoadContent(text, setting_);
    for (const Form form : {Form::encUtf16, Form::encUtf16BE, Form::encAnsi, Form::encUtf8}) {
      text.SaveText(Units(target_.Name()), true, form, true);
      Expect(text.res == resDone, "save");
    }
  }
  std::uint64_t Check() override {
    Expect(SumOf(target_.Name()) == SumOf(setting_.content), "the text that was saved");
    return 0;
  }

 private:
  const Setting setting_;
  const Target target_;
};

}  // namespace

std::vector<ContestantEntry> TransferContestants() {
  return {{"load/bytes", Make<Load<VFile>>},
          {"load/text", Make<Load<TCharVFile>>},
          {"save/bytes", Make<Save<VFile, SaveBytes>>},
          {"save/utf8", Make<Save<TCharVFile, SaveAs<Form::encUtf8>>>},
          {"save/utf16", Make<Save<TCharVFile, SaveAs<Form::encUtf16>>>},
          {"save/utf16be", Make<Save<TCharVFile, SaveAs<Form::encUtf16BE>>>},
          {"load/all forms", Make<AllForms>}};
}
