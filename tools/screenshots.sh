#!/bin/sh
# tools/screenshots.sh [DIRECTORY]
#
# Takes the pictures of the windows in README.md, in both languages, from the real program at work on
# the sample studio: docs/images, or DIRECTORY. Builds the program first and runs it on a display of
# its own, so it needs no screen, and what a desktop looks like does not get into the pictures.
set -eu
cd "$(dirname "$0")/.."

case ${1:-} in
  -*)
    sed -n '2,/^set/{/^set/d;s/^# \{0,1\}//;p}' "tools/$(basename "$0")"
    exit 0
    ;;
esac
images=${1:-docs/images}
build=build/run-ui

tools/install_packages.sh build ui display
mkdir -p build "$images"
{
  cmake --preset dev -B "$build" -D TXS_TESTS=OFF -D TXS_BENCHMARKS=OFF > build/screenshots.log 2>&1 &&
    cmake --build "$build" --target TXSetupWizard make_sample_binaries >> build/screenshots.log 2>&1
} || {
  cat build/screenshots.log >&2
  echo "$0: the build failed" >&2
  exit 1
}

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
tests/gui/with_display.sh python3 tools/take_screenshots.py \
  "$build/src/startup/TXSetupWizard" "$build/samples/make_sample_binaries" "$scratch"

# Few colours are enough for grey windows, and without the time of day the same picture is the same
# file.
rm -f "$images"/*.png
for picture in "$scratch"/*.png; do
  convert "$picture" -strip +dither -colors 64 -define png:compression-level=9 \
    -define png:exclude-chunk=date,time "PNG8:$images/$(basename "$picture")"
done
du -bc "$images"/*.png | awk '{ printf "%8d  %s\n", $1, $2 }'
