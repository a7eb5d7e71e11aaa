#!/bin/sh
# cmake/build_windows_libraries.sh x86_64|i686 [--without-wx]
#
# Builds what mingw-w64 lacks - libdeflate, GoogleTest and wxWidgets - from Debian's source packages,
# once per machine, into ${XDG_CACHE_HOME:-~/.cache}/tx-windows-libraries, where the toolchain files
# look. Does nothing when everything is there. The versions are those that this machine has (or would
# get) for its own system: what a file is compressed with is the same on both.
#
# A library is built in a scratch folder and moved into place when it is finished; what was
# interrupted is never used. Its name there holds version, compiler and options, so that a change of
# any of them builds anew.
set -eu

usage() {
  sed -n '2,/^set/{/^set/d;s/^# \{0,1\}//;p}' "$0"
  exit 2
}

case ${1:-} in
  x86_64 | i686) target=$1-w64-mingw32 ;;
  *) usage >&2 ;;
esac
with_wx=1
case ${2:-} in
  '') ;;
  --without-wx) with_wx=0 ;;
  *) usage >&2 ;;
esac

base=${XDG_CACHE_HOME:-$HOME/.cache}/tx-windows-libraries
mkdir -p "$base/$target/store"
base=$(cd "$base" && pwd)
home=$base/$target
compiler=$target-g++-posix
compiler_version=$("$compiler" -dumpfullversion)
optimise='-O2 -ffunction-sections -fdata-sections'
# The toolkit is most of a program's size and little of its time.
small='-Os -ffunction-sections -fdata-sections'

# Two builds at once, of the same or of both targets, take turns.
exec 9> "$base/lock"
flock 9

scratch=$(mktemp -d "$home/build.XXXXXX")
trap 'rm -rf "$scratch"' EXIT
trap 'exit 1' HUP INT TERM

# The version of a binary package's source: of the installed one, else of the one that apt offers.
source_version() {
  version=$(dpkg-query -W -f '${source:Version}' "$1" 2> /dev/null || true)
  [ -n "$version" ] || version=$(apt-cache policy "$1" | sed -n 's/^  Candidate: //p')
  case $version in
    '' | '(none)')
      echo "$0: there is no Debian package '$1'" >&2
      exit 1
      ;;
  esac
  echo "$version"
}

# A copy of this machine's package sources, of source packages only. Nothing of the machine's own
# configuration or package lists is touched.
prepare_sources() {
  [ ! -d "$scratch/apt" ] || return 0
  mkdir -p "$scratch/apt/parts" "$scratch/apt/lists/partial"
  for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
    [ ! -f "$file" ] || sed -n 's/^[ \t]*deb[ \t]/deb-src /p' "$file" \
      > "$scratch/apt/parts/$(basename "$file" .list)-src.list"
  done
  for file in /etc/apt/sources.list.d/*.sources; do
    [ ! -f "$file" ] || sed 's/^[Tt]ypes:.*/Types: deb-src/' "$file" \
      > "$scratch/apt/parts/$(basename "$file")"
  done
  run_apt update > "$scratch/apt/log" 2>&1 || {
    cat "$scratch/apt/log" >&2
    exit 1
  }
}

run_apt() {
  apt-get -q -o Dir::Etc::sourcelist=/dev/null -o "Dir::Etc::sourceparts=$scratch/apt/parts" \
    -o "Dir::State::lists=$scratch/apt/lists" -o "Dir::Cache::pkgcache=" \
    -o "Dir::Cache::srcpkgcache=" -o "APT::Sandbox::User=$(id -un)" "$@"
}

# fetch SOURCE VERSION FOLDER: unpacks a source package, Debian's patches applied, as FOLDER.
fetch() {
  prepare_sources
  mkdir "$scratch/fetch"
  (cd "$scratch/fetch" && run_apt --download-only source "$1=$2") > "$scratch/log" 2>&1 &&
    dpkg-source --no-check -x "$scratch/fetch/$1_"*.dsc "$3" >> "$scratch/log" 2>&1 || {
    cat "$scratch/log" >&2
    echo "$0: cannot get the source package $1, version $2" >&2
    exit 1
  }
  rm -rf "$scratch/fetch"
}

# provide LIBRARY VERSION OPTIONS: runs build_LIBRARY VERSION SOURCE PREFIX unless that is in the
# store, and points $home/LIBRARY at it.
provide() {
  library=$1
  key=$(printf '%s\n' "$2" "$3" "$compiler_version" | sha256sum | cut -c 1-12)
  stored=$home/store/$library-$2-$key
  if [ ! -d "$stored" ]; then
    echo "Building $library $2 for $target" >&2
    rm -rf "$scratch/source" "$scratch/prefix"
    # Not as a condition, in which the shell would carry on after a step that failed.
    "build_$library" "$2" "$scratch/source" "$scratch/prefix" "$stored" > "$scratch/build.log" 2>&1 &
    if ! wait $!; then
      { grep -E '(error|Error|ERROR)' "$scratch/build.log" || tail -n 40 "$scratch/build.log"; } >&2
      echo "$0: building $library failed" >&2
      exit 1
    fi
    mv "$scratch/prefix" "$stored"
  fi
  ln -sfn "store/$(basename "$stored")" "$home/$library"
}

# Libraries that are headers only are this machine's; in a folder of their own, since beside them are
# the headers of this machine's system.
build_headers() {
  mkdir -p "$3/include" "$3/share/cmake"
  cp -R /usr/include/CLI /usr/include/nlohmann "$3/include"
  cp -R /usr/share/cmake/CLI11 /usr/share/cmake/nlohmann_json "$3/share/cmake"
}

build_libdeflate() {
  fetch libdeflate "$1" "$2"
  make -C "$2" -j "$(nproc)" CC="$target-gcc-posix" AR="$target-ar" CFLAGS="$optimise" \
    DISABLE_SHARED=yes libdeflatestatic.lib
  mkdir -p "$3/include" "$3/lib" "$3/share"
  cp "$2/libdeflate.h" "$3/include"
  cp "$2/libdeflatestatic.lib" "$3/lib/libdeflate.a"
  cp "$2/debian/copyright" "$3/share/copyright"
}

build_googletest() {
  cmake -S /usr/src/googletest -B "$2" -G Ninja -D CMAKE_BUILD_TYPE=Release \
    -D CMAKE_SYSTEM_NAME=Windows -D CMAKE_C_COMPILER="$target-gcc-posix" \
    -D CMAKE_CXX_COMPILER="$compiler" -D CMAKE_INSTALL_PREFIX="$3" -D CMAKE_CXX_STANDARD=20
  cmake --build "$2"
  cmake --install "$2"
}

# The parts of wxWidgets that the windows use; nothing that would need a further library. The picture
# formats and the printing that are left out here are also what makes up most of its size.
wx_options='--with-msw --disable-shared --enable-unicode --disable-tests --disable-sys-libs
  --enable-pch
  --enable-ole --enable-accessibility --enable-uiactionsim --with-nanosvg
  --without-libpng --without-libjpeg --without-libtiff --without-libxpm --without-liblzma
  --without-zlib --without-expat --without-regex --without-opengl --without-libcurl
  --without-winhttp --disable-webrequest --disable-sockets --disable-ipc --disable-protocol
  --disable-protocols --disable-fileproto --disable-url --disable-ftp --disable-http --disable-html
  --disable-htmlhelp --disable-mshtmlhelp --disable-help --disable-xrc --disable-aui
  --disable-propgrid --disable-ribbon --disable-stc --disable-richtext --disable-webview
  --disable-mediactrl --disable-debugreport --disable-fs_archive --disable-fs_inet --disable-fs_zip
  --disable-arcstream --disable-zipstream --disable-tarstream --disable-printarch --disable-mdi
  --disable-docview --disable-joystick --disable-sound --disable-dialupman --disable-dbghelp
  --disable-secretstore --disable-svg --disable-splash --disable-tipdlg
  --disable-wizarddlg --disable-grid --disable-graphics-d2d --disable-gif --disable-pcx
  --disable-tga --disable-iff --disable-pnm --disable-fswatcher --disable-fsvolume
  --disable-addremovectrl --disable-animatectrl --disable-bannerwindow
  --disable-colourpicker --disable-commandlinkbutton --disable-dirpicker
  --disable-filepicker --disable-fontpicker --disable-hyperlink --disable-infobar
  --disable-editablebox --disable-notifmsg --disable-prefseditor
  --disable-rearrangectrl --disable-toolbook --disable-treebook --disable-listbook
  --disable-choicebook --disable-aboutdlg --disable-finddlg --disable-treelist'
build_wxwidgets() {
  fetch wxwidgets3.2 "$1" "$2"
  # The paths of the sources are in the texts of assertions; they would name this machine.
  flags="$small -ffile-prefix-map=$2=wxwidgets"
  # shellcheck disable=SC2086 # one word per option
  (
    cd "$2"
    ./configure --host="$target" --build="$(./config.guess)" --prefix="$4" \
      CC="$target-gcc-posix" CXX="$compiler" CFLAGS="$flags" CXXFLAGS="$flags" $wx_options
    make -j "$(nproc)"
    # Its own files name the place where it will be; the copy is made where it is not yet.
    make install DESTDIR="$2/installed"
  )
  mv "$2/installed$4" "$3"
  mkdir -p "$3/share"
  cp "$2/debian/copyright" "$3/share/copyright"
}

provide headers "$(source_version nlohmann-json3-dev)+$(source_version libcli11-dev)" headers
provide libdeflate "$(source_version libdeflate-dev)" "$optimise"
provide googletest "$(source_version googletest)" Release
if [ "$with_wx" -eq 1 ]; then
  provide wxwidgets "$(source_version libwxgtk3.2-dev)" "$small $wx_options"
fi
