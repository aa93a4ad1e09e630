#pragma once

#include <string>

class VFile;

std::string ContentOf(VFile& file);

/// Whether what an application does on this host alone goes well.
bool HostGood();
