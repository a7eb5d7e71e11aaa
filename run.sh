#!/bin/sh
# ./run.sh [COMMAND]
#
# Shows the program at work on the sample studio (samples/README.md), in a scratch copy under build/.
# Installs what is missing and builds first.
#   ./run.sh              builds the installation of 'Mischanlage Süd' unattended and looks at it
#   ./run.sh projects     the registered projects
#   ./run.sh tool ARGS    TXSetupTool on the scratch copy, for example
#                         ./run.sh tool plan 'Leitstand Client'
#   ./run.sh wizard       opens the wizard on the scratch copy; takes a display
#   ./run.sh wizard ARGS  the same with a command line, for example
#                         ./run.sh wizard 'Leitstand Client'      opens this project
#                         ./run.sh wizard '/c=Kläranlage Server'  unattended, without a window
#   ./run.sh --help       this text
set -eu
cd "$(dirname "$0")"

project='Mischanlage Süd'
studio=$PWD/build/run-studio

command=${1:-show}
case $command in
  show | projects | tool | wizard) ;;
  -h | --help | help)
    sed -n '2,/^set/{/^set/d;s/^# \{0,1\}//;p}' "$0"
    exit 0
    ;;
  *)
    echo "$0: unknown command '$command'; see $0 --help" >&2
    exit 2
    ;;
esac
[ $# -eq 0 ] || shift

# A switch opens no window: /c= builds unattended, any other is refused.
windows=no
if [ "$command" = wizard ]; then
  case ${1:-} in
    -* | /*) ;;
    *) windows=yes ;;
  esac
fi
if [ "$windows" = yes ] && [ -z "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
  cat >&2 << NO_DISPLAY
$0: the wizard opens windows, and there is no display.
  - In a desktop session, open a terminal there and run it again.
  - From another computer: ssh -X $(id -un)@$(hostname), then run it again.
  - To have a look without a screen: tools/screenshots.sh takes pictures of every window.
Without windows: $0 wizard '/c=$project'
NO_DISPLAY
  exit 1
fi

# The windows have a build of their own, so that everything else does without the toolkit.
if [ "$windows" = yes ]; then
  build=build/run-ui
  preset=dev
  groups='build ui'
else
  build=build/run
  preset=core
  groups=build
fi

# Building says little and goes to standard error, so that the output of a command stays its own.
# shellcheck disable=SC2086 # one word per group
tools/install_packages.sh $groups
mkdir -p build
[ -e "$build/build.ninja" ] || echo "Building; the first time takes a minute or two." >&2
{
  cmake --preset "$preset" -B "$build" -D TXS_TESTS=OFF -D TXS_BENCHMARKS=OFF > build/run.log 2>&1 &&
    cmake --build "$build" --target TXSetupWizard TXSetupTool make_sample_binaries \
      >> build/run.log 2>&1
} || {
  cat build/run.log >&2
  echo "$0: the build failed" >&2
  exit 1
}

program() {
  find "$build" -type f -name "$1" -perm -u+x | head -n 1
}
wizard=$(program TXSetupWizard)
tool=$(program TXSetupTool)
generator=$(program make_sample_binaries)

if [ "$command" = show ] || [ ! -e "$studio/registry.reg" ]; then
  samples/prepare.sh "$generator" "$studio"
fi
export TAVIX_ROOT="$studio"

# Folders and files below $1 with their sizes, indented by depth.
show_tree() {
  (
    cd "$1"
    find . -mindepth 1 -printf '%P\t%y\t%s\n' | LC_ALL=C sort | awk -F '\t' '
      {
        depth = split($1, parts, "/")
        size = $2 == "d" ? "" : $3
        printf "%10s  %*s%s%s\n", size, 2 * (depth - 1), "", parts[depth], $2 == "d" ? "/" : ""
      }'
  )
}

case $command in
  projects) exec "$tool" projects ;;
  tool) exec "$tool" "$@" ;;
  wizard) exec "$wizard" "$@" ;;
esac

windows_directory="C:\\Projekte\\$project"
directory="$studio/drive_c/Projekte/$project"

echo "TXSetupWizard '/c=$windows_directory\\$project.txs'"
exit_code=0
"$wizard" "/c=$windows_directory\\$project.txs" || exit_code=$?
# Registered with a trailing backslash the log is in the project directory, else beside it.
for log in "$directory/TXSetupWizard.log" "${directory}TXSetupWizard.log"; do
  if [ -e "$log" ]; then
    echo
    echo "Log: $log"
    iconv -f WINDOWS-1252 -t UTF-8 "$log"
  fi
done
if [ "$exit_code" -ne 0 ]; then
  echo "TXSetupWizard ended with exit code $exit_code" >&2
  exit "$exit_code"
fi

echo
echo "The installation, $directory/Setup:"
show_tree "$directory/Setup"

echo
echo "SETUP.STP begins with:"
iconv -f WINDOWS-1252 -t UTF-8 "$directory/Setup/DISK1/SETUP.STP" | tr -d '\r' | head -n 32 |
  sed 's/^/  /'

echo
echo "TXSetupTool verify '$windows_directory\\Setup'"
"$tool" verify "$windows_directory\\Setup"

cat << NEXT

Next:
  ./run.sh projects                         the other projects of the sample studio
  ./run.sh tool plan 'Kläranlage Server'    which file would go on which disk
  ./run.sh wizard                           the wizard itself, in its windows
  ./run.sh wizard '/c=Leitstand Client'     another unattended run
  ./test.sh                                 build everything and run the tests
On your own studio: export TAVIX_ROOT=DIRECTORY (see docs/formats/registry-file.md), then
  $PWD/$wizard '/c=C:\\Projects\\Demo\\Demo.txs'
NEXT
