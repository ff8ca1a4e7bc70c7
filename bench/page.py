"""page.py RESULTS... PAGE: writes PAGE (Markdown) and beside it a chart (SVG) from what the benchmarks left as JSON."""
import json
import pathlib
import platform
import sys

*sources, page = map(pathlib.Path, sys.argv[1:])
rows = [row for source in sources for row in json.loads(source.read_text())]
rows = [row for row in rows if "aim" in row]
ratios = [row for row in rows if "ratio" in row]
counts = [row for row in rows if "count" in row]
growths = [row for row in rows if "exponent" in row]


def processor():
    for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            return line.split(":", 1)[1].strip()
    return platform.machine()


def time(nanoseconds):
    for unit, size in (("ns", 1), ("us", 1e3), ("ms", 1e6)):
        if nanoseconds < 1000 * size:
            break
    return f"{nanoseconds / size:.3g} {unit}"


def mark(value, aim):
    return "" if value <= aim else " **missed**"


def table():
    yield "| what | peer | ours | peer's | ratio | aim |"
    yield "| --- | --- | ---: | ---: | ---: | ---: |"
    for row in ratios:
        yield (f"| {row['what'] or row['group']} | {row['peer'].replace('_', ' ')} | {time(row['ours'])} | {time(row['theirs'])} "
               f"| {row['ratio']:.2f} | {row['aim']:g}{mark(row['ratio'], row['aim'])} |")


def growth_table():
    yield "| what | from | to | exponent | aim |"
    yield "| --- | ---: | ---: | ---: | ---: |"
    for row in growths:
        (least, first), *_, (most, last) = row["times"]
        yield (f"| {row['what']} | {time(first)} at {least:g} | {time(last)} at {most:g} | {row['exponent']:.2f} "
               f"| {row['aim']:g}{mark(row['exponent'], row['aim'])} |")


def count_table():
    yield "| what | counted | aim |"
    yield "| --- | ---: | ---: |"
    for row in counts:
        yield f"| {row['what']} | {row['count']:g} | {row['aim']:g}{mark(row['count'], row['aim'])} |"


def chart():
    """A bar for each ratio, as a share of its aim: what stays left of the line is met."""
    height, left, line = 22, 330, 620
    yield (f'<svg xmlns="http://www.w3.org/2000/svg" width="1010" height="{height * len(ratios) + 40}" font-family="sans-serif" '
           'font-size="12">')
    yield '<rect width="100%" height="100%" fill="white"/>'
    for index, row in enumerate(ratios):
        top = 10 + index * height
        share = row["ratio"] / row["aim"]
        width = min(share, 2.0) * (line - left)
        color = "#4a8f5c" if share <= 1 else "#c0504d"
        name = f"{row['group']} / {row['peer']}".replace("_", " ")
        yield f'<text x="{left - 8}" y="{top + 14}" text-anchor="end">{name}</text>'
        yield f'<rect x="{left}" y="{top + 2}" width="{width:.0f}" height="{height - 6}" fill="{color}"/>'
        yield f'<text x="{max(left + width, line) + 6:.0f}" y="{top + 14}">{row["ratio"]:.2f} of {row["aim"]:g}</text>'
    bottom = 10 + len(ratios) * height
    yield f'<line x1="{line}" y1="6" x2="{line}" y2="{bottom}" stroke="black"/>'
    yield f'<text x="{line}" y="{bottom + 16}" text-anchor="middle">the aim</text>'
    yield "</svg>"


drawing = page.with_suffix(".svg")
drawing.write_text("\n".join(chart()) + "\n")
page.write_text("\n".join([
    "# Performance",
    "",
    "`make bench` measures each piece beside a peer, or beside the least that would do the same, in one process, and writes this",
    "page. A figure is the median of nine repetitions, in random order with all others of its program; a ratio is our time",
    "divided by the peer's. Times of one machine say little about another, ratios more; a busy machine can miss any aim.",
    "",
    f"This one has {processor()}.",
    "",
    f"![Each ratio as a share of its aim]({drawing.name})",
    "",
    *table(),
    "",
    "`zentara plugins` has the plug-ins asked in another process, so that one that crashes or hangs is named and ends nothing:",
    "what it takes beyond its peer is that process. Before the scan has a library loaded it looks whether the file is whole,",
    "since the loader may crash the process over one that was cut short; that is what it takes beyond the bare calls.",
    "A caller who waits alone looks for the end of his request himself for up to 40 us, and so does the worker for the next request",
    "after a short pause: while requests follow each other nobody is woken, where each peer is woken twice. A peer takes 20 to 60 us",
    "where the system wakes an idle processor each time, and 1.6 where it happens to keep both threads on one: its ratio is one of the",
    "two. With all on one processor, by `taskset -c 1`, it is 1.0 of the bare words. Requests apart from each other cost the worker",
    "nothing more; the last of a burst costs it those 40 us.",
    "",
    "## Counts",
    "",
    "The most of all repetitions.",
    "",
    *count_table(),
    "",
    "## Growth",
    "",
    "The exponent of the line through the logarithms: 1 is in proportion, 0 does not grow; what no longer fits a cache grows a",
    "little faster.",
    "",
    *growth_table(),
]) + "\n")
