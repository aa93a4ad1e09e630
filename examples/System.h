// What the examples need of the system. A folder of its name has the other half, `main` included.
#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <vector>

#include "vf/Names.h"

/// The words of the command line behind the program's name: made of bytes, or the units that the system has.
using Arguments = std::vector<vf::Name>;

/// The program, which gives its exit status. Standard input and output take bytes as they are, a terminal takes UTF-8, and a limit on the
/// size of files is a failure of what meets it.
int Run(const Arguments& arguments);

/// Whether the name is one that leads to another.
bool IsLink(const vf::Name& name);

bool IsTerminal(std::FILE* stream);

/// The bytes of this process's swap file; nothing where there is none, or the system does not tell.
std::optional<std::uintmax_t> SwapFileSize();

/// The most memory that this process has had, in bytes; nothing where the system does not tell.
std::optional<std::uintmax_t> PeakMemory();
