"""module.py CAMERA FOLDER [MODE]: what the Python module makes of a camera: of each of its streams some frames, whole, in FOLDER/KIND.raw, with
the frames that were missing between them on standard output; and what it says of itself where it has a controller."""
import sys

import zentara

COUNTS = {"depth": 10, "color": 10, "audio": 40}

name, folder, *mode = sys.argv[1:]
with zentara.open(name) as camera:
    for kind in camera.info.kinds:
        with getattr(camera, kind)(mode="".join(mode), frames=COUNTS[kind]) as stream, open(f"{folder}/{kind}.raw", "wb") as file:
            missing = 0
            for frame in stream:
                file.write(frame.data)
                missing += frame.dropped_before
            print(f"{kind}: {missing} missing")
    if camera.info.controller:
        assert camera.temperatures() and camera.calibration()["lens_models"]
        with camera.flash() as flash:
            assert not flash.load().survey()["findings"]
try:
    zentara.open("nobody")
except zentara.NoDevice as failure:
    print(failure)
