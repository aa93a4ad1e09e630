#!/bin/sh
# Holds what calls of the classes resolve to against the checked-in list, by their headers alone and with those of the layer above.
# Arguments: C++ compiler, directory of the headers, list.
#
# The list: declarations up to the line "----", then lines EXPRESSION => what it calls, in order, but for destructors and the standard
# library; or "does not compile". "#" begins a remark.
set -eu
compiler=$1 headers=$2 list=$3
all_errors=
"$compiler" --version | grep -q clang && all_errors=-ferror-limit=0
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

compile() { # OPTION...
  LC_ALL=C "$compiler" -std=c++20 -O0 -w $all_errors -I"$headers" "$@"
}

# A function for each expression whose number is not in the file of those to be left out.
program() { # LEFT-OUT INCLUDE...
  left_out=$1
  shift
  printf '#include "%s"\n' "$@"
  awk -v left_out="$left_out" '
    BEGIN { while ((getline number < left_out) > 0) skip[number] = 1 }
    !declared { if ($0 == "----") declared = 1; else print; next }
    /^#/ || !NF { next }
    !(++count in skip) {
      sub(/ => .*/, "")
      printf "#line %d \"list\"\nextern \"C\" void case_%d() { (void)(%s); }\n", count, count, $0
    }' "$list"
}

# The list as they are with these headers.
resolved() { # INCLUDE...
  : >"$scratch/none"
  program "$scratch/none" "$@" >"$scratch/all.cpp"
  compile -fsyntax-only "$scratch/all.cpp" 2>"$scratch/said" || true
  sed -n 's/^list:\([0-9]*\):.* error: .*/\1/p' "$scratch/said" | sort -u >"$scratch/failing"
  program "$scratch/failing" "$@" >"$scratch/some.cpp"
  compile -c "$scratch/some.cpp" -o "$scratch/some.o"
  LC_ALL=C objdump -dr --demangle "$scratch/some.o" >"$scratch/calls"
  awk '
    FILENAME ~ /failing$/ { failing[$1] = 1; next }
    FILENAME ~ /calls$/ {
      if (/^[0-9a-f]+ </) name = /<case_/ ? substr($2, 7, length($2) - 8) : ""
      if (name == "" || !/: R_.*\(/) next
      sub(/^[^R]*R_[A-Z0-9_]*[ \t]*/, "")
      sub(/[-+]0x[0-9a-f]+$/, "")
      gsub(/std::__cxx11::basic_string<char16_t, std::char_traits<char16_t>, std::allocator<char16_t> >/, "TString")
      if (/~|^std::/ || !/VFile|HFile|Derived|To[A-Z]|vf::/) next
      calls[name] = calls[name] (calls[name] == "" ? "" : "; ") $0
      next
    }
    !declared { print; declared = $0 == "----"; next }
    /^#/ || !NF { print; next }
    {
      ++count
      sub(/ => .*/, "")
      print $0 " => " (count in failing ? "does not compile" : calls[count] == "" ? "nothing of ours" : calls[count])
    }' "$scratch/failing" "$scratch/calls" "$list"
}

cd "$headers"
for layer in "" "vf/*.h"; do
  # shellcheck disable=SC2086
  resolved hfile/HFile.h tcharvfile/TCharVFile.h $layer >"$scratch/found"
  diff -u "$list" "$scratch/found" || { echo "the list is $list; - lines are as listed, + lines as found with $layer"; exit 1; }
done
