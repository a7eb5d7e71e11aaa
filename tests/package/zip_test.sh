#!/bin/sh
# tests/package/zip_test.sh BUILD [WINE]
#
# Makes the ZIP of a Windows build folder and checks what a user unpacks: all that has to be in it, texts
# that the editors of Windows show, and, with WINE (cmake/run_under_wine.sh), a program that runs from there.
set -eu
build=$(cd "$1" && pwd)
wine=${2:-}

fail() {
  echo "zip_test: $*" >&2
  exit 1
}

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
trap 'exit 130' INT TERM

(cd "$build" && cpack -G ZIP -B "$scratch/packages") > "$scratch/cpack.log" 2>&1 || {
  cat "$scratch/cpack.log" >&2
  fail 'cpack failed'
}
unzip -q "$scratch"/packages/*.zip -d "$scratch/unpacked"
folder=$(echo "$scratch"/unpacked/*)
for file in TXSetupWizard.exe TXSetupTool.exe README.txt LIESMICH.txt licences/wxWidgets.txt \
  licences/libdeflate.txt licences/zlib.txt licences/CLI11.txt licences/nlohmann-json.txt \
  licences/mingw-w64.txt licences/gcc-runtime.txt; do
  [ -s "$folder/$file" ] || fail "$file is not in the package"
done
for text in README LIESMICH; do
  [ "$(head -c 3 "$folder/$text.txt" | od -An -tx1 | tr -d ' \n')" = efbbbf ] ||
    fail "$text.txt does not say that it is UTF-8"
  if grep -qv "$(printf '\r')\$" "$folder/$text.txt"; then fail "$text.txt has line ends of Unix"; fi
  if grep -q '@' "$folder/$text.txt"; then fail "$text.txt has a place that was not filled"; fi
done
# Debugging information would be nine tenths of what is downloaded.
[ "$(stat -c %s "$folder/TXSetupWizard.exe")" -lt 20000000 ] || fail 'the programs are not stripped'
if [ -n "$wine" ]; then
  "$wine" "$folder/TXSetupTool.exe" --version > "$scratch/version" || fail 'the tool does not run'
  grep -qF "$(tr -d '\r' < "$scratch/version" | awk '{ print $NF }')" "$folder/README.txt" ||
    fail 'the read-me names another version than the tool'
fi
echo "zip_test: $(basename "$scratch"/packages/*.zip) is complete"
