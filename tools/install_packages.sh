#!/bin/sh
# tools/install_packages.sh GROUP...
#
# Installs the Debian packages of the named groups as far as they are missing. The one list of what
# this project needs; run.sh, test.sh and CI all come here. Does nothing, and asks for no rights,
# when everything is there.
set -eu

# What it takes to build the programs without windows, and to run them.
build_packages='g++ cmake ninja-build ccache zlib1g-dev libdeflate-dev nlohmann-json3-dev libcli11-dev'
# The windows.
ui_packages='libwxgtk3.2-dev libgtk-3-dev pkgconf'
# The tests, the checks of the sources, and the programs that tests compare results with.
test_packages='libgtest-dev libgmock-dev clang-format gcovr git python3 pkgconf libzip-dev unzip p7zip-full
  locales'

# The windows on a display of their own, as the tests and the screenshots need it.
display_packages='xvfb openbox xdotool xclip x11-utils imagemagick fonts-dejavu-core adwaita-icon-theme librsvg2-common'
# The programs for Windows: compilers, what their libraries are built from and with, and what the tests
# run under.
windows_packages='g++-mingw-w64-x86-64-posix g++-mingw-w64-i686-posix libz-mingw-w64-dev googletest
  dpkg-dev make wine wine64'
# Making the packages that a user installs.
package_packages='dpkg-dev file unzip'
# What looks for faults in the sources.
analysis_packages='clang-tidy cppcheck'
# What tools/performance.sh measures with, and the peers.
benchmark_packages='python3 findutils zip p7zip-full g++-mingw-w64-x86-64-posix wine wine64'
# The fuzz targets (tools/fuzz.sh): libFuzzer comes with clang.
fuzz_packages='clang libclang-rt-14-dev'

usage() {
  echo "usage: $0 build|ui|test|display|package|windows|analysis|benchmark|fuzz ..." >&2
  exit 2
}

[ $# -gt 0 ] || usage
wanted=
for group in "$@"; do
  case $group in
    build) wanted="$wanted $build_packages" ;;
    ui) wanted="$wanted $ui_packages" ;;
    analysis) wanted="$wanted $analysis_packages" ;;
    display) wanted="$wanted $display_packages" ;;
    package) wanted="$wanted $package_packages" ;;
    windows) wanted="$wanted $windows_packages" ;;
    benchmark) wanted="$wanted $benchmark_packages" ;;
    test) wanted="$wanted $test_packages" ;;
    fuzz) wanted="$wanted $fuzz_packages" ;;
    *) usage ;;
  esac
done

is_installed() {
  [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

missing=
for package in $wanted; do
  is_installed "$package" || missing="$missing $package"
done
[ -n "$missing" ] || exit 0

if [ "$(id -u)" -eq 0 ]; then
  as_root=
elif command -v sudo > /dev/null; then
  as_root=sudo
else
  echo "These Debian packages are missing, and installing them takes root or sudo:" >&2
  echo " $missing" >&2
  echo "Ask an administrator for:  apt-get install$missing" >&2
  exit 1
fi

echo "Installing:$missing" >&2
# The words of apt-get go to standard error, so that the output of the caller stays its own.
run_apt() {
  $as_root env DEBIAN_FRONTEND=noninteractive apt-get "$@" >&2
}
# shellcheck disable=SC2086 # one word per package
if ! { run_apt -q update && run_apt -q -y --no-install-recommends install $missing; }; then
  echo "Could not install:$missing" >&2
  exit 1
fi
for package in $missing; do
  if ! is_installed "$package"; then
    echo "apt-get reported success, but '$package' is still missing" >&2
    exit 1
  fi
done
