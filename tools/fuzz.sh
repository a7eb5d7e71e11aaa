#!/bin/bash
# tools/fuzz.sh [SECONDS] [TARGET...]
#
# Builds the fuzz targets (preset fuzz: clang, libFuzzer, address and undefined-behaviour sanitizers)
# and runs a campaign of SECONDS of CPU time (60 if not said) for each TARGET, or for all. Ends with a
# table, which is also in build/fuzz/campaigns/table.md, and exit code 1 when there is a finding.
#
# build/fuzz/campaigns/TARGET holds the inputs found so far, which the next campaign goes on from, the
# findings (findings/: crash-*, oom-*, timeout-*, leak-*) and the log. To look at a finding:
#   build/fuzz/tests/fuzz/fuzz_TARGET FILE
#
#   tools/fuzz.sh 600                      ten minutes of CPU time for every target
#   tools/fuzz.sh 600 registry_file        for one
#   tools/fuzz.sh merge [TARGET...]        adds what the campaigns found to tests/fuzz/corpus, minimised
set -u
cd "$(dirname "$0")/.." || exit 1

usage() {
  sed -n '2,/^set/{/^set/d;s/^# \{0,1\}//;p}' "$0"
}

seconds=60
merge=
case ${1-} in
  -h | --help)
    usage
    exit 0
    ;;
  merge)
    merge=1
    shift
    ;;
  [0-9]*)
    seconds=$1
    shift
    ;;
esac

mapfile -t known < <(sed -n 's/^txs_add_fuzz_target(\([a-z_]*\).*/\1/p' tests/fuzz/CMakeLists.txt)
targets=("$@")
[ $# -gt 0 ] || targets=("${known[@]}")
for target in "${targets[@]}"; do
  if ! printf '%s\n' "${known[@]}" | grep -qx -- "$target"; then
    echo "$0: there is no target '$target', only: ${known[*]}" >&2
    exit 2
  fi
done

tools/install_packages.sh build fuzz || exit 1
mkdir -p build/fuzz
if ! cmake --preset fuzz > build/fuzz.configure.log 2>&1; then
  cat build/fuzz.configure.log >&2
  exit 1
fi
if ! cmake --build --preset fuzz --target "${targets[@]/#/fuzz_}" >&2; then exit 1; fi

campaigns=build/fuzz/campaigns
# Inputs of 64 KiB and more make work visible that grows faster than they do.
most_bytes=98304

if [ -n "$merge" ]; then
  for target in "${targets[@]}"; do
    seeds=tests/fuzz/corpus/$target
    found=$campaigns/$target/corpus
    [ -d "$found" ] || continue
    # What stands in the repository must stay small: of inputs that only go round a loop more often,
    # and of long ones, the campaigns have enough.
    build/fuzz/tests/fuzz/fuzz_"$target" -merge=1 -max_len=1024 -use_counters=0 "$seeds" "$found" \
      > "$campaigns/$target/merge.log" 2>&1 || exit 1
    echo "$target: $(find "$seeds" -type f | wc -l) inputs, $(du -sb "$seeds" | cut -f1) bytes"
  done
  exit 0
fi

# One round of at most $2 seconds by the clock for target $1; says "CPU-seconds executions".
run_round() {
  local target=$1 wall=$2 folder=$campaigns/$1 dictionary=tests/fuzz/dictionaries/$1.dict
  local options=(-max_total_time="$wall" -max_len=$most_bytes -timeout=60 -report_slow_units=60
    -rss_limit_mb=1024 -malloc_limit_mb=256 -print_final_stats=1 -reload=0 -len_control=30
    -artifact_prefix="$folder/findings/")
  [ -f "$dictionary" ] && options+=(-dict="$dictionary")
  local TIMEFORMAT='%U %S'
  { time build/fuzz/tests/fuzz/fuzz_"$target" "${options[@]}" "$folder/corpus" \
    "tests/fuzz/corpus/$target" > "$folder/round.log" 2>&1; } 2> "$folder/round.time"
  cat "$folder/round.log" >> "$folder/log"
  awk -v executions="$(sed -n 's/^stat::number_of_executed_units: *//p' "$folder/round.log")" \
    '{ printf "%.1f %d\n", $1 + $2, executions }' "$folder/round.time"
}

result=0
table=$campaigns/table.md
mkdir -p "$campaigns"
echo "| target | executions | CPU seconds | coverage edges | inputs kept | findings |" > "$table.new"
echo "|---|---:|---:|---:|---:|---:|" >> "$table.new"
for target in "${targets[@]}"; do
  folder=$campaigns/$target
  mkdir -p "$folder/corpus" "$folder/findings"
  : > "$folder/log"
  cpu=0
  executions=0
  found=0
  while [ "$found" -eq 0 ]; do
    left=$(awk -v all="$seconds" -v cpu="$cpu" 'BEGIN { printf "%d", all - cpu + 0.999 }')
    [ "$left" -gt 0 ] || break
    # Where others want the processor too, a round uses less of it than of the clock; so another one.
    read -r round_cpu round_executions < <(run_round "$target" "$((left < 60 ? left : 60))")
    cpu=$(awk -v a="$cpu" -v b="$round_cpu" 'BEGIN { printf "%.1f", a + b }')
    executions=$((executions + round_executions))
    # A slow unit is an input worth a look, below the time that makes it a finding.
    found=$(find "$folder/findings" -type f ! -name 'slow-unit-*' | wc -l)
    # A program that could not run at all would have the loop go on for ever.
    if ! grep -q '^stat::' "$folder/round.log" && [ "$found" -eq 0 ]; then
      tail -n 5 "$folder/round.log" >&2
      found=1
    fi
  done
  [ "$found" -eq 0 ] || result=1
  edges=$(sed -n 's/.* cov: \([0-9]*\) .*/\1/p' "$folder/log" | sort -n | tail -n 1)
  inputs=$(find "$folder/corpus" -type f | wc -l)
  echo "| $target | $executions | $cpu | ${edges:-0} | $inputs | $found |" | tee "$folder/row.md" |
    tee -a "$table.new"
done
mv "$table.new" "$table"
echo
cat "$table"
exit $result
