"""The dictionaries that cameras give and take."""
from typing import Any, Dict, List, Literal, Mapping, Optional, Sequence, Tuple, TypedDict, Union

import numpy
from numpy.typing import ArrayLike, NDArray

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


class TemperatureCompensation(TypedDict):
    """As the camera's parameters have it; both lists are of one length."""

    kind: int
    firstCoefficients: List[int]
    secondCoefficients: List[int]


class ParameterCalibration(TypedDict):
    """The calibration that the camera's parameters are made with, as calibration files have it.

    Phase delays are in steps of the phase.
    """

    phaseDelay: int
    phaseDelay2: int
    temperatureCompensation: TemperatureCompensation


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
    missed: int


class PlotPanel(TypedDict):
    """Lines over axes of their own: x and y by the line's name; a NaN leaves a gap."""

    title: str
    unit: str
    lines: Mapping[str, Tuple[ArrayLike, ArrayLike]]


class FlashArea(TypedDict):
    """Where a storage lies on a flash; addresses and sizes in bytes."""

    start: int
    size: int
    chunk_size: int
    header_at_start: bool


class FlashHeader(TypedDict):
    """The management header as it was read."""

    strategy: int
    version: int
    available_size: int
    chunk_size: int
    first_block: int


class FlashSection(TypedDict):
    """A whole section, and where it lies."""

    uid: int
    type: str
    address: int
    length: int
    is_writable: bool


class FlashFinding(TypedDict):
    """Something worth telling about a place on the flash; what is no fault is only unusual."""

    kind: str
    address: int
    is_fault: bool
    text: str


class FlashSurvey(TypedDict):
    """Everything that can be told of a flash image. header: None where no storage can be loaded."""

    header: Optional[FlashHeader]
    sections: List[FlashSection]
    unreachable: List[FlashSection]
    findings: List[FlashFinding]
    free_bytes: int
    largest_gap: int
    is_faulty: bool
    is_chain_broken: bool


class SectionChange(TypedDict):
    """One section that a change adds, replaces or erases; values: (path, before, after)."""

    kind: Literal["added", "replaced", "erased"]
    uid: int
    text: str
    values: List[Tuple[str, Any, Any]]


class CorrectionTable(TypedDict):
    """The correction table of one modulation frequency, row by row; how long a row is nobody says."""

    megahertz: int
    values: NDArray[numpy.uint8]


class CorrectionSection(TypedDict):
    """What a section of distortion correction holds. time_of_last_write: seconds since 1970, UTC."""

    uid: int
    version: int
    time_of_last_write: int
    number_of_sets: int
    serial_id: str
    tables: List[CorrectionTable]
