# Sourced by the other scripts, which run in the project's folder: building, and a private Wine on a private display.
cd "$(dirname "${BASH_SOURCE[0]}")/.."
root=$PWD

# Configures and builds one preset; shows the compiler's words only when something fails.
build() { # preset [target...]
  mkdir -p build
  local log=build/$1.log
  if ! { cmake --preset "$1" && cmake --build --preset "$1" ${2+--target "${@:2}"}; } >"$log" 2>&1; then
    tail -n 40 "$log" >&2
    echo "Building '$1' failed; the whole log is $log" >&2
    return 1
  fi
}

# Starts a virtual display and a Wine prefix of the project's own, both gone when the script ends. Code page 1251, that of
# the modules' texts, comes with the Russian locale.
start_wine() { # [folder of the prefix in build/]
  export WINEPREFIX=$root/build/${1-wine} WINEARCH=win32 WINEDEBUG=-all
  # Wine knows the locale by name; bash warns that the machine has not generated it.
  { export LC_ALL=ru_RU.UTF-8; } 2>/dev/null
  # The prefix needs no browser and no .NET; without this Wine asks for them.
  export WINEDLLOVERRIDES="mscoree,mshtml="
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
  timeout 180 wineboot -u >build/wine.log 2>&1 || { tail -n 20 build/wine.log >&2; echo "Wine can't start" >&2; return 1; }
}

stop_wine() {
  timeout 30 wineserver -k 2>/dev/null || true
  [ -z "${xvfb-}" ] || kill "$xvfb" 2>/dev/null || true
}
