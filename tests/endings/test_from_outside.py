"""What comes from outside the tool ends it with a word and its exit status, and leaves no half a file."""

import json
import os
import pathlib
import subprocess

import pytest

TOOL = f"'{os.environ['ZENTARA_TOOL']}'"
# Without the right to read everything, as the same user, who may be the only one that gets as far as to the program.
UNPRIVILEGED = "$([ $(id -u) = 0 ] && echo setpriv --bounding-set -all) "
CHANGE = f"{TOOL} rom set 9 image --type 77 --hex 01"
HANG = "ZENTARA_SIMULATED='hang 60000 at video.open' "
STOP = "timeout --preserve-status --foreground -s "

ROWS = [
    (f"mkfifo pipe; timeout 20 {TOOL} stream --play pipe", 1, "it is there and no file"),
    (f"ulimit -f 8; {TOOL} stream --frames 20 --raw raw", 1, "File too large"),
    (f"{{ {TOOL} sensors --watch --interval 20; echo $? > code; }} | head -1 > one; (exit $(cat code))", 1,
     "cannot write to standard output"),
    (f"ulimit -f 8; {CHANGE}", 1, "File too large"),
    *((f"{TOOL} {verb} > /dev/full", 1, "cannot write to standard output")
      for verb in ("--help", "devices --watch", "sensors --watch")),
    (f"chmod 555 .; {UNPRIVILEGED} {CHANGE}; code=$?; chmod 755 .; exit $code", 5, "Permission denied"),
    (f"cp bus.json secret; chmod 0 secret; {UNPRIVILEGED} {TOOL} rom list secret; "
     f"[ $? = 5 ] && {UNPRIVILEGED} {TOOL} stream --play secret", 5, "Permission denied"),
    (f"{HANG} {STOP} TERM 1 {TOOL} --patience 60 stream --direct", 130,
     "interrupted while it was to open MOCKVIDEODEVICE_IMPL"),
    (f"{HANG} {STOP} INT 1 {STOP} INT 3 {TOOL} --patience 60 stream --direct", 130, "Ctrl-C once more ends it at once"),
]


def run(directory: pathlib.Path, command: str) -> subprocess.CompletedProcess[str]:
    """What the shell makes of it beside one simulated camera."""
    bus = directory / "bus.json"
    bus.write_text('{"format": 1, "cameras": [{"model": "ZS570", "serialNumber": "LEFT"}]}')
    return subprocess.run(["sh", "-c", command], cwd=directory, env=dict(os.environ, ZENTARA_SIMULATED_CAMERAS=str(bus)),
                          text=True, capture_output=True, timeout=60)


@pytest.mark.parametrize("command, status, said", ROWS)
def test_ends_with_a_word(tmp_path: pathlib.Path, command: str, status: int, said: str) -> None:
    assert run(tmp_path, f"{TOOL} rom create image").returncode == 0
    image = (tmp_path / "image").read_bytes()
    ended = run(tmp_path, command)
    assert (ended.returncode, said in ended.stderr) == (status, True), ended.stderr
    assert (tmp_path / "image").read_bytes() == image
    assert not list(tmp_path.glob("*.part*"))


# A limit for the size of files is to a writer what a full disk is.
def test_keeps_what_is_whole_when_the_disk_is_full(tmp_path: pathlib.Path) -> None:
    for blocks, files in ((1000, "--record full --raw raw"), (50, "--wav wav")):
        ended = run(tmp_path, f"ulimit -f {blocks}; {TOOL} stream {files}")
        assert ended.returncode != 0
        assert "cannot write '" in ended.stderr and "what came whole before it is kept" in ended.stderr
    played = run(tmp_path, f"{TOOL} stream --play full --raw again --json")
    frames = json.loads(played.stdout)["streams"][0]["frames"]["received"]
    assert frames > 0
    frame = (tmp_path / "again").stat().st_size // frames
    assert (tmp_path / "raw").stat().st_size % frame == 0, "whole frames"
    wav = (tmp_path / "wav").read_bytes()
    assert len(wav) > 20000
    assert int.from_bytes(wav[4:8], "little") == len(wav) - 8
    assert int.from_bytes(wav[40:44], "little") == len(wav) - 44
    assert not list(tmp_path.glob("*.part*"))


def test_keeps_its_text_out_of_its_files_when_standard_output_is_closed(tmp_path: pathlib.Path) -> None:
    assert run(tmp_path, f"{TOOL} stream --direct --frames 3 --raw d.raw").returncode == 0
    whole = (tmp_path / "d.raw").stat().st_size
    assert run(tmp_path, f"{TOOL} stream --direct --frames 3 --raw e.raw >&- 2>&-").returncode == 1
    assert (tmp_path / "e.raw").stat().st_size == whole


def test_ends_in_order_when_interrupted(tmp_path: pathlib.Path) -> None:
    ended = run(tmp_path, f"{STOP} INT 2 {TOOL} stream --direct --frames 100000 --raw d.raw --json")
    assert ended.returncode == 130, ended.stderr
    said = json.loads(ended.stdout)
    assert said["interrupted"] is True
    frames = said["streams"][0]["frames"]["received"]
    assert frames >= 5
    one = run(tmp_path, f"{TOOL} stream --direct --frames 1 --raw one.raw")
    assert one.returncode == 0
    assert (tmp_path / "d.raw").stat().st_size == frames * (tmp_path / "one.raw").stat().st_size, "whole frames only"
    assert "interrupted after" in ended.stderr


def test_leaves_nothing_when_interrupted_before_it_begins(tmp_path: pathlib.Path) -> None:
    slow = "ZENTARA_SIMULATED='hang 1500 at audio.open' "
    ended = run(tmp_path, f"{slow} {STOP} TERM 1 {TOOL} stream --direct --audio --raw d.raw")
    assert ended.returncode == 130, ended.stderr
    assert "interrupted before anything was streamed" in ended.stderr
    assert [left.name for left in tmp_path.iterdir()] == ["bus.json"]
