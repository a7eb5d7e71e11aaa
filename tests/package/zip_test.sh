#!/bin/sh
# tests/package/zip_test.sh BUILD x86|x64 [WINE]
#
# Makes the ZIP of a Windows build folder and checks what a user unpacks: all that has to be in it and no
# more, texts that the editors of Windows show, programs that need nothing else and tell their version, and,
# with WINE (cmake/run_under_wine.sh), one that runs from there. That an installation is built from there
# is a test of tests/windows.
set -eu
build=$(cd "$1" && pwd)
machine=$2
wine=${3:-}
here=$(cd "$(dirname "$0")" && pwd)

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
(cd "$folder" && find . -type f | sort) > "$scratch/found"
sort > "$scratch/expected" << 'FILES'
./LIESMICH.txt
./README.txt
./TXSetupTool.exe
./TXSetupWizard.exe
./licences/CLI11.txt
./licences/gcc-runtime.txt
./licences/libdeflate.txt
./licences/mingw-w64.txt
./licences/nlohmann-json.txt
./licences/wxWidgets.txt
./licences/zlib.txt
FILES
diff "$scratch/expected" "$scratch/found" >&2 || fail 'the package holds other files (< missing, > too many)'
[ -z "$(find "$folder" -type f -empty)" ] || fail 'a file is empty'
for text in README LIESMICH; do
  [ "$(head -c 3 "$folder/$text.txt" | od -An -tx1 | tr -d ' \n')" = efbbbf ] ||
    fail "$text.txt does not say that it is UTF-8"
  if grep -qv "$(printf '\r')\$" "$folder/$text.txt"; then fail "$text.txt has line ends of Unix"; fi
  if grep -q '@' "$folder/$text.txt"; then fail "$text.txt has a place that was not filled"; fi
done
# Debugging information would be nine tenths of what is downloaded.
[ "$(stat -c %s "$folder/TXSetupWizard.exe")" -lt 20000000 ] || fail 'the programs are not stripped'
version=$(basename "$folder" | sed 's/^TXSetupWizard-\(.*\)-windows-.*/\1/')
python3 -B "$here/../windows/program_files_test.py" "$version" "$machine" \
  "$folder/TXSetupWizard.exe" "$folder/TXSetupTool.exe" > "$scratch/programs" 2>&1 || {
  cat "$scratch/programs" >&2
  fail 'the programs are not as they must be'
}
for text in README LIESMICH; do
  grep -qF " $version" "$folder/$text.txt" || fail "$text.txt does not name version $version"
done
if [ -n "$wine" ]; then
  "$wine" "$folder/TXSetupTool.exe" --version > "$scratch/version" || fail 'the tool does not run'
  grep -qF "$(tr -d '\r' < "$scratch/version" | awk '{ print $NF }')" "$folder/README.txt" ||
    fail 'the read-me names another version than the tool'
fi
echo "zip_test: $(basename "$scratch"/packages/*.zip) is complete"
