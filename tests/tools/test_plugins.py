"""Plug-ins that go wrong, listed and checked by the tool."""

import json
from pathlib import Path

import pytest

from own_root import BUILT, ENDING, WINDOWS, put, tool


def run(root, *arguments):
    return tool(root, "plugins", *arguments)


# The loader of Windows survives a crash in what it calls itself.
LISTED = [
    ("load crash", None if WINDOWS else "open", "while it is loaded"),
    ("load abort", "open", "while it is loaded"),
    ("load hang", "open", "hangs while it is loaded"),
    ("load exit", "open", "ends the process while it is loaded"),
    ("guid crash", "implGUID", 'in "getImplGUID"'),
    ("data", "implGUID", 'in "getImplGUID"'),
    ("guid throw", "implGUID", r'throws from "getImplGUID": thrown\n\x1b[2Jxxx'),
    ("type exit", "implType", 'ends the process in "getImplType"'),
    ("version hang", "pluginVersion", 'hangs in "getPluginVersion"'),
    ("sdk abort", "sdkVersion", 'in "getSDKVersion"'),
    ("unload crash", None if WINDOWS else "unload", "while it is unloaded"),
    ("unload exit", "unload", "ends the process while it is unloaded"),
]


def test_names_who_ends_the_process_and_lists_the_others(tmp_path):
    rows = [row for row in LISTED if row[1]]
    for behaviour, _, _ in rows:
        put(tmp_path, behaviour, "misbehaving_data" if behaviour == "data" else "misbehaving")
    for behaviour in ("load print", "sdk print"):
        put(tmp_path, behaviour)
    (tmp_path / "bin" / "Plugins" / ("text" + ENDING)).write_text("I am no library")
    code, out, err = run(tmp_path, "--all", "--json")
    assert code == 0 and "SPOILT" not in out, err
    listing = json.loads(out)
    assert len(listing["plugins"]) == 2
    refused = {Path(file["path"].replace("\\", "/")).name: file for file in listing["refused"]}
    assert len(refused) == len(rows) + 1
    for behaviour, step, reason in rows:
        file = refused[behaviour + ENDING]
        fatal = behaviour != "guid throw"
        assert (file["step"], file["fatal"]) == (step, fatal), file
        assert reason in file["reason"] and len(file["reason"]) <= 1024
        assert (behaviour + ENDING in err) == fatal


CHECKED = [
    ("misbehaving", "as it should", None, ""),
    ("misbehaving_store", "as it should", None, ""),
    ("misbehaving_device", "as it should", None, ""),
    ("misbehaving_device", "load exit", "the system loads it", "ends the process while it is loaded"),
    ("misbehaving_device", "sdk old", "getSDKVersion", "1.4.5.2150"),
    ("misbehaving_device", "open crash", "open", "crashes"),
    ("misbehaving_device", "open throw", "open", "no plug-in exception: thrown"),
    ("misbehaving_device", "open leak", "no reference is left, and the library is closed", "still counted"),
    ("misbehaving_device", "open thread", "no thread of it is left", "more than before"),
    ("misbehaving_device", "len hang", "len of an unknown control", "hangs: no end after 5 s"),
    ("misbehaving_device", "len exit", "len of an unknown control", "ends the process with exit code 0"),
    ("misbehaving_device", "read overrun", "readBuffer into 1 byte", "wrote beyond the 1 bytes"),
    ("misbehaving_device", "read late", "readBuffer into 1 byte", "came back after 1."),
    ("misbehaving_device", "disable nothing", "the end of the stream while readBuffer waits", "did not come back"),
    ("misbehaving", "enumerate abort", "enumerate before initialize", ""),
    ("misbehaving_store", "initialize throw", "initialize", "no plug-in exception"),
]


@pytest.mark.parametrize("variant, behaviour, step, observed", CHECKED)
def test_checks_a_plugin_and_names_the_operation_that_fails(tmp_path, variant, behaviour, step, observed):
    file = put(tmp_path, behaviour, variant)
    code, out, _ = run(tmp_path, "--check", file, "--json")
    report = json.loads(out)
    failed = {one["name"]: one for one in report["steps"] if one["verdict"] == "failed"}
    assert (code, report["passed"]) == ((0, True) if step is None else (8, False)), failed
    if step is not None:
        assert observed in failed[step]["observed"]
        assert failed[step]["consequence"] and failed[step]["remedy"]


def test_goes_on_behind_the_step_that_fails_and_blames_no_neighbour(tmp_path):
    put(tmp_path, "load exit")
    code, out, err = run(tmp_path, "--check", put(tmp_path, "len exit", "misbehaving_device"))
    assert code == 8
    for said in ("video device", "  failed   len of an unknown control\n", " 2 failed, ",
                 "not run  the other plug-ins of the install root", "passed   dispose a second time"):
        assert said in out
    assert "does not keep what its kind promises: 2 of " in err
    assert run(tmp_path, "--check", "nothing")[0] == 2


@pytest.mark.skipif(WINDOWS, reason="a process started there takes a second, and a check takes several")
def test_finds_no_fault_with_what_is_shipped():
    checked = {file.stem: run(BUILT, "--check", file) for file in (BUILT / "bin" / "Plugins").glob("*" + ENDING)}
    assert len(checked) > 10
    assert {name: out for name, (code, out, _) in checked.items() if code != 0 or " 0 failed" not in out} == {}
