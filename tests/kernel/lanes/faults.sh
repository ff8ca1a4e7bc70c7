# What the kernel's drivers make of cameras that fail; what stands above them lives with exactly this.

xu=$here/xu

# fails ERRNO COMMAND...: xu ends with it.
fails() { refuse 1 "^$1\$" "${@:2}"; }

test_a_refusal_carries_its_reason() {
    plug K1 2 --camera ZS570 --no-microphone --fault 'unit stall times 1 reason 1' --fault 'unit stall after 1 times 1 reason 4' \
        --fault 'unit stall after 2 times 1'
    local node
    node=$(node_of K1 0)
    fails EBUSY $xu "$node" 6 1 get 64
    fails ERANGE $xu "$node" 6 1 get 64
    fails EPIPE $xu "$node" 6 1 get 64
    expect '^5a01020304' $xu "$node" 6 1 get 64
}

test_a_short_answer_is_filled_with_zeros() {
    plug K1 2 --camera ZS570 --no-microphone --fault 'unit short times 1'
    expect '^5a01020304.*0{64}$' $xu "$(node_of K1 0)" 6 1 get 64
}

test_a_unit_that_does_not_tell_its_length_is_not_there() {
    plug K1 2 --camera ZS570 --no-microphone --fault 'length stall'
    fails ENOENT $xu "$(node_of K1 0)" 6 1 get 64
}

test_no_answer_holds_its_caller_for_five_seconds() {
    plug K1 2 --camera ZS570 --no-microphone --fault 'unit silent times 1'
    local node began
    node=$(node_of K1 0) began=$(date +%s)
    fails ETIMEDOUT $xu "$node" 6 1 get 64
    [ $(($(date +%s) - began)) -ge 4 ]
    expect '^5a01020304' $xu "$node" 6 1 get 64 # and then it goes on
}

test_a_silent_camera_holds_the_start_of_a_stream() {
    plug K1 2 --camera plain --no-microphone --fault 'commit silent'
    local began
    began=$(date +%s)
    v4l2-ctl -d "$(node_of K1 2)" --stream-mmap --stream-count=1 --stream-to="$TMPDIR/z16" >"$TMPDIR/said" 2>&1 || true
    grep -q 'STREAMON.*Input/output error' "$TMPDIR/said"
    [ $(($(date +%s) - began)) -ge 4 ]
    [ ! -s "$TMPDIR/z16" ]
}

test_an_unplug_ends_a_unit_request() {
    plug K1 2 --camera ZS570 --no-microphone --fault 'unit unplug'
    refuse 1 '^(ESHUTDOWN|ENODEV|EPROTO|ENOENT|EPIPE)$' $xu "$(node_of K1 0)" 6 1 get 64
    eventually 10 is_gone K1
}

test_an_unplug_ends_a_stream() {
    plug K1 2 --camera plain --no-microphone --fault 'frame unplug after 3'
    timeout 30 v4l2-ctl -d "$(node_of K1 2)" --stream-mmap --stream-count=9 --stream-to="$TMPDIR/z16" >/dev/null 2>&1 || true
    same_pictures "$TMPDIR/z16" 3 --coding z16
    eventually 10 is_gone K1
    unplug K1
    plug K1 2 --camera plain --no-microphone
    take "$(node_of K1 2)" 3 "$TMPDIR/z16"
    same_pictures "$TMPDIR/z16" 3 --coding z16
}

test_without_payloads_nothing_comes() {
    plug K1 2 --camera plain --no-microphone --fault 'frame silent after 3'
    refuse 124 . timeout 5 v4l2-ctl -d "$(node_of K1 2)" --stream-mmap --stream-count=9 --stream-to="$TMPDIR/z16"
    "$camera" --pictures 2 --coding z16 | cmp -n $((2 * 320 * 240 * 2)) - "$TMPDIR/z16" # its end was never written
    [ "$(stat -c %s "$TMPDIR/z16")" -le $((3 * 320 * 240 * 2)) ]
}

test_a_truncated_picture_is_dropped() {
    local bytes=$((320 * 240 * 2))
    plug K1 2 --camera plain --no-microphone --fault 'frame short after 2 times 1'
    take "$(node_of K1 2)" 4 "$TMPDIR/z16"
    "$camera" --pictures 5 --coding z16 >"$TMPDIR/all"
    cmp -n $((2 * bytes)) "$TMPDIR/all" "$TMPDIR/z16"
    cmp -n $((2 * bytes)) -i $((3 * bytes)):$((2 * bytes)) "$TMPDIR/all" "$TMPDIR/z16"
}

# Each of these descriptors is wrong in one place; whatever the kernel makes of it, it goes on, and so does the next camera.
test_hostile_descriptors_harm_nobody() {
    "$camera" --descriptors --camera plain --no-microphone >"$TMPDIR/good"
    python3 "$here/spoil.py" "$TMPDIR/good" "$TMPDIR" >"$TMPDIR/names"
    local name
    while read -r name; do
        "$camera" --serial "$name" --camera plain --no-microphone --configuration "$TMPDIR/$name" >/dev/null &
        plugged[$name]=$!
        eventually 10 is_there "$name"
        unplug "$name"
    done <"$TMPDIR/names"
    plug K1 2 --camera plain --no-microphone
    take "$(node_of K1 2)" 2 "$TMPDIR/z16"
    same_pictures "$TMPDIR/z16" 2 --coding z16
}
is_there() { ! is_gone "$1"; }

# The kernel complains of pictures and of transfers of no bytes, whoever asks for them. The tool does not ask a unit for such.
test_lengths_of_zero_make_the_kernel_warn() {
    expect_kernel_warning 'vb2_core_reqbufs|usb_submit_urb'
    plug K2 2 --camera ZS570 --no-microphone --fault 'length zero'
    use_real_cameras
    expect 'control 1  0 bytes' zentara xu list --camera K2
    warnings 0
    [ -z "$($xu "$(node_of K2 0)" 6 1 get 0)" ]
    warnings 1
    plug K1 2 --camera plain --no-microphone --fault 'probe zero after 6'
    v4l2-ctl -d "$(node_of K1 0)" -v width=320,height=240 --stream-mmap --stream-count=1 --stream-to="$TMPDIR/jpeg" >"$TMPDIR/said" 2>&1 || true
    [ ! -s "$TMPDIR/jpeg" ]
    warnings 2
}
warnings() { [ "$(dmesg | sed '1,/zentara: test lengths_of/d' | grep -c WARNING:)" = "$1" ]; }
