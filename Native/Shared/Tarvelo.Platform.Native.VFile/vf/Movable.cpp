#include "vf/Movable.h"

#include "tcharvfile/Inside.h"

namespace vf {

void ExchangeAll(VFile& left, VFile& right) { vfile::Inside::ExchangeAll(left, right); }

void ExchangeAll(TCharVFile& left, TCharVFile& right) {
  ExchangeAll(vfile::Inside::FileOf(left), vfile::Inside::FileOf(right));
}

}  // namespace vf
