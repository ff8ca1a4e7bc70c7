# The cameras at USB level, seen by the kernel's drivers and nothing of ours: what stands above them can rely on that.

xu=$here/xu

test_pictures_arrive_whole_and_in_order() {
    local way
    for way in '' --isochronous; do
        # shellcheck disable=SC2086
        plug K1 2 --camera ZS570 --no-microphone $way
        take "$(node_of K1 0)" 20 "$TMPDIR/depth"
        same_pictures "$TMPDIR/depth" 20 --camera ZS570 --coding y16
        take "$(node_of K1 0)" 20 "$TMPDIR/depth" -v width=320,height=240
        same_pictures "$TMPDIR/depth" 20 --camera ZS570 --coding y16 --depth-only
        take "$(node_of K1 2)" 20 "$TMPDIR/color"
        same_pictures "$TMPDIR/color" 20 --camera ZS570 --coding yuy2
        unplug K1
    done
}

test_two_cameras_at_once_with_sound() {
    plug K1 2 --camera ZS258
    plug K2 2 --camera plain
    arecord -q -D "$(card_of K1)" -f S16_LE -c 2 -r 48000 -t raw -s 24000 "$TMPDIR/sound" &
    local takers=($!)
    take "$(node_of K1 0)" 15 "$TMPDIR/depth" -p 15 & takers+=($!)
    take "$(node_of K1 2)" 15 "$TMPDIR/color" -p 15 & takers+=($!)
    take "$(node_of K2 0)" 15 "$TMPDIR/jpeg" -p 15 & takers+=($!)
    take "$(node_of K2 2)" 15 "$TMPDIR/z16" -p 15 & takers+=($!)
    local taker
    for taker in "${takers[@]}"; do wait "$taker"; done
    same_pictures "$TMPDIR/depth" 15 --camera ZS258 --coding y16
    same_pictures "$TMPDIR/color" 15 --camera ZS258 --coding yuy2
    same_pictures "$TMPDIR/jpeg" 15 --coding mjpeg
    same_pictures "$TMPDIR/z16" 15 --coding z16
    python3 "$here/tone.py" "$TMPDIR/sound" 24000
}

test_jpeg_without_tables() {
    plug K1 2 --camera plain --no-huffman --no-microphone
    take "$(node_of K1 0)" 5 "$TMPDIR/bare"
    same_pictures "$TMPDIR/bare" 5 --coding mjpeg --no-huffman
    ! "$camera" --pictures 5 --coding mjpeg | cmp -s - "$TMPDIR/bare"
    ! LC_ALL=C grep -q $'\xff\xc4' "$TMPDIR/bare"
}

test_one_interface_has_one_format_at_a_time() {
    plug K1 1 --camera plain-one --no-microphone
    local node
    node=$(node_of K1 0)
    take "$node" 5 "$TMPDIR/z16" -v pixelformat='Z16 '
    same_pictures "$TMPDIR/z16" 5 --coding z16
    v4l2-ctl -d "$node" -v pixelformat=MJPG --stream-mmap --stream-count=0 --stream-to="$TMPDIR/mjpeg" >/dev/null 2>&1 &
    local streamer=$!
    eventually 20 test -s "$TMPDIR/mjpeg" # asked before, the other one is who may set the format, and this one ends
    busy "$node"
    kill "$streamer"
}
busy() { { v4l2-ctl -d "$1" -v pixelformat='Z16 ' 2>&1 || true; } | grep -q 'Device or resource busy'; }

test_controls_reach_the_camera() {
    plug K1 2 --camera plain
    local node
    node=$(node_of K1 0)
    expect 'brightness.*min=-64 max=64 step=1 default=0 value=0' v4l2-ctl -d "$node" -l
    expect 'exposure_time_absolute.*min=1 max=333 step=1 default=100 value=100' v4l2-ctl -d "$node" -l
    v4l2-ctl -d "$node" -c brightness=-64
    expect 'value=-64' v4l2-ctl -d "$node" -l
    take "$node" 3 "$TMPDIR/dark"
    ! same_pictures "$TMPDIR/dark" 3 --coding mjpeg 2>/dev/null
    expect 'Mic' amixer -D "$(card_of K1)" scontrols
    amixer -q -D "$(card_of K1)" sset Mic 0% nocap
    arecord -q -D "$(card_of K1)" -f S16_LE -c 2 -r 48000 -t raw -s 4800 "$TMPDIR/sound"
    cmp -n 19200 "$TMPDIR/sound" /dev/zero
}

test_units_answer_as_their_controllers_do() {
    plug K1 2 --camera ZS570 --no-microphone
    local depth
    depth=$(node_of K1 0)
    [ "$($xu "$depth" 6 1 len)" = 4000 ]
    [ "$($xu "$depth" 6 1 info)" = 03 ]
    $xu "$depth" 6 1 get 64 | grep -q '^5a01020304' # the control information, with its version
    # A register of the time-of-flight controller, device 1 on the bus: written, and asked for by a SET before the GET.
    $xu "$depth" 6 2 set 11550034120000
    $xu "$depth" 6 2 set 91550000000000
    [ "$($xu "$depth" 6 2 get 7)" = 91550034120000 ]
    # Of the flash a range, then what the states before have prepared.
    local no=0000000000000000000000000000000000000000000000000000000000
    $xu "$depth" 6 3 set "01000000000$no" && $xu "$depth" 6 3 get 33 | grep -q '^0040ffff'
    ! $xu "$(node_of K1 2)" 6 1 len >"$TMPDIR/said" && grep -qx ENOENT "$TMPDIR/said" # not its chain
    ! $xu "$depth" 6 9 len >"$TMPDIR/said" && grep -qx ENOENT "$TMPDIR/said"
    ! $xu "$depth" 6 1 get 63 >"$TMPDIR/said" && grep -qx ENOBUFS "$TMPDIR/said"
    plug K2 2 --camera ZS258 --no-microphone
    $xu "$(node_of K2 0)" 4 4 set 20028109 && $xu "$(node_of K2 0)" 4 4 set 00028100
    [ "$($xu "$(node_of K2 0)" 4 4 get 4)" = 00028109 ]
    plug K3 2 --camera ZS345 --no-microphone
    $xu "$(node_of K3 0)" 4 5 set a1100077 && $xu "$(node_of K3 0)" 4 5 set a0100000
    [ "$($xu "$(node_of K3 0)" 4 5 get 4)" = a0100077 ]
}

# Each of the tool's tests is one more of the driver than of the camera; what fails on this driver whatever the camera is listed.
test_compliance() {
    local stream kernel
    kernel=$(uname -r | cut -d. -f1,2)
    sed -n "s/^\(\*\|$kernel\) //p" "$here/compliance-of-the-driver" | sort -u >"$TMPDIR/known"
    plug K1 2 --camera plain --no-microphone
    for stream in 0 2; do
        v4l2-compliance -d "$(node_of K1 $stream)" -s >"$TMPDIR/report" 2>&1 || true
        grep -q '^Total for uvcvideo' "$TMPDIR/report"
        sed -n 's/^\s*test \(.*\): FAIL$/\1/p' "$TMPDIR/report" >"$TMPDIR/failed"
        sort -u "$TMPDIR/failed" | comm -23 - "$TMPDIR/known" >"$TMPDIR/new"
        [ ! -s "$TMPDIR/new" ] || { cat "$TMPDIR/new" "$TMPDIR/report" && return 1; }
    done
}
