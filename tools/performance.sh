#!/bin/sh
# tools/performance.sh [--quick] [--only NAME,...] [--place DIR]
#
# Builds the programs as users get them, measures how they scale beside their peers, and rewrites the
# tables of docs/PERFORMANCE.md and the plots in docs/images/performance. benchmarks/README.md lists
# what is measured. Takes about half an hour and 12 GiB in /dev/shm; --quick tries small sizes
# and prints the tables instead. Another build can be named by BUILD_DIR; it is then used as it is.
set -eu
cd "$(dirname "$0")/.."

case ${1:-} in
  -h | --help)
    sed -n '2,/^set/{/^set/d;s/^# \{0,1\}//;p}' "$0"
    exit 0
    ;;
esac

if [ -z "${BUILD_DIR:-}" ]; then
  tools/install_packages.sh build benchmark
  BUILD_DIR=build/performance
  cmake --preset core -B "$BUILD_DIR" -D TXS_TESTS=OFF > /dev/null
  cmake --build "$BUILD_DIR" --target benchmark_programs
fi
exec python3 -B benchmarks/performance.py "$BUILD_DIR" "$@"
