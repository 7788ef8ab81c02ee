"""The contents of a file as plain records."""

from dataclasses import dataclass
from typing import Any, Dict, NamedTuple, Optional, Tuple, Union


class Rect(NamedTuple):
    """A rectangle of cells; all four edges belong to it."""

    left: int
    top: int
    right: int
    bottom: int

    @property
    def shape(self) -> Tuple[int, int]:
        """Rows and columns."""
        return self.bottom - self.top + 1, self.right - self.left + 1

    def __str__(self) -> str:
        return f"{self.left},{self.top},{self.right},{self.bottom}"


@dataclass(frozen=True)
class Screen:
    """A screen of the wall."""

    id: int
    name: str
    rect: Rect


@dataclass(frozen=True)
class Area:
    """A stored block of coefficients and where it lies.

    ``dtype``, ``scale`` and ``unit`` are those that are kept with the block, or None, None and "";
    stored numbers are multiplied by ``scale``. ``changed`` is the local time of the last change. ``fault`` says why the
    cells cannot be read, as far as that is known without reading them; else it is "".
    """

    id: int
    screen: str
    type: int
    number: int
    rect: Rect
    cell_bytes: int
    stored_bytes: int
    dtype: Optional[str]
    scale: Optional[float]
    unit: str
    text: str
    changed: str
    fault: str


@dataclass(frozen=True)
class Data:
    """Generic data of one type; get_data() has its bytes. ``stored_bytes`` counts the encrypted ones."""

    type: int  # a str, if another program has stored one
    stored_bytes: int
    text: str
    screen: str


@dataclass(frozen=True)
class Measurement:
    """A measurement of luminance and chromaticity; get_measurement() has its bytes.

    The library keeps neither type nor rectangle: they are "" and None unless another program stored them.
    """

    id: int
    stored_bytes: int
    text: str
    type: str
    rect: Optional[Rect]


@dataclass(frozen=True)
class Verdict:
    """The result of one check of a file.

    ``faults`` list what is damaged or missing; ``ok`` is true if there are none. ``warnings`` list what is unusual but
    was stored on request, such as areas that overlap: nothing is lost. Both hold the first hundred and then one line
    with the number of the rest.
    """

    name: str
    ok: bool
    detail: str
    faults: Tuple[str, ...]
    warnings: Tuple[str, ...]


@dataclass(frozen=True)
class Difference:
    """One difference between two files.

    ``kind`` is "only_before", "only_after", "field" (then ``before`` and ``after`` are the texts of ``field``), "fault"
    (then they say why the bytes in one file, or in each, cannot be read), "cells" or "bytes". Of cells,
    ``differing`` counts them; if the type of their numbers is known, ``before`` and ``after`` are the two numbers
    that are farthest apart, scaled, number ``component`` of the cell ``at`` (column, row); else ``at`` is the first.
    """

    item: str
    kind: str
    screen: str
    type: str
    rect: Optional[Rect]
    field: str
    before: Union[str, float]
    after: Union[str, float]
    differing: Optional[int] = None
    at: Optional[Tuple[int, int]] = None
    component: Optional[int] = None


def record_of(kind: Any, fields: Dict[str, Any]) -> Any:
    """A record from the compiled half's dictionary."""
    if fields.get("rect") is not None:
        fields["rect"] = Rect(*fields["rect"])
    return kind(**fields)
