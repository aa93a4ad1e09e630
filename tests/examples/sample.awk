# Gives the sample in FILE as a program: the block of C++ with that number of a Markdown file, which is one, or the first
# indented block in the head of a header, which is the body of a function. Call: awk -v number=1 -f sample.awk FILE

BEGIN { header = ARGV[1] ~ /\.h$/ }

header && /^#pragma once/ { exit }
header && /^\/\/\/     / {
  if (!inside) {
    inside = 1
    name = ARGV[1]
    sub(/.*Native\.VFile\//, "", name)
    print "#include <cstdio>\n"
    print "#include \"" name "\""
    print "#include \"hfile/HFile.h\"\n#include \"hfile/HFileDir.h\"\n#include \"tcharvfile/TCharVFile.h\"\n#include \"vmem/VMem.h\"\n"
    print "namespace {\n\nstd::int32_t Sample() {"
  }
  last = substr($0, 7)
  print last
  next
}
header && inside { exit }

!header && /^```cpp$/ { inside = ++block == number; next }
!header && /^```$/ { inside = 0 }
!header && inside

END {
  if (header && last !~ /^ *return /) print "  return resDone;"
  if (header) print "}\n\n}  // namespace\n\nint main() { return Sample() == resDone ? 0 : 1; }"
}
