"""`zentara view` on a display that nobody sees: what its pixels show, and what keys, pointer and mishaps do."""
import json
import os
import pathlib
import re
import resource
import signal
import struct
import subprocess
import time
from typing import Callable, Iterator, List, Tuple

import pytest

WIDTH, HEIGHT = 1200, 540  # of the screen, and of the window on it
IN_DEPTH = (40, 40, 380, 260)
Area = Tuple[int, int, int, int]


class Desktop:
    """A display whose pixels lie in a file, and cameras that are plugged in."""

    def __init__(self, place: pathlib.Path) -> None:
        self.place = place
        self.out, write = os.pipe()
        self.server = subprocess.Popen(["Xvfb", "-displayfd", str(write), "-screen", "0", f"{WIDTH}x{HEIGHT}x24", "-fbdir", str(place),
                                        "-nolisten", "tcp"], pass_fds=[write], stderr=subprocess.DEVNULL)
        os.close(write)
        display = os.read(self.out, 20).decode().strip()
        self.environment = {**os.environ, "DISPLAY": f":{display}", "ZENTARA_SIMULATED_CAMERAS": str(place / "cameras.json")}
        self.windows: List[subprocess.Popen[str]] = []
        self.plug("LAB")

    def plug(self, *serials: str) -> None:
        listed = [{"model": "ZS570", "serialNumber": serial} for serial in serials]
        (self.place / "next").write_text(json.dumps({"format": 1, "cameras": listed}), encoding="utf-8")
        os.replace(self.place / "next", self.place / "cameras.json")

    def view(self, *options: str, limit: int = 0) -> "subprocess.Popen[str]":
        def prepare() -> None:
            if limit:
                resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit))

        command = ["zentara", "view", "--size", f"{WIDTH}x{HEIGHT}", "--output", str(self.place), *options]
        # Counts of coverage are files as well, and would be cut short.
        environment = {**self.environment, "LLVM_PROFILE_FILE": "/dev/null"} if limit else self.environment
        self.windows.append(subprocess.Popen(command, env=environment, cwd=self.place, stderr=subprocess.PIPE, text=True,
                                             preexec_fn=prepare))
        self.until(lambda: self.colors(IN_DEPTH) > 50, "a picture of depth")
        return self.windows[-1]

    def pixels(self, area: Area) -> List[bytes]:
        screen = (self.place / "Xvfb_screen0").read_bytes()
        head = struct.unpack_from(">25I", screen)
        begin, pitch = head[0] + head[19] * 12, head[12]
        left, top, right, bottom = area
        return [screen[begin + y * pitch + left * 4:begin + y * pitch + right * 4] for y in range(top, bottom)]

    def colors(self, area: Area) -> int:
        return len({row[at:at + 3] for row in self.pixels(area) for at in range(0, len(row), 4)})

    def brightness(self, area: Area) -> float:
        values = [value for row in self.pixels(area) for value in row]
        return sum(values) / len(values)

    def moves(self) -> bool:
        before = self.pixels(IN_DEPTH)
        time.sleep(0.2)
        return self.pixels(IN_DEPTH) != before

    def do(self, *words: str) -> None:
        subprocess.run(["xdotool", *words], env=self.environment, check=True)

    def until(self, holds: Callable[[], bool], what: str) -> None:
        end = time.monotonic() + 15
        while not holds():
            assert time.monotonic() < end, what
            time.sleep(0.05)

    def recorded(self) -> int:
        """Frames of depth in the recording, all of them whole."""
        said = subprocess.run(["zentara", "stream", "--play", str(self.place / "zentara.ztrec"), "--json"], check=True,
                              capture_output=True, text=True).stdout
        return int(json.loads(said)["streams"][0]["frames"]["received"])

    def end(self) -> None:
        for window in self.windows:
            window.kill()
            window.wait()
        self.server.kill()
        self.server.wait()
        os.close(self.out)


@pytest.fixture
def desktop(tmp_path: pathlib.Path) -> Iterator[Desktop]:
    made = Desktop(tmp_path)
    yield made
    made.end()


def test_keys_and_pointer(desktop: Desktop) -> None:
    window = desktop.view()
    desktop.until(desktop.moves, "pictures")
    fixed = desktop.brightness(IN_DEPTH), desktop.pixels((40, 40, 60, 41))
    desktop.do("key", "a")
    desktop.until(lambda: desktop.pixels((40, 40, 60, 41))[0][:3] != fixed[1][0][:3] and desktop.colors(IN_DEPTH) > 50, "another range")
    desktop.do("key", "space")
    desktop.until(lambda: not desktop.moves(), "a picture that stands")
    # The value below the picture: it comes with the pointer, and nothing else changes there.
    below = (0, 300, 400, 440)
    without = desktop.pixels(below)
    desktop.do("mousemove", "200", "150")
    desktop.until(lambda: desktop.pixels(below) != without, "a value under the pointer")
    desktop.do("key", "space", "key", "c", "key", "r", "key", "s")
    desktop.until(lambda: len(list(desktop.place.glob("LAB-*"))) == 3, "a snapshot")
    time.sleep(0.5)
    desktop.do("key", "r")
    desktop.until(lambda: (desktop.place / "zentara.ztrec").exists(), "a recording")
    assert desktop.recorded() > 10
    assert (desktop.place / "LAB-cloud.ply").read_bytes().startswith(b"ply")
    desktop.do("key", "q")
    assert window.wait(10) == 0


def test_a_camera_that_comes_back(desktop: Desktop) -> None:
    desktop.view()
    bright = desktop.brightness(IN_DEPTH)
    desktop.plug()
    desktop.until(lambda: desktop.brightness(IN_DEPTH) < bright * 0.7, "a picture that is not of now")
    desktop.plug("LAB")
    desktop.until(lambda: desktop.brightness(IN_DEPTH) > bright * 0.9 and desktop.moves(), "its return")
    for size in ("1", "1"), ("30", "700"), (str(WIDTH), str(HEIGHT)):
        desktop.do("search", "--name", "zentara view", "windowsize", *size)
        time.sleep(0.1)
    desktop.until(desktop.moves, "pictures after all these sizes")
    desktop.windows[0].send_signal(signal.SIGINT)
    assert desktop.windows[0].wait(10) == 130


def test_a_full_disk_ends_the_recording_alone(desktop: Desktop) -> None:
    desktop.view(limit=5_000_000)
    desktop.do("key", "r")
    desktop.until(lambda: (desktop.place / "zentara.ztrec").exists(), "the end of the recording")
    assert desktop.recorded() > 3
    desktop.until(desktop.moves, "pictures after that")
    assert desktop.windows[0].poll() is None


def test_a_recording_that_was_held_goes_on_from_there(desktop: Desktop) -> None:
    subprocess.run(["zentara", "stream", "--frames", "150", "--record", "played.ztrec"], env=desktop.environment, cwd=desktop.place,
                   check=True, stdout=subprocess.DEVNULL)
    desktop.view("--play", "played.ztrec")
    desktop.do("key", "space")
    desktop.until(lambda: not desktop.moves(), "a picture that stands")
    time.sleep(3)  # longer than all of it
    desktop.do("key", "space")
    began = time.monotonic()
    desktop.until(lambda: not desktop.moves(), "its end")
    assert time.monotonic() - began > 0.8


def test_a_desktop_that_ends_leaves_the_recording_whole(desktop: Desktop) -> None:
    window = desktop.view()
    desktop.do("key", "r")
    time.sleep(0.5)
    desktop.server.kill()
    assert window.wait(10) == 1
    assert re.search("the window has gone.*\n.*zentara.ztrec' holds [0-9]+ frames", window.communicate()[1])
    assert desktop.recorded() > 3


def test_without_a_display(tmp_path: pathlib.Path) -> None:
    environment = {name: value for name, value in os.environ.items() if name not in ("DISPLAY", "WAYLAND_DISPLAY", "SDL_VIDEODRIVER")}
    for driver in ({}, {"SDL_VIDEODRIVER": "offscreen"}, {"SDL_VIDEODRIVER": "dummy"}):
        done = subprocess.run(["zentara", "view"], env={**environment, **driver}, capture_output=True, text=True, timeout=20)
        assert done.returncode == 1 and "cannot open a window" in done.stderr and "--snapshot FILE" in done.stderr
    for name, begin in (("shown.png", b"\x89PNG"), ("points.ply", b"ply")):
        subprocess.run(["zentara", "view", "--snapshot", name], env=environment, cwd=tmp_path, check=True, timeout=20)
        assert (tmp_path / name).read_bytes().startswith(begin)
