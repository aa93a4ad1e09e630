#include "vf/Progress.h"

#include <utility>

#include "tcharvfile/Inside.h"
#include "vfile/Meter.h"

using vfile::Inside;

namespace vf {

Progress::Progress(VFile& file, Procedure procedure)
    : file_(file), meter_(std::make_unique<vfile::Meter>(std::move(procedure), file.res)) {
  meter_->before = std::exchange(Inside::MeterOf(file), meter_.get());
}

Progress::Progress(TCharVFile& text, Procedure procedure) : Progress(Inside::FileOf(text), std::move(procedure)) {}

Progress::~Progress() {
  // Not always the last that came is the first that goes.
  vfile::Meter** link = &Inside::MeterOf(file_);
  while (*link != meter_.get()) link = &(*link)->before;
  *link = meter_->before;
}

bool Progress::IsCancelled() const { return meter_->IsCancelled(); }

}  // namespace vf
