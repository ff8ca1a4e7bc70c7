"""tone.py FILE FRAMES [DECIBEL]: the file holds so many frames of two channels, and they are the tone that the cameras' microphones hear,
from its beginning and without a gap, at that level, full scale unless told."""
import sys

import numpy

sound = numpy.fromfile(sys.argv[1], "<i2").reshape(-1, 2)[: int(sys.argv[2])]
assert len(sound) == int(sys.argv[2]), f"{len(sound)} frames"
at = numpy.arange(len(sound))[:, None]
level = 10 ** (float(sys.argv[3]) / 20) if len(sys.argv) > 3 else 1
tone = 32767 * level * numpy.sin(2 * numpy.pi * (at * [440, 660] % 48000) / 48000)
worst = numpy.abs(sound - tone).max(axis=1)
wrong = numpy.flatnonzero(worst > 1.5)
assert len(wrong) == 0, f"frame {wrong[0]} is off by {worst[wrong[0]]:.0f}; {len(wrong)} are wrong"
