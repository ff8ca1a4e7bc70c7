"""Depth cameras: their frames, parameters, calibration and flash, recordings and point clouds."""
import atexit as _atexit
import ctypes as _ctypes
import os as _os
import pathlib as _pathlib

# A library that comes later, as GStreamer does, may bring another unwinder of C++ exceptions with functions of the same
# names. Those of the compiler, which this module is bound to, must be found first.
try:
    _ctypes.CDLL("libgcc_s.so.1", mode=_ctypes.RTLD_GLOBAL)
except OSError:
    pass

from . import _zentara, types
from ._differences import differences
from ._failures import (
    Busy,
    Code,
    Failure,
    Interrupted,
    NoDevice,
    NoPlugin,
    NotPermitted,
    TimedOut,
    UsageFailure,
    VerificationFailed,
)
from ._zentara import (
    Camera,
    CameraEvent,
    CameraInfo,
    ColorMap,
    Flash,
    FlashChange,
    FlashImage,
    Frame,
    FrameSet,
    FrameSets,
    Lens,
    Mode,
    PointCloud,
    Recorder,
    Recording,
    Stream,
    StreamInfo,
    Watch,
    cameras,
    colour_of,
    draw_correction,
    open,
    plot,
    write_png,
)

__all__ = [
    "Busy",
    "Camera",
    "CameraEvent",
    "CameraInfo",
    "Code",
    "ColorMap",
    "Failure",
    "Flash",
    "FlashChange",
    "FlashImage",
    "Frame",
    "FrameSet",
    "FrameSets",
    "Interrupted",
    "Lens",
    "Mode",
    "NoDevice",
    "NoPlugin",
    "NotPermitted",
    "PointCloud",
    "Recorder",
    "Recording",
    "Stream",
    "StreamInfo",
    "TimedOut",
    "UsageFailure",
    "VerificationFailed",
    "Watch",
    "cameras",
    "colour_of",
    "differences",
    "draw_correction",
    "open",
    "plot",
    "types",
    "write_png",
]

# In a build tree, and below a prefix that nothing tells of, the plug-ins lie at a known place.
for _level in (2, 4):
    _zentara._use_root(str(_pathlib.Path(__file__).resolve().parents[_level]))
_os.register_at_fork(after_in_child=_zentara._forked)
_atexit.register(_zentara._end)
