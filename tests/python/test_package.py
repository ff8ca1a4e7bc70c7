"""The stubs say what the module is, and every line of its page runs."""
import pathlib
import re
import subprocess
import sys

HERE = pathlib.Path(__file__).parent
PAGE = (HERE.parents[1] / "docs" / "python.md").read_text(encoding="utf-8")
BLOCKS = re.findall(r"^```python\n(.*?)^```", PAGE, re.DOTALL | re.MULTILINE)


def check(*command: str, inside: pathlib.Path) -> None:
    done = subprocess.run([sys.executable, *command], cwd=inside, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    assert done.returncode == 0, done.stdout.decode()


def test_every_line_of_the_page_runs_and_has_the_right_types(tmp_path: pathlib.Path) -> None:
    assert len(BLOCKS) > 5
    (tmp_path / "page.py").write_text("".join(BLOCKS), encoding="utf-8")
    check("page.py", inside=tmp_path)
    check("-m", "mypy", "--strict", "page.py", inside=tmp_path)


def test_the_stubs_are_those_of_the_module(tmp_path: pathlib.Path) -> None:
    # What makes a class, and its constructor, a compiled module does not show; what a class has, it does.
    (tmp_path / "hidden").write_text(r"zentara\.(\w+\.)?[A-Z]\w+(\.__init__)?", encoding="utf-8")
    check("-m", "mypy.stubtest", "--allowlist", "hidden", "zentara", inside=tmp_path)
    check("-m", "mypy", "--strict", *map(str, HERE.glob("*.py")), inside=tmp_path)
