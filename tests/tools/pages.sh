#!/usr/bin/env bash
# What the tool and the README say of it: every example does what it says, and bash completes what is there.
set -euo pipefail
zentara=$1
readme=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp "$(dirname "$zentara")/Plugins/simulated_video_device.so" "$work/my_camera.so"
cd "$work"
fail() { echo "FAILED: $*" >&2; exit 1; }
zentara() { "$zentara" "$@"; }

viewer=$(ls "${zentara%/*}/zentara-view" 2>/dev/null || true) # where it is built
count=0
for verb in $(zentara --help | sed -n '/^Verbs:/,/^$/s/^  \([a-z0-9]*\) .*/\1/p'); do
    [ "$verb" != view ] || [ -n "$viewer" ] || continue
    examples=$(zentara "$verb" --help | sed -n '/^Examples:/,$s/^  zentara //p')
    [ -n "$examples" ] || fail "no example of $verb"
    while read -r line; do
        eval "zentara ${line%%  # *}" >said 2>&1 || fail "zentara $line: $(cat said)"
        count=$((count + 1))
    done <<<"$examples"
done
[ "$count" -ge 20 ] || fail "only $count examples"
for file in depth.png cloud.ply all.ztrec warm.png camera.json firmware.bin flash.json; do
    [ -s $file ] || fail "no $file was written"
done

mkdir session && cd session
while read -r line; do
    [[ $line != 'zentara view '* ]] || [ -n "$viewer" ] || continue
    eval "$line" >said 2>&1 || fail "$line: $(cat said)"
    count=$((count + 1))
done < <(sed -n '/^## The tool/,/^Every verb/s/^    zentara /zentara /p' "$readme")
[ "$count" -ge 50 ] || fail "only $count examples and lines of the README"

source <(zentara completion bash)
# completes LINE WORD...: these words, and no other, may come next. Bash splits words at its own places.
completes() {
    COMP_LINE=$1 COMP_POINT=${#1}
    read -ra COMP_WORDS <<<"${1//@/ @ }"
    [[ $1 == *' ' ]] && COMP_WORDS+=('')
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    COMPREPLY=()
    _zentara 2>/dev/null || true # the shell has no completion under way
    shift
    [ "${COMPREPLY[*]}" = "$*" ] || fail "'$COMP_LINE' is completed by '${COMPREPLY[*]}', not by '$*'"
}
completes 'zentara re' reg
completes 'zentara reg read ' bridge rgb tof
completes 'zentara reg read tof 1 --camera ' SIM0258 SIM0345 SIM0570
completes 'zentara stream --pl' --play --plugin --ply
completes 'zentara stream --camera SIM0345 --mode 320x240@' 60
completes 'zentara rom verify --nonsense '
completes 'zentara params set 1' 10= 11= 12= 13= 14= 15= 1=
echo "$count examples"
