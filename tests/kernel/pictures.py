"""pictures.py FILE BYTES COMPARED COUNT <REFERENCE: every frame of the file is one of the COUNT pictures of the reference, in their order."""
import sys

path, (size, compared, count) = sys.argv[1], map(int, sys.argv[2:])
reference = sys.stdin.buffer.read()
each = len(reference) // count
numbers = {reference[at : at + compared]: at // each for at in range(0, len(reference), each)}
assert len(numbers) == count, "two pictures of the reference are alike"
frames = open(path, "rb").read()
assert frames and len(frames) % size == 0, f"{len(frames)} bytes are no frames of {size}"
last = first = None
for at in range(0, len(frames), size):
    number = numbers.get(frames[at : at + compared])
    assert number is not None, f"frame {at // size} is none of the camera's pictures"
    assert last is None or number > last, f"picture {number} comes after {last}"
    first = number if first is None else first
    last = number
print(f"pictures {first} to {last}, {last - first + 1 - len(frames) // size} left out")
