#!/bin/sh
# tools/check_arrows.sh [--self-test | ROOT]
#
# Reads the includes below ROOT/src (default: this project) and fails, naming file and line, on
#   - an include that goes against the allowed arrows between the rooms,
#   - wxWidgets outside src/ui and main,
#   - headers of Windows outside *_win32.cpp, headers of POSIX outside *_host.cpp and main,
#   - conditional compilation outside these back-ends.
# --self-test proves that each of these is found, and that what is allowed passes.
set -eu

check() (
  cd "$1"
  find src -type f \( -name '*.h' -o -name '*.cpp' \) | LC_ALL=C sort | tr '\n' '\0' |
    LC_ALL=C xargs -0 -r awk '
    BEGIN {
      # Which rooms each room may include. What is below does not know what is above; scan and
      # create do not know each other.
      may["strings"] = "strings"
      may["environment"] = "strings environment"
      may["text"] = may["environment"] " text"
      may["document"] = may["text"] " document"
      may["projects"] = may["document"] " projects"
      may["scan"] = may["document"] " scan"
      may["create"] = may["document"] " create"
      may["ui"] = may["document"] " projects scan create ui"
      may["startup"] = may["ui"] " startup"
      may["tool"] = may["document"] " projects scan create startup tool"
      for (room in may) {
        count = split(may[room], names, " ")
        for (i = 1; i <= count; ++i) allowed[room, names[i]] = 1
      }
      windows = "^(windows|windowsx|winbase|winnls|winreg|winver|winuser|shlobj|shlwapi|shellapi|" \
                "objbase|ole2|commctrl|commdlg|tchar|io|direct)\\.h$"
      posix = "^(unistd|fcntl|dirent|dlfcn|pwd|grp|pthread|poll|langinfo|termios|sys/.*)\\.h$"
    }
    function fault(what) { printf "%s:%d: %s\n", FILENAME, FNR, what; faults = 1 }
    FNR == 1 {
      split(FILENAME, parts, "/")
      room = parts[2]
      base = FILENAME
      sub(/.*\//, "", base)
      is_main = base ~ /^main(_[a-z0-9_]+)?\.cpp$/
      is_win32 = base ~ /_win32\.cpp$/
      is_host = base ~ /_host\.cpp$/
      if (!(room in may)) fault("the room \"" room "\" is not on the list of rooms")
    }
    { sub(/\r$/, "") }
    /^[ \t]*#[ \t]*(if|ifdef|ifndef|elif|else)([^a-z]|$)/ && !is_win32 && !is_host {
      fault("conditional compilation outside a back-end (*_win32.cpp, *_host.cpp)")
    }
    /^[ \t]*#[ \t]*include/ {
      name = $0
      sub(/^[ \t]*#[ \t]*include[ \t]*/, "", name)
      quote = substr(name, 1, 1)
      name = substr(name, 2)
      sub(/[">].*/, "", name)
      if (name ~ /^wx\//) {
        if (room != "ui" && !is_main) fault("wxWidgets belongs in src/ui: " name)
      } else if (tolower(name) ~ windows) {
        if (!is_win32) fault("a header of Windows belongs in *_win32.cpp: " name)
      } else if (name ~ posix) {
        if (!is_host && !is_main) fault("a header of POSIX belongs in *_host.cpp: " name)
      } else if (quote == "\"" && name !~ /^[a-z_]+\.inc$/) {  # *.inc: tables of resources/
        other = name
        if (name !~ /\// || name ~ /\.\./) {
          fault("name the room: \"room/" name "\"")
        } else {
          sub(/\/.*/, "", other)
          if (!((room, other) in allowed)) {
            fault("\"" room "\" must not include \"" other "\": " name)
          }
        }
      }
    }
    END { exit faults }
    '
)

self_test() {
  scratch=$(mktemp -d)
  trap 'rm -rf "$scratch"' EXIT
  failed=0

  # expect FILE LINE good|bad: a tree with just this line, which must pass or be named.
  expect() {
    rm -rf "$scratch/src"
    mkdir -p "$scratch/src/$(dirname "$1")"
    printf '// first line\n%s\n' "$2" > "$scratch/src/$1"
    if output=$(check "$scratch"); then verdict=good; else verdict=bad; fi
    if [ "$verdict" != "$3" ]; then
      echo "self-test: src/$1 with '$2' is $verdict, expected $3" >&2
      failed=1
    elif [ "$verdict" = bad ] && ! printf '%s\n' "$output" | grep -q "^src/$1:2: "; then
      echo "self-test: src/$1 with '$2': file and line are not named in '$output'" >&2
      failed=1
    fi
  }

  expect text/a.cpp '#include "environment/b.h"' good
  expect environment/a.cpp '#include "text/b.h"' bad
  expect document/a.h '#include "create/b.h"' bad
  expect create/a.h '#include "document/b.h"' good
  expect create/a.h '#include "scan/b.h"' bad
  expect scan/a.h '  #  include "create/b.h"' bad
  expect projects/a.cpp '#include "create/b.h"' bad
  expect create/a.cpp '#include "ui/b.h"' bad
  expect ui/a.cpp '#include "create/b.h"' good
  expect ui/a.cpp '#include "startup/b.h"' bad
  expect startup/a.cpp '#include "ui/b.h"' good
  expect tool/a.cpp '#include "startup/b.h"' good
  expect tool/a.cpp '#include "ui/b.h"' bad
  expect create/a.cpp '#include "b.h"' bad
  expect create/a.cpp '#include "../scan/b.h"' bad
  expect text/a.cpp '#include "table.inc"' good
  expect cellar/a.cpp '#include "environment/b.h"' bad
  expect create/a.cpp '#include <wx/string.h>' bad
  expect ui/a.cpp '#include <wx/string.h>' good
  expect startup/main.cpp '#include <wx/app.h>' good
  expect startup/domain.cpp '#include <wx/app.h>' bad
  expect environment/a.cpp '#include <windows.h>' bad
  expect environment/a.cpp '#include <Windows.h>' bad
  expect environment/a_host.cpp '#include <windows.h>' bad
  expect environment/a_win32.cpp '#include <windows.h>' good
  expect environment/a.cpp '#include <sys/stat.h>' bad
  expect environment/a.h '#include <unistd.h>' bad
  expect environment/a_win32.cpp '#include <fcntl.h>' bad
  expect environment/a_host.cpp '#include <sys/stat.h>' good
  expect tool/main.cpp '#include <unistd.h>' good
  expect environment/a.cpp '#ifdef _WIN32' bad
  expect environment/a.h '#if defined(_WIN32)' bad
  expect environment/a_host.cpp '#ifdef __linux__' good
  expect environment/a.h '#pragma once' good
  expect environment/a.cpp '#include <vector>' good
  if [ "$failed" -eq 0 ]; then echo "check_arrows: every rule is enforced"; fi
  return "$failed"
}

case ${1:-} in
  --self-test) self_test ;;
  '') check "$(cd "$(dirname "$0")/.." && pwd)" ;;
  *) check "$1" ;;
esac
