"""The pages of the tree, and what must become of each block of code in them.

What is in a fence of "sh", or is indented, is run line by line in bash, one shell a page; "console" is a command after "$" and
what it prints, "..." for anything; "cpp" is compiled and run; "json" is kept as a file. Marks are comments before a block, or a table:

not run: WHY                 nobody can, here
run by FILE                  another test does; every block is run by FILE: all of the page
compiled after: CODE         C++ that cannot run by itself, with what it needs before it
run after: CODE              C++ that can; both begin a function of their own
compiled as it stands: WHY   C++ that would not end
kept as: FILE                where JSON goes
then: COMMAND                what must hold afterwards
bytes: CONSTANT              the sum of a table's bytes
constants: NAMESPACE         the last column names what the first one is
records, failures, exceptions  of which the rows are
"""
import dataclasses
import pathlib
import re
import subprocess
from typing import Dict, List

SOURCE = pathlib.Path(__file__).resolve().parents[2]
MARK = re.compile(r"<!-- *(not run|run by|every block is run by|compiled after|run after|compiled as it stands|kept as|then|bytes|constants|records|failures|exceptions)(?:: *| +)?(.*?) *-->", re.DOTALL)


@dataclasses.dataclass
class Block:
    page: str
    line: int
    language: str  # "sh" for what is indented
    text: str
    marks: Dict[str, str]

    @property
    def place(self) -> str:
        return f"{self.page}:{self.line}"

    @property
    def is_left_to_others(self) -> bool:
        return "not run" in self.marks or "run by" in self.marks


@dataclasses.dataclass
class Table:
    page: str
    line: int
    heads: List[str]
    rows: List[List[str]]
    marks: Dict[str, str]


class Page:
    """One page, its blocks and tables in their order. A mark stands before what it is for, and shows nowhere."""

    def __init__(self, path: str) -> None:
        self.path = path
        self.blocks: List[Block] = []
        self.tables: List[Table] = []
        self.everything_by = ""
        self.prose: List[str] = []
        text = (SOURCE / path).read_text(encoding="utf-8")
        lines, marks, at = text.split("\n"), {}, 0
        while at < len(lines):
            line, begin = lines[at], at
            if line.startswith("<!--"):
                while "-->" not in lines[at]:
                    at += 1
                found = MARK.fullmatch("\n".join(lines[begin:at + 1]))
                if found and found[1] == "every block is run by":
                    self.everything_by = found[2]
                elif found:
                    marks[found[1]] = found[2]
            elif fence := re.match(r"( *)```(\w*)", line):
                at += 1
                while lines[at].strip() != "```":
                    at += 1
                indent = len(fence[1])
                self.blocks.append(Block(path, begin + 1, fence[2], "\n".join(part[indent:] for part in lines[begin + 1:at]) + "\n", marks))
                marks = {}
            elif line.startswith("    ") and not lines[at - 1].strip():
                while at + 1 < len(lines) and lines[at + 1].startswith("    "):
                    at += 1
                self.blocks.append(Block(path, begin + 1, "sh", "\n".join(part[4:] for part in lines[begin:at + 1]) + "\n", marks))
                marks = {}
            elif line.startswith("|"):
                while at + 1 < len(lines) and lines[at + 1].startswith("|"):
                    at += 1
                rows = [[cell.strip() for cell in re.split(r"(?<!\\)\|", row)[1:-1]] for row in lines[begin:at + 1]]
                self.tables.append(Table(path, begin + 1, rows[0], rows[2:], marks))
                self.prose += lines[begin:at + 1]
                marks = {}
            elif line.strip():
                self.prose.append(line)
                marks = {}
            at += 1

    def of(self, *languages: str) -> List[Block]:
        """What is to be run here."""
        return [block for block in self.blocks if block.language in languages and not block.is_left_to_others and not self.everything_by]


def all_pages() -> List[Page]:
    listed = subprocess.run(["git", "ls-files", "*.md"], cwd=SOURCE, capture_output=True, text=True)
    paths = listed.stdout.split() or [str(path.relative_to(SOURCE)) for path in [*SOURCE.glob("*.md"), *SOURCE.glob("docs/*.md")]]
    return [Page(path) for path in paths]
