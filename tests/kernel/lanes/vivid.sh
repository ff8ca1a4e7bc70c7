# The kernel's own test camera, whose pictures move: all are different, and each stream begins with the same one.

load_vivid() {
    modprobe vivid n_devs=1 node_types=0x1 num_inputs=1 input_types=3
    eventually 10 test -e /dev/video0
    v4l2-ctl -d /dev/video0 -c osd_text_mode=2,horizontal_movement=1,test_pattern=1
}

# It sends 60 pictures a second, whatever rate is asked for, and a busy machine misses some, whoever reads them: in a reference as well.
# So what compares with one is done anew, a few times, until all that it needs is there.
refer() { take /dev/video0 30 "$TMPDIR/reference" --stream-mmap=32; }
at_last() {
    for _ in {1..12}; do ! "$@" 2>"$TMPDIR/why" || return 0; done
    cat "$TMPDIR/why" >&2 && return 1
}

# same_as_the_driver_gives FILE MISSING: frames of 153,600 bytes, of the mode that the node was left in; so many are missing.
same_as_the_driver_gives() {
    refer && python3 "$here/pictures.py" "$1" 153600 153600 <"$TMPDIR/reference" >"$TMPDIR/gaps" && same_gaps "$2"
}

stream_and_compare_all() {
    zentara stream --direct --plugin V4L2VIDEO_IMPL --frames 10 --raw "$TMPDIR/raw" >"$TMPDIR/said" &&
        same_as_the_driver_gives "$TMPDIR/raw" "$(dropped)"
}
script_and_compare_all() {
    PYTHONPATH=$ZENTARA_TREE/build/gcc/python python3 "$here/module.py" vivid "$TMPDIR" 320x240 >"$TMPDIR/said" &&
        same_as_the_driver_gives "$TMPDIR/color.raw" "$(missing color)"
}

test_frames_are_those_of_the_driver_one_by_one() {
    use_real_cameras
    load_vivid
    expect 'color .*vivid' zentara devices
    at_last stream_and_compare_all
    at_last script_and_compare_all
    expect '5 of 5' zentara stream --camera vivid --color --frames 5 --color-png "$ZENTARA_JOB/vivid.png"
    [ -s "$ZENTARA_JOB/vivid.png" ]
}

# What was read before the pause, and what after it.
both_parts_are_the_drivers() {
    local number
    refer || return 1
    for number in 0 1; do
        dd if="$TMPDIR/raw" of="$TMPDIR/part" bs=153600 skip=$((5 * number)) count=5 status=none &&
            python3 "$here/pictures.py" "$TMPDIR/part" 153600 153600 <"$TMPDIR/reference" || return 1
    done
}

# The part is scaled to the size of the mode; after a pause the driver begins anew.
test_a_region_and_a_pause() {
    use_real_cameras
    [ -e /dev/video0 ] || load_vivid
    v4l2-ctl -d /dev/video0 --set-selection target=compose,left=0,top=0,width=160,height=120 # by another program
    "$device" /dev/video0 region=80,60,640,360 start read=5 pause read=1 resume read=5 >"$TMPDIR/raw" 2>"$TMPDIR/said"
    [ "$(sed -n '6s/ .*//p' "$TMPDIR/said")" = 1 ] # in the pause there is nothing
    expect 'Width 320, Height 240' v4l2-ctl -d /dev/video0 --get-selection target=compose
    v4l2-ctl -d /dev/video0 --set-selection target=crop,left=80,top=60,width=640,height=360
    at_last both_parts_are_the_drivers
    v4l2-ctl -d /dev/video0 --set-selection target=crop,left=0,top=0,width=640,height=360
    refer
    ! python3 "$here/pictures.py" "$TMPDIR/part" 153600 153600 <"$TMPDIR/reference" 2>/dev/null
    refuse 1 'makes the region 642 x 362 at 80,60 of 641 x 361 at 81,61; it stays 640 x 360 at 0,0' "$device" /dev/video0 region=81,61,641,361
    refuse 1 'is not inside the picture' "$device" /dev/video0 region=80,60,9999,360
}
