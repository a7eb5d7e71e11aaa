#!/bin/sh
# ./test.sh [PRESET]
#
# Installs what is missing, builds with warnings as errors, and runs every check and every test.
#   ./test.sh             preset ci: everything, with the windows
#   ./test.sh sanitize    the tests, all but the sessions of the real program, under the address and
#                         undefined-behaviour sanitizers, and how much of src/ without the windows they
#                         run
#   ./test.sh core        without wxWidgets
#   ./test.sh windows     the Windows programs: cross-built for x86 and x64, the tests of the latter
#                         under Wine; the first time it also builds their libraries
#   ./test.sh analysis    cppcheck and clang-tidy over the sources; builds nothing
set -eu
cd "$(dirname "$0")"

preset=${1:-ci}
case $preset in
  ci) groups='build ui test display package' ;;
  core) groups='build test' ;;
  sanitize) groups='build ui test display' ;;
  windows)
    groups='build test display package windows'
    preset=windows-x64
    ;;
  analysis) groups='build ui test analysis' ;;
  -h | --help)
    sed -n '2,/^set/{/^set/d;s/^# \{0,1\}//;p}' "$0"
    exit 0
    ;;
  *)
    echo "$0: '$preset' is not ci, core, sanitize, windows or analysis" >&2
    exit 2
    ;;
esac

# shellcheck disable=SC2086 # one word per group
tools/install_packages.sh $groups

set --
if [ "$preset" = windows-x64 ]; then
  programs='TXSetupWizard TXSetupTool'
  cmake/build_windows_libraries.sh x86_64 i686
  echo "== Building (the programs of this machine, to compare with, and those of preset windows-x86)"
  # Those of the everyday build, where there is one.
  host=build/ci
  if [ ! -e "$host/build.ninja" ]; then
    host=build/windows-host
    mkdir -p build
    cmake --preset core -B "$host" -D TXS_TESTS=OFF -D TXS_BENCHMARKS=OFF > /dev/null
  fi
  # shellcheck disable=SC2086 # one word per program
  cmake --build "$host" --target $programs make_sample_binaries
  cmake --preset windows-x86 -D TXS_TESTS=OFF -D TXS_WARNINGS_AS_ERRORS=ON > /dev/null
  # shellcheck disable=SC2086 # one word per program
  cmake --build --preset windows-x86 --target $programs
  set -- -D "TXS_HOST_BUILD=$PWD/$host" -D "TXS_X86_BUILD=$PWD/build/windows-x86"
fi

# Analysis asks preset ci only for the compiler's options.
configured=$preset
if [ "$preset" = analysis ]; then configured=ci; fi
coverage=OFF
if [ "$preset" = sanitize ]; then coverage=ON; fi
build=build/$configured
mkdir -p build
echo "== Building (preset $configured)"
cmake --preset "$configured" -D TXS_WARNINGS_AS_ERRORS=ON -D TXS_COVERAGE=$coverage "$@" \
  > "$build.configure.log" 2>&1 || {
  cat "$build.configure.log" >&2
  exit 1
}
case $preset in
  analysis) ;;
  # The headers are the same for every preset; the everyday one looks at them.
  ci) cmake --build --preset "$preset" --target all all_verify_interface_header_sets ;;
  *) cmake --build --preset "$preset" ;;
esac

checks=
run_check() {
  name=$1
  shift
  echo "== $name"
  verdict=ok
  "$@" || verdict=$?
  case $verdict in
    ok) checks="$checks $name=ok" ;;
    77) ;; # it has said why it could not be run
    *) checks="$checks $name=failed" ;;
  esac
}

format_check() {
  git ls-files -z --cached --others --exclude-standard -- '*.h' '*.cpp' |
    xargs -0 -r clang-format --dry-run -Werror
}

if [ "$preset" = analysis ]; then
  run_check cppcheck tools/cppcheck.sh "$build/cppcheck"
  run_check clang-tidy tools/clang_tidy.py "$build"
  reports=build/analysis/test-reports
  mkdir -p "$reports"
  # shellcheck disable=SC2086 # one word per check
  python3 tools/count_tests.py - "$reports" $checks > "$reports/summary" && result=0 || result=1
  cat "$reports/summary"
  exit "$result"
fi

# The sources are the same for every preset; the everyday one looks at them.
if [ "$preset" = ci ]; then
  run_check arrows tools/check_arrows.sh
  run_check arrows-self-test tools/check_arrows.sh --self-test
  run_check source-lists tools/check_source_lists.sh
  run_check words tools/check_words.sh
  run_check mutations tools/mutations.py --check
  run_check format format_check
  run_check package tests/package/deb_test.sh "$build"
fi

if [ "$preset" = windows-x64 ]; then
  run_check package-x86 tests/package/zip_test.sh build/windows-x86 x86
  run_check package-x64 tests/package/zip_test.sh "$build" x64 "$PWD/cmake/run_under_wine.sh"
fi

echo "== Tests"
reports=$PWD/$build/test-reports
rm -rf "$reports"
mkdir -p "$reports"
# Counts of an earlier run would be added to.
find "$build" -name '*.gcda' -delete
tests_ok=1
# One more than there are processors: the forms mostly wait for the window system.
jobs=$(($(nproc) + 1))
# For a program of Windows, Z: is the root of this machine's files.
drive=
if [ "$preset" = windows-x64 ]; then drive=Z:; fi
GTEST_OUTPUT=xml:$drive$reports/ UBSAN_OPTIONS=print_stacktrace=1 \
  ctest --preset "$preset" -j "$jobs" --output-junit "$reports/ctest.junit" || tests_ok=0

if [ "$coverage" = ON ]; then
  run_check coverage tools/coverage.py "$build" "$build/test-reports/not-run.txt" --at-least 95
fi

# shellcheck disable=SC2086 # one word per check
if python3 tools/count_tests.py "$reports/ctest.junit" "$reports" $checks > "$reports/summary"; then
  counted_ok=1
else
  counted_ok=0
fi
cat "$reports/summary"
[ "$tests_ok" -eq 1 ] && [ "$counted_ok" -eq 1 ]
