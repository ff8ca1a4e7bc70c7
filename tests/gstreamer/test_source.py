"""zentarasrc delivers what the camera does, with its times, numbers and lens, and says what goes wrong."""
import json
import os
import pathlib
import subprocess
import threading
import time
from typing import Callable

import numpy
import pytest
import zentara
from conftest import Plug
from pipelines import Gst, Running, are_known, by_number, bytes_of, comment_of, playing, text_of

DEPTH = "video/x-raw,format=GRAY16_LE,width=320,height=240,framerate=60/1"


def test_depth_comes_bit_by_bit_and_becomes_points_without_the_camera() -> None:
    with playing(f"zentarasrc camera=SIM0570 num-buffers=20 ! {DEPTH} ! appsink name=out sync=false") as running:
        samples = list(running.samples())
        line = json.loads(comment_of(running))
    came = by_number(samples)
    assert len(came) == 20
    with zentara.open("SIM0570") as camera:
        assert are_known(came.values(), [frame.depth.tobytes() for frame in camera.depth(frames=90, queue=200)])
    depth = numpy.frombuffer(bytes_of(samples[0]), numpy.uint16).reshape(240, 320)
    assert (line["zentara"], line["serial"], line["millimetresPerUnit"]) == (1, "SIM0570", 1)
    assert zentara.Lens(**line["lens"], depth_along=line["along"]).points_of(depth).points.shape[0] == (depth > 0).sum()


def test_color_and_sound_come_beside_a_depth_pad_that_is_not_linked() -> None:
    description = "zentarasrc name=camera num-buffers=8 camera.color ! appsink name=out sync=false"
    with playing(description + " camera.audio ! appsink name=sound sync=false") as running:
        pictures, blocks = by_number(running.samples()), list(running.samples("sound"))
    with zentara.open() as camera, camera.color(frames=20) as stream:
        assert are_known(pictures.values(), [frame.data.tobytes() for frame in stream])
    assert len(pictures) == len(blocks) == 8
    assert blocks[0].get_caps().to_string().startswith("audio/x-raw, format=(string)S16LE, rate=(int)48000, channels=(int)2")
    assert blocks[0].get_buffer().duration == len(bytes_of(blocks[0])) // 4 * Gst.SECOND // 48000


def test_pads_come_and_go_while_the_others_stream() -> None:
    with playing("zentarasrc name=camera ! appsink name=out sync=false max-buffers=1 drop=true") as running:
        next(running.samples())
        camera = running["camera"]
        pad = camera.request_pad_simple("color")
        assert pad and camera.request_pad_simple("color") is None
        sink = Gst.ElementFactory.make("appsink")
        sink.props.sync = False
        running.pipeline.add(sink)
        sink.sync_state_with_parent()
        pad.link(sink.get_static_pad("sink"))
        assert sink.try_pull_sample(5 * Gst.SECOND)
        pad.unlink(sink.get_static_pad("sink"))
        depth = camera.get_static_pad("depth")
        depth.unlink(depth.get_peer())
        time.sleep(0.1)
        depth.link(running["out"].get_static_pad("sink"))
        camera.release_request_pad(pad)
        assert len(list(running.samples(most=5))) == 5
        assert not running.errors()


def test_a_late_frame_raises_the_latency_and_a_gap_is_told(plug: Plug) -> None:
    plug(LAB="hang 150 at video.readBuffer after 8 times 1")
    with playing("zentarasrc num-buffers=30 ! appsink name=out sync=false") as running:
        buffers = [sample.get_buffer() for sample in running.samples()]
        query = Gst.Query.new_latency()
        assert running["out"].get_static_pad("sink").peer_query(query)
        message = running.message(Gst.MessageType.QOS)
    is_live, least, most = query.parse_latency()
    assert is_live and 2 * Gst.SECOND // 60 <= least < Gst.SECOND and most > least
    steps = [late.pts - early.pts for early, late in zip(buffers, buffers[1:])]
    gap = max(range(len(steps)), key=lambda index: steps[index])
    assert steps[gap] >= 60 * Gst.MSECOND and buffers[gap + 1].has_flags(Gst.BufferFlags.DISCONT)
    assert sorted(steps)[len(steps) // 2] == pytest.approx(Gst.SECOND / 60, rel=0.1)
    assert message.parse_qos_stats().dropped >= steps[gap] // (Gst.SECOND // 60) - 1


def test_the_modes_are_those_of_the_camera_and_what_is_downstream() -> None:
    with playing("zentarasrc mode=DEFF2FR60CM1S0 num-buffers=1 ! appsink name=out") as running:
        assert list(running.samples())
    for source, says in (("mode=1x1", "320x240@60"), ("camera=nobody", "nobody"), ("recording=/none", "/none")):
        with playing(f"zentarasrc {source} ! fakesink") as running:
            assert says in text_of(running.error())
    with playing("zentarasrc ! video/x-raw,width=640 ! fakesink") as running:
        assert "320x240@60" in text_of(running.error())


def test_two_elements_have_one_camera() -> None:
    with playing("zentarasrc num-buffers=5 ! appsink name=out zentarasrc num-buffers=5 ! appsink name=other") as running:
        assert len(list(running.samples())) == len(list(running.samples("other"))) == 5


def test_a_recording_plays(tmp_path: pathlib.Path) -> None:
    file = tmp_path / "room.ztrec"
    with zentara.open() as camera, camera.depth(frames=5) as stream:
        with zentara.Recorder(file, [stream.info]) as recorder:
            for frame in stream:
                recorder.add(frame)
    with playing(f"zentarasrc recording={file} ! appsink name=out sync=false") as running:
        came = by_number(running.samples())
    assert came == {frame.number: frame.depth.tobytes() for _, frame in zentara.Recording(file)}


@pytest.mark.parametrize("wish", ["error", "eos", "wait"])
def test_a_camera_is_pulled_out(plug: Plug, wish: str) -> None:
    with playing(f"zentarasrc on-unplug={wish} ! appsink name=out sync=false max-buffers=1 drop=true wait-on-eos=false") as running:
        next(running.samples())
        plug()
        if wish == "error":
            message = running.error()
            assert message.parse_error().gerror.matches(Gst.ResourceError.quark(), Gst.ResourceError.NOT_FOUND)
            assert "ZS570 depth LAB" in text_of(message)
            return
        assert "LAB" in text_of(running.message(Gst.MessageType.WARNING))
        if wish == "eos":
            running.message(Gst.MessageType.EOS)
            return
        plug(LAB="")
        assert "LAB is back" in text_of(running.message(Gst.MessageType.WARNING))
        samples = running.samples()
        assert any(next(samples).get_buffer().has_flags(Gst.BufferFlags.DISCONT) for _ in range(10))


def assert_in_half_a_second(end: Callable[[], float]) -> None:
    """Once in three times: a machine that is busy with others is late at times."""
    took = [end()]
    while took[-1] >= 0.5 and len(took) < 3:
        took.append(end())
    assert took[-1] < 0.5, took


@pytest.mark.parametrize("fault", ["hang 60000 at video.readBuffer after 3", "hang 20000 at video.initialize",
                                   "hang 20000 at video.create"])
def test_nothing_that_hangs_holds_the_pipeline(plug: Plug, fault: str) -> None:
    plug(LAB=fault)

    def end() -> float:
        with playing("zentarasrc timeout=0 ! fakesink") as running:
            time.sleep(0.2)
            began = time.monotonic()
            running.pipeline.set_state(Gst.State.PAUSED)
            running.pipeline.set_state(Gst.State.NULL)
            took = time.monotonic() - began
            assert not running.errors()
            return took

    assert_in_half_a_second(end)


def test_a_silent_camera_is_an_error_that_names_it_and_ctrl_c_ends_at_once(plug: Plug) -> None:
    plug(LAB="hang 60000 at video.readBuffer after 3")
    with playing("zentarasrc timeout=300 ! fakesink") as running:
        assert "ZS570 depth LAB" in text_of(running.error())

    def interrupt() -> float:
        with subprocess.Popen(["gst-launch-1.0", "zentarasrc", "timeout=0", "!", "fakesink"], stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT) as process:
            assert process.stdout and any(b"PLAYING" in line for line in process.stdout)
            time.sleep(0.5)
            began = time.monotonic()
            process.send_signal(2)
            process.wait(10)
            return time.monotonic() - began

    assert_in_half_a_second(interrupt)


def test_after_a_pause_frames_are_new(plug: Plug) -> None:
    with playing("zentarasrc ! appsink name=out sync=false max-buffers=1") as running:
        first = next(running.samples()).get_buffer()
        running.pipeline.set_state(Gst.State.PAUSED)
        time.sleep(0.3)
        running.pipeline.set_state(Gst.State.PLAYING)
        later = [sample.get_buffer() for sample in running.samples(most=8)]
        dropped = running.message(Gst.MessageType.QOS).parse_qos_stats().dropped
    assert later[-1].offset - first.offset >= 10 and dropped >= later[-1].offset - first.offset - 8
    assert all(early.pts <= late.pts for early, late in zip(later, later[1:]))


def test_states_in_circles_leave_nothing_behind(plug: Plug) -> None:
    running = Running("zentarasrc name=camera ! fakesink sync=false camera.color ! fakesink sync=false")
    for turn in range(50):
        running.pipeline.set_state((Gst.State.PLAYING, Gst.State.PAUSED, Gst.State.READY)[turn % 3])
        if turn % 10 == 0:
            running.pipeline.get_state(Gst.SECOND)
        if turn % 3 == 1:
            running.pipeline.set_state(Gst.State.NULL)
    running.pipeline.set_state(Gst.State.NULL)
    assert not running.errors()
    with playing("zentarasrc num-buffers=3 ! appsink name=out") as again:
        assert len(list(again.samples())) == 3
    assert threading.active_count() == 1


def test_nothing_leaks() -> None:
    pipeline = "zentarasrc name=camera num-buffers=5 ! zentaracolor ! fakesink camera.color ! fakesink camera.audio ! fakesink"
    done = subprocess.run(["gst-launch-1.0", *pipeline.split()], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          env={**os.environ, "GST_TRACERS": "leaks", "GST_DEBUG": "GST_TRACER:7,2", "GST_DEBUG_NO_COLOR": "1"})
    assert done.returncode == 0 and ":: object-alive, " not in done.stdout and "CRITICAL" not in done.stdout, done.stdout
