# The kernel's own test camera.

test_vivid_is_listed() {
    modprobe vivid n_devs=1 node_types=0x1 num_inputs=1 input_types=3
    eventually 10 test -e /dev/video0
    expect 'vivid' v4l2-ctl --list-devices
    expect "YUYV" v4l2-ctl -d /dev/video0 --list-formats
}

test_the_tool_streams_it() {
    use_real_cameras
    modprobe vivid n_devs=1 node_types=0x1 num_inputs=1 input_types=3
    eventually 10 test -e /dev/video0
    expect 'color .*vivid' zentara devices
    expect '5 of 5' zentara stream --camera vivid --color --frames 5 --color-png "$ZENTARA_JOB/vivid.png"
    [ -s "$ZENTARA_JOB/vivid.png" ]
}
