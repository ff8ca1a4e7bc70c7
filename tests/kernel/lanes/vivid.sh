# The kernel's own test camera. Its picture of coloured squares is turned by four columns of its 640 for each of 60 frames a second,
# whatever rate is asked for, and a busy machine misses some, whoever reads them: one picture, taken by another program, tells all others.

load_vivid() {
    modprobe vivid n_devs=1 node_types=0x1 num_inputs=1 input_types=3
    eventually 10 test -e /dev/video0
    v4l2-ctl -d /dev/video0 -c osd_text_mode=2,horizontal_movement=1,test_pattern=4
}

# same_as_the_driver_gives WIDTHxHEIGHT FILE [X Y [TIMES]]: its frames are that picture in this size, or the part of it at X, Y, in the
# coding that the node was left in.
same_as_the_driver_gives() {
    local width=${1%x*} height=${1#*x}
    v4l2-ctl -d /dev/video0 -v width="$width",height="$height" --set-selection target=crop,left=0,top=0,width=1280,height=720
    v4l2-ctl -d /dev/video0 --set-selection target=compose,left=0,top=0,width="$width",height="$height"
    take /dev/video0 1 "$TMPDIR/picture"
    [ "$(stat -c %s "$TMPDIR/picture")" = $((2 * width * height)) ]
    python3 "$here/turned.py" "$2" "$TMPDIR/picture" "$width" "${@:3}" >"$TMPDIR/gaps"
}

test_frames_are_those_of_the_driver_one_by_one() {
    use_real_cameras
    load_vivid
    expect 'color .*vivid' zentara devices
    zentara stream --direct --plugin V4L2VIDEO_IMPL --frames 10 --raw "$TMPDIR/raw" >"$TMPDIR/said"
    same_as_the_driver_gives 320x240 "$TMPDIR/raw"
    same_gaps "$(dropped)"
    PYTHONPATH=$ZENTARA_BUILD/python python3 "$here/module.py" vivid "$TMPDIR" 320x240 >"$TMPDIR/said"
    same_as_the_driver_gives 320x240 "$TMPDIR/color.raw"
    same_gaps "$(missing color)"
    expect '5 of 5' zentara stream --camera vivid --color --frames 5 --color-png "$ZENTARA_JOB/vivid.png"
    [ -s "$ZENTARA_JOB/vivid.png" ]
}

# The part is scaled to the size of the mode, to half of what the driver has; after a pause the driver begins anew.
test_a_region_and_a_pause() {
    use_real_cameras
    [ -e /dev/video0 ] || load_vivid
    v4l2-ctl -d /dev/video0 --set-selection target=compose,left=0,top=0,width=160,height=120 # by another program
    "$device" /dev/video0 region=80,60,640,360 start read=5 sleep=250 read=10 pause read=1 resume read=5 >"$TMPDIR/raw" 2>"$TMPDIR/said"
    [ "$(sed -n '16s/ .*//p' "$TMPDIR/said")" = 1 ] # in the pause there is nothing
    expect 'Width 320, Height 240' v4l2-ctl -d /dev/video0 --get-selection target=compose
    head -c $((15 * 153600)) "$TMPDIR/raw" >"$TMPDIR/before" && head -n 15 "$TMPDIR/said" >"$TMPDIR/times"
    same_as_the_driver_gives 640x480 "$TMPDIR/before" 40 40 "$TMPDIR/times"
    tail -c +$((15 * 153600 + 1)) "$TMPDIR/raw" >"$TMPDIR/after" && tail -n 5 "$TMPDIR/said" >"$TMPDIR/times"
    same_as_the_driver_gives 640x480 "$TMPDIR/after" 40 40 "$TMPDIR/times"
    v4l2-ctl -d /dev/video0 --set-selection target=crop,left=0,top=0,width=640,height=360
    refuse 1 'makes the region 642 x 362 at 80,60 of 641 x 361 at 81,61; it stays 640 x 360 at 0,0' "$device" /dev/video0 region=81,61,641,361
    refuse 1 'is not inside the picture' "$device" /dev/video0 region=80,60,9999,360
}
