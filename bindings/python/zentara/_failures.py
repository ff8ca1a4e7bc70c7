"""The exceptions of the module: one class for each kind of failure."""
from __future__ import annotations

import enum
from typing import ClassVar, Iterable, Tuple, Type


class Code(enum.IntEnum):
    """The kinds of failure. The numbers are the exit codes of the tool `zentara`."""

    FAILED = 1
    USAGE = 2
    NO_DEVICE = 3
    NO_PLUGIN = 4
    PERMISSION = 5
    BUSY = 6
    TIMED_OUT = 7
    VERIFICATION = 8
    INTERRUPTED = 130


class Failure(Exception):
    """What every operation raises when it cannot do what was asked.

    message: what was attempted, on what; cause: what came back; remedy: what helps, or empty;
    details: reasons of their own, mostly none.
    """

    code: ClassVar[Code] = Code.FAILED

    def __init__(self, message: str, cause: str = "", remedy: str = "", details: Iterable[str] = ()) -> None:
        self.message = message
        self.cause = cause
        self.remedy = remedy
        self.details: Tuple[str, ...] = tuple(details)
        super().__init__(": ".join(filter(None, (message, cause))))

    def __str__(self) -> str:
        return "\n".join(filter(None, (str(self.args[0]), *self.details, self.remedy)))

    def __reduce__(self) -> Tuple[object, ...]:
        return type(self), (self.message, self.cause, self.remedy, self.details)


class UsageFailure(Failure, ValueError):
    """What was asked for makes no sense; asking again will not help."""

    code = Code.USAGE


class NoDevice(Failure, ConnectionError):
    """There is no such camera, or it was pulled out."""

    code = Code.NO_DEVICE


class NoPlugin(Failure):
    """No usable plug-in."""

    code = Code.NO_PLUGIN


class NotPermitted(Failure, PermissionError):
    """The system or the camera does not allow it."""

    code = Code.PERMISSION


class Busy(Failure):
    """Somebody else has it."""

    code = Code.BUSY


class TimedOut(Failure, TimeoutError):
    """Nothing came back within the limit."""

    code = Code.TIMED_OUT


class VerificationFailed(Failure):
    """What was read back is not what was written."""

    code = Code.VERIFICATION


class Interrupted(Failure):
    """Somebody asked for the end."""

    code = Code.INTERRUPTED


_CLASSES: "dict[int, Type[Failure]]" = {one.code: one for one in (Failure, *Failure.__subclasses__())}


def failure_of(code: int, message: str, cause: str, remedy: str, details: Iterable[str]) -> Failure:
    """The exception for a failure of the library."""
    return _CLASSES.get(code, Failure)(message, cause, remedy, details)


for _class in (Code, *_CLASSES.values()):
    _class.__module__ = "zentara"
