# Plugging a camera in again in one process, after each fault that it can have.

test_a_camera_that_failed_works_when_it_is_plugged_in_again() {
    use_real_cameras
    PYTHONPATH=$ZENTARA_BUILD/python python3 "$here/again.py" "$camera" <<'rows'
ZS570 | length stall
ZS570 | unit stall
ZS570 | unit short
ZS570 | unit silent
ZS570 | unit unplug
plain | probe stall after 6
plain | probe silent after 6
plain | commit stall
plain | commit silent
plain | commit unplug
plain | frame silent after 3
plain | frame short after 3
plain | frame stall after 3
plain | frame unplug after 3
plain | control stall
rows
}
