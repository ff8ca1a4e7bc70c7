"""Every command of the page runs, and what comes out at the other end is the camera's depth, bit by bit."""
import os
import pathlib
import re
import signal
import socket
import subprocess
import sys
import time
from typing import Dict, List

import pytest
import zentara
from pipelines import are_known, playing

HERE = pathlib.Path(__file__).parent
PAGE = (HERE.parents[1] / "docs" / "gstreamer.md").read_text(encoding="utf-8")
BLOCKS = re.findall(r"^```(sh|python) ?(\w*)\n(.*?)^```", PAGE, re.DOTALL | re.MULTILINE)
FRAME_BYTES = 320 * 240 * 2


def block(name: str, index: int = 0) -> str:
    """A block of the page, with a port that nobody else uses."""
    with socket.socket() as free:
        free.bind(("127.0.0.1", 0))
        return [text for _, called, text in BLOCKS if called == name][index].replace("5055", str(free.getsockname()[1]))


def run(script: str, inside: pathlib.Path) -> str:
    done = subprocess.run(["timeout", "30", "bash", "-ec", script], cwd=inside, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    assert done.returncode == 0 and "ERROR" not in done.stdout and "WARNING" not in done.stdout, done.stdout
    return done.stdout


@pytest.fixture(scope="module")
def numbers() -> Dict[bytes, int]:
    """The numbers of the frames that the first camera delivers, by their depth: each run of it sees the same."""
    with zentara.open() as camera:
        return {frame.depth.tobytes(): frame.number for frame in camera.depth(frames=130, queue=200)}


def check(received: bytes, numbers: Dict[bytes, int], least: int) -> List[int]:
    """Whether whole frames were received, in order and bit by bit; their numbers."""
    assert received and len(received) % FRAME_BYTES == 0
    frames = [received[start:start + FRAME_BYTES] for start in range(0, len(received), FRAME_BYTES)]
    known = [numbers.get(frame, -1) for frame in frames]
    seen = [number for number in known if number >= 0]
    within = frames[:next((at for at, number in enumerate(known) if number > 110), len(known))]
    assert len(frames) >= least and seen == sorted(seen) and are_known(within, numbers), known
    return known


def test_no_block_is_left_out() -> None:
    assert [(language, name) for language, name, _ in BLOCKS] == [
        ("sh", ""), ("sh", "window"), ("sh", "file"), ("sh", "file"), ("sh", "gdp"), ("sh", "server"), ("sh", "matroska"),
        ("python", "")]
    # The first one is gst-device-monitor, and the last one is run beside a sender, below.


def test_the_list_of_cameras(tmp_path: pathlib.Path) -> None:
    assert "SIM0570" in run(block(""), tmp_path)


LOOK = """
import numpy, sys
screen = numpy.fromfile("shot", numpy.uint8).reshape(-1, 3).astype(int)
sys.exit(int((numpy.ptp(screen, axis=1) > 100).sum() < 320 * 240 * 0.9))
"""


def test_a_window_shows_colors(tmp_path: pathlib.Path) -> None:
    (tmp_path / "look.py").write_text(LOOK, encoding="utf-8")
    (tmp_path / "script").write_text(f"""
until gst-launch-1.0 -q ximagesrc num-buffers=1 ! fakesink >/dev/null 2>&1; do sleep 0.3; done
{block("window").strip()} &
window=$!
for turn in $(seq 20); do
    sleep 0.5
    gst-launch-1.0 -q ximagesrc num-buffers=1 use-damage=false ! videoconvert ! video/x-raw,format=RGB ! filesink location=shot
    if {sys.executable} look.py; then seen=yes; break; fi
done
kill -INT $window
wait
test "$seen" = yes
""", encoding="utf-8")
    # Without -noreset the server begins anew when its last client has gone, and is not there for the next one meanwhile.
    run("xvfb-run -a -s '-screen 0 640x480x24 -noreset' bash -e script", tmp_path)


def test_a_file_is_read_back_also_when_its_writer_was_killed(tmp_path: pathlib.Path, numbers: Dict[bytes, int]) -> None:
    run(block("file"), tmp_path)
    run(block("file", 1), tmp_path)
    check((tmp_path / "depth.raw").read_bytes(), numbers, least=60)
    with playing(f"filesrc location={tmp_path}/depth.mkv ! matroskademux ! avdec_ffv1 ! appsink name=out sync=false") as running:
        times = [sample.get_buffer().pts for sample in running.samples()]
    steps = sorted(late - early for early, late in zip(times, times[1:]))
    assert steps[len(steps) // 2] == pytest.approx(1e9 / 60, rel=0.02) and any(time_ % 1_000_000 for time_ in times)

    endless = block("file").replace("num-buffers=60", "").replace("gst-launch-1.0", "exec gst-launch-1.0")
    with subprocess.Popen(["bash", "-ec", endless], cwd=tmp_path, stdout=subprocess.DEVNULL) as writer:
        time.sleep(1.5)
        writer.send_signal(signal.SIGKILL)
    run(block("file", 1), tmp_path)
    check((tmp_path / "depth.raw").read_bytes(), numbers, least=20)


def test_another_process_receives_every_frame(tmp_path: pathlib.Path, numbers: Dict[bytes, int]) -> None:
    said = run(block("gdp"), tmp_path)
    assert len(check((tmp_path / "received.raw").read_bytes(), numbers, least=60)) == 60, said


@pytest.mark.parametrize("name", ["server", "matroska"])
def test_a_receiver_begins_in_the_middle(tmp_path: pathlib.Path, numbers: Dict[bytes, int], name: str) -> None:
    run(block(name), tmp_path)
    assert check((tmp_path / "received.raw").read_bytes(), numbers, least=20)[0] != 0


def test_a_receiver_that_does_not_read_is_cut_off(tmp_path: pathlib.Path) -> None:
    sender = re.sub(r"&.*", "", block("server"), flags=re.DOTALL).replace("units-max=120", "units-max=10")
    port = int(re.search(r"port=(\d+)", sender)[1])
    with subprocess.Popen(["bash", "-ec", "exec " + sender], cwd=tmp_path, stdout=subprocess.DEVNULL) as process:
        with socket.socket() as client:
            client.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 4096)
            for _ in range(50):
                if client.connect_ex(("127.0.0.1", port)) == 0:
                    break
                time.sleep(0.1)
            assert process.wait(20) == 0
            received = 0
            while data := client.recv(1 << 20):
                received += len(data)
            assert 0 < received < 110 * FRAME_BYTES


def test_points_are_made_of_the_received_stream_alone(tmp_path: pathlib.Path) -> None:
    code = [text for language, _, text in BLOCKS if language == "python"][0]
    port = re.search(r"port=(\d+)", block("gdp"))[1]
    with subprocess.Popen(["timeout", "20", sys.executable, "-c", code.replace("5055", port)], cwd=tmp_path, stdout=subprocess.PIPE, text=True,
                          env={**os.environ, "ZENTARASDK_ROOT": "/none"}) as receiver:
        time.sleep(1)
        run(f"gst-launch-1.0 zentarasrc num-buffers=10 ! queue ! gdppay ! tcpclientsink host=127.0.0.1 port={port} sync=false", tmp_path)
        said = receiver.communicate()[0]
    number, points = map(int, re.search(r"frame (\d+) of SIM0570 has (\d+) points", said).groups())
    with zentara.open() as camera:
        assert number >= 9 and points in [len(frame.points().points) for frame in camera.depth(frames=40, queue=64)]
    assert (tmp_path / "received.ply").stat().st_size > points * 12
