#!/bin/sh
# tools/check_source_lists.sh
#
# Sources are listed by hand, so one that was moved or added can be left out: its tests would be gone
# and everything green. Fails, naming it, on a .cpp below src or tests that no CMakeLists.txt there
# names.
set -eu
cd "$(dirname "$0")/.."

missing=0
for top in src tests; do
  lists=$(find "$top" -name CMakeLists.txt)
  for source in $(git ls-files --cached --others --exclude-standard -- "$top/*.cpp"); do
    name=${source##*/}
    # Back ends are listed once for all systems, fuzz targets by their name.
    # shellcheck disable=SC2016 # the variable is CMake's
    back_end=$(printf '%s\n' "$name" | sed -E 's/_(win32|host)(_test)?\.cpp$/_${TXS_BACK_END}\2.cpp/')
    # shellcheck disable=SC2086 # one word per list
    grep -qwF -e "$name" -e "$back_end" -e "txs_add_fuzz_target(${name%_fuzz.cpp}" $lists || {
      echo "$source: no CMakeLists.txt names it" >&2
      missing=1
    }
  done
done
exit "$missing"
