#!/bin/sh
# tests/startup/unattended_run_test.sh WIZARD TOOL
#
# The programs as a build server runs them, on a small studio that is laid out here. No display: what
# needs a window must show on standard error instead.
set -eu

wizard=$1
tool=$2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
unset DISPLAY WAYLAND_DISPLAY
TAVIX_ROOT=$scratch/studio
export TAVIX_ROOT
project=$TAVIX_ROOT/drive_c/Projects/Demo
log=$project/TXSetupWizard.log
failures=0

lay_studio() {
  rm -rf "$TAVIX_ROOT"
  mkdir -p "$project" "$TAVIX_ROOT/drive_c/Tavix/Studio" "$TAVIX_ROOT/drive_c/Tavix/SetupKit"
  cat > "$TAVIX_ROOT/registry.reg" << 'REG'
REGEDIT4

[HKEY_LOCAL_MACHINE\Software\ORBEKA GmbH]
"MainDir"="C:\\Tavix"
"Common"="C:\\Tavix\\Common"

[HKEY_LOCAL_MACHINE\Software\ORBEKA GmbH\Tavix\4.0]
"LCID"=dword:00000409
"Path"="C:\\Tavix\\Studio"

[HKEY_LOCAL_MACHINE\Software\ORBEKA GmbH\Tavix\4.0\Projects\Demo]
"Path"="C:\\Projects\\Demo\\"
"ProjectType"="Single"
REG
  printf '[SetupFiles]\r\nCount=1\r\n1=SETUP.EXE\r\n' \
    > "$TAVIX_ROOT/drive_c/Tavix/SetupKit/TXSTPKIT.INI"
  printf 'engine' > "$TAVIX_ROOT/drive_c/Tavix/SetupKit/SETUP.EXE"
  : > "$project/Demo.txs"
  printf 'program' > "$project/Demo.exe"
  printf '[program]\r\nname=Demo.exe\r\n[file]\r\n01=<ProjectDir>\\Demo.exe,<ProjectDir>,0\r\n' \
    > "$project/Demo.swz"
}

# run EXPECTED_EXIT_CODE COMMAND...: leaves both outputs in $scratch/out and $scratch/err.
run() {
  expected=$1
  shift
  code=0
  "$@" > "$scratch/out" 2> "$scratch/err" < /dev/null || code=$?
  if [ "$code" -ne "$expected" ]; then
    echo "FAILED: '$*' ended with $code, expected $expected" >&2
    cat "$scratch/err" >&2
    failures=$((failures + 1))
  fi
}

# expect WHAT COMMAND...
expect() {
  what=$1
  shift
  if ! "$@"; then
    echo "FAILED: $what" >&2
    failures=$((failures + 1))
  fi
}
silent() { [ ! -s "$scratch/out" ] && [ ! -s "$scratch/err" ]; }
says() { grep -qF -e "$2" "$scratch/$1"; }

# --- A run that succeeds says nothing, whatever the display variable claims.
for argument in /c=Demo -C=Demo.swz '/c=C:\Projects\Demo\Demo.txs' '/c="c:\projects\demo\DEMO"'; do
  lay_studio
  DISPLAY=:4711 run 0 "$wizard" "$argument"
  expect "$argument is silent" silent
  expect "$argument builds" test -s "$project/Setup/DISK1/SETUP.STP"
  expect "$argument leaves no log" test ! -e "$log"
  run 0 "$tool" verify "$project/Setup"
  expect "what $argument builds is sound" says out 'sound: 1 disk, 1 file, '
done

# --- Blanks that the shell split are joined again.
lay_studio
mkdir "$TAVIX_ROOT/drive_c/My Demo"
cp "$project"/Demo.* "$TAVIX_ROOT/drive_c/My Demo"
run 0 "$wizard" '/c=C:\My' 'Demo\Demo.txs'
expect 'a directory with a blank' test -s "$TAVIX_ROOT/drive_c/My Demo/Setup/DISK1/SETUP.STP"

# --- A run that fails: exit code 1, the log, nothing on the screen. A second run appends.
lay_studio
rm "$project/Demo.exe"
run 1 "$wizard" /c=Demo
expect 'a failed run is silent' silent
expect 'the log has its entry' grep -q 'The marked files do not exist!' "$log"
lines=$(wc -l < "$log")
run 1 "$wizard" /c=Demo
expect 'the second entry is appended' test "$(wc -l < "$log")" -eq $((2 * lines))

# --- A log that cannot be written.
rm "$log"
mkdir "$log"
run 1 "$wizard" /c=Demo
expect 'the message is on standard error' says err 'The marked files do not exist!'

# --- Messages of the start itself: exit code 0.
lay_studio
run 0 "$wizard" /x
expect 'a refused switch' says err '/c=[ProjectPath\]ProjectName[.txs|.swz]'
run 0 "$wizard" Other
expect 'an unknown project' says err "It is not possible to edit the project 'Other'!"
# A build without windows says that; one that has them says what it misses.
no_windows=1900
[ ! -e "$(dirname "$wizard")/TXSetupWizardWindows.so" ] || no_windows=1975
for argument in '' Demo; do
  run 0 "$wizard" $argument
  expect 'no windows' says err "(Message $no_windows)"
  expect 'the way without windows' says err '/c=ProjectName'
done
expect 'no carriage returns' test "$(tr -d '\r' < "$scratch/err" | wc -c)" -eq \
  "$(wc -c < "$scratch/err")"
rm -r "$TAVIX_ROOT/drive_c/Tavix/Studio"
run 0 "$wizard" /c=Demo
expect 'a studio that moved' says err '[C:\Tavix\Studio]'
rm "$TAVIX_ROOT/registry.reg"
run 0 "$wizard" /c=Demo
expect 'no studio' says err '(Meldung 91)'

# --- A registry that cannot be read: no unattended run may pass for a success.
mkdir "$TAVIX_ROOT/registry.reg"
run 1 "$wizard" /c=Demo
expect 'the unreadable registry is named' says err registry.reg
run 0 "$wizard" Demo
run 1 "$tool" projects
expect 'the unreadable registry is named' says err registry.reg

# --- The companion.
lay_studio
run 0 "$tool" --version
run 2 "$tool"
run 0 "$tool" projects
expect 'the project is listed' says out 'C:\Projects\Demo\'
run 0 "$tool" plan "$project/Demo.txs" --json
expect 'a plan' says out '"archive": "Demo.exe.zip"'
expect 'a plan writes no installation' test ! -e "$project/Setup"
run 0 "$tool" create Demo
expect 'no progress line outside a terminal' test ! -s "$scratch/err"
rm "$project/Setup/DISK1/Demo.exe.zip"
run 5 "$tool" verify 'C:\Projects\Demo\Setup'
expect 'the damage' says out 'DISK1\Demo.exe.zip: the archive is missing'
run 1 "$tool" verify "$project/Nowhere"
if [ -c /dev/full ]; then
  code=0
  "$tool" projects > /dev/full 2> "$scratch/err" || code=$?
  expect 'a result that cannot be written is a failure' test "$code" -eq 1
fi

[ "$failures" -eq 0 ]
