"""Pipelines in this process, and what comes of them."""
import contextlib
from typing import Callable, Dict, Iterable, Iterator, List, Optional

import gi
import zentara  # noqa: F401  (before GStreamer, which brings an unwinder of its own)

gi.require_version("Gst", "1.0")
gi.require_version("GstApp", "1.0")
from gi.repository import Gst, GstApp  # noqa: E402,F401  (what appsink is called by)

Gst.init(None)
PATIENCE = 10 * Gst.SECOND


class Running:
    """A pipeline that plays until the end of the block."""

    def __init__(self, description: str) -> None:
        self.pipeline = Gst.parse_launch(description)
        self.bus = self.pipeline.get_bus()
        self.seen: List[Gst.Message] = []

    def __getitem__(self, name: str) -> Gst.Element:
        return self.pipeline.get_by_name(name)

    def message(self, kinds: Gst.MessageType, fits: Callable[[Gst.Message], bool] = lambda _: True) -> Gst.Message:
        """The next one of these kinds; whatever comes before is in `seen`. An error that nobody asked for is one."""
        while True:
            message = self.bus.timed_pop(PATIENCE)
            assert message, f"nothing of {kinds} came; {[(one.type, text_of(one)) for one in self.seen]}"
            self.seen.append(message)
            if message.type & kinds and fits(message):
                return message
            assert message.type != Gst.MessageType.ERROR, text_of(message)

    def samples(self, name: str = "out", most: Optional[int] = None) -> Iterator[Gst.Sample]:
        """What comes at an appsink, until its stream ends."""
        while most is None or most > 0:
            sample = self[name].try_pull_sample(PATIENCE)
            if sample is None:
                assert self[name].props.eos, f"nothing came; {[text_of(one) for one in self.errors()]}"
                return
            yield sample
            most = None if most is None else most - 1

    def error(self) -> Gst.Message:
        return self.message(Gst.MessageType.ERROR)

    def errors(self) -> List[Gst.Message]:
        found = []
        while message := self.bus.pop_filtered(Gst.MessageType.ERROR):
            found.append(message)
        return found


@contextlib.contextmanager
def playing(description: str) -> Iterator[Running]:
    running = Running(description)
    assert running.pipeline.set_state(Gst.State.PLAYING) != Gst.StateChangeReturn.FAILURE
    try:
        yield running
    finally:
        running.pipeline.set_state(Gst.State.NULL)


def text_of(message: Gst.Message) -> str:
    """An error's or a warning's text; of others what they hold."""
    if message.type == Gst.MessageType.ERROR:
        return message.parse_error().gerror.message
    if message.type == Gst.MessageType.WARNING:
        return message.parse_warning().gerror.message
    structure = message.get_structure()
    return structure.to_string() if structure else ""


def bytes_of(sample: Gst.Sample) -> bytes:
    return sample.get_buffer().extract_dup(0, sample.get_buffer().get_size())


def comment_of(running: Running, name: str = "out") -> str:
    """What belongs to the stream that an appsink gets."""
    pad, index = running[name].get_static_pad("sink"), 0
    while event := pad.get_sticky_event(Gst.EventType.TAG, index):
        found, comment = event.parse_tag().get_string(Gst.TAG_COMMENT)
        if found:
            return comment
        index += 1
    raise AssertionError("no comment came")


def by_number(samples: Iterable[Gst.Sample]) -> Dict[int, bytes]:
    """Frames by their numbers."""
    return {sample.get_buffer().offset: bytes_of(sample) for sample in samples}


def are_known(frames: Iterable[bytes], known: Iterable[bytes]) -> bool:
    """Whether they are frames of the camera, bit by bit. On a busy machine either side may have lost some, which the other
    one has; a byte that is wrong makes each of them unknown."""
    every, those = list(frames), set(known)
    return sum(frame in those for frame in every) > len(every) * 0.7
