#include "vf/Losses.h"

#include "tcharvfile/Inside.h"
#include "vf/LossesOf.h"

namespace vf {

Losses LoadText(TCharVFile& text, const Name& name, TCharVFile::Encoding& encoding, std::uint32_t shareMode) {
  host::LossRecord record;
  vfile::Inside::LoadText(text, name, encoding, shareMode, &record);
  return LossesOf(record);
}

Losses SaveText(TCharVFile& text, const Name& name, bool overwrite, TCharVFile::Encoding encoding, bool withBom) {
  host::LossRecord record;
  vfile::Inside::SaveText(text, name, overwrite, encoding, withBom, &record);
  return LossesOf(record);
}

}  // namespace vf
