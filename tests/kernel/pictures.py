"""pictures.py FILE BYTES EACH <REFERENCE: every frame of BYTES in the file begins with a picture of the reference, whose pictures have
EACH, and with a later one than the frame before. Reads no more pictures than it takes, and tells which were left out."""
import sys

path, (size, each) = sys.argv[1], map(int, sys.argv[2:])
frames = open(path, "rb").read()
assert frames and len(frames) % size == 0, f"{len(frames)} bytes are no frames of {size}"
count, number, found = len(frames) // size, -1, []
for at in range(0, len(frames), size):
    picture = None
    while picture != frames[at : at + each]:
        picture = sys.stdin.buffer.read(each)
        number += 1
        assert picture, f"frame {at // size} is none of the {number} pictures, or comes after {found[-1:]}"
    found.append(number)
print(f"pictures {found[0]} to {found[-1]}, {found[-1] - found[0] + 1 - count} left out")
