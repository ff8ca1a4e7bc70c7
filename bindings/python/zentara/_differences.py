"""What is not the same in two values that JSON can say."""
from __future__ import annotations

from typing import Any, Dict, List, Mapping, Sequence, Tuple, Union


def differences(before: object, after: object, path: str = "") -> List[Tuple[str, Any, Any]]:
    """One (path, before, after) for each number or text that is another: ("records/0/fx", 224.5, 230.5).

    What only one of them has is None in the other.
    """
    parts = [_parts(before), _parts(after)]
    if not any(parts):
        return [] if before == after else [(path, before, after)]
    found = []
    for key in dict.fromkeys([*parts[0], *parts[1]]):
        below = f"{path}/{key}" if path else str(key)
        found += differences(parts[0].get(key), parts[1].get(key), below)
    return found


def _parts(value: object) -> Dict[Union[str, int], object]:
    """The parts of a dictionary or list by their keys; of anything else none."""
    if isinstance(value, Mapping):
        return dict(value)
    if isinstance(value, Sequence) and not isinstance(value, (str, bytes)):
        return dict(enumerate(value))
    return {}


differences.__module__ = "zentara"
