#!/bin/sh
# tests/package/deb_test.sh BUILD
#
# Makes the Debian package of a build folder, installs it on this machine, and checks that what a user
# then has works: both programs on the sample studio, and that the windows are found. Removes it again,
# and checks that nothing stays. Takes root or sudo; where there is neither, says so and exits with 77.
set -eu
build=$(cd "$1" && pwd)
cd "$(dirname "$0")/../.."

package=tx-setup-wizard
fail() {
  echo "deb_test: $*" >&2
  exit 1
}

if [ "$(id -u)" -eq 0 ]; then
  as_root=
elif command -v sudo > /dev/null && sudo -n true 2> /dev/null; then
  as_root='sudo -n'
else
  echo 'deb_test: SKIPPED: installing a package takes root, or sudo without a password' >&2
  exit 77
fi
if [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2> /dev/null)" = installed ]; then
  fail "the package $package is installed on this machine; remove it first"
fi

scratch=$(mktemp -d)
installed=no
clean_up() {
  [ "$installed" = no ] || $as_root dpkg --purge "$package" > "$scratch/purge.log" 2>&1 || true
  rm -rf "$scratch"
}
trap clean_up EXIT
trap 'exit 130' INT TERM

(cd "$build" && cpack -G DEB -B "$scratch/packages") > "$scratch/cpack.log" 2>&1 || {
  cat "$scratch/cpack.log" >&2
  fail 'cpack failed'
}
deb=$(echo "$scratch"/packages/*.deb)
version=$(dpkg-deb -f "$deb" Version)
dpkg-deb -f "$deb" Depends | grep -q 'libdeflate0' || fail 'the package does not depend on libdeflate0'
dpkg-deb -f "$deb" Depends | grep -q 'libwxgtk3.2-1' ||
  fail 'the package does not depend on the toolkit of its windows'
dpkg-deb -c "$deb" | awk '{ print $6 }' | sed -n 's|^\./|/|p' | grep -v '/$' > "$scratch/files"

# Readable for the user _apt, who checks the package before root installs it.
chmod 755 "$scratch" "$scratch/packages"
installed=maybe
$as_root env DEBIAN_FRONTEND=noninteractive apt-get -q -y --no-install-recommends \
  install "$deb" > "$scratch/install.log" 2>&1 || {
  cat "$scratch/install.log" >&2
  fail 'the package could not be installed'
}

# The installed programs, wherever the build folder is.
cd /
[ "$(TXSetupTool --version | awk '{ print $NF }')" = "$version" ] ||
  fail "TXSetupTool --version is not $version"
TAVIX_ROOT=$scratch/studio
export TAVIX_ROOT
"$OLDPWD/samples/prepare.sh" "$build/samples/make_sample_binaries" "$TAVIX_ROOT"
project='Mischanlage Süd'
env -u DISPLAY -u WAYLAND_DISPLAY TXSetupWizard "/c=$project" || fail 'the unattended run failed'
TXSetupTool verify "C:\\Projekte\\$project\\Setup" > "$scratch/verify.log" || {
  cat "$scratch/verify.log" >&2
  fail 'the installation is not sound'
}
# Without a display the start ends with a message. That of a program without its windows is another.
env -u DISPLAY -u WAYLAND_DISPLAY TXSetupWizard "$project" > "$scratch/start.log" 2>&1 || true
grep -q 'grafischen Bildschirm' "$scratch/start.log" || {
  cat "$scratch/start.log" >&2
  fail 'the installed program does not find its windows'
}
if ldd /usr/lib/tx-setup-wizard/* | grep 'not found' >&2; then
  fail 'a library is missing that the package does not depend on'
fi

$as_root env DEBIAN_FRONTEND=noninteractive apt-get -q -y purge "$package" \
  > "$scratch/purge.log" 2>&1 || {
  cat "$scratch/purge.log" >&2
  fail 'the package could not be removed'
}
installed=no
while read -r file; do
  [ ! -e "$file" ] && [ ! -L "$file" ] || fail "removing the package left $file behind"
done < "$scratch/files"
echo "deb_test: $package $version installs, works, and is removed without a trace"
