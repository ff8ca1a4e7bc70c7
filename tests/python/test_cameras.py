"""Frames, parameters, sensors and calibration of the simulated cameras."""
import gc
import json
import os
import pathlib
import subprocess
import sys
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


def test_what_new_alone_has_made_is_refused() -> None:
    uses: List[Tuple[Any, Callable[[Any], object]]] = [
        (zentara.Frame, lambda made: made.depth),
        (zentara.FlashImage, lambda made: made.survey()),
        (zentara.PointCloud, len),
        (zentara.Recorder, lambda made: made.add(None)),
        (zentara.Recorder, lambda made: made.commit()),
        (zentara.Recording, next),
        (zentara.Watch, lambda made: made.next(0)),
        (zentara.Mode, lambda made: made == made),
    ]
    for kind, use in uses:
        with pytest.raises((TypeError, RuntimeError)):
            use(kind.__new__(kind))


def test_a_shared_stream_tells_whose_frames_it_has(camera: zentara.Camera) -> None:
    other = "import sys, zentara; s = zentara.open('SIM0570').depth(shared=True); next(s); print(s.sharing)"
    with camera.depth(shared=True) as stream:
        next(stream)
        assert stream.sharing == "its own frames, which it gives to others"
        told = subprocess.run([sys.executable, "-c", other], stdout=subprocess.PIPE, check=True, timeout=60).stdout
        assert told.decode() == f"the frames of process {os.getpid()}\n"
    with camera.depth() as stream:
        assert next(stream) and stream.sharing == "" and stream.counts["missed"] == 0


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
    with pytest.raises(zentara.UsageFailure, match="given up"):
        recorder.add(first)
    with pytest.raises(zentara.Failure):
        zentara.Recording(path + "2")


def test_recordings_play_as_cameras(camera: zentara.Camera, tmp_path: pathlib.Path) -> None:
    path = str(tmp_path / "room.ztrec")
    with camera.frame_sets() as sets:
        first = next(sets)
        assert first.depth and first.color
        with zentara.Recorder(path, [first.depth.info, first.color.info]) as recorder:
            for _, frames in zip(range(10), sets):
                for index, frame in enumerate((frames.depth, frames.color)):
                    if frame:
                        recorder.add(frame, index)
    recording = zentara.Recording(path)
    recorded = [frame.depth for index, frame in recording if index == 0]
    with recording.camera("SIM0570") as played:
        assert played.info.kinds == ("depth", "color") and recording.cameras == [played.info]
        assert played.lens().model == camera.lens().model and played.calibration()["lens_models"]
        frames_of_it = list(played.depth(queue=20))
        assert [numpy.array_equal(*pair) for pair in zip((one.depth for one in frames_of_it), recorded)] == [True] * len(recorded)
        with played.frame_sets(queue=20) as sets:
            assert sum(frames.complete for frames in sets) >= 5
        refused: List[Callable[[], object]] = [played.parameters, played.temperatures, played.flash, played.read_calibration]
        for call in refused:
            with pytest.raises(zentara.Failure, match="recording"):
                call()
    with pytest.raises(zentara.NoDevice, match="recorded: SIM0570"):
        recording.camera("SIM0345")


def test_sets_hold_what_was_taken_at_one_time(camera: zentara.Camera) -> None:
    with camera.frame_sets(audio="", patience=2, limit=10) as sets:
        frames = next(one for one in sets if one.complete)
        assert frames.depth and frames.color and frames.audio and frames.begin_micros < frames.end_micros
        assert frames.depth is frames.depth and frames.audio[0].samples.shape[1] == 2
        rgb, is_colored = zentara.colour_of(frames)
        assert rgb.shape == frames.depth.depth.shape + (3,) and is_colored.shape == frames.depth.depth.shape
        assert is_colored.any() and not is_colored[frames.depth.depth == 0].any() and not rgb[~is_colored].any()
        given: List[Optional[zentara.FrameSet]] = [frames]
        waiting = [threading.Thread(target=lambda: given.extend(sets), daemon=True) for _ in range(2)]
        for thread in waiting:
            thread.start()
        camera.close()
        for thread in waiting:
            thread.join(30)
            assert not thread.is_alive()
    assert sets.next() is None
    with zentara.open("SIM0570") as other, other.frame_sets(color=None) as alone:
        with pytest.raises(zentara.UsageFailure, match="colour"):
            zentara.colour_of(next(alone))


def test_cameras_are_watched_as_they_come_and_go(tmp_path: pathlib.Path) -> None:
    plugged = tmp_path / "plugged.json"

    def plug(*serials: str) -> None:
        cameras = [{"model": "ZS570", "serialNumber": serial} for serial in serials]
        (tmp_path / "new").write_text(json.dumps({"format": 1, "cameras": cameras}), encoding="utf-8")
        (tmp_path / "new").replace(plugged)

    def events_of(watch: zentara.Watch, number: int) -> List[Tuple[str, str]]:
        events = [watch.next(30) for _ in range(number)]
        return sorted({(event.type, event.camera.serial) for event in events if event})

    plug("A")
    with pytest.MonkeyPatch.context() as patch:
        patch.setenv("ZENTARA_SIMULATED_CAMERAS", str(plugged))
        with zentara.Watch() as watch:
            assert events_of(watch, 3) == [("arrived", "A")]
            plug("A", "B")
            assert events_of(watch, 3) == [("arrived", "B")]
            with zentara.open("A") as camera, camera.depth(limit=30) as stream:
                next(stream)
                plug("B")
                with pytest.raises(ConnectionError):
                    for _ in stream:
                        pass
            assert events_of(watch, 3) == [("removed", "A")] and watch.next(0.01) is None
            ended: List[object] = []
            waiter = threading.Thread(target=lambda: ended.extend(watch), daemon=True)
            waiter.start()
            watch.close()
            waiter.join(30)
            assert not waiter.is_alive() and ended == []


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
    before, wanted = camera.read_calibration(), camera.read_calibration()
    wanted["temperatureCompensation"] = {"kind": 1, "firstCoefficients": [1, 2], "secondCoefficients": [3, -4]}
    camera.write_calibration(wanted)
    changes = zentara.differences(before, camera.read_calibration())
    assert ("temperatureCompensation/secondCoefficients/1", None, -4) in changes
    camera.write_calibration(before)
    assert camera.read_calibration() == before and camera.applied_calibration()
    whole: Dict[str, Any] = {**before}
    for bad in ({**whole, "phaseDelay": 1 << 20}, {**whole, "phase": 1}, {"phaseDelay": 1}, {**whole, "phaseDelay": "1"}):
        with pytest.raises(zentara.Failure, match="the calibration.*phase"):
            camera.write_calibration(bad)  # type: ignore[arg-type]
    with pytest.raises(zentara.Failure, match="exposure time"):
        camera.parameter("exposure tim")
    for name, wrong in (("micro-frames", True), ("micro-frames", 1.5), ("illumination", None), ("illumination", "off"),
                        ("illumination", 1), ("exposure time", numpy.float32("nan")), ("micro-frames", 1 << 70)):
        with pytest.raises((TypeError, ValueError, zentara.Failure)):
            camera.set_parameter(name, wrong)  # type: ignore[arg-type]
    camera.set_parameter("illumination", numpy.True_)  # type: ignore[arg-type]
    camera.set_parameter("exposure time", numpy.float32(5))  # type: ignore[arg-type]


def test_pictures_are_arrays(camera: zentara.Camera, tmp_path: pathlib.Path) -> None:
    frame = next(camera.depth())
    seen = frame.points().draw("SIM0570", width=320, height=240, range=(0.5, 3))
    plot = zentara.plot("s", [{"title": "T", "unit": "degC", "lines": {"sensor": ([0, 1], numpy.array([20, 21]))}}])
    for picture in (seen, plot):
        assert picture.ndim == 3 and picture.shape[2] == 3 and picture.dtype == numpy.uint8 and picture.std() > 0
    zentara.write_png(tmp_path / "plot.png", plot)
    with pytest.raises(ValueError):
        zentara.write_png("a\0b", plot)
    assert (tmp_path / "plot.png").read_bytes()[1:4] == b"PNG"
    with pytest.raises(ValueError):
        zentara.plot("s", [{"title": "T", "unit": "degC", "lines": {"sensor": ([0, 1], [20])}}])


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
    waiting = [threading.Thread(target=lambda: given.append(stream.next(3600)), daemon=True) for _ in range(3)]
    for thread in waiting:
        thread.start()
    turns, began = 0, time.monotonic()
    while time.monotonic() - began < 0.3:  # the interpreter is free meanwhile; three turns were those of the waits
        turns += 1
        time.sleep(0.001)
    stream.stop()
    for thread in waiting:
        thread.join(30)
    assert given == [None] * 3 and turns > 10
    waiter = threading.Thread(target=lambda one: given.append(one.latest(5)), args=(camera.depth(),))
    waiter.start()
    camera.close()
    waiter.join(30)
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
    deadline = time.monotonic() + 30
    while status()["Threads"] > before["Threads"] and time.monotonic() < deadline:
        time.sleep(0.01)
    after = status()
    assert after["Threads"] <= before["Threads"] and after["VmRSS"] - before["VmRSS"] < 4096
