"""The flash of simulated cameras and of image files."""
import copy
import logging
import os
import pathlib
import signal
import threading
import time
from typing import Any, Callable, List, Tuple

import numpy
import pytest
import zentara


def without(content: Any, uid: int) -> Any:
    """A copy of a content that lacks one section."""
    changed = copy.deepcopy(content)
    changed["sections"] = [section for section in changed["sections"] if section["uid"] != uid]
    return changed


def test_a_camera_is_changed_and_brought_back(tmp_path: pathlib.Path, caplog: pytest.LogCaptureFixture) -> None:
    backup, kept = str(tmp_path / "backup.bin"), str(tmp_path / "kept.bin")
    seen: List[Tuple[int, int]] = []
    with zentara.open("SIM0570") as camera, camera.flash(write=True) as flash:
        before = flash.load()
        assert before.data.dtype == numpy.uint8 and not before.data.flags.writeable
        assert before.area == flash.area and len(before.data) == flash.area["size"] and "SIM0570" in flash.name
        content = flash.content(before)
        calls: List[Callable[[Any], object]] = [flash.content, flash.plan_format, flash.apply]
        for call in calls:
            with pytest.raises(TypeError):
                call(None)
        wanted = without(content, 4)
        change = flash.plan(before, wanted)
        assert change.obstacle == "none" and change.refusal is None and change.takes_away
        assert [(one["kind"], one["uid"]) for one in change.sections] == [("erased", 4)] and change.lines
        assert sum(len(written) for _, written in change.writes) == len(change) > 0
        flash.backup(backup, before)
        with caplog.at_level(logging.WARNING, "zentara"):
            assert flash.apply(change, backup=kept, progress=lambda done, every: seen.append((done, every))) == kept
        assert kept in caplog.text
        after = flash.load()
        assert numpy.array_equal(after.data, change.after.data) and flash.content(after) == wanted
        assert pathlib.Path(kept).read_bytes() == pathlib.Path(backup).read_bytes() == before.data.tobytes()
        assert not flash.apply(flash.plan_restore(after, kept), keeps=False)
        assert flash.content(flash.load()) == content and not flash.plan(before, content)
        refused = flash.plan(before, without(content, 1))
        assert refused.obstacle == "read_only" and isinstance(refused.refusal, zentara.Failure)
        with pytest.raises(zentara.Failure, match="section 1"):
            flash.apply(refused)
        wanted["sections"][0]["uid"] = "one"
        with pytest.raises(zentara.Failure, match="/sections/0/uid"):
            flash.plan(before, wanted)
    with pytest.raises(zentara.UsageFailure, match="closed"):
        flash.load()


def test_images_are_made_surveyed_and_salvaged(tmp_path: pathlib.Path) -> None:
    with zentara.open("SIM0345") as camera, camera.flash() as flash:
        image = flash.load()
        content = flash.content(image)
        with pytest.raises(zentara.Failure):
            flash.apply(flash.plan_format(image))
    survey = image.survey()
    assert survey["header"] and not survey["is_faulty"] and [one["uid"] for one in survey["sections"]] == [1, 2, 3, 4, 5]
    tables = image.correction_tables()[0]["tables"]
    assert [one["megahertz"] for one in tables] == [10, 30] and tables[0]["values"].dtype == numpy.uint8
    assert zentara.draw_correction(tables[0]["values"], "10 MHz").shape[2] == 3
    assert "section 3" in image.map() and image.draw("SIM0345").dtype == numpy.uint8
    bytes_of_it = image.data.copy()
    bytes_of_it[:17] = 0
    damaged = zentara.FlashImage(bytes_of_it)
    assert damaged.survey()["header"] is None and damaged.survey()["is_faulty"]
    found = damaged.salvage()
    assert found["content"] == content and found["image"].salvage()["content"] == content and found["lines"]
    path = str(tmp_path / "new.bin")
    with zentara.Flash.create(path, size=16384) as flash:
        flash.apply(flash.plan_format(flash.load()))
        flash.apply(flash.plan(flash.load(), content), keeps=False)
        with pytest.raises(zentara.Busy):
            zentara.Flash.image(path, write=True)
    with zentara.Flash.image(path) as flash:
        assert flash.content(flash.load()) == content


def test_long_work_ends_when_nobody_wants_it_any_more(monkeypatch: pytest.MonkeyPatch) -> None:
    monkeypatch.setenv("ZENTARA_SIMULATED", "hang 4 at send")
    with zentara.open("SIM0570") as camera, camera.flash(write=True) as flash:
        seen: List[Tuple[int, int]] = []
        before = flash.load(lambda done, every: seen.append((done, every)))
        assert len(seen) > 1 and seen == sorted(seen) and seen[-1] == (len(before.data),) * 2

        def refuse(done: int, every: int) -> bool:
            return False

        def stumble(done: int, every: int) -> bool:
            raise ZeroDivisionError

        def interrupt(done: int, every: int) -> None:
            os.kill(os.getpid(), signal.SIGINT)

        ends: List[Tuple[Callable[[int, int], Any], type]] = [
            (refuse, zentara.Interrupted), (stumble, ZeroDivisionError), (interrupt, KeyboardInterrupt)]
        for progress, raised in ends:
            with pytest.raises(raised):
                flash.load(progress)


def test_ctrl_c_waits_for_what_is_being_written(tmp_path: pathlib.Path, monkeypatch: pytest.MonkeyPatch) -> None:
    monkeypatch.setenv("ZENTARA_SIMULATED", "hang 4 at send")
    with zentara.open("SIM0570") as camera, camera.flash(write=True) as flash:
        before = flash.load()
        change = flash.plan(before, without(flash.content(before), 4))
        writing: List[int] = []

        def interrupt(done: int, every: int) -> None:
            if done > 0 and not writing:
                writing.append(done)
                os.kill(os.getpid(), signal.SIGINT)

        with pytest.raises(KeyboardInterrupt):
            flash.apply(change, backup=str(tmp_path / "before.bin"), progress=interrupt)
        assert writing and writing[0] < len(change) + len(before.data)
        assert numpy.array_equal(flash.load().data, change.after.data)
        flash.apply(flash.plan_restore(change.after, str(tmp_path / "before.bin")), keeps=False)


def test_a_flash_whose_camera_is_closed_raises() -> None:
    for _ in range(3):
        camera = zentara.open("SIM0570")
        flash = camera.flash()
        raised: List[BaseException] = []

        def load() -> None:
            try:
                for _ in range(1000):
                    flash.load()
            except zentara.Failure as failure:
                raised.append(failure)

        thread = threading.Thread(target=load, daemon=True)
        thread.start()
        time.sleep(0.05)
        camera.close()
        thread.join(30)
        assert len(raised) == 1 and "closed" in str(raised[0])
        del camera
        with pytest.raises(zentara.Failure):
            flash.load()
