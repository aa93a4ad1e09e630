/// @file
/// The halt: the end of the program when a contract or an invariant is broken.
///
/// What a caller can cause in ordinary use is a value in `res` (hsys/Res.h). What only broken code can cause, and the
/// exhaustion of the virtual memory's resources, halts: a message goes to one process-wide procedure, whose default shows
/// it to the user and calls `abort`. An application may install a procedure of its own, which may log, throw, or return.
/// Behind a halt that threw or returned, the operation does nothing further; a file has its old or its new content, and can be
/// read and saved as far as its pages can be had, emptied and destroyed.
///
/// A disk that is full under the swap file loses nothing by itself: a procedure that throws leads out of the operation, and
/// under a raised cache bound (`VFile::SetMaxCacheSize`) all files of the thread can then be read and saved.
///
/// Thread: a halt comes on the thread that met the failure. The procedure is read and set without a lock: install it
/// while no other thread can halt. A halt allocates nothing.
#pragma once

#include <cstdint>

#include "host/Export.h"
#include "host/Unit.h"

/// A halt procedure. `message` ends in a 0 unit and is valid only during the call.
using HaltProc = void (*)(const TChar* message);

/// Hands `msg` itself to the halt procedure.
VFILE_API void Halt(const TChar* msg);
/// Halts with "<module>: <msg>". This and the forms below cut a text of more than 255 units.
VFILE_API void Halt(const TChar* module, const TChar* msg);
/// Halts with "<module>, <proc>():", a line feed and `msg`: a named invariant of the library.
VFILE_API void Halt(const TChar* module, const TChar* proc, const TChar* msg);
/// Halts with "<module>, line <line>:", a line feed and "Assertion failure". `module` is the word of the source module,
/// `line` the source line of the assertion.
VFILE_API void HaltA(const TChar* module, std::int32_t line);
/// Halts with "<module>, <proc>(), line <line>:", a line feed and "Assertion failure".
VFILE_API void HaltA(const TChar* module, const TChar* proc, std::int32_t line);
/// Halts with "Fatal Error <code> in module <module> ": a failed range check of a conversion.
VFILE_API void Fatal(const TChar* module, std::int32_t code);

/// Makes `proc`, which must not be null, the halt procedure in place of whatever was. There is no chain.
VFILE_API void InstallHaltProc(HaltProc proc);
/// Makes the default the halt procedure again.
VFILE_API void DeinstallHaltProc();
