#!/bin/sh
# cmake/build_windows_libraries.sh [--without-wx] x86_64|i686...
#
# Builds what mingw-w64 lacks - libdeflate, GoogleTest, libzip (for the tests) and wxWidgets - from
# Debian's source packages, once per machine, into ${XDG_CACHE_HOME:-~/.cache}/tx-windows-libraries,
# where the toolchain files look. Does nothing when everything is there. The versions are those that
# this machine has (or would get) for its own system: what a file is compressed with is the same on
# both.
#
# A library is built in a scratch folder and moved into place when it is finished; what was
# interrupted is never used. Its name there holds version, compiler and options, so that a change of
# any of them builds anew. Several targets are built at once: half of the time goes into configuring,
# which uses one processor.
set -eu

usage() {
  sed -n '2,/^set/{/^set/d;s/^# \{0,1\}//;p}' "$0"
  exit 2
}

with_wx=1
targets=
for argument in "$@"; do
  case $argument in
    x86_64 | i686) targets="$targets $argument-w64-mingw32" ;;
    --without-wx) with_wx=0 ;;
    *) usage >&2 ;;
  esac
done
[ -n "$targets" ] || usage >&2

base=${XDG_CACHE_HOME:-$HOME/.cache}/tx-windows-libraries
mkdir -p "$base"
base=$(cd "$base" && pwd)
optimise='-O2 -ffunction-sections -fdata-sections'
# The toolkit is most of what is built here and little of a program's time.
quick='-O1 -ffunction-sections -fdata-sections'

# Two builds at once take turns.
exec 9> "$base/lock"
flock 9

scratch=$(mktemp -d "$base/build.XXXXXX")
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

# fetch SOURCE VERSION: unpacks a source package, Debian's patches applied, as $scratch/SOURCE.
fetch() {
  [ ! -d "$scratch/$1" ] || return 0
  prepare_sources
  mkdir "$scratch/fetch"
  (cd "$scratch/fetch" && run_apt --download-only source "$1=$2") > "$scratch/log" 2>&1 &&
    dpkg-source --no-check -x "$scratch/fetch/$1_"*.dsc "$scratch/$1" >> "$scratch/log" 2>&1 || {
    cat "$scratch/log" >&2
    echo "$0: cannot get the source package $1, version $2" >&2
    exit 1
  }
  rm -rf "$scratch/fetch"
}

# wanted LIBRARY SOURCE VERSION OPTIONS: notes for every target what is to be built, and gets the
# sources (SOURCE - for none). Sets the library's place to what is, or will be, in the store.
wanted() {
  for target in $targets; do
    home=$base/$target
    mkdir -p "$home/store"
    key=$(printf '%s\n' "$3" "$4" "$("$target-g++-posix" -dumpfullversion)" | sha256sum | cut -c 1-12)
    stored=$home/store/$1-$3-$key
    if [ -d "$stored" ]; then
      ln -sfn "store/$(basename "$stored")" "$home/$1"
    else
      [ "$2" = - ] || fetch "$2" "$3"
      echo "$1 $3 $scratch/$2 $stored" >> "$scratch/$target.wanted"
    fi
  done
}

# Builds what was noted for a target: build_LIBRARY SOURCE BUILD PREFIX STORED each.
build_target() {
  target=$1
  compiler=$target-g++-posix
  while read -r library version source stored; do
    echo "Building $library $version for $target" >&2
    build=$scratch/$target/$library
    mkdir -p "$build"
    # Not as a condition, in which the shell would carry on after a step that failed.
    "build_$library" "$source" "$build" "$build.prefix" "$stored" > "$build.log" 2>&1 &
    if ! wait $!; then
      { grep -E '(error|Error|ERROR)' "$build.log" || tail -n 40 "$build.log"; } >&2
      echo "$0: building $library for $target failed" >&2
      exit 1
    fi
    mv "$build.prefix" "$stored"
    ln -sfn "store/$(basename "$stored")" "$base/$target/$library"
  done < "$scratch/$target.wanted"
}

# Libraries that are headers only are this machine's; in a folder of their own, since beside them are
# the headers of this machine's system.
build_headers() {
  mkdir -p "$3/include" "$3/share/cmake"
  cp -R /usr/include/CLI /usr/include/nlohmann "$3/include"
  cp -R /usr/share/cmake/CLI11 /usr/share/cmake/nlohmann_json "$3/share/cmake"
}

build_libdeflate() {
  cp -R "$1/." "$2"
  make -C "$2" -j "$(nproc)" CC="$target-gcc-posix" AR="$target-ar" CFLAGS="$optimise" \
    DISABLE_SHARED=yes libdeflatestatic.lib
  mkdir -p "$3/include" "$3/lib" "$3/share"
  cp "$2/libdeflate.h" "$3/include"
  cp "$2/libdeflatestatic.lib" "$3/lib/libdeflate.a"
  cp "$1/debian/copyright" "$3/share/copyright"
}

# build_with_cmake SOURCE BUILD PREFIX [OPTION...]
build_with_cmake() {
  source=$1 build=$2 prefix=$3
  shift 3
  cmake -S "$source" -B "$build" -G Ninja -D CMAKE_BUILD_TYPE=Release \
    -D CMAKE_INSTALL_PREFIX="$prefix" \
    -D CMAKE_SYSTEM_NAME=Windows -D CMAKE_C_COMPILER="$target-gcc-posix" \
    -D CMAKE_CXX_COMPILER="$compiler" -D CMAKE_RC_COMPILER="$target-windres" \
    -D CMAKE_FIND_ROOT_PATH="/usr/$target" \
    -D CMAKE_FIND_ROOT_PATH_MODE_LIBRARY=ONLY -D CMAKE_FIND_ROOT_PATH_MODE_INCLUDE=ONLY \
    -D CMAKE_FIND_ROOT_PATH_MODE_PACKAGE=ONLY "$@"
  cmake --build "$build"
  cmake --install "$build"
}

build_googletest() { build_with_cmake /usr/src/googletest "$2" "$3" -D CMAKE_CXX_STANDARD=20; }

# Reads archives in the tests; no part of a program.
zip_options='-D BUILD_SHARED_LIBS=OFF -D BUILD_TOOLS=OFF -D BUILD_REGRESS=OFF -D BUILD_EXAMPLES=OFF
  -D BUILD_DOC=OFF -D ENABLE_WINDOWS_CRYPTO=OFF -D ENABLE_OPENSSL=OFF -D ENABLE_GNUTLS=OFF
  -D ENABLE_MBEDTLS=OFF -D ENABLE_BZIP2=OFF -D ENABLE_LZMA=OFF -D ENABLE_ZSTD=OFF
  -D ZLIB_USE_STATIC_LIBS=ON'
build_libzip() {
  # shellcheck disable=SC2086 # one word per option
  build_with_cmake "$1" "$2" "$3" $zip_options
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
  --disable-choicebook --disable-aboutdlg --disable-finddlg --disable-treelist
  --disable-calendar --disable-datepick --disable-timepick --disable-bmpcombobox --disable-odcombobox
  --disable-comboctrl --disable-collpane --disable-actindicator --disable-filectrl --disable-searchctrl
  --disable-slider --disable-splitter --disable-sash --disable-toolbar --disable-tbarnative
  --disable-taskbaricon --disable-miniframe --disable-coldlg --disable-fontdlg --disable-numberdlg
  --disable-creddlg --disable-progressdlg --disable-choicedlg --disable-richmsgdlg
  --disable-richtooltip --disable-dragimage --disable-splines --disable-postscript --disable-metafile
  --disable-hotkey --disable-snglinst --disable-filehistory --disable-logwin --disable-logdialog
  --disable-togglebtn --disable-radiobox --disable-checklst --disable-iniconf --disable-mimetype
  --disable-constraints --disable-spinctrl --disable-spinbtn --disable-arttango
  --disable-dependency-tracking'
build_wxwidgets() {
  # The paths of the sources are in the texts of assertions; they would name this machine.
  flags="$quick -ffile-prefix-map=$1=wxwidgets"
  # shellcheck disable=SC2086 # one word per option
  (
    cd "$2"
    "$1/configure" --host="$target" --build="$("$1/config.guess")" --prefix="$4" \
      CC="$target-gcc-posix" CXX="$compiler" CFLAGS="$flags" CXXFLAGS="$flags" $wx_options
    make -j "$(nproc)"
    # Its own files name the place where it will be; the copy is made where it is not yet.
    make install DESTDIR="$2/installed"
  )
  mv "$2/installed$4" "$3"
  mkdir -p "$3/share"
  cp "$1/debian/copyright" "$3/share/copyright"
}

wanted headers - "$(source_version nlohmann-json3-dev)+$(source_version libcli11-dev)" headers
wanted libdeflate libdeflate "$(source_version libdeflate-dev)" "$optimise"
wanted googletest - "$(source_version googletest)" Release
wanted libzip libzip "$(source_version libzip-dev)" "$zip_options"
if [ "$with_wx" -eq 1 ]; then
  wanted wxwidgets wxwidgets3.2 "$(source_version libwxgtk3.2-dev)" "$quick $wx_options"
fi

running=
for target in $targets; do
  [ -s "$scratch/$target.wanted" ] || continue
  build_target "$target" &
  running="$running $!"
done
result=0
for process in $running; do
  wait "$process" || result=1
done
exit "$result"
