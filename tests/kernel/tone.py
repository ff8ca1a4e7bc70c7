"""tone.py FILE FRAMES: the file holds so many frames of two channels, and they are the tone that the cameras' microphones hear, from
its beginning and without a gap."""
import sys

import numpy

sound = numpy.fromfile(sys.argv[1], "<i2").reshape(-1, 2)[: int(sys.argv[2])]
assert len(sound) == int(sys.argv[2]), f"{len(sound)} frames"
at = numpy.arange(len(sound))[:, None]
tone = 32767 * numpy.sin(2 * numpy.pi * (at * [440, 660] % 48000) / 48000)
worst = numpy.abs(sound - tone).max(axis=1)
wrong = numpy.flatnonzero(worst > 1.5)
assert len(wrong) == 0, f"frame {wrong[0]} is off by {worst[wrong[0]]:.0f}; {len(wrong)} are wrong"
