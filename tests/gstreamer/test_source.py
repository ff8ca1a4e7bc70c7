"""zentarasrc delivers what the camera does, with its times, numbers and lens."""
import zentara
from pipelines import by_number, playing


def test_depth_comes_bit_by_bit() -> None:
    with playing("zentarasrc camera=SIM0570 num-buffers=20 ! appsink name=out sync=false") as running:
        came = by_number(running.samples())
    assert len(came) == 20
    with zentara.open("SIM0570") as camera:
        for frame in camera.depth(frames=20):
            assert came.get(frame.number, frame.depth.tobytes()) == frame.depth.tobytes()
