# Gives a recipe of a Markdown file as a program, or with `expected` set what it prints: the block of C++ with that number, which is the
# body of a function, or the block of text behind it. The program has the headers of ours that the line "Headers: ..." before the block
# names, and no others. Call: awk -v number=1 [-v expected=1] -f recipe.awk FILE

function begin(    standard, ours, count, i) {
  count = split("algorithm cstdio functional iostream regex stdexcept string string_view thread vector", standard)
  for (i = 1; i <= count; i++) print "#include <" standard[i] ">"
  count = split(headers, ours, ", ")
  for (i = 1; i <= count; i++) print "#include \"" ours[i] "\""
  print "\nint main() try {"
}

function end() {
  print "  return 0;"
  print "} catch (const std::exception& failure) {"
  print "  std::cerr << failure.what() << '\\n';"
  print "  return 1;"
  print "}"
}

END { if (!expected) end() }
/^Headers: / {
  headers = substr($0, length("Headers: ") + 1)
  gsub(/`|\.$/, "", headers)
}
/^```cpp$/ {
  code = ++block == number
  if (code && !expected) begin()
  next
}
/^```text$/ { text = block == number; next }
/^```$/ { code = text = 0 }
code && !expected
text && expected
