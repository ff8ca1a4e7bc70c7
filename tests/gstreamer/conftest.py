"""Cameras that are plugged in for one test."""
import json
import os
import pathlib
from typing import Callable

import pytest

Plug = Callable[..., None]


@pytest.fixture
def plug(tmp_path: pathlib.Path, monkeypatch: pytest.MonkeyPatch) -> Plug:
    """Says which cameras there are, by serial number, and how each behaves: plug(LAB="hang 60 at readBuffer")."""
    file = tmp_path / "cameras.json"

    def put(**cameras: str) -> None:
        listed = [{"model": "ZS570", "serialNumber": serial, "settings": settings} for serial, settings in cameras.items()]
        (tmp_path / "next").write_text(json.dumps({"format": 1, "cameras": listed}), encoding="utf-8")
        os.replace(tmp_path / "next", file)

    put(LAB="")
    monkeypatch.setenv("ZENTARA_SIMULATED_CAMERAS", str(file))
    return put
