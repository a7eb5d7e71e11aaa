#!/bin/sh
# tests/gui/with_display.sh COMMAND...
#
# Runs COMMAND on a display of its own: a virtual screen with a window manager, the toolkit in its
# plain settings whatever the user has. SCREEN sets the screen's size (default 1600x1200).
# The display and the window manager end with the command, whose exit code this has.
set -eu

# For programs that were built with sanitizers.
here=$(cd "$(dirname "$0")" && pwd)
export LSAN_OPTIONS="suppressions=$here/leaks.supp:print_suppressions=0${LSAN_OPTIONS:+:$LSAN_OPTIONS}"

scratch=$(mktemp -d)
server=
manager=
clean_up() {
  [ -z "$manager" ] || kill "$manager" 2> /dev/null || true
  [ -z "$server" ] || kill "$server" 2> /dev/null || true
  rm -rf "$scratch"
}
trap clean_up EXIT
trap 'exit 130' INT TERM

# The server chooses a free number and writes it when it is ready.
mkfifo "$scratch/number"
Xvfb -displayfd 3 -screen 0 "${SCREEN:-1600x1200}x24" -nolisten tcp -noreset \
  3> "$scratch/number" > "$scratch/server.log" 2>&1 &
server=$!
number=
read -r number < "$scratch/number" || true
if [ -z "$number" ]; then
  echo "$0: the virtual screen did not start:" >&2
  cat "$scratch/server.log" >&2
  exit 1
fi

mkdir "$scratch/home" "$scratch/runtime"
chmod 700 "$scratch/runtime"
export DISPLAY=":$number" HOME="$scratch/home" XDG_RUNTIME_DIR="$scratch/runtime"
export XDG_CONFIG_HOME="$scratch/home/.config" XDG_DATA_HOME="$scratch/home/.local/share"
export GDK_BACKEND=x11 GTK_THEME=Adwaita GSETTINGS_BACKEND=memory NO_AT_BRIDGE=1
export LANG=C.UTF-8 LC_ALL=C.UTF-8
# Pictures are the same each time, and a program that waits is at rest.
mkdir -p "$XDG_CONFIG_HOME/gtk-3.0"
cat > "$XDG_CONFIG_HOME/gtk-3.0/settings.ini" << 'SETTINGS'
[Settings]
gtk-cursor-blink=false
gtk-enable-animations=false
SETTINGS
unset WAYLAND_DISPLAY DBUS_SESSION_BUS_ADDRESS XMODIFIERS GTK_IM_MODULE 2> /dev/null || true

openbox > "$scratch/manager.log" 2>&1 &
manager=$!
# The manager has taken over when it has left its mark on the root window.
tries=0
until xprop -root _NET_SUPPORTING_WM_CHECK 2> /dev/null | grep -q 'window id'; do
  tries=$((tries + 1))
  if [ "$tries" -gt 100 ]; then
    echo "$0: the window manager did not start:" >&2
    cat "$scratch/manager.log" >&2
    exit 1
  fi
  sleep 0.1
done

# The first key makes the server change from its own keyboard to that of the tests, upon which the
# manager takes its keys anew. One that comes in that moment is lost: let it be this one.
xdotool key shift

result=0
"$@" || result=$?
exit "$result"
