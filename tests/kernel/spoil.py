"""spoil.py FILE FOLDER: writes copies of a configuration descriptor, each spoiled in one place, and prints their names."""
import sys

FORMAT, FRAME, UNIT, OUTPUT = (0x24, 4), (0x24, 5), (0x24, 5), (0x24, 3)


def places(data):
    at = 0
    while at + 2 < len(data) and data[at] > 0:
        yield at, (data[at + 1], data[at + 2])
        at += data[at]


def main():
    good, folder = open(sys.argv[1], "rb").read(), sys.argv[2]
    all_places = list(places(good))
    video = [at for at, (kind, _) in all_places if kind == 0x24]
    frame = [at for at, what in all_places if what == FRAME and good[at] == 38][0]
    unit = [at for at, what in all_places if what == UNIT and good[at] == 12][0]
    output = [at for at, what in all_places if what == OUTPUT][0]
    spoiled = {}

    def spoil(name, at, value):
        copy = bytearray(good)
        copy[at : at + len(value)] = value
        spoiled[name] = bytes(copy)

    for length in (0, 1, 255):
        for number, at in enumerate(video[1:6]):
            spoil(f"length-{length}-of-{number}", at, [length])
    spoil("own-source", unit + 4, good[unit + 3 : unit + 4])
    spoil("circle", unit + 4, good[output + 3 : output + 4])
    spoil("no-source", output + 7, [99])
    spoil("frame-0x0", frame + 5, [0, 0, 0, 0])
    spoil("frame-65535", frame + 5, [255, 255, 255, 255])
    spoil("no-intervals", frame + 25, [0])
    spoil("all-intervals", frame + 25, [255])
    spoiled["cut-off"] = good[: len(good) // 2]
    for name, data in spoiled.items():
        with open(f"{folder}/{name}", "wb") as file:
            file.write(data)
        print(name)


main()
