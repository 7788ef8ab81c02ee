"""Coefficient cells of a file, like an array."""

import operator
from typing import Any, ContextManager, Iterator, List, NamedTuple, Optional, Protocol, Tuple, Union

import numpy as np

from ._arguments import refuse_masked
from ._errors import Invalid, OutOfRange
from ._records import Area, Rect, record_of

Index = Union[int, slice]


class _OpenFile(Protocol):
    """The part of an open file that Coef uses."""

    def transaction(self) -> ContextManager[Any]: ...

    def _call(self, operation: str, *arguments: Any) -> Any: ...


class _Selection(NamedTuple):
    """The rectangle that an index touches, and the index into it."""

    rows: Tuple[int, int]  # half-open
    columns: Tuple[int, int]
    inner: Tuple[Index, ...]

    def is_empty(self) -> bool:
        return self.rows[0] == self.rows[1] or self.columns[0] == self.columns[1]

    def takes_whole_cells(self, values: int) -> bool:
        steps = [part.step for part in self.inner if isinstance(part, slice)]
        last = self.inner[2]
        whole = last == 0 and values == 1 if isinstance(last, int) else last.indices(values) == (0, values, 1)
        return whole and all(step in (None, 1) for step in steps)


def _whole(key: Any) -> Optional[int]:
    if isinstance(key, (bool, np.bool_)):
        raise TypeError("an index must be a whole number or a slice, not a bool: read the cells first, then choose")
    try:
        return None if key is None else operator.index(key)
    except TypeError:
        raise TypeError(
            f"an index must be a whole number or a slice, not {type(key).__name__}: read the cells first, then choose"
        ) from None


def _bounds(key: Any, length: int, axis: str) -> Tuple[Tuple[int, int], Index]:
    """The half-open range of an axis that one index spans, and the index relative to its beginning."""
    if not isinstance(key, slice):
        index = _whole(key)
        if index is None or not -length <= index < length:
            raise OutOfRange(f"index {key} is out of range: there are {length} {axis}")
        return (index % length, index % length + 1), 0
    if _whole(key.step) == 0:
        raise Invalid(f"the slice {_text(key)} has the step 0: use 1 or more, or a negative step to go backwards")
    for end in (_whole(key.start), _whole(key.stop)):
        if end is not None and not -length <= end <= length:
            raise OutOfRange(f"the slice {_text(key)} is out of range: there are {length} {axis}")
    chosen = range(length)[key]
    if not chosen:
        return (0, 0), slice(0, 0)
    return (min(chosen), max(chosen) + 1), slice(None, None, key.step)


def _text(key: slice) -> str:
    ends = ("" if end is None else str(end) for end in (key.start, key.stop))
    return ":".join(ends) + ("" if key.step is None else f":{key.step}")


def _select(key: Any, shape: Tuple[int, int, int]) -> _Selection:
    keys: List[Any] = list(key) if isinstance(key, tuple) else [key]
    dots = [place for place, part in enumerate(keys) if part is Ellipsis]
    if len(dots) > 1 or len(keys) - len(dots) > len(shape):
        raise OutOfRange(f"an index has at most three parts (rows, columns, values), not {len(keys)}")
    missing = [slice(None)] * (len(shape) - len(keys) + len(dots))
    place = dots[0] if dots else len(keys)
    keys[place:place + 1] = missing
    rows, row = _bounds(keys[0], shape[0], "rows")
    columns, column = _bounds(keys[1], shape[1], "columns")
    _bounds(keys[2], shape[2], "values of a cell")
    value: Index = keys[2] if isinstance(keys[2], slice) else operator.index(keys[2])
    return _Selection(rows, columns, (row, column, value))


def exactly(values: Any, dtype: "np.dtype[Any]") -> "np.ndarray[Any, Any]":
    """The numbers converted to that type. Raises Invalid if one of them would change."""
    refuse_masked("values", values)
    given = np.asarray(values)
    if given.dtype.kind not in "biuf":
        raise Invalid(f"{given.dtype} is not a number type that a block can hold")
    if given.dtype == dtype:
        return given
    with np.errstate(all="ignore"):
        cast = given.astype(dtype)
        both = (cast == given) & (cast.astype(given.dtype) == given)
        if given.dtype.kind == "f" and dtype.kind == "f":
            both |= np.isnan(given) & np.isnan(cast)
    changed = given.size - int(np.count_nonzero(both))
    if changed == 0:
        return cast
    how = f".astype('{dtype.name}')"
    if dtype.kind in "iu":
        limits = np.iinfo(dtype)
        how = f".round().clip({limits.min}, {limits.max})" + how
    raise Invalid(f"{changed} of {given.size} numbers of {given.dtype} would change as {dtype.name}; "
                  f"nothing was written: write values{how} to convert them")


class NotCopied:
    """Cannot be copied: discarding the copy would close the open file, or end its transaction."""

    def __reduce_ex__(self, protocol: Any) -> Any:
        raise TypeError(f"a {type(self).__name__} cannot be copied or pickled, since it belongs to an open file: copy "
                        "the cells, coef[...], or open the file again")


class Coef(NotCopied):
    """Coefficient cells of an area, or of several: an array of shape (rows, columns, values of a cell).

    Indices count from the first cell of ``rect``, which is row ``rect.top`` and column ``rect.left`` of the screen.
    Reading decrypts only the rows and columns that the index spans, and gives a NumPy array of its own::

        part = coef[400:528, 600:856]      # a slice beyond the block is an error, unlike NumPy's
        first = coef[..., 0]               # the first number of every cell
        coef[400:528, 600:856] = part      # in one transaction; the rest of the block stays

    Writing accepts numbers of any type if none of them changes in ``dtype``; else it raises Invalid and nothing is
    written. Round them yourself: ``coef[...] = (part * 0.98).round().astype(coef.dtype)``.
    """

    ndim = 3

    def __init__(self, wall: _OpenFile, cells: Any) -> None:
        described = cells.describe()
        self._wall = wall
        self._cells = cells
        self.rect: Rect = Rect(*described["rect"])
        self.areas: List[Area] = [record_of(Area, area) for area in described["areas"]]
        self.is_mosaic: bool = described["mosaic"]
        self.dtype: "np.dtype[Any]" = np.dtype(described["dtype"])
        self.scale: float = described["scale"]
        self.unit: str = described["unit"]
        self.shape: Tuple[int, int, int] = (*self.rect.shape, described["values"])

    @property
    def size(self) -> int:
        """The count of numbers."""
        rows, columns, values = self.shape
        return rows * columns * values

    def __len__(self) -> int:
        return self.shape[0]

    def __getitem__(self, key: Any) -> Any:
        """The numbers as a new NumPy array, or as one number. Raises OutOfRange, NotFound, Damaged."""
        chosen = _select(key, self.shape)
        if chosen.is_empty():
            return np.empty((*self._shape_of(chosen), self.shape[2]), self.dtype)[chosen.inner]
        return self._read(chosen)[chosen.inner]

    def __setitem__(self, key: Any, values: Any) -> None:
        """Writes numbers, broadcast as by NumPy, in one transaction. Raises Invalid, OutOfRange, NotFound, Damaged."""
        chosen = _select(key, self.shape)
        numbers = exactly(values, self.dtype)
        if self.is_mosaic:
            raise Invalid("a mosaic is read-only: write to its areas, one by one")
        with self._wall.transaction():
            if chosen.is_empty() or chosen.takes_whole_cells(self.shape[2]):
                cells = np.empty((*self._shape_of(chosen), self.shape[2]), self.dtype)
            else:
                cells = self._read(chosen)
            try:
                cells[chosen.inner] = numbers
            except ValueError as error:
                raise Invalid(f"{error}; nothing was written") from None
            if not chosen.is_empty():
                self._wall._call("patch", self._cells, self._rect_of(chosen), cells)

    def __iter__(self) -> Iterator["np.ndarray[Any, Any]"]:
        return iter(self[...])

    def __array__(self, dtype: Any = None, copy: Optional[bool] = None) -> "np.ndarray[Any, Any]":
        return np.asarray(self[...], dtype=dtype)

    def __repr__(self) -> str:
        cells = "mosaic of %d areas" % len(self.areas) if self.is_mosaic else f"area {self.areas[0].id}"
        return f"<tovrdb.Coef {self.rect}, {cells}, shape {self.shape}, {self.dtype}>"

    @staticmethod
    def _shape_of(chosen: _Selection) -> Tuple[int, int]:
        return chosen.rows[1] - chosen.rows[0], chosen.columns[1] - chosen.columns[0]

    def _rect_of(self, chosen: _Selection) -> Rect:
        left, top = self.rect.left, self.rect.top
        return Rect(left + chosen.columns[0], top + chosen.rows[0], left + chosen.columns[1] - 1,
                    top + chosen.rows[1] - 1)

    def _read(self, chosen: _Selection) -> "np.ndarray[Any, Any]":
        cells: "np.ndarray[Any, Any]" = self._wall._call("read", self._cells, self._rect_of(chosen))
        return cells
