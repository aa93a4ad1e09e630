/// @file
/// A file that is made beside another, and how it gets the name that it is for. Names start from `directory`, a descriptor or
/// AT_FDCWD; what fails tells the reason in `errno`.
#pragma once

#include <climits>
#include <sys/stat.h>

namespace host::posix {

/// Creates a file that is open for writing, under a name that begins with `start` and that nobody else has, and writes that into `name`.
int CreateUnderFreeName(int directory, const char* start, mode_t mode, char (&name)[PATH_MAX]);

/// Gives the open file `file`, which has none, the name, which has to be free. Takes /proc.
bool LinkTo(int file, int directory, const char* name);

/// The same with a name that begins with `start` and that nobody else has, which it writes into `name`.
bool LinkToFreeName(int file, int directory, const char* start, char (&name)[PATH_MAX]);

/// `rename`, but EEXIST for a name that exists. Where the file system cannot do it in one step, a file gets its second name
/// first, or replaces an empty one of its own making; a directory could replace no more than an empty one.
bool RenameToFree(int directory, const char* from, const char* to);

/// Gives the complete file `name` the name `target`: that of the file `replaced`, which it has to be still, or null for one that has to
/// be free. EWOULDBLOCK where it is another's.
bool GiveName(int directory, const char* name, const char* target, const struct stat* replaced);

}  // namespace host::posix
