#include "vfile/Meter.h"

#include <algorithm>

#include "hsys/Res.h"

namespace vfile {

void Meter::Start(int parts) {
  done_ = 0;
  told_ = 0;
  total_ = -1;
  toldAt_ = Clock::now();
  parts_ = parts;
  cancelled_ = false;
}

void Meter::Cancel() {
  cancelled_ = true;
  res_ = resNotDone;
}

bool Meter::Advance(std::int64_t bytes) {
  constexpr std::int64_t kStep = 1 << 20;
  constexpr std::chrono::milliseconds kWait{20};
  done_ += bytes;
  if (done_ - told_ < kStep && Clock::now() - toldAt_ < kWait) return true;
  // A file may grow while it is read.
  const std::int64_t total = total_ < 0 ? total_ : std::max(total_, done_);
  bool goesOn = false;
  try {
    goesOn = procedure_(done_, total);
  } catch (...) {
    Cancel();
    throw;
  }
  if (!goesOn) {
    Cancel();
    return false;
  }
  told_ = done_;
  toldAt_ = Clock::now();
  return true;
}

void Pass::Begin(Meter* meter, std::int64_t total, int parts) {
  if (meter->counting_) return;
  meter_ = meter;
  outer_ = meter->parts_ == 0;
  counts_ = parts == 1;
  if (outer_) meter->Start(parts);
  // A pass of nothing, as where old content goes out before new one is read, is no part.
  if (meter->total_ < 0 && total > 0) meter->total_ = total * meter->parts_;
  meter->counting_ = counts_;
}

void Pass::End() {
  if (counts_) meter_->counting_ = false;
  if (outer_) meter_->parts_ = 0;
}

}  // namespace vfile
