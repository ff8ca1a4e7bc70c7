"""phases.py SOUND TIMES RANGE...: of blocks of 10 ms in a file each RANGE, "FIRST-LAST=LEVEL", is without a gap the tone that the cameras'
microphones hear, at that level in decibel, wherever it begins, or "silence". TIMES has a line "STATUS MICROSECONDS BYTES" for each
block. Prints where the tone begins, and each time that is missing between two blocks."""
import array
import math
import sys

PERIOD, BLOCK = 2400, 480  # frames; both tones are whole in the first
TONE = [32767 * math.sin(2 * math.pi * hertz * at / 48000) for at in range(PERIOD) for hertz in (440, 660)]


def begins(sound, level):
    for phase in range(0, 2 * PERIOD, 2):
        if all(abs(value - level * TONE[(phase + at) % (2 * PERIOD)]) <= 1.5 for at, value in enumerate(sound)):
            return phase // 2
    raise AssertionError("not the tone at that level")


sound = array.array("h", open(sys.argv[1], "rb").read())
micros = [int(line.split()[1]) for line in open(sys.argv[2])]
assert len(sound) == 2 * BLOCK * len(micros), f"{len(sound)} samples in {len(micros)} blocks"
for word in sys.argv[3:]:
    blocks, meant = word.split("=")
    first, last = map(int, blocks.split("-"))
    part = sound[2 * BLOCK * first : 2 * BLOCK * (last + 1)]
    if meant == "silence":
        assert not any(part), f"blocks {blocks} are not silent"
    else:
        print(blocks, "begins with sample", begins(part, 10 ** (float(meant) / 20)), "of the tone")
for at in range(1, len(micros)):
    if micros[at] - micros[at - 1] > 100000:
        print(f"{(micros[at] - micros[at - 1]) / 1e6:.1f} s between the blocks {at - 1} and {at}")
