# Sourced by the other scripts, which run in the project's folder: building, and a private Wine on a private display.
script=$(realpath "${BASH_SOURCE[1]-/}")
cd -P "$(dirname "${BASH_SOURCE[0]}")/.."
root=$PWD

# What an earlier run as root, through sudo, say, left in build/ can't be written by another user.
writable_build() {
  local foreign
  mkdir -p build
  foreign=$(find build -maxdepth 2 ! -type l ! -writable -print -quit)
  [ -n "$foreign" ] || return 0
  echo "$foreign belongs to $(stat -c %U "$foreign"), and $(id -un) may not write there: an earlier run was another user's." >&2
  echo "Remove what it left (sudo rm -rf $root/build), or run this as that user." >&2
  return 1
}

# Two scripts in one folder would pull Wine and the build from under each other: the second one waits. The lock is that of
# a process around the script, so that nothing which the script starts can keep it. A script that runs another one of this
# folder has the lock already.
if [[ $script == "$root"/scripts/* && ${CORVANE_SCRIPT-} != "$root" ]]; then
  writable_build || exit 1
  export CORVANE_SCRIPT=$root
  flock -n build/lock true || echo "Another script is at work in $root: waiting for its end, two hours at most." >&2
  exec flock -o -w 7200 build/lock "$script" "$@"
fi

# Configures and builds one preset; shows the compiler's words only when something fails.
build() { # preset [target...]
  mkdir -p build
  local log=build/$1.log
  : >"$log" || return 1
  if ! { cmake --preset "$1" && cmake --build --preset "$1" ${2+--target "${@:2}"}; } >"$log" 2>&1; then
    tail -n 40 "$log" >&2
    echo "Building '$1' failed; the whole log is $log" >&2
    return 1
  fi
}

# Whether this machine runs 32-bit programs; some virtual ones can't, whatever is installed.
runs_32bit() { /usr/lib/wine/wine --version >/dev/null 2>&1; }

# Lets an emulator run Wine's 32-bit programs: many times slower, but the same component on the same Wine. Wine starts its
# further processes from beside its own libraries, so the emulated loader gets a tree of its own, of links to the
# installed files. The server is the 64-bit one, which needs no emulator.
emulate_32bit() {
  local tree=$root/build/wine32
  command -v qemu-i386 >/dev/null || { echo "qemu-i386 is missing: run scripts/setup" >&2; return 1; }
  if [ ! -e "$tree/complete" ]; then
    rm -rf "$tree"
    mkdir -p "$tree/lib/wine" "$tree/lib/i386-linux-gnu" "$tree/bin" "$tree/share"
    ln -s /usr/share/wine "$tree/share/wine"
    cp -al /usr/lib/i386-linux-gnu/wine "$tree/lib/i386-linux-gnu/" 2>/dev/null ||
      cp -a /usr/lib/i386-linux-gnu/wine "$tree/lib/i386-linux-gnu/"
    cp /usr/lib/wine/wine "$tree/lib/wine/wine-i386"
    # The preloader only reserves addresses, which the emulator keeps free anyway.
    printf '#!/bin/sh\nWINELOADERNOEXEC=1 exec qemu-i386 %s "$@"\n' "'$tree/lib/wine/wine-i386'" >"$tree/lib/wine/wine"
    printf '#!/bin/sh\nWINELOADERNOEXEC=1 exec qemu-i386 "$@"\n' >"$tree/lib/wine/wine-preloader"
    printf '#!/bin/sh\nexec %s wineboot "$@"\n' "'$tree/lib/wine/wine'" >"$tree/bin/wineboot"
    printf '#!/bin/sh\nexec %s winepath "$@"\n' "'$tree/lib/wine/wine'" >"$tree/bin/winepath"
    printf '#!/bin/sh\nexec %s "$@"\n' "'$tree/lib/wine/wine'" >"$tree/bin/wine"
    chmod +x "$tree"/bin/* "$tree"/lib/wine/*
    touch "$tree/complete"
  fi
  export PATH=$tree/bin:$PATH WINELOADER=$tree/lib/wine/wine WINESERVER=/usr/lib/wine/wineserver64
}

# Starts a virtual display and a Wine prefix of the project's own, both gone when the script ends. Code page 1251, that of
# the modules' texts, comes with the Russian locale.
start_wine() { # [folder of the prefix in build/]
  export WINEPREFIX=$root/build/${1-wine} WINEARCH=win32 WINEDEBUG=-all
  # Wine knows the locale by name; bash warns that the machine has not generated it.
  { export LC_ALL=ru_RU.UTF-8; } 2>/dev/null
  # The prefix needs no browser and no .NET; without this Wine asks for them. And nothing of it belongs in the menus of the
  # user's desktop.
  export WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe="
  runs_32bit || emulate_32bit
  trap stop_wine EXIT
  wineserver -k 2>/dev/null || true
  local number_file=$root/build/display
  rm -f "$number_file"
  Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp >build/xvfb.log 2>&1 3>"$number_file" &
  xvfb=$!
  local tries=0
  until [ -s "$number_file" ]; do
    tries=$((tries + 1))
    [ "$tries" -lt 100 ] && kill -0 "$xvfb" 2>/dev/null || { cat build/xvfb.log >&2; return 1; }
    sleep 0.1
  done
  export DISPLAY=:$(cat "$number_file")
  # Wine refuses a prefix of another user, left by a run through sudo, say: it is made anew.
  [ ! -d "$WINEPREFIX" ] || [ -O "$WINEPREFIX" ] || rm -rf "$WINEPREFIX"
  timeout 600 wineboot >build/wine.log 2>&1 || { tail -n 20 build/wine.log >&2; echo "Wine can't start" >&2; return 1; }
}

stop_wine() {
  timeout 30 wineserver -k 2>/dev/null || true
  [ -z "${xvfb-}" ] || kill "$xvfb" 2>/dev/null || true
}
