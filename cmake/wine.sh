#!/usr/bin/env bash
# Runs a Windows program under Wine in a prefix of its own: wine.sh PROGRAM [ARGUMENT...]
set -eu
here=$(cd "$(dirname "$0")/.." && pwd)
export WINEPREFIX="${ZENTARA_WINEPREFIX:-$here/build/wineprefix}"
export WINEDEBUG="${WINEDEBUG:--all}"
# Without this a crashed program starts the debugger and can still exit 0; no Mono or Gecko is offered either.
export WINEDLLOVERRIDES="winedbg.exe=d;mscoree=d;mshtml=d"
unset DISPLAY
wine=$(command -v wine64 || true)
for candidate in /usr/lib/wine/wine64 /usr/lib64/wine/wine64; do
    [ -n "$wine" ] || { [ -x "$candidate" ] && wine=$candidate; }
done
[ -n "$wine" ] || { echo "wine.sh: wine64 is not installed" >&2; exit 127; }
if [ ! -e "$WINEPREFIX/.ready" ]; then
    mkdir -p "$WINEPREFIX"
    # One process makes the prefix; programs started meanwhile wait for it.
    (
        flock 9
        if [ ! -e "$WINEPREFIX/.ready" ]; then
            "$wine" wineboot --init >/dev/null 2>&1 9>&- || true
            touch "$WINEPREFIX/.ready"
        fi
    ) 9>"$WINEPREFIX.lock"
fi
# Wine's server and services keep the streams of the program that started them: whoever reads that program's output
# would wait until the last program has ended.
"$wine" cmd /c exit </dev/null >/dev/null 2>&1 || true
exec "$wine" "$@"
