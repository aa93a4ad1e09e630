// What the examples need of the system. A folder of its name has the other half, `main` included.
#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <vector>

#include "host/Unit.h"

/// The words of the command line behind the program's name, as names (`NameOf`): made of bytes, or the units that the system has.
/// `NativeNameOf` gives the UTF-8 of one.
using Arguments = std::vector<TString>;

/// The program, which gives its exit status. Standard output takes bytes as they are, a terminal takes UTF-8, and a limit on the
/// size of files is a failure of what meets it.
int Run(const Arguments& arguments);

/// Ends the program without a further step of it.
[[noreturn]] void EndAtOnce(int status);

/// A name as the standard library has it, and back.
std::filesystem::path PathOf(const TString& name);
TString NameOfPath(const std::filesystem::path& path);

/// Whether the name is one that leads to another.
bool IsLink(const TString& name);

bool IsTerminal(std::FILE* stream);

std::uint32_t ProcessId();

/// The bytes of this process's swap file; nothing where there is none, or the system does not tell.
std::optional<std::uintmax_t> SwapFileSize();

/// The most memory that this process has had, in bytes; nothing where the system does not tell.
std::optional<std::uintmax_t> PeakMemory();
