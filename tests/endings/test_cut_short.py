"""A camera is pulled out, hangs or takes other bytes, or the program that writes its flash is killed, at one transfer after the other: afterwards what
the tool says of the flash is so, and the command that it printed brings the bytes of before back when it is pasted.

Some transfers of each phase; every nth one with ZENTARA_TEST_STEP=n in the environment."""

import os
import pathlib
import subprocess
import time

import pytest

TOOL = pathlib.Path(os.environ["ZENTARA_TOOL"])
CONTENT = pathlib.Path(os.environ["ZENTARA_EXAMPLES"]) / "camera_rom.json"
STEP = int(os.environ.get("ZENTARA_TEST_STEP", "0"))
# What goes wrong in a transfer, the tool's exit status, and its words.
FAULTS = {
    "unplugged": ("throw io at transfer after {1}", 1, ""),
    "hangs": ("transfer {0} hang 60000", 7, "has not come back for 1 s"),
    "garbles": ("transfer {0} corrupt", 1, "other bytes were read back"),
}
PATIENCE = 60  # seconds, for what takes a fraction of one

CHANGES = {
    "set": ["rom", "set", "9", "--type", "77", "--hex", "7" * 600],
    "import": ["rom", "import", str(CONTENT), "--yes"],
    "restore": ["rom", "restore", "other.img", "--yes", "--other-camera"],
}


class Desk:
    """A directory with a simulated camera, its flash in a file, and the tool."""

    def __init__(self, directory: pathlib.Path) -> None:
        self.directory = directory
        self.flash = directory / "flash"
        self.log = directory / "transfers"
        self.environment = dict(os.environ, PATH=f"{TOOL.parent}:{os.environ['PATH']}",
                                ZENTARA_SIMULATED_CAMERAS=str(directory / "bus.json"))
        (directory / "bus.json").write_text('{"format": 1, "cameras": [{"model": "ZS570"}]}')

    def start(self, words: list[str], settings: str = "") -> subprocess.Popen[str]:
        # The file, for a setting ends with a semicolon.
        text = f"keepFlash {self.flash}\ntransferLog {self.log}\n{settings}\n"
        (self.directory / "settings").write_text(text)
        self.log.unlink(missing_ok=True)
        return subprocess.Popen([TOOL, *words], cwd=self.directory, text=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                env=dict(self.environment, ZENTARA_SIMULATED=f"@{self.directory / 'settings'}"))

    def run(self, words: list[str], settings: str = "") -> tuple[int, str]:
        tool = self.start(words, settings)
        _, error = tool.communicate(timeout=PATIENCE)
        return tool.returncode, error

    def killed_at(self, words: list[str], transfer: int) -> str:
        """What it said before it was killed in that transfer."""
        tool = self.start(words, f"transfer {transfer} hang {1000 * PATIENCE}")
        end = time.monotonic() + PATIENCE
        while tool.poll() is None and time.monotonic() < end and len(self.transfers()) < transfer - 1:
            time.sleep(0.005)
        time.sleep(0.02)
        tool.kill()
        return tool.communicate()[1]

    def transfers(self) -> list[str]:
        return self.log.read_text().splitlines() if self.log.exists() else []


@pytest.fixture(scope="module", params=CHANGES)
def change(request: pytest.FixtureRequest, tmp_path_factory: pytest.TempPathFactory):
    """A desk, the words of a change, the flash before and after it, and its transfers."""
    desk = Desk(tmp_path_factory.mktemp(request.param))
    words = CHANGES[request.param] + ["--backup", "before.img"]
    assert desk.run(["rom", "backup", "other.img"])[0] == 0
    before = desk.flash.read_bytes()
    if request.param == "restore":  # another camera's flash: that of this one, with one section more
        assert desk.run(CHANGES["set"] + ["--backup", "first.img"])[0] == 0
        (desk.directory / "other.img").unlink()
        assert desk.run(["rom", "backup", "other.img"])[0] == 0
        desk.flash.write_bytes(before)
    assert desk.run(words)[0] == 0
    return desk, words, before, desk.flash.read_bytes(), desk.transfers()


def writing(transfers: list[str]) -> list[int]:
    """The first write and the last one, counted from 1."""
    writes = [number for number, line in enumerate(transfers, 1) if "EEPROM write" in line]
    return [writes[0], writes[-1]]


def chosen(transfers: list[str]) -> list[int]:
    """The transfers, counted from 1, at which it is ended."""
    if STEP:
        return list(range(1, len(transfers) + 1, STEP))
    first, last = writing(transfers)
    return sorted({1, first // 2, first, first + 1, (first + last) // 2, last, last + 1, (last + len(transfers)) // 2})


@pytest.mark.parametrize("how", ["unplugged", "killed", "hangs", "garbles"])
def test_a_change_that_is_cut_short_can_be_taken_back(change, how: str) -> None:
    desk, words, before, after, transfers = change
    touched = 0
    for number in chosen(transfers) if how in ("unplugged", "killed") else writing(transfers):
        desk.flash.write_bytes(before)
        for left in desk.directory.glob("before*"):
            left.unlink()
        if how == "killed":
            said = desk.killed_at(words, number)
        else:
            settings, wanted, cause = FAULTS[how]
            status, said = desk.run(["--patience", "1", *words], settings.format(number, number - 1))
            assert status == wanted and cause in said, (number, said)
        now = desk.flash.read_bytes()
        touched += now != before
        verified, fault = desk.run(["rom", "verify"])
        assert verified == 0 if now in (before, after) else verified in (0, 8), (number, fault)
        pasted = [line for line in said.splitlines() if line.startswith("  zentara rom restore")]
        assert pasted or now == before, (number, said)
        if pasted:
            (desk.directory / "settings").write_text(f"keepFlash {desk.flash}\n")
            restored = subprocess.run(pasted[0], shell=True, cwd=desk.directory, text=True, capture_output=True,
                                      timeout=PATIENCE, env=dict(
                                          desk.environment, ZENTARA_SIMULATED=f"@{desk.directory / 'settings'}"))
            assert restored.returncode == 0, (number, pasted[0], restored.stderr)
        assert desk.flash.read_bytes() == before, number
    assert touched


def test_what_comes_garbled_is_read_again(change) -> None:
    desk, words, before, after, transfers = change
    first, last = writing(transfers)
    for number in (first // 2, (last + len(transfers)) // 2):  # before the writes, and behind them
        desk.flash.write_bytes(before)
        for left in desk.directory.glob("before*"):
            left.unlink()
        assert desk.run(words, f"transfer {number} corrupt")[0] == 0, number
        assert desk.flash.read_bytes() == after, number
