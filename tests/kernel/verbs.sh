# What the tests of the guest say to each other: sourced by suite.

# expect PATTERN COMMAND...: the command succeeds, and a line of what it says matches.
expect() {
    local pattern=$1 said
    shift
    said=$("$@" 2>&1) || { printf '%s\n' "$said" "failed: $*" >&2 && return 1; }
    grep -qE -- "$pattern" <<<"$said" || { printf '%s\n' "$said" "has no '$pattern': $*" >&2 && return 1; }
}

# refuse STATUS PATTERN COMMAND...: the command ends with that exit status, and a line of what it says matches.
refuse() {
    local wanted=$1 pattern=$2 said status=0
    shift 2
    said=$("$@" 2>&1) || status=$?
    [ "$status" = "$wanted" ] && grep -qE -- "$pattern" <<<"$said" && return
    printf '%s\n' "$said" "status $status instead of $wanted, or no '$pattern': $*" >&2
    return 1
}

exec {nothing}<> <(:) # a pipe that nobody writes to: waiting for it starts no process, which takes long here
pause() { read -rt "$1" -u "$nothing" || true; }

# eventually SECONDS COMMAND...: the command succeeds within that time.
eventually() {
    local until=$((EPOCHSECONDS + $1))
    shift
    until "$@" >/dev/null 2>&1; do
        [ "$EPOCHSECONDS" -lt "$until" ] || { echo "not in time: $*" >&2 && return 1; }
        pause 0.05
    done
}

expect_kernel_warning() { echo "$1" >>"$TMPDIR/expected-warnings"; }

# Cameras at USB level: each is a process, and gone with it.
camera=$ZENTARA_BUILD/bin/simulated_usb_camera
device=$ZENTARA_BUILD/bin/plugin_device # a device plug-in by itself
declare -A plugged=()

# plug SERIAL STREAMS OPTION...: plugs a camera in and waits until the kernel has made its nodes, two for each stream.
plug() {
    local serial=$1 streams=$2
    shift 2
    "$camera" --serial "$serial" "$@" >"$TMPDIR/camera-$serial" 2>&1 &
    plugged[$serial]=$!
    eventually 20 node_of "$serial" $((2 * streams - 1)) || { cat "$TMPDIR/camera-$serial" >&2 && return 1; }
    [[ " $* " = *" --no-microphone "* ]] || eventually 20 card_of "$serial"
}

# unplug SERIAL: and waits until the kernel has noticed. The nodes may stay as long as somebody has them open.
unplug() {
    kill "${plugged[$1]}" 2>/dev/null || true
    wait "${plugged[$1]}" 2>/dev/null || true
    unset "plugged[$1]"
    eventually 20 is_gone "$1"
}

unplug_all() {
    local serial
    for serial in "${!plugged[@]}"; do unplug "$serial"; done
}

# holds FILE TEXT: without starting a process, which takes long here.
holds() {
    local line
    read -r line 2>/dev/null <"$1" && [ "$line" = "$2" ]
}

is_gone() {
    local serial
    for serial in /sys/bus/usb/devices/*/serial; do ! holds "$serial" "$1" || return 1; done
}

# node_of SERIAL INDEX: the path of a video node; of stream N the pictures are number 2 N, what is said of them is the next.
node_of() {
    local node
    for node in /sys/class/video4linux/video*; do
        holds "$node/device/../serial" "$1" && holds "$node/index" "$2" && [ -e "/dev/${node##*/}" ] || continue
        echo "/dev/${node##*/}" && return
    done
    return 1
}

# card_of SERIAL: the name of its microphone for ALSA.
card_of() {
    local card
    for card in /sys/class/sound/card*; do
        holds "$card/device/../serial" "$1" && [ -e "/dev/snd/pcmC${card##*card}D0c" ] || continue
        echo "hw:${card##*card}" && return
    done
    return 1
}

# take NODE COUNT FILE [OPTION...]: pictures as the driver delivers them. That it succeeds proves nothing: the bytes are compared.
take() {
    local node=$1 count=$2 file=$3
    shift 3
    rm -f "$file"
    v4l2-ctl -d "$node" --stream-mmap --stream-count="$count" --stream-to="$file" "$@" >"$TMPDIR/taken" 2>&1
    [ -s "$file" ] || { cat "$TMPDIR/taken" >&2 && return 1; }
}

# same_pictures FILE COUNT OPTION...: the file holds the first pictures that such a camera sends, byte for byte, and nothing else.
same_pictures() {
    local file=$1 count=$2
    shift 2
    "$camera" --pictures "$count" "$@" | cmp - "$file"
}

# An installation whose descriptions are those of the simulated cameras, told to be reached through the kernel; nothing else is
# plugged in. Cameras send no more pictures a second than can be drawn here. The tool is zentara; what it writes as an ordinary user goes to $TMPDIR/user.
use_real_cameras() {
    export ZENTARASDK_ROOT=$TMPDIR/root/ ZENTARA_SIMULATED_CAMERAS=$TMPDIR/bus.json
    local file
    mkdir -p "$ZENTARASDK_ROOT/cameras" "$TMPDIR/user" && chown nobody "$TMPDIR/user"
    ln -sfn "$ZENTARA_BUILD/bin" "$ZENTARASDK_ROOT/bin"
    for file in "$ZENTARA_BUILD"/cameras/*.json; do
        sed 's/MOCKVIDEODEVICE_IMPL/V4L2VIDEO_IMPL/; s/MOCKAUDIODEVICE_IMPL/ALSAAUDIO_IMPL/; s/"frameRate": 60/"frameRate": 15/' "$file" >"$ZENTARASDK_ROOT/cameras/${file##*/}"
    done
    echo '{ "format": 1, "cameras": [] }' >"$ZENTARA_SIMULATED_CAMERAS"
}
as=() # what the tool is run by: root, or as_user GROUPS
zentara() { "${as[@]}" "$ZENTARASDK_ROOT/bin/zentara" "$@"; }

# taken_pictures FILE BYTES EACH OPTION...: the file holds frames of BYTES, each of which begins with one of the pictures that such
# a camera sends, of EACH bytes, and with a later one than before. Prints how many were left out.
taken_pictures() {
    python3 "$here/pictures.py" "$1" "$2" "$3" < <("$camera" --pictures 300 "${@:4}" || true)
}

# same_gaps COUNT: as many were left out of what was compared last, into $TMPDIR/gaps, as the tool or the module said in $TMPDIR/said.
# More may be said, though not of every second frame: on a busy machine the emulated camera is late, and of a late frame its time tells
# the same as of one behind a lost one. One less may be said: when the first one is late its time lies nearer to the others'.
same_gaps() {
    local first last left
    read -r first last left < <(sed -n 's/.* \([0-9]*\) to \([0-9]*\), \([0-9]*\) left out.*/\1 \2 \3/p' "$TMPDIR/gaps")
    [ "$left" -le $(($1 + 1)) ] && [ $((2 * ($1 - left))) -le $((last - first + 1 - left)) ] || { cat "$TMPDIR/said" "$TMPDIR/gaps" >&2 && return 1; }
}
dropped() { sed -n 's/^frames .* \([0-9]*\) dropped.*/\1/p' "$TMPDIR/said" | head -n 1; }
missing() { sed -n "s/^$1: \([0-9]*\) missing/\1/p" "$TMPDIR/said"; }

# The groups' members may use what is plugged in, as the shipped rule for udev has it.
open_to_groups() { chgrp video /dev/video* && chgrp audio /dev/snd/* && chmod 660 /dev/video* /dev/snd/*; }
as_user() { setpriv --reuid=nobody --regid=nogroup --groups="$1" "${@:2}"; }
