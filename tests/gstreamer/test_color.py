"""zentaracolor shows depth in the colors of everything else."""
import json
import struct

import numpy
import zentara
from pipelines import Gst, Running, are_known, bytes_of, by_number, playing, text_of


def test_depth_is_painted_in_a_fixed_range() -> None:
    with playing("zentarasrc num-buffers=5 ! zentaracolor near=500 far=3000 ! appsink name=out sync=false") as running:
        came = by_number(running.samples())
    colors = zentara.ColorMap(500, 3000, "mm", "no depth")
    with zentara.open() as camera:
        assert are_known(came.values(), [colors.paint(frame.depth).tobytes() for frame in camera.depth(frames=15)])


def painted(running: Running, comment: str, *values: int) -> bytes:
    """Three pixels of depth in a row, which GStreamer fills up to eight bytes; the colors to twelve."""
    source = running["in"]
    source.send_event(Gst.Event.new_tag(tags_of(comment)))
    source.push_buffer(Gst.Buffer.new_wrapped(struct.pack("<4H", *values, 0)))
    return bytes_of(next(running.samples()))[:9]


def tags_of(comment: str) -> Gst.TagList:
    tags = Gst.TagList.new_empty()
    tags.add_value(Gst.TagMergeMode.REPLACE, Gst.TAG_COMMENT, comment)
    return tags


def test_the_unit_is_that_of_the_stream() -> None:
    colors = zentara.ColorMap(500, 3000, "mm", "no depth")
    shape = "caps=video/x-raw,format=GRAY16_LE,width=3,height=1,framerate=30/1 format=time"
    for unit, comment in ((10, json.dumps({"zentara": 1, "kind": "depth", "millimetresPerUnit": 10})), (1, "a comment"),
                          (1, '{"zentara": 2}'), (1, "[" * 10000)):
        with playing(f"appsrc name=in {shape} ! zentaracolor near=500 far=3000 ! appsink name=out sync=false") as running:
            values = numpy.array([[0, 100, 250]], numpy.uint16)
            assert painted(running, comment, *values[0]) == colors.paint(values * unit).tobytes()
            if unit == 1:
                assert "millimetre" in text_of(running.message(Gst.MessageType.WARNING))


def test_a_range_that_is_none_is_an_error() -> None:
    with playing("zentarasrc ! zentaracolor near=3000 far=300 ! fakesink") as running:
        assert "3000" in text_of(running.error())
