#include "vf/Saving.h"

#include "hfile/HFile.h"
#include "host/Host.h"
#include "tcharvfile/Inside.h"
#include "vf/LossesOf.h"

using vfile::Inside;

namespace vf {
namespace {

/// A draft as a file of the interface, which does not close it.
class DraftFile : public HFile {
 public:
  explicit DraftFile(const host::Draft& draft) : HFile(draft.File()) {}
  ~DraftFile() override { hfile::Release(*this); }
};

/// `write` gets the draft with the file at its start, and leaves the result in its `res`.
template <typename Write>
void Save(VFile& file, const Name& name, Saving how, Write write) {
  if (!Inside::OnOwnerThread(file) || file.res != resDone) return;
  host::Draft draft(name, how.overwrite);
  if (draft.File() == INVALID_HANDLE_VALUE) {
    file.res = GetFileRes();
    return;
  }
  file.SetPos(0);
  write(draft);
  if (file.res == resDone && !draft.Complete(how.onDisk)) file.res = GetFileRes();
}

}  // namespace

void SaveComplete(VFile& file, const Name& name, Saving how) {
  Save(file, name, how, [&](const host::Draft& draft) { file.WriteToFile(draft.File(), MaxLen); });
}

Losses SaveTextComplete(TCharVFile& text, const Name& name, TCharVFile::Encoding encoding, bool withBom, Saving how) {
  host::LossRecord record;
  Save(Inside::FileOf(text), name, how, [&](const host::Draft& draft) {
    DraftFile file(draft);
    Inside::WriteText(text, file, encoding, withBom, &record);
  });
  return LossesOf(record);
}

}  // namespace vf
