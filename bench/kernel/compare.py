"""compare.py: in the guest, what a frame from the kernel's test camera costs whoever takes it: processor time, as the slope between 50 and
450 frames, so that no start counts. Beside a host that reads through the contract stands a plain reader in C, which copies each frame
once; beside one that reads through the host library, whose waits end in time whatever a driver does, the same reader with the second
thread which that takes."""
import os
import resource
import shutil
import subprocess
import sys

FEW, MANY = 50, 450
ATTEMPTS = 3  # how long a start takes differs; the shortest counts
NODE = "/dev/video0"
built = os.environ["ZENTARASDK_ROOT"] + "bin/"
# These say it themselves; of the others it is the difference between two runs.
READERS = {
    "plain reader in C": [built + "plain_reader", NODE, str(FEW), str(MANY)],
    "the contract's readBuffer": [built + "contract_reader", NODE, str(FEW), str(MANY)],
    "plain, with two threads": [built + "plain_reader", NODE, str(FEW), str(MANY), "2"],
    "the host library's next": [built + "host_reader", "vivid", str(FEW), str(MANY)],
}
AIMS = [
    ("the contract's readBuffer", "plain reader in C", 1.2),
    ("the host library's next", "plain, with two threads", 1.1),
]
OTHERS = {
    "zentara stream": f"{built}zentara stream --camera vivid --color --mode 320x240 --frames COUNT",
    "v4l2-ctl, touches no pixel": f"v4l2-ctl -d {NODE} -v width=320,height=240,pixelformat=YUYV -p 60 --stream-mmap --stream-count=COUNT",
    "GStreamer, touches no pixel": f"gst-launch-1.0 -q v4l2src device={NODE} num-buffers=COUNT ! video/x-raw,width=320,height=240 ! fakesink",
}


def run(words):
    done = subprocess.run(words, capture_output=True, text=True)
    if done.returncode != 0:
        sys.exit(f"{' '.join(words)}: {done.stderr}")
    return done.stdout


def processor_milliseconds(command, count):
    least = None
    for _ in range(ATTEMPTS):
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        run(command.replace("COUNT", str(count)).split())
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        used = (after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime) * 1000
        least = used if least is None else min(least, used)
    return least


def tell(name, milliseconds):
    print(f"{name:27} {milliseconds:.4f} ms a frame, {milliseconds / costs['plain reader in C']:.2f} of the plain reader's", flush=True)


costs = {}
for name, command in READERS.items():
    costs[name] = float(run(command))
    tell(name, costs[name])
for name, command in OTHERS.items():
    if shutil.which(command.split()[0]):
        tell(name, (processor_milliseconds(command, MANY) - processor_milliseconds(command, FEW)) / (MANY - FEW))
    else:
        print(f"{name:27} is not installed")
missed = False
for name, peer, aim in AIMS:
    ratio = costs[name] / costs[peer]
    missed = missed or ratio > aim
    print(f"{name} costs {ratio:.2f} times the {peer}; the aim is at most {aim}{': MISSED' if ratio > aim else ''}")
sys.exit(1 if missed else 0)
