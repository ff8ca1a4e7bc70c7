"""`zentara doctor`: each of its findings, brought about."""
import json
import os
import pathlib
import re
import shutil
import subprocess
import tempfile
from typing import Any, Callable, Dict, Iterator, List, Tuple

import pytest

BUILD = pathlib.Path(os.environ["ZENTARASDK_ROOT"])
Findings = List[Tuple[str, str, str, str]]


class Place:
    """An install root and a system of its own, and what the doctor says of them."""

    def __init__(self, path: pathlib.Path) -> None:
        self.root, self.system, self.before = path / "root", path / "system", {"ZENTARASDK_ROOT": str(path / "root")}
        self.plugins = self.root / "bin" / "Plugins"
        self.plugins.mkdir(parents=True)
        for file in (BUILD / "bin" / "Plugins").iterdir():
            (self.plugins / file.name).symlink_to(file)
        (self.root / "cameras").symlink_to(BUILD / "cameras")
        self.user: Dict[str, Any] = {}

    def file(self, path: str, text: str = "") -> pathlib.Path:
        place = self.system / path
        place.parent.mkdir(parents=True, exist_ok=True)
        place.write_text(text, encoding="utf-8")
        return place

    def video(self, speed: str = "5000", version: str = " 3.20") -> pathlib.Path:
        """A camera of the kernel's at the node video7."""
        for name, text in (("speed", speed), ("version", version)):
            self.file("sys/devices/usb1/" + name, text + "\n")
        self.file("sys/class/video4linux/video7/name", "Cam\n")
        (self.system / "sys/devices/usb1/1:0").mkdir()
        (self.system / "sys/class/video4linux/video7/device").symlink_to(self.system / "sys/devices/usb1/1:0")
        return self.file("dev/video7")

    def microphone(self) -> pathlib.Path:
        """That of the same camera."""
        (self.system / "sys/class/sound/pcmC1D0c").mkdir(parents=True)
        (self.system / "sys/class/sound/pcmC1D0c/device").symlink_to(self.system / "sys/devices/usb1/1:0")
        node = self.file("dev/snd/pcmC1D0c")
        node.chmod(0o600)
        return node

    def ask(self) -> Tuple[int, Findings]:
        done = subprocess.run([BUILD / "bin" / "zentara", "doctor", "--json", "--system", self.system],
                              env={**os.environ, **self.before}, stdout=subprocess.PIPE, timeout=60, **self.user)
        said = json.loads(done.stdout)
        findings = [(one["check"], one["state"], one["text"], one["remedy"] or "") for one in said["findings"]]
        assert said["well"] == all(one[1] != "wrong" for one in findings) == (done.returncode == 0)
        assert all(bool(one[3]) == (one[1] != "well") for one in findings), "a remedy for what needs one"
        return done.returncode, findings

    def is_told(self, check: str, state: str, text: str, *others: str) -> None:
        """That this is so, and nothing else wrong but the others."""
        code, findings = self.ask()
        assert [one for one in findings if one[:2] == (check, state) and re.search(text, one[2])], findings
        assert code == (state == "wrong"), findings
        assert {one[0] for one in findings if one[1] == "wrong"} <= {check, *others}, findings


@pytest.fixture
def place() -> Iterator[Place]:
    with tempfile.TemporaryDirectory() as made:
        os.chmod(made, 0o755)
        yield Place(pathlib.Path(made))


def test_nothing_is_wrong(place: Place) -> None:
    code, findings = place.ask()
    checks = {one[0] for one in findings}
    assert code == 0 and {one[1] for one in findings} == {"well"}, findings
    assert {"install-root", "plugin-directory", "library-version", "library-copy", "log", "cameras"} <= checks
    assert ("install-root", "well", f"'{place.root}/', from the environment variable ZENTARASDK_ROOT", "") in findings
    place.video()
    place.file("etc/udev/rules.d/70-zentara-cameras.rules")
    code, findings = place.ask()
    assert code == 0 and {one[1] for one in findings} == {"well"}, findings
    assert {one[0] for one in findings} - checks == {"camera-permission", "usb-speed", "udev-rule"}


def no_root(place: Place) -> None:
    shutil.rmtree(place.root)


def no_plugins(place: Place) -> None:
    for file in place.plugins.iterdir():
        file.unlink()


def old_copy(place: Place) -> pathlib.Path:
    library = BUILD / "lib" / "libZentaraPlugins.so"
    bytes_of_it = re.sub(rb"(@\(#\)ZentaraSDK )[0-9.]+", rb"\g<1>1.4.4.2150", library.read_bytes())
    copy = place.root / "old" / "libZentaraPlugins.so.1.4"
    copy.parent.mkdir()
    copy.write_bytes(bytes_of_it)
    return copy


def rule_is_missing(place: Place) -> None:
    place.video()


def held(place: Place) -> None:
    place.file("etc/udev/rules.d/70-zentara-cameras.rules")
    place.video()
    place.file("proc/4711/comm", "other\n")
    (place.system / "proc/4711/fd").mkdir()
    (place.system / "proc/4711/fd/5").symlink_to("/dev/video7")


def leftover(place: Place) -> None:
    place.file("dev/shm/ZentaraSDK_frames-1_0", "12345")
    place.file("dev/shm/ZentaraSDK_frames-2_0")
    place.file("proc/4711/maps", "7f00-7f01 rw-s 0 00:01 7    /dev/shm/ZentaraSDK_frames-2_0\n")


@pytest.mark.parametrize(
    "bring_about, check, state, text",
    [
        (lambda place: (place.plugins / "notes.so").write_text("no library"), "plugin", "wrong", "notes.so' is refused"),
        (lambda place: (place.plugins / "lost.so").symlink_to("nowhere"), "plugin", "wrong", "lost.so' is refused"),
        (lambda place: place.plugins.chmod(0o777), "plugin-directory", "wrong", "everybody may write"),
        (lambda place: place.before.update(ZENTARASDK_LOG="loud"), "log", "wrong", "there is no level 'loud'"),
        (lambda place: place.before.update(ZENTARASDK_LOG="info@/nowhere/x"), "log", "wrong", "cannot write the log"),
        (lambda place: place.before.update(ZENTARASDK_LOG="off@STDERR"), "log", "well", "goes to 'STDERR'"),
        (lambda place: place.before.update(ZENTARA_SIMULATED_CAMERAS="/nowhere"), "cameras", "wrong", "/nowhere"),
        (lambda place: place.before.update(LD_LIBRARY_PATH=str(old_copy(place).parent)), "library-version", "wrong",
         "is of version 1.4.4.2150, and this program was built for"),
        (lambda place: shutil.move(str(old_copy(place).parent), str(place.root / "lib")), "library-copy", "wrong",
         "libZentaraPlugins.so.1.4' is of version 1.4.4.2150"),
        (lambda place: (place.video(), place.microphone().unlink()), "microphone", "wrong", "has /dev/snd/pcmC1D0c .a cam"),
        (rule_is_missing, "udev-rule", "note", "not installed"),
        (lambda place: place.video().unlink(), "camera-permission", "wrong", "the kernel has /dev/video7 .Cam., but"),
        (lambda place: place.video("12", " 2.00"), "usb-speed", "wrong", "video7 .Cam. is connected at 12 Mbit/s, too slow"),
        (lambda place: place.video("480"), "usb-speed", "wrong", "at 480 Mbit/s, though it can do USB 3"),
        (held, "camera-holder", "note", r"video7 .Cam. is held by process 4711 \(other\)"),
        (leftover, "shared-memory", "note", "^5 bytes in '/dev/shm/ZentaraSDK_frames-1_0'"),
    ],
)
def test_what_is_wrong_is_told(
    place: Place, bring_about: Callable[[Place], object], check: str, state: str, text: str
) -> None:
    bring_about(place)
    place.is_told(check, state, text, *(["library-copy"] if check == "library-version" else []))


def test_a_plugin_that_would_end_the_program_does_not_end_the_doctor(place: Place) -> None:
    library = (BUILD / "test-plugins" / "misbehaving.so").read_bytes()
    spoilt = re.sub(rb"MISBEHAVIOUR: {10}", b"MISBEHAVIOUR:load abort", library)
    (place.plugins / "spoilt.so").write_bytes(spoilt)
    place.is_told("plugin", "wrong", "spoilt.so' is refused: .*; no program finds a camera because of it")
    assert [one[1:3] for one in place.ask()[1] if one[0] == "cameras"] == [("note", "were not looked for")]


@pytest.mark.parametrize("bring_about", [no_root, no_plugins])
def test_without_plugins_there_are_no_cameras(place: Place, bring_about: Callable[[Place], None]) -> None:
    bring_about(place)
    wrong = {one[0] for one in place.ask()[1] if one[1] == "wrong"}
    assert {"plugin-directory", "cameras"} <= wrong and ("install-root" in wrong) == (bring_about == no_root)


@pytest.mark.parametrize(
    "check, state, text, others",
    [
        ("camera-permission", "wrong", "you may not use /dev/video7", ["microphone"]),
        ("microphone", "wrong", "you may not use /dev/snd/pcmC1D0c", ["camera-permission"]),
        ("install-root", "wrong", "Plugins/'.*Permission denied", ["cameras"]),
    ],
)
def test_what_an_ordinary_user_may_not_is_told(place: Place, check: str, state: str, text: str, others: List[str]) -> None:
    forbidden = place.plugins if check == "install-root" else place.video()
    forbidden.chmod(0)
    if forbidden != place.plugins:
        place.microphone()
    if os.geteuid() == 0:
        place.user = {"user": 65534, "group": 65534, "extra_groups": []}
    try:
        place.is_told(check, state, text, *others)
    except PermissionError:
        pytest.skip("the build tree is not to be read by an ordinary user")
    finally:
        forbidden.chmod(0o755)
