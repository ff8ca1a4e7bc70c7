# The whole way: from a camera at USB level through the kernel's drivers and the plug-ins to what the tool says and writes.

depth_frame=$((3 * 320 * 240 * 2)) # depth, confidence and phase

test_each_controller_is_driven() {
    use_real_cameras
    local row serial model unit
    for row in 'SIM0570 ZS570' 'SIM0258 ZS258' 'SIM0345 ZS345'; do
        read -r serial model <<<"$row"
        plug "$serial" 2 --camera "$model"
        expect "^$serial .*depth color audio" zentara devices
        expect "$serial" zentara info --camera "$serial"
        zentara stream --camera "$serial" --frames 5 --raw "$TMPDIR/raw" --ply "$ZENTARA_JOB/$serial.ply" --png "$ZENTARA_JOB/$serial.png"
        taken_pictures "$TMPDIR/raw" $depth_frame $((2 * 320 * 240 * 2)) --camera "$model" --coding y16
        [ -s "$ZENTARA_JOB/$serial.ply" ]
        expect 'all is right' zentara rom verify --camera "$serial"
        expect '0x2035' zentara reg read --camera "$serial" tof 0x21
        unplug "$serial"
    done
}

test_the_flash_is_read_whole() {
    use_real_cameras
    plug SIM0570 2 --camera ZS570 --settings "keepFlash $TMPDIR/kept"
    zentara firmware dump --camera SIM0570 "$TMPDIR/dump"
    cmp "$TMPDIR/kept" "$TMPDIR/dump"
}

test_two_cameras_and_their_sound() {
    use_real_cameras
    plug SIM0258 2 --camera ZS258
    plug PLAIN 2 --camera plain
    zentara stream --all --color --audio --frames 15 --raw "$TMPDIR/all.raw" --wav "$TMPDIR/all.wav" >"$TMPDIR/said"
    taken_pictures "$TMPDIR/all.SIM0258.raw" $depth_frame $((2 * 320 * 240 * 2)) --camera ZS258 --coding y16
    taken_pictures "$TMPDIR/all.PLAIN.raw" $depth_frame $((320 * 240 * 2)) --coding z16
    [ "$(stat -c %s "$TMPDIR/all.SIM0258.wav")" -gt 20000 ] && [ "$(stat -c %s "$TMPDIR/all.PLAIN.wav")" -gt 20000 ]
}

test_twenty_cycles_of_plugging() {
    use_real_cameras
    local cycle
    for cycle in {1..20}; do
        plug PLAIN 2 --camera plain --no-microphone
        zentara stream --camera PLAIN --frames 3 --raw "$TMPDIR/raw" >"$TMPDIR/said"
        taken_pictures "$TMPDIR/raw" $depth_frame $((320 * 240 * 2)) --coding z16
        unplug PLAIN
    done
    refuse 3 . zentara stream --camera PLAIN --frames 3
}

test_an_ordinary_user_needs_the_groups() {
    use_real_cameras
    chmod 755 "$TMPDIR" "$TMPDIR/root"
    plug PLAIN 2 --camera plain
    refuse 5 'Permission denied' as_user nogroup "$ZENTARASDK_ROOT/bin/zentara" stream --camera PLAIN --frames 3
    chgrp video /dev/video* && chmod 660 /dev/video*
    chgrp audio /dev/snd/* && chmod 660 /dev/snd/*
    expect 'depth' as_user video,audio "$ZENTARASDK_ROOT/bin/zentara" stream --camera PLAIN --color --audio --frames 3
}

test_an_unplug_ends_the_stream_and_the_next_one_goes_on() {
    use_real_cameras
    plug PLAIN 2 --camera plain --fault 'frame unplug after 20'
    refuse 3 'was unplugged after [0-9]+ units' zentara stream --camera PLAIN --frames 100
    unplug PLAIN
    plug PLAIN 2 --camera plain
    expect '3 of 3' zentara stream --camera PLAIN --frames 3
}

# As docs/real-cameras.md has it, with the numbers of this camera in the place of the example's.
test_the_recipe_describes_a_new_camera() {
    use_real_cameras
    plug PLAIN 2 --camera plain
    local ids vendor product revision node
    ids=$(lsusb | sed -n 's/.*ID \([0-9a-f]*:[0-9a-f]*\) .*Plain.*/\1/p')
    vendor=${ids%:*} product=${ids#*:}
    revision=$(lsusb -v -d "$ids" 2>/dev/null | sed -n 's/ *bcdDevice *\([0-9]*\)\.\([0-9]*\)/0x0\1\2/p')
    node=$(node_of PLAIN 2)
    expect "'Z16 '" v4l2-ctl -d "$node" --list-formats-ext
    expect 'Size: Discrete 320x240' v4l2-ctl -d "$node" --list-formats-ext
    sed -n '/^```json/,/^```$/{/^```/!p}' docs/real-cameras.md |
        sed "s/0x1234/0x$vendor/; s/0x5678/0x$product/; s/0x0102/$revision/; s/1280/640/; s/VGA/QVGA/; s/640, \"height\": 480/320, \"height\": 240/
            s/505/252/g; s/319.5/159.5/; s/239.5/119.5/" >"$ZENTARASDK_ROOT/cameras/box.json"
    expect '^PLAIN .*Example depth camera .*depth color' zentara --log devices
    ! zentara --log devices 2>&1 | grep box.json
    expect '30 of 30' zentara stream --camera PLAIN --frames 30 --color --png "$ZENTARA_JOB/box.png" --ply "$TMPDIR/cloud.ply"
    [ -s "$TMPDIR/cloud.ply" ]
}

test_a_second_program_reads_the_frames_of_the_first() {
    use_real_cameras
    plug PLAIN 2 --camera plain --no-microphone
    local tool=$ZENTARASDK_ROOT/bin/zentara first second
    "$tool" stream --share --camera PLAIN --frames 100000 >"$TMPDIR/first" 2>&1 &
    first=$!
    eventually 20 gives_frames
    expect 'the frames of process [0-9]+, 0 missed' zentara stream --share --camera PLAIN --frames 5 --raw "$TMPDIR/raw"
    taken_pictures "$TMPDIR/raw" $depth_frame $((320 * 240 * 2)) --coding z16
    "$tool" stream --share --wait 20 --camera PLAIN --frames 40 >"$TMPDIR/second" 2>&1 &
    second=$!
    eventually 20 grep -q ZentaraSDK_frames "/proc/$second/maps"
    kill -9 $first
    wait "$second"
    expect 'its own frames' cat "$TMPDIR/second" # it has taken the camera
}
gives_frames() { compgen -G '/dev/shm/ZentaraSDK_frames-*'; }
