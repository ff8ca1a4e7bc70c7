"""Every command and block of the pages does what it says, and every number is the code's."""
import json
import os
import pathlib
import re
import subprocess
from typing import List

import pytest
from pages import SOURCE, Page, Table, all_pages

PAGES = all_pages()
BUILD = pathlib.Path(os.environ["ZENTARA_BUILD"])
COMPILER = os.environ["ZENTARA_COMPILER"].split()


class Installed:
    """The SDK below a place of its own, which stands for the pages' /opt/zentara, and a room for each page."""

    def __init__(self, root: pathlib.Path) -> None:
        self.root = root
        self.prefix = root / "opt"
        subprocess.run(["cmake", "--install", BUILD, "--prefix", self.prefix], check=True, stdout=subprocess.DEVNULL)
        self.environment = {
            **{name: value for name, value in os.environ.items() if not name.startswith("ZENTARA")},
            "PATH": f"{self.prefix}/bin:{os.environ['PATH']}", "ZENTARA_SYSFS": str(root / "no-devices"), "NO_COLOR": "1",
            "ZENTARASDK_ROOT": f"{self.prefix}/",
            "PKG_CONFIG_PATH": next(str(path.parent) for path in self.prefix.rglob("zentara-host.pc")),
            "CXX": COMPILER[0], "CMAKE_GENERATOR": "Ninja", "CMAKE_BUILD_TYPE": "Release"}

    def room(self, page: str) -> pathlib.Path:
        room = self.root / page.replace("/", "-")
        (room / "build").mkdir(parents=True)
        (room / "build" / "gcc").symlink_to(BUILD)
        (room / "examples").symlink_to(SOURCE / "examples")
        return room

    def run(self, script: str, room: pathlib.Path) -> str:
        script = script.replace("/opt/zentara", str(self.prefix))
        done = subprocess.run(["timeout", "120", "bash", "-eu", "-o", "pipefail", "-c", script], cwd=room, env=self.environment,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        assert done.returncode == 0, f"exit code {done.returncode}:\n{done.stdout}"
        return done.stdout


@pytest.fixture(scope="module")
def installed(tmp_path_factory: pytest.TempPathFactory) -> Installed:
    return Installed(tmp_path_factory.mktemp("pages"))


def test_no_block_is_left_out() -> None:
    for page in PAGES:
        for runner in [page.everything_by, *(block.marks.get("run by", "") for block in page.blocks)]:
            assert not runner or (SOURCE / runner).is_file(), f"{page.path}: there is no {runner}"
        assert not page.everything_by or pathlib.Path(page.path).name in (SOURCE / page.everything_by).read_text(encoding="utf-8"), page.path
        for block in page.blocks:
            assert block.marks.get("not run") != "", f"{block.place}: why is it not run?"
            assert page.everything_by or block.is_left_to_others or block.language in ("sh", "console", "cpp", "json"), \
                f"{block.place}: nobody runs a block of '{block.language}'; say who does, or why nobody can"


def checked(commands: str) -> List[str]:
    """Bash goes on after a list of which not the last one failed."""
    return [part for line in re.sub(r"\\\n\s*", " ", commands).splitlines() for part in (f"echo '$ {line.replace(chr(39), '')}'", line, "[ $? = 0 ] || exit 1")]


@pytest.mark.parametrize("page", [page for page in PAGES if page.of("sh", "console", "json")], ids=lambda page: page.path)
def test_commands(page: Page, installed: Installed) -> None:
    room = installed.room(page.path)
    script: List[str] = []
    for block in page.of("sh", "console", "json"):
        script.append(f"echo '{block.place}:'")
        if block.language == "json":
            json.loads(block.text)
            (room / block.marks["kept as"]).parent.mkdir(exist_ok=True)
            (room / block.marks["kept as"]).write_text(block.text, encoding="utf-8")
        elif block.language == "console":  # a line that begins with $, and what comes of it; "..." is anything
            command, _, said = block.text.partition("\n")
            pattern = ".*".join(re.escape(part) for part in said.split("..."))
            came = installed.run(command.lstrip("$ "), room)
            assert re.fullmatch(pattern, came, re.DOTALL), f"{block.place}: {came}"
        else:
            script += checked(block.text)
        script += checked(block.marks.get("then", ""))
    installed.run("\n".join(script), room)


def number_in(cell: str) -> str:
    found = re.match(r"-?(0x)?[0-9A-F]+", cell)
    return found[0] if found else ""


def asserts_of(table: Table) -> str:
    """What must hold for the code, and offsets that follow from lengths."""
    said, place = [], f"{table.page}:{table.line}"
    if "bytes" in table.marks:
        end, is_open = 0, False
        for row in table.rows:
            if row[0].isdigit():
                assert int(row[0]) == end, f"{place}: the row at {row[0]} does not follow the one that ends at {end}"
            is_open = is_open or not row[0].isdigit()
            end += int(row[1]) if row[1].isdigit() else 0
        said.append(f"{table.marks['bytes']} == {end}")
    if "constants" in table.marks:
        said += [f"{table.marks['constants']}::{row[-1].strip('`')} == {number_in(row[0])}" for row in table.rows if row[-1]]
    return "".join(f"static_assert({text}, \"{place}\");\n" for text in said)


def asserts_of_records(table: Table) -> str:
    """The rows of a record follow its first one, which names marker and class."""
    said, name, end = "", "", 0
    for row in [*table.rows, ["0", "`end`", "0", "", "", ""]]:
        if row[0]:
            said += f"static_assert(sizeOf<ROM::{name}>() == {end}, \"{name}\");\n" if name else ""
            name, end = re.match(r"`(\w+)`", row[1])[1], 0
            said += "".join(f"static_assert(hasMarker<ROM::{name}>({marker}), \"{name}\");\n" for marker in row[0].split(", ") if name != "end")
        assert int(row[2]) == end, f"{table.page}: {name}, offset {row[2]}"
        end += int(row[3]) if row[3].isdigit() else 0
    return said


def asserts_of_errors(table: Table) -> str:
    said = ""
    for row in table.rows:
        if "failures" in table.marks:
            said += f"static_assert(Host::Failure::{row[1].strip('`')} == {row[0]});\n"
        elif "exceptions" in table.marks:
            name = re.sub(r"(?<=[a-z])(?=[A-Z])", "_", row[1].strip("`").replace("PluginException", "")).upper()
            said += f"static_assert(std::is_base_of_v<Plugin::PluginException, Plugin::{row[1].strip('`')}>);\n"
            said += f"static_assert(Plugin::PluginExceptionType_{name} == {row[0]});\n"
    return said


CHECKS = """
#include "host/recordings/recording_format.h"
#include "io/chips/ov0570_protocol.h"
#include "io/chips/vc0258_protocol.h"
#include "io/chips/vc0345_protocol.h"
#include "io/chips/vc_bridge_protocol.h"
namespace Zentara {
template<typename Record> constexpr unsigned sizeOf() {
    if constexpr (requires { Record::SIZE; })
        return Record::SIZE;
    else
        return Record::MIN_SIZE;
}
template<typename Record> constexpr bool hasMarker(int number) {
    bool has = false;
    if constexpr (requires { Record::MARKER; })
        has = has || number == static_cast<int>(Record::MARKER);
    if constexpr (requires { Record::MARKER2; })
        has = has || number == static_cast<int>(Record::MARKER2);
    if constexpr (requires { Record::DEPTH_MARKER; })
        has = has || number == static_cast<int>(Record::DEPTH_MARKER) || number == static_cast<int>(Record::COLOR_MARKER);
    return has;
}
"""


PREFACE = "\n".join(f"#include <{header}>" for header in (
    "array", "chrono", "cstdio", "iostream", "optional", "thread", "vector", "zentara/host/host.h", "zentara/zentara.h")) + "\n"


def test_programs(installed: Installed) -> None:
    """A page's blocks are one function, in their order, and a mark with what stands before begins another one. Lines that include
    something stand above all."""
    includes, functions, calls, number = PREFACE, "", "", 0
    for page in PAGES:
        bodies: List[List[str]] = []
        for block in page.of("cpp"):
            before = block.marks.get("compiled after", block.marks.get("run after"))
            if before is not None or not bodies:
                is_run = "compiled after" not in block.marks and "compiled as it stands" not in block.marks
                bodies.append([is_run, before or ""])
            includes += "".join(f"{line}\n" for line in block.text.split("\n") if line.startswith("#include"))
            code = re.sub(r"^#include.*$", "", block.text, flags=re.MULTILINE)
            bodies[-1][1] += f"\n#line {block.line + 1} \"{page.path}\"\n{code}"
        for is_run, body in bodies:
            number += 1
            functions += f"void block{number}() {{\n{body}\n}}\n"
            calls += f"std::cout << \"== {page.path}\\n\";\nblock{number}();\n" if is_run else ""
    tables = [table for page in PAGES for table in page.tables]
    asserts = "".join(asserts_of(table) for table in tables)
    asserts += "".join(asserts_of_records(table) for table in tables if "records" in table.marks)
    asserts += "".join(asserts_of_errors(table) for table in tables)
    assert asserts.count("static_assert") > 90, asserts
    room = installed.room("programs")
    (room / "pages.cpp").write_text(f"{includes}{CHECKS}{asserts}}}\n{functions}int main() {{\n{calls}}}\n", encoding="utf-8")
    installed.run(f"{' '.join(COMPILER)} -std=c++20 -O0 -Wall -Wextra -Werror -Wno-unused -iquote {SOURCE} pages.cpp"
                  " $(pkg-config --cflags --libs zentara-host zentara-plugins) -pthread -o pages", room)
    said = installed.run("LD_LIBRARY_PATH=$(pkg-config --variable=libdir zentara-host) ./pages", room)
    assert re.search(r"(?m)^9: \d+ mm$", said) and (room / "using.ply").stat().st_size > 100000, said


def test_exit_codes(installed: Installed) -> None:
    codes = {row[0] for page in PAGES for table in page.tables if "failures" in table.marks for row in table.rows}
    told = re.search(r"Exit codes:\n((?: .*\n)+)", installed.run("zentara --help", installed.root))[1]
    assert codes == set(re.findall(r"\d+", told))


def test_words_of_the_prose(installed: Installed) -> None:
    """Verbs and options of the tool, targets of make, and files that the text names are there."""
    room, helps, wrong = installed.room("prose"), {}, []
    targets = set(re.findall(r"^\.PHONY: (.*)", (SOURCE / "Makefile").read_text(encoding="utf-8"), re.MULTILINE)[0].split())
    verbs = set(re.findall(r"^  (\w+) ", installed.run("zentara --help", room).partition("Verbs:")[2].partition("Environment:")[0], re.MULTILINE))
    for page in PAGES:
        for words in re.findall(r"`([^`]+)`", "\n".join(page.prose)):
            if tool := re.match(r"(?:[A-Z_]+=\S+ )*zentara (.*)", words):
                verb = next((word for word in tool[1].split() if word in verbs), "")
                if not verb and not re.match(r"--?[a-z]|[A-Z]|completion|help", tool[1]):
                    wrong.append(f"{page.path}: there is no verb in '{words}'")
                if verb not in helps:
                    helps[verb] = installed.run(f"zentara {verb} --help; zentara --help", room)
                wrong += [f"{page.path}: 'zentara {verb}' has no {option}" for option in re.findall(r"(?<!\S)--[a-z][\w-]+", tool[1])
                          if not re.search(rf"{option}\b", helps[verb])]
            elif make := re.match(r"make ([\w-]+)", words):
                wrong += [f"{page.path}: there is no target {make[1]}"] if make[1] not in targets else []
            elif re.match(r"(\.ci|bench|bindings|cmake|core|docs|examples|fuzz|host|include|io|model|packaging|plugins|rom|tests|tools|utils)/[\w./-]+$", words):
                wrong += [f"{page.path}: there is no {words}"] if not (SOURCE / words).exists() and not re.search("[A-Z]{3}", words) else []
    assert not wrong, "\n".join(wrong)
