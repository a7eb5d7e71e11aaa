#!/bin/sh
# cmake/run_under_wine.sh PROGRAM.exe [ARG...]
#
# Runs a Windows program with a Windows of its own (a Wine prefix): the one that WINEPREFIX names, else
# one beside the user's caches that every build shares. It is made on the first call. Nothing of the
# developer's own ~/.wine is read or changed.
set -eu

WINEPREFIX=${WINEPREFIX:-${XDG_CACHE_HOME:-$HOME/.cache}/tx-wine}
# Wine's own complaints would land in the program's standard error; WINEDEBUG brings them back.
WINEDEBUG=${WINEDEBUG:--all}
# Without these two, a new prefix asks in a window whether to download them.
WINEDLLOVERRIDES=${WINEDLLOVERRIDES:-mscoree,mshtml=}
export WINEPREFIX WINEDEBUG WINEDLLOVERRIDES

if [ ! -e "$WINEPREFIX/ready" ]; then
  mkdir -p "$WINEPREFIX"
  (
    # Several tests may start at once; one of them makes the prefix, the others wait.
    flock 9
    if [ ! -e "$WINEPREFIX/ready" ]; then
      # What Wine leaves running must not keep the lock.
      if ! wine wineboot --init > "$WINEPREFIX/wineboot.log" 2>&1 9>&-; then
        cat "$WINEPREFIX/wineboot.log" >&2
        echo "$0: wineboot failed; no Windows in $WINEPREFIX" >&2
        exit 1
      fi
      touch "$WINEPREFIX/ready"
    fi
  ) 9> "$WINEPREFIX/lock"
fi
exec wine "$@"
