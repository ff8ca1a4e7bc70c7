# The kernel's own test camera, whose pictures move: all are different, and each stream begins with the same one.

load_vivid() {
    modprobe vivid n_devs=1 node_types=0x1 num_inputs=1 input_types=3
    eventually 10 test -e /dev/video0
    v4l2-ctl -d /dev/video0 -c osd_text_mode=2,horizontal_movement=1,test_pattern=1
}

# same_as_the_driver_gives FILE WIDTH HEIGHT MISSING: frames of 16 bits a pixel, of the mode that the node was left in; so many are missing.
same_as_the_driver_gives() {
    take /dev/video0 30 "$TMPDIR/reference" -p 15 # slow enough to miss none
    python3 "$here/pictures.py" "$1" $(($2 * $3 * 2)) $(($2 * $3 * 2)) <"$TMPDIR/reference" >"$TMPDIR/gaps"
    same_gaps "$4"
}

test_frames_are_those_of_the_driver_one_by_one() {
    use_real_cameras
    load_vivid
    expect 'color .*vivid' zentara devices
    zentara stream --direct --plugin V4L2VIDEO_IMPL --frames 20 --raw "$TMPDIR/raw" >"$TMPDIR/said"
    same_as_the_driver_gives "$TMPDIR/raw" 320 240 "$(dropped)"
    PYTHONPATH=$ZENTARA_TREE/build/gcc/python python3 "$here/module.py" vivid "$TMPDIR" 320x240 >"$TMPDIR/said"
    same_as_the_driver_gives "$TMPDIR/color.raw" 320 240 "$(missing color)"
    expect '5 of 5' zentara stream --camera vivid --color --frames 5 --color-png "$ZENTARA_JOB/vivid.png"
    [ -s "$ZENTARA_JOB/vivid.png" ]
}
