"""Opening, and an open file."""

import os
from contextlib import contextmanager
from types import TracebackType
from typing import Any, Iterable, Iterator, List, Optional, Tuple, Type, Union

import numpy as np

from . import _library, _native
from ._coef import Coef
from ._errors import Busy, Conflict, Error, Invalid, NotFound
from ._records import Area, Data, Difference, Measurement, Rect, Screen, Verdict, record_of

Path = Union[str, "os.PathLike[str]"]
Edges = Union[Rect, Tuple[int, int, int, int]]

_MEMORY = ":memory:"
_MOST_SHOWN = 20  # areas of a screen, at a glance


def open(path: Path, key: str, *, wait: int = 5, fast: bool = False, plugin: Optional[str] = None) -> "Wall":
    """Opens a database file.

    :param key: the page key, as it was given to create()
    :param wait: seconds that other programs which use the file are waited for
    :param fast: do not wait for the disk; a power cut can then damage the file
    :param plugin: the plug-in library, if it is not where it was installed; else TOVRDB_PLUGIN names it
    :raises NotFound: there is no such file
    :raises WrongKey: the key does not open it
    :raises Busy: other programs use it for longer than that, or this process has a file open already
    """
    _require_key(key)
    if os.fspath(path) == _MEMORY:
        raise NotFound("a database in memory begins with tovrdb.create(':memory:', type=0)")
    if not os.path.exists(path):
        raise NotFound(f"{os.fspath(path)}: there is no such file; tovrdb.create() makes a new one")
    return Wall(path, lambda whole: _native.File(_library.plugin_path(plugin), wait, not fast, whole, key))


def create(path: Path, key: Optional[str] = None, *, type: int, name: str = "", wait: int = 5, fast: bool = False,
           plugin: Optional[str] = None) -> "Wall":
    """Makes a new database file and opens it. ":memory:" makes one in memory, without a key, gone when it is closed.

    :param type: 0, screens are found by rectangle, or 1, by name; it stays
    :param name: the database's name; by default the file's

    The other parameters are those of open().

    :raises Conflict: there is something of that name
    """
    if type not in (0, 1):
        raise Invalid("type: 0, screens are found by rectangle, or 1, by name")
    if os.fspath(path) == _MEMORY:
        return Wall(path, lambda _: _native.File.in_memory(_library.plugin_path(plugin), type, name))
    checked = _require_key(key)
    if os.path.lexists(path):
        raise Conflict(f"{os.fspath(path)}: exists already; nothing was written")

    def make(whole: str) -> Any:
        _native.make_database(_library.plugin_path(plugin), whole, checked, type, name)
        return _native.File(_library.plugin_path(plugin), wait, not fast, whole, checked)

    return Wall(path, make)


def _require_key(key: Optional[str]) -> str:
    if not isinstance(key, str):
        raise TypeError(f"key: the page key as a str is required, not {type(key).__name__}")
    if not key:
        raise Invalid("the key is empty: an empty key would leave the file unencrypted")
    return key


def _rect(edges: Edges) -> Rect:
    try:
        return Rect(*edges)
    except TypeError:
        raise Invalid("rect: four whole numbers are asked for, left, top, right, bottom") from None


class Wall:
    """An open database file, and a context manager that closes it; open() and create() make one.

    A process has one file open at a time. Any of its threads may use it: they take turns, and a thread that has begun a
    transaction keeps its turn until the end. A process that was forked off opens the file by itself.
    """

    def __init__(self, path: Path, opening: Any) -> None:
        self.path = os.fspath(path)
        self._file: Any = None
        self._process = os.getpid()
        with _library.lock:
            last = _library.opened
            if last is not None and last.is_ours():
                raise Busy(f"{last.path} is open in this process, which can have one file open: close it first")
            whole = os.path.abspath(self.path)
            self._file = self._named(lambda: _library.call(opening, whole))
            _library.opened = _library.Opened(self._process, self.path, self._file)

    # What the file holds

    @property
    def type(self) -> int:
        """0: screens are found by rectangle; 1: by name."""
        return int(self._call("type"))

    @property
    def screens(self) -> List[Screen]:
        """In the order in which they were added."""
        return [record_of(Screen, screen) for screen in self._call("screens")]

    @property
    def areas(self) -> List[Area]:
        """The stored blocks, in the order in which they were stored."""
        return [record_of(Area, area) for area in self._call("areas")]

    @property
    def data(self) -> List[Data]:
        """The generic data that is stored."""
        return [record_of(Data, data) for data in self._call("data")]

    @property
    def measurements(self) -> List[Measurement]:
        """The measurements that are stored."""
        return [record_of(Measurement, measurement) for measurement in self._call("measurements")]

    @property
    def info(self) -> "dict[str, Any]":
        """The file in figures: "type", "description", "engine", and "tables" with their rows and bytes."""
        return dict(self._call("info"))

    # Cells

    def coef(self, *, type: Optional[int] = None, screen: str = "", area: Union[Area, int, None] = None,
             rect: Optional[Edges] = None, dtype: Any = None, mosaic: bool = False, fill: Optional[float] = None,
             scale: Union[str, float, None] = None, unit: Optional[str] = None) -> Coef:
        """The cells of an area, like an array; reads none of them yet.

        :param type: the coefficient type
        :param screen: the screen's name; needed where several have such areas
        :param area: instead of both, an area or its id
        :param rect: only these cells: left, top, right, bottom, all four inclusive
        :param dtype: the type of the numbers [as kept with the block]
        :param mosaic: read across areas; where they overlap, the first stored one counts
        :param fill: with mosaic, the number, as stored, of cells that no area covers
        :param scale: what 1 stands for, and
        :param unit: the unit of the scaled numbers [as kept with the block]
        :raises NotFound: there is no such area; the text tells what there is
        :raises Invalid: several areas are meant, or nothing tells the type of the numbers
        """
        number = area.id if isinstance(area, Area) else area
        name = None if dtype is None else _dtype_name(dtype)
        edges = None if rect is None else _rect(rect)
        return Coef(self, self._call("locate", number, type, screen, edges, name, mosaic, fill, _told(scale), unit))

    def put(self, array: Any, *, type: int, at: Optional[Tuple[int, int]] = None, rect: Optional[Edges] = None,
            screen: str = "", mode: str = "careful", force: bool = False, number: int = -1, text: str = "",
            scale: Union[str, float, None] = None, unit: Optional[str] = None) -> List[str]:
        """Stores a block by the rules of ``tovrdb coef put``; everything is decided before anything is written.

        :param array: numbers of shape (rows, columns) or (rows, columns, values...); stored in their own type, which is
            kept with the block. Any memory layout and byte order will do
        :param at: the column and row of its first cell on the screen; or
        :param rect: left, top, right, bottom, all four inclusive
        :param mode: what it may do to stored blocks. "careful": replace one of its very place; "patch": go into the one
            that holds its place; "replace": remove those inside; "beside": lie upon others; "update": rewrite the
            screen's and add nothing
        :param force: replace a block of another number of bytes per cell or, in files of type 1, of another place
        :param number: other than -1: an area number; the block is always added
        :param text: kept with the block
        :param scale: what 1 stands for, 0.5 or "1/16384"; kept with the block, as is
        :param unit: the unit of the scaled numbers
        :return: what was replaced, removed or patched, a line each
        :raises Conflict: what is stored stands against it
        :raises Invalid: the array's type or shape is none of a block's
        """
        numbers = _plain(array)
        cells = _place(numbers, at, rect)
        return list(self._call("put", numbers, cells, type, screen, mode, force, number, text, _told(scale), unit))

    def delete(self, areas: Union[Area, int, Iterable[Union[Area, int]], None] = None, *, type: Optional[int] = None,
               rect: Optional[Edges] = None, screen: str = "") -> List[str]:
        """Deletes areas with their blocks: areas or ids, or the one of a type and rectangle. Returns what went."""
        if areas is not None:
            several = [areas] if isinstance(areas, (Area, int)) else list(areas)
            return list(self._call("delete_areas", [area.id if isinstance(area, Area) else area for area in several]))
        if type is None or rect is None:
            raise Invalid("say which areas: areas or ids, or type and rect")
        return list(self._call("delete_at", type, screen, _rect(rect)))

    # Screens, data, measurements

    def add_screen(self, name: str, *, rect: Edges) -> None:
        """Adds a screen of these cells: left, top, right, bottom, all four inclusive. Raises Conflict for a name twice."""
        if not name:
            raise Invalid("name: must not be empty")
        with self.transaction():
            if any(screen.name == name for screen in self.screens):
                raise Conflict(f"{self.path}: there is a screen '{name}' already; give another name")
            self._call("add_screen", name, _rect(rect))

    def delete_screen(self, name: str, *, with_areas: bool = False) -> List[str]:
        """Deletes a screen. Returns what went. Raises Conflict where it has data, or areas that are not to go."""
        return list(self._call("delete_screen", name, with_areas))

    def get_data(self, type: int) -> bytes:
        """The generic data of a type. Raises NotFound, Damaged."""
        return bytes(self._call("get_data", type))

    def put_data(self, type: int, payload: bytes, *, text: str = "") -> None:
        """Stores generic data in the place of what its type held. It belongs to the screen that was added last."""
        self._call("put_data", type, bytes(payload), text)

    def delete_data(self, type: int) -> List[str]:
        """Deletes the generic data of a type. Returns what went."""
        return list(self._call("delete_data", type))

    def get_measurement(self, id: int) -> bytes:
        """The bytes of a measurement. Raises NotFound, Damaged."""
        return bytes(self._call("get_measurement", id))

    def put_measurement(self, payload: bytes, *, type: int, rect: Edges, text: str = "") -> int:
        """Stores a measurement and returns its id. The library keeps the bytes, but neither type nor rectangle."""
        return int(self._call("put_measurement", bytes(payload), type, _rect(rect), text))

    def clear_measurements(self) -> None:
        """Deletes all measurements."""
        self._call("clear_measurements")

    # The file as a whole

    def check(self) -> List[Verdict]:
        """Reads every byte of the file and judges it, from its pages to the sense of its rows. Not in a transaction."""
        return [record_of(Verdict, verdict) for verdict in self._call("check")]

    def diff(self, other: Path, *, key: Optional[str] = None, atol: float = 0, rtol: float = 0,
             dtype: Any = None) -> List[Difference]:
        """What differs in another file, as ``tovrdb diff`` tells it; nothing where both hold the same.

        :param other: its path; no program needs to have it open
        :param key: its key, if it has another
        :param atol: numbers this far apart count as equal, scaled
        :param rtol: the same, as a share of the larger of the two
        :param dtype: the type of the numbers, where none is kept with the blocks

        Only one file is open at a time: this one is closed meanwhile, and so must not be in a transaction.
        """
        if not os.path.exists(other):
            raise NotFound(f"{os.fspath(other)}: there is no such file")
        tolerance = _native.Tolerance(atol, rtol) if atol or rtol else None
        name = None if dtype is None else _dtype_name(dtype)
        found = self._call("diff", os.path.abspath(other), key, tolerance, name)
        return [record_of(Difference, difference) for difference in found]

    @contextmanager
    def transaction(self) -> Iterator["Wall"]:
        """All or nothing: what an exception ends is undone. Within another one it is undone by itself."""
        with _library.lock:
            self._call("begin")
            try:
                yield self
            except BaseException:
                self._call("rollback")
                raise
            self._call("commit")

    @property
    def closed(self) -> bool:
        """Whether it is; waits for the thread whose turn it is."""
        with _library.lock:
            return self._file is None or bool(self._file.is_closed())

    def close(self) -> None:
        """Closes the file; what a transaction that has not ended has written is undone. Closing twice does nothing."""
        if not self.closed and self._process == os.getpid():
            self._call("close")

    def __enter__(self) -> "Wall":
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], error: Optional[BaseException],
                 traceback: Optional[TracebackType]) -> None:
        self.close()

    def __del__(self) -> None:
        try:
            self.close()
        except Exception:  # nobody is there to be told
            pass

    def __repr__(self) -> str:
        return f"<tovrdb.Wall '{self.path}'{', closed' if self.closed else ''}>"

    def __str__(self) -> str:
        if self.closed:
            return repr(self)
        with _library.lock:
            screens, areas = self.screens, self.areas
            lines = [f"{self.path}: type {self.type}, {_count(screens, 'screen')}, {_count(areas, 'area')}"]
        for screen in screens:
            lines.append(f"  {screen.name} ({screen.rect})")
            own = [area for area in areas if area.screen == screen.name]
            lines.extend(f"    area {area.id}: type {area.type}, {area.rect}, {_numbers(area)}"
                         for area in own[:_MOST_SHOWN])
            if len(own) > _MOST_SHOWN:
                lines.append(f"    and {len(own) - _MOST_SHOWN} more")
        return "\n".join(lines)

    def _call(self, operation: str, *arguments: Any) -> Any:
        if self._file is None:
            raise Invalid(f"{self.path}: the file is closed: open it again")
        return self._named(lambda: _library.call(getattr(self._file, operation), *arguments))

    def _named(self, work: Any) -> Any:
        """What an error happened on goes before it."""
        try:
            return work()
        except Error as error:
            raise type(error)(f"{self.path}: {error}", error.code) from None


def _count(things: List[Any], name: str) -> str:
    return f"{len(things)} {name}" + ("" if len(things) == 1 else "s")


def _numbers(area: Area) -> str:
    if area.dtype is None:
        return f"{area.cell_bytes} bytes per cell"
    scale = "" if area.scale == 1 else f", scale {area.scale:g}"
    unit = f", unit {area.unit}" if area.unit else ""
    return f"{area.cell_bytes // np.dtype(area.dtype).itemsize} x {area.dtype}{scale}{unit}"


def _dtype_name(dtype: Any) -> str:
    try:
        return str(np.dtype(dtype).name)
    except TypeError:
        raise Invalid(f"dtype: there is no type of numbers '{dtype}'") from None


def _told(scale: Union[str, float, None]) -> Optional[str]:
    return None if scale is None else str(scale)


def _plain(array: Any) -> "np.ndarray[Any, Any]":
    """The same numbers in C order and little-endian, which blocks are."""
    given = np.asarray(array)
    if given.dtype.kind not in "iuf":
        raise Invalid(f"{given.dtype} is no type of numbers that a block keeps")
    return np.ascontiguousarray(given, dtype=given.dtype.newbyteorder("<"))


def _place(array: "np.ndarray[Any, Any]", at: Optional[Tuple[int, int]], rect: Optional[Edges]) -> Rect:
    if array.ndim < 2 or array.size == 0:
        raise Invalid(f"an array of shape {array.shape} is not a block, which takes (rows, columns, values) or "
                      "(rows, columns), none of them 0")
    rows, columns = array.shape[:2]
    if (at is None) == (rect is None):
        raise Invalid("say where the block belongs: at=(column, row) of its first cell, or rect=")
    if at is not None:
        left, top = at
        return Rect(left, top, left + columns - 1, top + rows - 1)
    cells = _rect(rect) if rect is not None else Rect(0, 0, -1, -1)
    if cells.shape != (rows, columns):
        raise Invalid(f"an array of shape {array.shape} does not fit the rectangle {cells}: its shape would begin "
                      f"with {cells.shape}")
    return cells
