/// @file
/// Runtime support in one include: units and strings of them, halts, result codes, bounded strings, numbers, the clock.
///
/// Everything here may be called on any thread. Nothing allocates, and nothing fails but by a halt where the function
/// says so.
#pragma once

#include "hsys/Clock.h"
#include "hsys/Halt.h"
#include "hsys/Numbers.h"
#include "hsys/Res.h"
#include "hsys/Strings.h"
