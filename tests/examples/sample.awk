# Gives the sample in FILE as a program: the block of C++ with that number of a Markdown file, which is one, or the first
# indented block in the head of a header, which is the body of a function. Call: awk -v number=1 -f sample.awk FILE

BEGIN {
  header = ARGV[1] ~ /\.h$/
  layer = "vf/Characters vf/Losses vf/Movable vf/Names vf/Progress vf/Ranges vf/Saving vf/Streams vf/Text"
}

header && /^#pragma once/ { exit }
header && /^\/\/\/     / {
  if (!inside) {
    inside = 1
    split("algorithm cstdio string string_view vector", standard)
    for (i = 1; i in standard; i++) print "#include <" standard[i] ">"
    split("hfile/HFile hfile/HFileDir tcharvfile/TCharVFile vmem/VMem " layer, ours)
    for (i = 1; i in ours; i++) print "#include \"" ours[i] ".h\""
    print ""
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
