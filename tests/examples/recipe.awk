# Gives a recipe of a Markdown file as a program, or with `expected` set what it prints: the block of C++ with that number, which is the
# body of a function, or the block of text behind it. Call: awk -v number=1 [-v expected=1] -f recipe.awk FILE

function begin(    standard, ours, i) {
  split("algorithm cstdio functional iostream regex stdexcept string string_view thread vector", standard)
  for (i = 1; i in standard; i++) print "#include <" standard[i] ">"
  split("hfile/HFile hsys/HSys vf/Characters vf/Losses vf/Movable vf/Names vf/Progress vf/Ranges vf/Saving vf/Streams vf/Text", ours)
  for (i = 1; i in ours; i++) print "#include \"" ours[i] ".h\""
  print "\nint main() try {"
}

function end() {
  print "  return 0;"
  print "} catch (const std::exception& failure) {"
  print "  std::cerr << failure.what() << '\\n';"
  print "  return 1;"
  print "}"
}

BEGIN { if (!expected) begin() }
END { if (!expected) end() }
/^```cpp$/ { code = ++block == number; next }
/^```text$/ { text = block == number; next }
/^```$/ { code = text = 0 }
code && !expected
text && expected
