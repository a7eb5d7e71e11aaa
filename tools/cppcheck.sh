#!/bin/sh
# tools/cppcheck.sh [CACHE_DIR]
#
# Runs cppcheck over all sources. What it says without a fault behind it is suppressed where it
# stands, with the reason, or in tools/cppcheck_suppressions.txt. CACHE_DIR keeps what it knows of
# files that have not changed since.
set -eu
cd "$(dirname "$0")/.."

cache=
if [ $# -gt 0 ]; then
  mkdir -p "$1"
  cache=--cppcheck-build-dir=$1
fi
# The system's headers are left out: cppcheck knows the standard library, GoogleTest and wxWidgets by
# descriptions of its own.
git ls-files --cached --others --exclude-standard -- '*.cpp' |
  cppcheck --file-list=- --quiet --std=c++20 --language=c++ -I src -I tests -j "$(nproc)" \
    --enable=warning,performance,portability --error-exitcode=1 ${cache:+"$cache"} \
    --library=googletest --library=wxwidgets --library=windows --library=tools/cppcheck.cfg \
    --inline-suppr --suppressions-list=tools/cppcheck_suppressions.txt \
    --template='{file}:{line}:{column}: {severity}: {message} [{id}]'
