#!/bin/sh
# tests/gui/share.sh NUMBER SHARES COMMAND...
#
# Runs share NUMBER, from 1, of the cases of a GoogleTest program: most of their time is waiting for the
# window system, so that shares run well beside each other. Where GTEST_OUTPUT names a folder, each
# share has a report of its own there, gui_test.NUMBER.xml; the program would give all the same name.
set -eu

number=$1
shares=$2
shift 2
export GTEST_SHARD_INDEX=$((number - 1)) GTEST_TOTAL_SHARDS="$shares"
case ${GTEST_OUTPUT:-} in
  xml:*/) export GTEST_OUTPUT="${GTEST_OUTPUT}gui_test.$number.xml" ;;
esac
exec "$@"
