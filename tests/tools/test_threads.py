"""The tool's verbs built with the thread sanitizer, which says on standard error what it finds and ends the process with a status of its own."""

import json
import os
import pathlib
import signal
import subprocess
import time

import pytest

TOOL = os.environ["ZENTARA_TOOL"]
PATIENCE = 60  # seconds, for what takes one
DONE, INTERRUPTED = 0, 130

VERBS = [
    "devices", "info", "plugins --all", "params list", "sensors", "doctor --json", "rom verify", "rom export",
    "rom set 9 --camera LEFT --type 77 --hex 0102",
    "stream --frames 5 --direct --audio --raw direct.raw",
    "stream --all --frames 8 --png all.png --wav all.wav",
    "stream --frames 8 --share --corrected --ply corrected.ply",
    "stream --frames 8 --color --ply cloud.ply --cloud-png cloud.png --color-png color.png --record recording",
    "stream --play recording --png played.png",
]


def cameras(directory: pathlib.Path, *names: str) -> None:
    """Plugs these in, in place of those that were."""
    text = json.dumps({"format": 1, "cameras": [{"model": "ZS570", "serialNumber": name} for name in names]})
    (directory / "bus.part").write_text(text)
    (directory / "bus.part").replace(directory / "bus.json")


def start(directory: pathlib.Path, words: str) -> subprocess.Popen[str]:
    environment = dict(os.environ, ZENTARA_SIMULATED_CAMERAS=str(directory / "bus.json"))
    return subprocess.Popen([TOOL, *words.split()], cwd=directory, env=environment, text=True, stdout=subprocess.PIPE,
                            stderr=subprocess.PIPE)


def end(tool: subprocess.Popen[str], *statuses: int) -> str:
    said, error = tool.communicate(timeout=PATIENCE)
    assert "ThreadSanitizer" not in error, error
    assert tool.returncode in statuses, error
    return said


def test_each_verb_does_its_work(tmp_path: pathlib.Path) -> None:
    cameras(tmp_path, "LEFT", "RIGHT")
    for words in VERBS:
        end(start(tmp_path, words), DONE)
    assert (tmp_path / "played.png").read_bytes() != b""


# Before it has begun to listen to Ctrl-C, that ends it as it ends any program.
@pytest.mark.parametrize("words", ["stream --frames 100000 --color --audio --record recording", "devices --watch"])
def test_is_interrupted_in_any_phase(tmp_path: pathlib.Path, words: str) -> None:
    cameras(tmp_path, "LEFT")
    for tenths in range(0, 16, 3):
        tool = start(tmp_path, words)
        time.sleep(tenths / 10)
        tool.send_signal(signal.SIGINT)
        end(tool, INTERRUPTED, -signal.SIGINT)


def test_sees_cameras_come_and_go(tmp_path: pathlib.Path) -> None:
    cameras(tmp_path, "LEFT")
    watching = start(tmp_path, "devices --watch --json")
    assert watching.stdout is not None
    seen = watching.stdout.readline()
    streaming = start(tmp_path, "stream --frames 100000 --wait 30")
    for names in (("LEFT", "RIGHT"), ("RIGHT",), ("LEFT",)):
        time.sleep(1)
        cameras(tmp_path, *names)
    time.sleep(1)
    for tool in (watching, streaming):
        tool.send_signal(signal.SIGINT)
    seen += end(watching, INTERRUPTED)
    end(streaming, INTERRUPTED)
    assert "RIGHT" in seen
