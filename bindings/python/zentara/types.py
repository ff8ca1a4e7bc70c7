"""The dictionaries that cameras give and take."""
from typing import Any, Dict, List, Literal, Optional, Sequence, Tuple, TypedDict, Union

Kind = Literal["depth", "color", "audio"]
Source = Literal["none", "camera", "description", "failure", "unknown"]
Value = Union[bool, int, float, Tuple[int, int, int, int]]


class LensModel(TypedDict):
    """A lens by its numbers, for pictures of one size; focal lengths and centre in pixels."""

    width: int
    height: int
    fx: float
    fy: float
    cx: float
    cy: float
    k1: float
    k2: float
    k3: float
    p1: float
    p2: float


class Pose(TypedDict):
    """From the depth to the colour camera: a point p becomes rotation p + translation, in millimetres."""

    rotation: Sequence[Sequence[float]]
    translation: Sequence[float]


class ModeCorrections(TypedDict):
    """How depth is to be corrected in one camera mode; calibrated_at in degrees Celsius."""

    temperature: Literal["none", "linear", "polynomial", "other"]
    temperature_parameters: List[float]
    temperature_sensors: List[int]
    calibrated_at: Dict[int, float]
    cyclic_algorithm: int
    cyclic_parameters: List[float]


class Corrections(TypedDict):
    """What is to be corrected; phase delays in steps of the phase, modes by their number."""

    phase_delay: int
    phase_delay2: int
    modes: Tuple[ModeCorrections, ModeCorrections]


class StreamSources(TypedDict):
    """Where a stream's numbers come from, and why the camera's storage could not be read."""

    lens: Source
    pose: Source
    corrections: Source
    failure: str


class Sources(StreamSources):
    """Where a camera's numbers come from."""

    accelerometer: Source
    serial_number: Source


class LensModels(TypedDict):
    """One lens model for each size of picture."""

    depth: List[LensModel]
    color: List[LensModel]
    pose: Optional[Pose]


class Acceleration(TypedDict):
    """In g: x to the right, y down, z into the scene."""

    x: float
    y: float
    z: float


class Calibration(TypedDict):
    """What a camera knows of itself; None for what it has not."""

    lens_models: Optional[LensModels]
    corrections: Optional[Corrections]
    accelerometer: Optional[Acceleration]
    serial_number: Optional[str]
    range_metres: Optional[float]
    sources: Optional[Sources]


class Parameter(TypedDict):
    """One parameter; a region is (x, y, width, height). value: None where it cannot be read."""

    number: int
    name: str
    kind: Literal["float", "int", "bool", "region"]
    is_readable: bool
    is_writable: bool
    unit: str
    value: Optional[Value]
    ranges: List[Dict[str, Any]]


class Counts(TypedDict):
    """What has come and what has not, since a stream began."""

    received: int
    fetched: int
    lost_by_device: int
    dropped_by_queue: int
    absences: int
