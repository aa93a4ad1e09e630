/// @file
/// What a record of a conversion tells its caller.
#pragma once

#include "host/LossRecord.h"
#include "vf/Losses.h"

namespace vf {

inline Losses LossesOf(const host::LossRecord& record) { return {record.replaced, record.leftOut, record.first}; }

}  // namespace vf
