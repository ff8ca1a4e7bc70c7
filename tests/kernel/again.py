"""again.py CAMERA <ROWS: in one process, for each row of "model | fault" a camera that fails so, which is opened and read until it
does; it is pulled out, a healthy one with its name plugged in, opened by that name and read, and its pictures are compared. Four at once."""
import concurrent.futures
import glob
import os
import subprocess
import sys
import time

import zentara

PROGRAM = sys.argv[1]
PICTURES = {"plain": ("z16", 320 * 240 * 2), "ZS570": ("y16", 2 * 320 * 240 * 2)}


def nodes_of(serial):
    found = []
    for node in glob.glob("/sys/class/video4linux/video*"):
        try:
            if open(f"{node}/device/../serial").read().strip() == serial:
                found.append("/dev/" + os.path.basename(node))
        except OSError:
            pass  # it goes just now
    return [node for node in found if os.path.exists(node)]


def until(condition, what):
    end = time.monotonic() + 30
    while not condition():
        assert time.monotonic() < end, f"not in time: {what}"
        time.sleep(0.05)


def plug(serial, model, *options):
    camera = subprocess.Popen([PROGRAM, "--serial", serial, "--camera", model, "--no-microphone", *options], stdout=subprocess.DEVNULL)
    until(lambda: len(nodes_of(serial)) == 4, f"nodes of {serial}")
    return camera


def unplug(serial, camera):
    opened = [os.readlink(file) for file in glob.glob("/proc/self/fd/*") if os.path.islink(file)]
    held = [node for node in nodes_of(serial) if node in opened]
    camera.kill()
    camera.wait()
    until(lambda: not nodes_of(serial), f"end of {serial}")
    return held


def read(serial):
    with zentara.open(serial) as camera, camera.depth(mode="320x240@15" if camera.info.controller is None else "", frames=5) as stream:
        return [bytes(frame.data) for frame in iter(lambda: stream.next(limit=3), None)]


def pictures_of(model):
    coding, size = PICTURES[model]
    made = subprocess.run([PROGRAM, "--pictures", "40", "--camera", model, "--coding", coding], stdout=subprocess.PIPE, check=True).stdout
    return {made[at : at + size]: at // size for at in range(0, len(made), size)}


def try_row(number, row):
    model, fault = (word.strip() for word in row.split("|"))
    serial = f"AGAIN{number}"
    camera = plug(serial, model, "--fault", fault)
    try:
        said = f"{len(read(serial))} frames"
    except zentara.Failure as failure:
        said = str(failure)
    unplug(serial, camera)
    camera = plug(serial, model)
    size = PICTURES[model][1]
    order = [pictures[model].get(frame[:size], -1) for frame in read(serial)]
    held = unplug(serial, camera)
    good = len(order) == 5 and order[0] >= 0 and order == sorted(set(order)) and not held
    print(f"{'ok' if good else 'FAILED'}: {model}, {fault}: {said}; again: {order} {held}", flush=True)
    return good


pictures = {model: pictures_of(model) for model in PICTURES}
with concurrent.futures.ThreadPoolExecutor(4) as rows:
    assert all(list(rows.map(try_row, *zip(*enumerate(sys.stdin)))))
