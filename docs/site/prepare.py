#!/usr/bin/env python3
"""prepare.py TARGET PAGE...: copies public headers and pages for Doxygen, and says to it what the house's manner leaves to the reader.

Of headers:
- A comment holds for all declarations that follow it without an empty line.
- Copies, moves and comparisons do what they do in all of C++.
- A field, an accessor, a setter of one value or a constructor without a comment is what its name and its arguments say.

Lines keep their numbers. What is still without a comment after that, Doxygen warns of.

Of pages: links as code hosts understand them become Doxygen's, and one that leads nowhere is told, as FILE:LINE.
"""
import os
import pathlib
import re
import sys

NO_DECLARATION = re.compile(r"(#|//|[{}]|(public|protected|private):|namespace |using namespace |friend |template ?<.*>$|extern \"C\"|ZENTARA_TYPE)")
# What may stand in front of a name, and how copies, moves and comparisons are written.
SPECIAL = [
    (re.compile(r"(explicit )?(\w+)\(const (\2|\w+<\w+>)& ?\w*\)"), "A copy."),
    (re.compile(r"(explicit )?(\w+)\((\2|\w+<\w+>)&& ?\w*\)"), "Takes over what the other one has."),
    (re.compile(r".*\boperator=\(const [\w:<>]+& ?\w*\)"), "Becomes a copy."),
    (re.compile(r".*\boperator=\([\w:<>]+&& ?\w*\)"), "Takes over what the other one has."),
    (re.compile(r".*\boperator(==|!=|<=>)\("), "Compares the values."),
]

# A field, an accessor, a setter, a constructor.
PLAIN = re.compile(
    r"(\[\[nodiscard\]\] )?((virtual|static|constexpr|inline|mutable|explicit) )*("
    r"(const )?[\w:<>, *&]+ [*&]?(\w+(\[\w+\])?( = [^()]*)?( *\{.*\})?;"
    r"|(get|is|has|can)?\w*\(\) const( ?&)?( noexcept)?( override| = 0)?( \{.*\}|;)"
    r"|(get|is|has|can)[A-Z]\w*\(\)( noexcept)?( override| = 0)?( \{.*\}|;)"
    r"|set[A-Z]\w*\([^,()]+\)( noexcept)?( override| = 0)?( \{.*\}|;))"
    r"|[A-Za-z]\w+\()")
NO_WORDS = "&zwj;"
# docs/threads.md says what its three words mean; these would want a meaning of their own.
OTHER_WORDS = re.compile(r"\bthread-safe\b|\bsafe on any thread|one thread at a time|\*safe\*", re.IGNORECASE)


def said(comment):
    """What of a comment holds for the next declarations too: all but the arguments of the first one."""
    text = re.sub(r"(?m)^\s*///<? ?", "", "\n".join(comment))
    return re.sub(r"\\(param|return|tparam)\b.*?(?=\\(throws|param|return|tparam)|\Z)", "", text, flags=re.DOTALL).strip()


def rewrite(lines):
    comment, held, depth_of, inside = [], "", None, False
    for index, line in enumerate(lines):
        text = line.strip()
        indent = len(line) - len(line.lstrip())
        if not text:
            comment, held, inside = [], "", False
        elif text.startswith("///") and not text.startswith("///<"):
            comment, inside = comment + [line], False
            held = ""
        elif inside and (indent > depth_of or text[0] in "}{"):
            pass  # a declaration goes on
        elif NO_DECLARATION.match(text):
            if not text.startswith(("template", "//")):
                comment, held = [], ""
            inside = False
        else:
            depth_of, inside = indent, True
            if comment:
                held, comment = said(comment), []
            elif (fields := re.match(r"(\s*)(\w+) (\w+[^;()]*, [^;()]*); +///< (.*)$", line)):
                # Of all of them, and not of the last one alone.
                lines[index] = fields[1] + " ".join(f"/** {fields[4]} */ {fields[2]} {name};" for name in fields[3].split(", "))
            elif "///<" not in line:
                name = re.sub(r"^(template ?<[^>]*>|requires [\w:]+<[^>]*>) ", "", text)
                special = next((words for pattern, words in SPECIAL if pattern.match(name)), "")
                if special and "= delete;" in text:
                    special = "There is none."
                words = special or held or (NO_WORDS if PLAIN.match(text) else "")
                if words and not re.match(r"(class|struct) \w+;|(virtual )?~", text):
                    lines[index] = line[:indent] + "/** " + re.sub(r"\s+", " ", words) + " */ " + line[indent:]
            if re.match(r"(class|struct|enum) ", text) and text.endswith("{"):
                held, inside = "", False
    return lines


def slug(heading):
    """The anchor that code hosts give to a heading."""
    return re.sub(r"[^\w\- ]", "", heading.replace("`", "").lower()).replace(" ", "-")


def outside_code(text):
    """Numbered lines; of those in fenced and indented code only what begins a fence."""
    fence = False
    for number, line in enumerate(text.split("\n")):
        if re.match(r"\s*```", line):
            fence = not fence
            yield number, line, fence
        elif not fence and not line.startswith("    "):
            yield number, line, False


class Pages:
    def __init__(self, paths):
        self.texts = {path: path.read_text(encoding="utf-8") for path in paths}
        self.findings = []
        self.anchors = {path: {slug(line.lstrip("# ")) for _, line, _ in outside_code(text) if line.startswith("#")}
                        for path, text in self.texts.items()}

    @staticmethod
    def name(path):
        return "page_" + path.stem.lower().replace("-", "_")

    def target(self, path, link, where):
        """What Doxygen calls that; empty for what is no part of the site."""
        file, _, anchor = link.partition("#")
        there = pathlib.Path(os.path.normpath(path.parent / file)) if file else path
        if not there.exists():
            self.findings.append(f"{where}: {link} leads nowhere")
        elif there in self.texts and anchor and anchor not in self.anchors[there]:
            self.findings.append(f"{where}: {there} has no heading #{anchor}")
        elif there in self.texts:
            return f"@ref {self.name(there)}{'-' + anchor if anchor else ''}"
        elif there.parts[0] == "include" and there.is_file():
            return f"@ref {there.relative_to('include')}"
        return ""

    def rewritten(self, path):
        lines = self.texts[path].split("\n")
        for number, line, opens in outside_code(self.texts[path]):
            where = f"{path}:{number + 1}"
            if opens:
                lines[number] = re.sub(r"^(\s*```\w*).*", r"\1", line)
            elif match := re.match(r"(#+) (.*)", line):
                line = re.sub(r"(?<!-)--(?!-)", r"\\--", line)  # else a dash
                name = self.name(path) + ("" if match[1] == "#" else "-" + slug(match[2]))
                lines[number] = f"{line} {{#{'mainpage' if path.name == 'README.md' and match[1] == '#' else name}}}"
            else:
                lines[number] = re.sub(r"(!?)\[([^\]]*)\]\(([^)]*)\)", lambda found: self.link(path, found, where), line)
        return "\n".join(lines)

    def link(self, path, found, where):
        if "://" in found[3]:
            return found[0]
        if found[1]:
            if not (path.parent / found[3]).exists():
                self.findings.append(f"{where}: there is no picture {found[3]}")
            return f"![{found[2]}]({pathlib.Path(found[3]).name})"
        target = self.target(path, found[3], where)
        return f"[{found[2]}]({target})" if target else found[2]


def write(copy, text):
    copy.parent.mkdir(parents=True, exist_ok=True)
    copy.write_text(text, encoding="utf-8")


def main():
    target, paths = pathlib.Path(sys.argv[1]), [pathlib.Path(path) for path in sys.argv[2:]]
    pages = Pages(paths)
    for path in paths:
        write(target / path, pages.rewritten(path))
    findings = pages.findings
    for header in sorted(pathlib.Path("include").rglob("*.h*")):
        lines = header.read_text(encoding="utf-8").split("\n")
        findings += [f"{header}:{number}: threads in other words than docs/threads.md: {line.strip()}"
                     for number, line in enumerate(lines, 1) if OTHER_WORDS.search(line)]
        write(target / str(header).removesuffix(".in"), "\n".join(rewrite(lines)))
    print("\n".join(findings), file=sys.stderr, end="\n" if findings else "")
    sys.exit(1 if findings else 0)


if __name__ == "__main__":
    main()
