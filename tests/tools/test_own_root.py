"""Plug-ins that are missing, that do not come back, and of which there are several, as the tool's verbs tell of them."""

import json
import shutil

import pytest

from own_root import ENDING, copy_built, put, tool


def test_names_the_plugins_that_are_missing(tmp_path):
    plugins = copy_built(tmp_path)
    for real in ("usb_enumerator", "generic_descriptions", "v4l2_video_device", "alsa_audio_device"):
        (plugins / (real + ENDING)).unlink(missing_ok=True)
    (tmp_path / "cameras" / "other.json").write_text('{"format": 1}')
    listed = tool(tmp_path, "devices")[1]
    assert "SIM0570" in listed and "OTHER" not in listed
    shutil.rmtree(tmp_path / "cameras")
    for verb in "devices", "info", "stream":
        code, _, err = tool(tmp_path, verb)
        assert code == 3 and "no camera is plugged in" in err, verb
    register = ("reg", "read", "tof", "1")
    for missing, code, direct in ("simulated_enumerator", 4, 0), ("simulated_video_device", 4, 4):
        (plugins / (missing + ENDING)).unlink()
        assert tool(tmp_path, *register)[0] == code
        assert tool(tmp_path, *register, "--direct")[0] == direct
    (plugins / ("descriptor_store" + ENDING)).unlink()
    code, _, err = tool(tmp_path, "devices")
    assert code == 4 and "no descriptor store plug-in is registered" in err


HANGING = [
    ("load hang", "", ["devices"], "cannot look for plug-ins: "),
    ("create hang", "", ["devices"], "cannot look for cameras through 00000001-0006"),
    ("initialize hang", "", ["info"], "cannot look for cameras through 00000001-0006"),
    ("enumerate hang", "", ["stream"], "cannot look for cameras through 00000001-0006"),
    ("dispose hang", "", ["info"], "cannot close the enumerator 00000001-0006"),
    (None, "video.dispose", ["stream", "--frames", "3", "--raw", "whole"], "cannot close "),
    (None, "video.open", ["stream", "--direct"], "cannot open MOCKVIDEODEVICE_IMPL: "),
    (None, "video.recv", ["reg", "read", "tof", "1", "--direct"], ": GET unit 6, control 1: "),
]


@pytest.mark.parametrize("enumerator, device, words, said", HANGING)
def test_ends_when_a_plugin_does_not_come_back(tmp_path, monkeypatch, enumerator, device, words, said):
    copy_built(tmp_path)
    monkeypatch.chdir(tmp_path)
    if enumerator:
        put(tmp_path, enumerator)
    code, _, err = tool(tmp_path, "--patience", "1", *words,
                        ZENTARA_SIMULATED=f"hang 60000 at {device}" if device else "")
    assert code == 7 and said in err and "it has not come back for 1 s" in err, err
    if "--raw" in words:
        assert (tmp_path / "whole").stat().st_size == 3 * 460800, "what had come is whole"


def test_takes_several_enumerators_and_stores_together(tmp_path):
    copy_built(tmp_path)
    for kind, variant in ("bus", "misbehaving"), ("store", "misbehaving_store"):
        put(tmp_path, "none", variant, "a_" + kind)
        put(tmp_path, "initialize throw", variant, "b_" + kind)
    code, out, err = tool(tmp_path, "devices", "--json")
    listed = json.loads(out)
    assert code == 0 and len(listed["cameras"]) == 3 and listed["cameras"][0]["controller"] == "OV0570"
    assert "an empty bus, " in listed["enumerator"]
    for left_out in ("cannot look for cameras through 00000001-0006",
                     "cannot read the descriptions of cameras through 00000001-0008", "it is left out"):
        assert left_out in err
    assert tool(tmp_path, "info")[0] == 0
    assert "SIM0345" in tool(tmp_path, "devices", "--watch", "--seconds", "3")[1]


def test_takes_the_device_plugin_that_is_named(tmp_path):
    plugins = copy_built(tmp_path)
    # A second video device: the first four bytes of its GUID are others, wherever they stand.
    content = (plugins / ("simulated_video_device" + ENDING)).read_bytes()
    (plugins / ("other" + ENDING)).write_bytes(content.replace(bytes.fromhex("C63FE239"), bytes.fromhex("C63FE201")))
    other = "01E23FC6-E54A-4CD0-9FB4-67C1781E2C5B"
    own = "MOCKVIDEODEVICE_IMPL"
    for name, taken in ((None, other), (other, other), ("{" + other + "}", other), ("other" + ENDING, other),
                        ("simulated_video_device", own), (plugins / ("simulated_video_device" + ENDING), own),
                        (own.lower(), own)):
        code, out, err = tool(tmp_path, "stream", "--direct", "--frames", "1", "--json",
                              *(("--plugin", name) if name else ()))
        assert code == 0 and taken in out and ("are registered; taking" in err) == (name is None), (name, err)
    register = ("reg", "read", "tof", "0x21", "--plugin")
    code, _, err = tool(tmp_path, *register, "simulated_enumerator", "--direct")
    assert code == 2 and "no video device plug-in is called 'simulated_enumerator'" in err
    assert "(simulated_video_device" + ENDING + ")" in err
    assert tool(tmp_path, *register, "other")[0] == 2, "without --direct"
