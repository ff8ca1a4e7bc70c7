"""Frames, parameters, sensors and calibration of the simulated cameras."""
import gc
import pathlib
import threading
import time
from typing import Any, Callable, Dict, Iterator, List, Optional, Tuple

import numpy
import pytest
import zentara


@pytest.fixture
def camera() -> Iterator[zentara.Camera]:
    with zentara.open("SIM0570") as one:
        yield one


def test_frames_are_read_only_views_that_outlive_their_camera() -> None:
    kept = []
    for frame in zentara.open("SIM0570").depth(frames=5):
        assert 0.1 < numpy.nanmean(frame.metres) < 10
        kept.append(frame.depth)
    assert len(kept) == 5 and frame.number >= 4
    depth, confidence = frame.depth, frame.confidence
    assert depth.dtype == numpy.uint16 and depth.shape == (frame.height, frame.width)
    assert confidence is not None and numpy.shares_memory(depth, frame.data) and frame.metres is frame.metres
    assert numpy.array_equal(numpy.isnan(frame.metres), depth == 0)
    assert numpy.allclose(frame.millimetres, depth * frame.info.millimetres_per_unit)
    arrays: List[Any] = [depth, confidence, frame.data, frame.metres, frame.millimetres]
    assert not any(one.flags.writeable for one in arrays)
    with pytest.raises(ValueError):
        depth.setflags(write=True)
    before = kept[0].copy()
    del frame
    gc.collect()
    assert numpy.array_equal(kept[0], before) and before.any()


def test_recordings_give_the_same_frames_without_their_camera(camera: zentara.Camera, tmp_path: pathlib.Path) -> None:
    path, first = str(tmp_path / "room.ztrec"), None
    with camera.depth(frames=3) as stream, zentara.Recorder(path, [stream.info]) as recorder:
        for frame in stream:
            first = first or frame
            recorder.add(frame)
    recording = zentara.Recording(path)
    frames = [frame for _, frame in recording]
    assert first and len(frames) == recording.count() == 3 and recording.streams[0].camera == camera.info
    assert numpy.array_equal(frames[0].depth, first.depth)
    assert numpy.array_equal(recording.at(0).points().points, first.points().points)
    assert recording.at_time(frames[2].device_micros).number == 2
    with pytest.raises(ZeroDivisionError), zentara.Recorder(path + "2", recording.streams) as recorder:
        recorder.add(first, 1 // 0)
    with pytest.raises(zentara.Failure):
        zentara.Recording(path + "2")


def test_clouds_are_metres_and_keep_their_memory(camera: zentara.Camera) -> None:
    frame = next(camera.depth())
    cloud = frame.points()
    points = cloud.points
    assert points.shape == (len(cloud), 3) and points.dtype == numpy.float32 and not points.flags.writeable
    assert len(cloud) + cloud.without_depth + cloud.without_ray == frame.width * frame.height
    grid = frame.points(keep_grid=True).points.reshape(frame.height, frame.width, 3)
    seen = ~numpy.isnan(grid[..., 2])
    assert seen.sum() == len(cloud) and numpy.allclose(grid[..., 2][seen], frame.metres[seen])
    with pytest.raises(TypeError):
        frame.lens.points_of(frame.metres)  # type: ignore[arg-type]
    total = points.sum()
    del cloud, frame
    gc.collect()
    assert points.sum() == total


def test_parameters_sensors_and_calibration_are_dictionaries(camera: zentara.Camera) -> None:
    every = camera.parameters()
    assert every["exposure time"]["number"] == 1 and every["exposure time"]["kind"] == "float"
    camera.set_parameter("exposure time", 5)
    assert camera.parameter(1)["value"] == pytest.approx(5)
    assert set(camera.temperatures()) == {"sensor", "illumination"} and camera.accelerometer()
    calibration = camera.calibration()
    models, sources = calibration["lens_models"], calibration["sources"]
    assert models and models["depth"][0]["fx"] > 0 and sources and sources["lens"] in ("camera", "description")
    with pytest.raises(zentara.Failure, match="exposure time"):
        camera.parameter("exposure tim")
    for wrong in (True, 1.5):
        with pytest.raises(zentara.Failure):
            camera.set_parameter("micro-frames", wrong)


def test_failures_are_of_their_kind(camera: zentara.Camera) -> None:
    with pytest.raises(ConnectionError) as none:
        zentara.open("nobody")
    assert isinstance(none.value, zentara.NoDevice) and none.value.code == zentara.Code.NO_DEVICE
    with pytest.raises(ValueError, match="320x240"):
        camera.depth(mode="7x7")
    stream = camera.depth(started=False)
    with pytest.raises(TimeoutError, match=r"0\.25 s") as silence:
        stream.next(0.25)
    assert isinstance(silence.value, zentara.TimedOut) and silence.value.message
    wrong: List[Tuple[Callable[..., object], object]] = [(stream.next, "1"), (stream.next, -1), (zentara.open, 5),
                                                         (zentara.Frame, 1), (camera.parameter, None)]
    for call, argument in wrong:
        with pytest.raises((TypeError, ValueError)):
            call(argument)
    camera.close()
    camera.close()
    closed: List[Callable[[], object]] = [camera.depth, camera.parameters, camera.temperatures]
    for after in closed:
        with pytest.raises(zentara.Failure):
            after()
    assert stream.state != "streaming"


def test_threads_may_wait_while_another_leaves(camera: zentara.Camera) -> None:
    stream = camera.depth(started=False)
    given: List[Optional[zentara.Frame]] = []
    waiting = [threading.Thread(target=lambda: given.append(stream.next(3600))) for _ in range(3)]
    for thread in waiting:
        thread.start()
    turns, began = 0, time.monotonic()
    while time.monotonic() - began < 0.3:  # the interpreter is free meanwhile
        turns += 1
        time.sleep(0.001)
    began = time.monotonic()
    stream.stop()
    for thread in waiting:
        thread.join(1)
    assert given == [None] * 3 and time.monotonic() - began < 0.5 and turns > 50
    waiter = threading.Thread(target=lambda one: given.append(one.latest(5)), args=(camera.depth(),))
    waiter.start()
    camera.close()
    waiter.join(5)
    assert not waiter.is_alive()


def status() -> Dict[str, int]:
    """Kilobytes of memory and threads of this process."""
    with open("/proc/self/status", encoding="ascii") as lines:
        fields = dict(line.split(":", 1) for line in lines)
    return {name: int(fields[name].split()[0]) for name in ("VmRSS", "Threads")}


def test_nothing_is_left_of_300_streams() -> None:
    before = {}
    for number in range(330):
        if number == 30:
            before = status()
        with zentara.open("SIM0570") as one, one.depth() as stream:
            assert next(stream).depth.any()
    deadline = time.monotonic() + 5
    while status()["Threads"] > before["Threads"] and time.monotonic() < deadline:
        time.sleep(0.01)
    after = status()
    assert after["Threads"] <= before["Threads"] and after["VmRSS"] - before["VmRSS"] < 4096
