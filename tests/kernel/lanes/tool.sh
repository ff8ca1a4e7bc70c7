# The whole way: from a camera at USB level through the kernel's drivers and the plug-ins to what the tool says and writes.

depth_frame=$((3 * 320 * 240 * 2)) # depth, confidence and phase

# stream_and_compare SERIAL MODEL EACH CODING OPTION...: depth comes whole and in order, and what the tool counts as dropped is missing.
stream_and_compare() {
    local serial=$1 model=$2 each=$3 coding=$4
    zentara stream --camera "$serial" --frames 8 --raw "$TMPDIR/user/raw" "${@:5}" >"$TMPDIR/said"
    taken_pictures "$TMPDIR/user/raw" $depth_frame "$each" --camera "$model" --coding "$coding" >"$TMPDIR/gaps"
    same_gaps "$(dropped)"
}

# Each of the tool's verbs on a camera with a controller.
use_every_verb() {
    local serial=$1 model=$2 unit=$3 question=$4 answer=$5 cloud
    rm -f "$TMPDIR"/user/*
    expect "^$serial .*depth color audio" zentara devices
    expect "depth lens +320x240, from the camera" zentara info --camera "$serial"
    stream_and_compare "$serial" "$model" $((2 * 320 * 240 * 2)) y16 --ply "$TMPDIR/user/$serial.ply" --png "$TMPDIR/user/$serial.png"
    cloud=$(LC_ALL=C sed -n 's/^element vertex //p;/^end_header/q' "$TMPDIR/user/$serial.ply")
    [ "$cloud" -gt 70000 ] && [ "$(stat -c %s "$TMPDIR/user/$serial.png")" -gt 20000 ]
    expect 'all is right' zentara rom verify --camera "$serial"
    expect '^0x2035$' zentara reg read --camera "$serial" tof 0x21
    expect "^unit $unit\$" zentara xu list --camera "$serial"
    # shellcheck disable=SC2086
    expect "^$answer" zentara xu get --camera "$serial" $question
    zentara firmware dump --camera "$serial" --area configuration --length 2048 "$TMPDIR/user/dump"
    cmp -n 2048 "$TMPDIR/kept-$serial" "$TMPDIR/user/dump"
}

test_each_controller_is_driven() {
    use_real_cameras
    local user serial model row
    while read -r user serial model row; do
        plug "$serial" 2 --camera "$model" --settings "keepFlash $TMPDIR/kept-$serial"
        open_to_groups
        [ "$user" = root ] || as=(as_user "$user")
        eval "use_every_verb $serial $model $row"
        cp "$TMPDIR/user/$serial".* "$ZENTARA_JOB"
        unplug "$serial"
    done <<'rows'
root SIM0570 ZS570 '6  DD880F8A-1CBA-4954-8A25-F7875967F0F7' '1' '5A 01 02 03 04 '
video,audio SIM0570 ZS570 '6  DD880F8A-1CBA-4954-8A25-F7875967F0F7' '1' '5A 01 02 03 04 '
video,audio SIM0258 ZS258 '4  A917C75D-4119-11DA-AE0E-000D56AC7B4C' '4 00028100' '00 02 81 09'
video,audio SIM0345 ZS345 '4  A917C75D-4119-11DA-AE0E-000D56AC7B4C' '5 a0210000' 'A0 21 00 '
rows
}

test_the_flash_is_read_whole() {
    use_real_cameras
    plug SIM0570 2 --camera ZS570 --isochronous --settings "keepFlash $TMPDIR/kept"
    zentara firmware dump --camera SIM0570 "$TMPDIR/user/dump"
    cmp "$TMPDIR/kept" "$TMPDIR/user/dump"
    stream_and_compare SIM0570 ZS570 $((2 * 320 * 240 * 2)) y16
}

test_python_by_an_ordinary_user() {
    use_real_cameras
    plug SIM0258 2 --camera ZS258
    open_to_groups
    PYTHONPATH=$ZENTARA_BUILD/python as_user video,audio python3 "$here/module.py" SIM0258 "$TMPDIR/user" >"$TMPDIR/said"
    grep -q "no camera .*nobody" "$TMPDIR/said"
    taken_pictures "$TMPDIR/user/depth.raw" $depth_frame $((2 * 320 * 240 * 2)) --camera ZS258 --coding y16 >"$TMPDIR/gaps"
    same_gaps "$(missing depth)"
    taken_pictures "$TMPDIR/user/color.raw" $((320 * 240 * 2)) $((320 * 240 * 2)) --camera ZS258 --coding yuy2 >"$TMPDIR/gaps"
    same_gaps "$(missing color)"
    python3 "$here/tone.py" "$TMPDIR/user/audio.raw" $((40 * 480)) -16 # a level of a half, in the mixer's steps of a decibel
}

# Depth of 16 bits and colour as JPEG, on interfaces of their own or on one; no controller.
test_a_camera_that_is_not_ours() {
    use_real_cameras
    plug PLAIN 2 --camera plain
    expect 'no extension units' zentara xu list --camera PLAIN
    refuse 3 'no controller' zentara xu get --camera PLAIN 1
    stream_and_compare PLAIN plain $((320 * 240 * 2)) z16 --mode 320x240@15
    unplug PLAIN
    plug ONE 1 --camera plain-one --no-microphone
    stream_and_compare ONE plain-one $((320 * 240 * 2)) z16 --mode 320x240@15
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
    plug PLAIN 2 --camera plain
    as=(as_user nogroup)
    refuse 5 '/dev/video.*Permission denied' zentara stream --camera PLAIN --frames 3
    open_to_groups
    as=(as_user video,audio)
    expect '3 of 3' zentara stream --camera PLAIN --color --audio --frames 3
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

# One camera has no terminal, another a unit that feeds itself: the first is listed with what is wrong, the second without what hangs on it.
test_hostile_descriptors_are_listed_as_what_they_are() {
    use_real_cameras
    local row
    "$camera" --descriptors --camera plain --no-microphone >"$TMPDIR/good"
    python3 "$here/spoil.py" "$TMPDIR/good" "$TMPDIR" >/dev/null
    for row in 'NOTHING length-0-of-0' 'HALF own-source'; do
        "$camera" --serial "${row% *}" --camera plain --no-microphone --configuration "$TMPDIR/${row#* }" >/dev/null &
        plugged[${row% *}]=$!
    done
    plug WHOLE 2 --camera plain --no-microphone
    eventually 10 expect 'NOTHING .*the kernel made no video node of it; its descriptors, offset [0-9]+: ' zentara devices
    expect '^HALF .* depth +/sys' zentara devices
    expect '^WHOLE .* depth color +/sys' zentara devices
    expect '3 of 3' zentara stream --camera HALF --mode 320x240@15 --frames 3
}

# Its driver gets no answer between the camera's first node and the others: until then it is not there, and says why. Who watches
# needs no time to start while it is so, and hears of it from the kernel.
test_a_camera_is_seen_with_all_its_nodes_or_not_yet() {
    use_real_cameras
    local watcher
    "$ZENTARASDK_ROOT/bin/zentara" devices --watch >"$TMPDIR/watched" 2>&1 &
    watcher=$!
    plug EARLY 1 --camera plain-one --no-microphone
    eventually 20 grep -q '^arrived .* EARLY /dev/' "$TMPDIR/watched"
    "$camera" --serial LATE --camera plain --fault 'probe silent after 3 times 1' >/dev/null &
    plugged[LATE]=$!
    eventually 20 grep -q '^arrived .*its driver waits for an answer of it' "$TMPDIR/watched" || { cat "$TMPDIR/watched" >&2 && return 1; }
    eventually 20 lists LATE
    grep '^LATE' "$TMPDIR/listed" | grep -q 'depth color audio'
    unplug EARLY
    eventually 20 grep -q '^removed .* EARLY /dev/' "$TMPDIR/watched"
    kill "$watcher"
    wait "$watcher" || [ $? = 130 ]
    grep -c '^arrived .* LATE ' "$TMPDIR/watched" | grep -qx 3 || { cat "$TMPDIR/watched" >&2 && return 1; }
}
lists() { zentara devices >"$TMPDIR/listed" && grep -q "^$1 " "$TMPDIR/listed"; }

# Half a second of sound is kept for a reader who is late; it is a second late here, or more on a busy machine.
test_a_microphone_is_muted_and_goes_on_after_an_overrun() {
    use_real_cameras
    plug PLAIN 2 --camera plain
    "$device" "$(card_of PLAIN)" start read=20 mute=1 read=40 mute=0 read=40 sleep=1000 read=20 level=0.5 read=40 level=1 read=40 level=0 read=40 \
        >"$TMPDIR/sound" 2>"$TMPDIR/times"
    expect '^[1-9].[0-9] s between the blocks 99 and 100$' python3 "$here/phases.py" "$TMPDIR/sound" "$TMPDIR/times" \
        0-19=0 30-59=silence 70-99=0 101-119=0 130-159=-16 170-199=0 210-239=-60
}
