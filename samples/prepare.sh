#!/bin/sh
# samples/prepare.sh GENERATOR DIRECTORY [german|english]
#
# Lays a fresh copy of the sample studio: the committed texts, the binaries that GENERATOR (the
# program make_sample_binaries) writes, and fixed dates on all of them, so that installations built
# from two copies are the same. A copy that stands in DIRECTORY is replaced; anything else that is
# there stops the script.
set -eu

if [ $# -lt 2 ] || [ $# -gt 3 ]; then
  echo "usage: $0 GENERATOR DIRECTORY [german|english]" >&2
  exit 2
fi
generator=$1
target=$2
language=${3:-german}
source=$(cd "$(dirname "$0")" && pwd)/studio

case $language in
  german) registry=registry.reg ;;
  english) registry=registry-english.reg ;;
  *)
    echo "$0: '$language' is neither german nor english" >&2
    exit 2
    ;;
esac

if [ -e "$target" ]; then
  if [ ! -d "$target" ]; then
    echo "$0: '$target' exists and is no directory" >&2
    exit 1
  fi
  if [ -e "$target/.sample-studio" ]; then
    rm -rf "$target"
  elif [ -n "$(ls -A "$target")" ]; then
    echo "$0: '$target' is not empty and no sample studio; choose another directory" >&2
    exit 1
  fi
fi

mkdir -p "$target"
: > "$target/.sample-studio"
cp -R "$source/drive_c" "$target/"
cp "$source/$registry" "$target/registry.reg"
chmod -R u+w "$target"
find "$target" -type f -exec touch -d '2004-03-15 12:00:00 UTC' {} +
mkdir -p "$target/drive_c/Users/Entwickler/Documents" "$target/drive_c/Windows/Fonts" \
  "$target/drive_c/Program Files/Common Files" "$target/drive_c/TavixStudio/OPC"
"$generator" "$target" > /dev/null
