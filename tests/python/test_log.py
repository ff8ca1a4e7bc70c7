"""ZENTARASDK_LOG: what the tool and the module write down, where, and that it is nothing unless somebody asks."""
import os
import pathlib
import re
import subprocess
import sys
from typing import Tuple

import pytest

TOOL = os.path.join(os.environ["ZENTARASDK_ROOT"], "bin", "zentara")
DEVICES = (TOOL, "devices")
FRAME = (sys.executable, "-c", "import zentara; next(zentara.open('SIM0570').depth())")
LINE = re.compile(r".+: \[[0-9a-f]{8}\]: (CRITICAL|ERROR|WARNING|INFO): +(.*)")


def run(value: str, *command: str) -> Tuple[int, str, str]:
    done = subprocess.run(command, env={**os.environ, "ZENTARASDK_LOG": value}, stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, universal_newlines=True, timeout=60)
    return done.returncode, done.stdout, done.stderr


@pytest.mark.parametrize("command", [DEVICES, FRAME], ids=["tool", "module"])
def test_lines_go_where_the_variable_says(command: Tuple[str, ...], tmp_path: pathlib.Path) -> None:
    quiet = run("", *command)
    assert quiet[0] == 0 and quiet[2] == "" and not list(tmp_path.iterdir())
    target = tmp_path / "the log @ 1.log"
    target.write_text("before\n", encoding="utf-8")
    assert run(f"info@{target}", *command) == quiet
    lines = target.read_text(encoding="utf-8").splitlines()
    assert lines[0] == "before" and lines[2].startswith("zentara log started") and lines[-2].startswith("zentara log ended")
    told = [match.group(2) for match in map(LINE.fullmatch, lines) if match]
    assert len(told) == len(lines) - 7 and "look for plug-ins" in told
    assert "look for plug-ins" in run("info", *command)[2] and "look for plug-ins" in run("info@-", *command)[1]


@pytest.mark.parametrize(
    "value, there, missing",
    [
        ("streams=info", ["stream DEFF"], ["look for plug-ins", "Loading Cyclic", "open ZS570 depth"]),
        ("plugins=info", ["look for plug-ins", "find the description"], ["stream DEFF", "open ZS570 depth"]),
        ("rom=info", ["Loading Cyclic Error Correction"], ["stream DEFF", "look for plug-ins"]),
        ("info,rom=off", ["stream DEFF", "open ZS570 depth", "look for plug-ins"], ["Loading Cyclic"]),
        ("rom=off,devices=info,warning", ["open ZS570 depth"], ["look for plug-ins", "Loading Cyclic", "stream DEFF"]),
    ],
)
def test_areas_are_chosen(value: str, there: "list[str]", missing: "list[str]") -> None:
    text = run(value, *FRAME)[2]
    assert [words for words in there if words not in text] == [words for words in missing if words in text] == [], text


def test_the_chips_are_an_area_of_their_own() -> None:
    code, _, text = run("chips=info", TOOL, "reg", "read", "--camera", "SIM0570", "tof", "1")
    assert code == 0 and "read tof register 0x01" in text and "look for" not in text


def test_a_time_out_that_only_the_log_knows_is_told_all_the_same(monkeypatch: pytest.MonkeyPatch) -> None:
    monkeypatch.setenv("ZENTARA_SIMULATED", "hang 3000 at video.recv")
    told = [run(value, TOOL, "params", "list", "--camera", "SIM0570") for value in ("", "off")]
    assert told[0] == told[1] and told[0][0] == 7 and "timed out: " in told[0][2]


@pytest.mark.parametrize(
    "value, says",
    [
        ("inf", "there is no level 'inf'\ndid you mean 'info'?"),
        ("info,", "there is no level ''"),
        ("rm=info", "there is no area 'rm'\ndid you mean 'rom'?"),
        ("debug", "there is no level 'debug'"),
        ("info@", "the target after '@' is empty"),
        ("info@/nowhere/x", "cannot write the log to '/nowhere/x': No such file or directory\nZENTARASDK_LOG names the file"),
    ],
)
def test_a_wrong_value_is_a_failure_that_names_it(value: str, says: str) -> None:
    for command in (DEVICES, FRAME):
        code, _, text = run(value, *command)
        assert code in (1, 2) and says in text, text
