"""tone.py FILE FRAMES [DECIBEL]: the file holds so many frames of two channels, and they are the tone that the cameras' microphones hear,
from its beginning and without a gap, at that level, full scale unless told."""
import array
import math
import sys

PERIOD = 2400  # frames; both tones are whole there
path, count = sys.argv[1], int(sys.argv[2])
level = 32767 * 10 ** (float(sys.argv[3]) / 20 if len(sys.argv) > 3 else 0)
tone = [level * math.sin(2 * math.pi * hertz * at / 48000) for at in range(PERIOD) for hertz in (440, 660)]
with open(path, "rb") as file:
    sound = array.array("h", file.read(4 * count))
assert len(sound) == 2 * count, f"{len(sound) // 2} frames"
for at, value in enumerate(sound):
    meant = tone[at % len(tone)]
    assert abs(value - meant) <= 1.5, f"frame {at // 2} is off by {abs(value - meant):.0f}"
