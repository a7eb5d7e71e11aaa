#!/bin/sh
# ./test.sh [PRESET]
#
# Installs what is missing, builds with warnings as errors, and runs every check and every test.
#   ./test.sh             preset ci: everything, with the windows
#   ./test.sh sanitize    the tests under the address and undefined-behaviour sanitizers
#   ./test.sh core        without wxWidgets
set -eu
cd "$(dirname "$0")"

preset=${1:-ci}
case $preset in
  ci) groups='build ui test display package' ;;
  core | sanitize) groups='build test' ;;
  -h | --help)
    sed -n '2,/^set/{/^set/d;s/^# \{0,1\}//;p}' "$0"
    exit 0
    ;;
  *)
    echo "$0: '$preset' is not ci, core or sanitize" >&2
    exit 2
    ;;
esac

# shellcheck disable=SC2086 # one word per group
tools/install_packages.sh $groups

build=build/$preset
mkdir -p build
echo "== Building (preset $preset)"
cmake --preset "$preset" -D TXS_WARNINGS_AS_ERRORS=ON > "$build.configure.log" 2>&1 || {
  cat "$build.configure.log" >&2
  exit 1
}
cmake --build --preset "$preset" --target all all_verify_interface_header_sets

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

# The sources are the same for every preset; the everyday one looks at them.
if [ "$preset" = ci ]; then
  run_check arrows tools/check_arrows.sh
  run_check arrows-self-test tools/check_arrows.sh --self-test
  run_check words tools/check_words.sh
  run_check format format_check
  run_check package tests/package/deb_test.sh "$build"
fi

echo "== Tests"
reports=$PWD/$build/test-reports
rm -rf "$reports"
mkdir -p "$reports"
tests_ok=1
GTEST_OUTPUT=xml:$reports/ UBSAN_OPTIONS=print_stacktrace=1 \
  ctest --preset "$preset" -j 2 --output-junit "$reports/ctest.junit" || tests_ok=0

# shellcheck disable=SC2086 # one word per check
if python3 tools/count_tests.py "$reports/ctest.junit" "$reports" $checks > "$reports/summary"; then
  counted_ok=1
else
  counted_ok=0
fi
cat "$reports/summary"
[ "$tests_ok" -eq 1 ] && [ "$counted_ok" -eq 1 ]
