"""turned.py FRAMES PICTURE WIDTH [X Y [TIMES]]: every frame of 320 x 240 pixels of two bytes is one picture, WIDTH wide, turned to the left
or the part of it at X, Y; by WIDTH / 160 columns more for each frame, so that 160 of them are all different. Prints how many were left out
between them. TIMES has a line "STATUS MICROSECONDS BYTES" for each frame, of 60 a second: a frame is turned as far as its time tells, but
for one that is late."""
import sys

ROWS, ROW, TURNS = 240, 2 * 320, 160
frames, picture = (open(path, "rb").read() for path in sys.argv[1:3])
width = int(sys.argv[3])
x, y = map(int, sys.argv[4:6]) if len(sys.argv) > 4 else (0, 0)
rows = [2 * picture[at : at + 2 * width] for at in range(2 * width * y, 2 * width * (y + ROWS), 2 * width)]
assert frames and len(frames) % (ROWS * ROW) == 0, f"{len(frames)} bytes are no frames"

whole = {}
for turn in range(TURNS):
    left = 2 * ((x + turn * width // TURNS) % width)
    whole[b"".join(row[left : left + ROW] for row in rows)] = turn
assert len(whole) == TURNS, "turned pictures are alike"
count, turns = len(frames) // (ROWS * ROW), []
for at in range(count):
    turn = whole.get(frames[at * ROWS * ROW : (at + 1) * ROWS * ROW])
    assert turn is not None, f"frame {at} is not the picture, however it is turned"
    assert turn not in turns[-1:], f"frame {at} is the one before"
    turns.append(turns[-1] + (turn - turns[-1]) % TURNS if turns else turn)
for at, line in enumerate(open(sys.argv[6]) if len(sys.argv) > 6 else []):
    micros = int(line.split()[1])
    began = began if at else micros
    late = (micros - began) * 60 / 1e6 - (turns[at] - turns[0])
    assert abs(late) < 1.5, f"frame {at} is {late:.1f} frames from where it should be"
print(f"turns {turns[0]} to {turns[-1]}, {turns[-1] - turns[0] + 1 - count} left out")
