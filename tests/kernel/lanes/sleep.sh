# A camera that sleeps when nobody uses it, as those of real machines do; it is alone, for the kernel's virtual host controller mixes up
# the sleep of several.

# is RUNTIME_STATUS SERIAL: of the camera's power.
is() {
    local node
    node=$(node_of "$2" 0) && holds "/sys/class/video4linux/${node##*/}/device/../power/runtime_status" "$1"
}

test_a_sleeping_camera_wakes_up() {
    use_real_cameras
    local round
    echo 1 >/sys/module/usbcore/parameters/autosuspend # seconds, of what is plugged in from now on
    plug SLEEPY 2 --camera ZS570 --no-microphone
    for round in 1 2; do
        eventually 20 is suspended SLEEPY
        expect '^SLEEPY .*depth color' zentara devices
        stream_awake
    done
    eventually 20 is suspended SLEEPY
    expect 'temperature' zentara info --camera SLEEPY
    echo -1 >/sys/module/usbcore/parameters/autosuspend
}
stream_awake() {
    eventually 20 is suspended SLEEPY # the list has asked its nodes
    zentara stream --camera SLEEPY --frames 8 --raw "$TMPDIR/raw" >"$TMPDIR/said" &
    eventually 20 is active SLEEPY
    wait $!
    taken_pictures "$TMPDIR/raw" $((3 * 320 * 240 * 2)) $((2 * 320 * 240 * 2)) --camera ZS570 --coding y16 >"$TMPDIR/gaps"
    same_gaps "$(dropped)"
}
