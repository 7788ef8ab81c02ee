"""Opening, and an open file."""

import os
from types import TracebackType
from typing import Any, Iterable, List, Optional, Tuple, Type, Union

import numpy as np

from . import _arguments, _library, _native
from ._arguments import shown
from ._coef import Coef, NotCopied
from ._errors import Busy, Conflict, Error, Invalid, NotFound
from ._records import Area, Data, Difference, Measurement, Rect, Screen, Verdict, record_of

Path = Union[str, "os.PathLike[str]"]
Edges = Union[Rect, Tuple[int, int, int, int]]

_MEMORY = ":memory:"
_MOST_SHOWN = 20  # areas of a screen, at a glance
_LONGEST_WAIT = 2**31 // 1000  # seconds: the engine counts milliseconds in 32 bits


def open(path: Path, key: str, *, wait: int = 5, fast: bool = False, plugin: Optional[str] = None) -> "Wall":
    """Opens a database file.

    :param key: the page key, as it was given to create()
    :param wait: seconds to wait while other programs use the file
    :param fast: do not wait for the disk; a power cut can then damage the file
    :param plugin: the plug-in library, if it is not where it was installed; else TOVRDB_PLUGIN names it
    :raises NotFound: there is no such file
    :raises WrongKey: the key does not open it
    :raises Busy: other programs still use it after that time, or this process already has a file open
    """
    told = _opening(wait, fast, plugin)
    checked = _arguments.key(key)
    name = _arguments.path("path", path)
    if name == _MEMORY:
        raise NotFound("a database in memory cannot be opened: make one with tovrdb.create(':memory:', type=0)")
    if not os.path.exists(name):
        raise NotFound(f"{shown(name)}: there is no such file; tovrdb.create() makes a new one")
    return Wall(name, lambda whole: _native.File(*told, whole, checked))


def create(path: Path, key: Optional[str] = None, *, type: int, name: str = "", wait: int = 5, fast: bool = False,
           plugin: Optional[str] = None) -> "Wall":
    """Makes a new database file and opens it. ":memory:" makes one without a key in memory; closing discards it.

    :param type: 0: screens are found by rectangle; 1: by name. It cannot be changed later
    :param name: the database's name; by default the file's

    The other parameters are those of open().

    :raises Conflict: the file exists already
    """
    kind = _arguments.whole("type", type)
    if kind not in (0, 1):
        raise Invalid("type: must be 0 (screens are found by rectangle) or 1 (by name)")
    told = _opening(wait, fast, plugin)
    title = _arguments.text("name", name)
    place = _arguments.path("path", path)
    if place == _MEMORY:
        return Wall(place, lambda _: _native.File.in_memory(told[0], kind, title))
    checked = _arguments.key(key)
    if os.path.lexists(place):
        raise Conflict(f"{shown(place)}: exists already; nothing was written")

    def make(whole: bytes) -> Any:
        _native.make_database(told[0], whole, checked, kind, title)
        return _native.File(*told, whole, checked)

    return Wall(place, make)


def _opening(wait: Any, fast: Any, plugin: Any) -> Tuple[bytes, int, bool]:
    """The checked options of opening: plug-in, seconds to wait, whether to wait for the disk."""
    given = None if plugin is None else _arguments.path("plugin", plugin)
    return (os.fsencode(_library.plugin_path(given)), _arguments.whole("wait", wait, 0, _LONGEST_WAIT),
            not _arguments.flag("fast", fast))


class Transaction(NotCopied):
    """A context manager whose writes are kept together or not at all. Wall.transaction() makes one."""

    def __init__(self, wall: "Wall") -> None:
        self._wall = wall
        self._lock = _library.lock
        self._depth: Optional[int] = None  # transactions that were open before this one

    def __enter__(self) -> "Wall":
        if self._depth is not None:
            raise Invalid("this transaction is open already: call transaction() for another one")
        self._lock = _library.lock
        self._lock.acquire()
        try:
            self._depth = self._wall._call("depth")
            self._wall._call("begin")
        except BaseException:
            self._leave(kept=False)
            raise
        return self._wall

    def __exit__(self, kind: Optional[Type[BaseException]], error: Optional[BaseException],
                 traceback: Optional[TracebackType]) -> None:
        self._leave(kept=kind is None)

    def _leave(self, kept: bool) -> None:
        """Commits or rolls back, and releases the lock even if it is interrupted."""
        depth, self._depth = self._depth, None
        try:
            if kept:
                self._wall._call("commit")
        finally:
            try:
                if depth is not None:
                    self._wall._call("roll_back_to", depth)
            finally:
                self._lock.release()


class Wall(NotCopied):
    """An open database file, and a context manager that closes it; open() and create() make one.

    A process can have one file open at a time. Any of its threads may use it: they take turns, and a thread that has
    begun a transaction keeps its turn until the transaction ends. A forked process must open the file again.
    """

    def __init__(self, path: str, opening: Any) -> None:
        self.path = path
        self._file: Any = None
        self._process = os.getpid()
        with _library.lock:
            last = _library.opened
            if last is not None and last.is_ours():
                raise Busy(f"{shown(last.path)} is open in this process, which can have only one file open: "
                           "close it first")
            whole = os.fsencode(os.path.abspath(self.path))
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
        """The stored generic data, without its bytes."""
        return [record_of(Data, data) for data in self._call("data")]

    @property
    def measurements(self) -> List[Measurement]:
        """The stored measurements, without their bytes."""
        return [record_of(Measurement, measurement) for measurement in self._call("measurements")]

    @property
    def info(self) -> "dict[str, Any]":
        """Facts about the file: "type", "description", "engine", and "tables" with their rows and bytes."""
        return dict(self._call("info"))

    # Cells

    def coef(self, *, type: Optional[int] = None, screen: str = "", area: Union[Area, int, None] = None,
             rect: Optional[Edges] = None, dtype: Any = None, mosaic: bool = False, fill: Optional[float] = None,
             scale: Union[str, float, None] = None, unit: Optional[str] = None) -> Coef:
        """The cells of an area, like an array; reads none of them yet.

        :param type: the coefficient type
        :param screen: the screen's name; required if several screens have areas of the type
        :param area: an area or its id, instead of type and screen
        :param rect: only these cells: left, top, right, bottom, all four inclusive
        :param dtype: the type of the numbers [as kept with the block]
        :param mosaic: read across areas; if areas overlap, each cell comes from the one stored first
        :param fill: with mosaic, the unscaled number for cells that no area covers
        :param scale: the factor of the stored numbers, 0.5 or "1/16384" [as kept with the block]
        :param unit: the unit of the scaled numbers [as kept with the block]
        :raises NotFound: there is no such area; the text lists those that exist
        :raises Invalid: the choice is ambiguous, or the type of the numbers is not known
        """
        return Coef(self, self._call(
            "locate",
            None if area is None else _area_id("area", area),
            None if type is None else _arguments.whole("type", type),
            _arguments.text("screen", screen),
            None if rect is None else _arguments.rect("rect", rect),
            _arguments.dtype_name(dtype),
            _arguments.flag("mosaic", mosaic),
            None if fill is None else _arguments.real("fill", fill),
            _arguments.scale(scale),
            _arguments.optional_text("unit", unit)))

    def put(self, array: Any, *, type: int, at: Optional[Tuple[int, int]] = None, rect: Optional[Edges] = None,
            screen: str = "", mode: str = "careful", force: bool = False, number: int = -1, text: str = "",
            scale: Union[str, float, None] = None, unit: Optional[str] = None,
            new_screen: bool = False) -> List[str]:
        """Stores a block by the rules of ``tovrdb coef put``: conflicts are found before anything is written.

        :param array: numbers of shape (rows, columns) or (rows, columns, values...); stored in their own type, which is
            kept with the block. Any memory layout and byte order is accepted
        :param at: the column and row of its first cell on the screen; or
        :param rect: left, top, right, bottom, all four inclusive
        :param mode: what it may do to stored blocks. "careful": replace the block of exactly this rectangle; "patch":
            change these cells of the block that holds them; "replace": also remove blocks that lie inside; "beside":
            overlap others; "update": rewrite the screen's block, add nothing
        :param force: replace a block with another number of bytes per cell, with numbers of another type, scale or unit
            or, in files of type 1, at another place
        :param number: an area number; unless it is -1, the block is always added
        :param text: kept with the block
        :param scale: the factor of the stored numbers, 0.5 or "1/16384"; kept with the block, as is
        :param unit: the unit of the scaled numbers
        :param new_screen: in files of type 1, add the screen even if its name looks like a misspelling of another's: it
            differs only in case or blanks, or begins or ends with a blank
        :return: what was replaced, removed or patched, a line each
        :raises Conflict: it conflicts with stored blocks
        :raises Invalid: the array's type or shape is not that of a block
        """
        numbers = _plain(array)
        return list(self._call(
            "put", numbers,
            _place(numbers, at, rect),
            _arguments.whole("type", type),
            _arguments.text("screen", screen),
            _arguments.text("mode", mode),
            _arguments.flag("force", force),
            _arguments.whole("number", number),
            _arguments.text("text", text),
            _arguments.scale(scale),
            _arguments.optional_text("unit", unit),
            _arguments.flag("new_screen", new_screen)))

    def delete(self, areas: Union[Area, int, Iterable[Union[Area, int]], None] = None, *, type: Optional[int] = None,
               rect: Optional[Edges] = None, screen: str = "") -> List[str]:
        """Deletes areas with their blocks: areas or ids, or the one of a type and rectangle. Returns a line each."""
        if areas is not None:
            several = areas if isinstance(areas, Iterable) else [areas]
            return list(self._call("delete_areas", [_area_id("areas", area) for area in several]))
        if type is None or rect is None:
            raise Invalid("give areas or their ids, or type and rect")
        return list(self._call("delete_at", _arguments.whole("type", type), _arguments.text("screen", screen),
                               _arguments.rect("rect", rect)))

    # Screens, data, measurements

    def add_screen(self, name: str, *, rect: Edges, force: bool = False) -> None:
        """Adds a screen of these cells: left, top, right, bottom, all four inclusive.

        Raises Conflict if there is one of that name and, unless ``force``, if the name looks like a misspelling of
        another's or if, in files of type 0, an older screen holds all of its cells.
        """
        if not _arguments.text("name", name):
            raise Invalid("name: must not be empty")
        self._call("add_screen", _arguments.text("name", name), _arguments.rect("rect", rect),
                   _arguments.flag("force", force))

    def rename_screen(self, name: str, new_name: str, *, force: bool = False) -> None:
        """Renames a screen; its areas and data stay with it. Raises NotFound, and Conflict as ``add_screen`` does."""
        if not _arguments.text("new_name", new_name):
            raise Invalid("new_name: must not be empty")
        self._call("rename_screen", _arguments.text("name", name), _arguments.text("new_name", new_name),
                   _arguments.flag("force", force))

    def delete_screen(self, name: str, *, with_areas: bool = False) -> List[str]:
        """Deletes a screen. Returns what was deleted. Raises Conflict if it has data, or areas without `with_areas`."""
        return list(self._call("delete_screen", _arguments.text("name", name),
                               _arguments.flag("with_areas", with_areas)))

    def get_data(self, type: int) -> bytes:
        """The generic data of a type. Raises NotFound, Damaged."""
        return bytes(self._call("get_data", _arguments.whole("type", type)))

    def put_data(self, type: int, payload: bytes, *, text: str = "") -> List[str]:
        """Stores generic data, replacing data of the same type. Returns what was replaced, a line each.

        It belongs to the screen that was added last.
        """
        return list(self._call("put_data", _arguments.whole("type", type), _arguments.payload("payload", payload),
                               _arguments.text("text", text)))

    def delete_data(self, type: int) -> List[str]:
        """Deletes the generic data of a type. Returns a line for each."""
        return list(self._call("delete_data", _arguments.whole("type", type)))

    def get_measurement(self, id: int) -> bytes:
        """The bytes of a measurement. Raises NotFound, Damaged."""
        return bytes(self._call("get_measurement", _arguments.row_id("id", id)))

    def put_measurement(self, payload: bytes, *, type: int, rect: Edges, text: str = "") -> int:
        """Stores a measurement and returns its id. The library stores the bytes, but neither type nor rectangle."""
        return int(self._call("put_measurement", _arguments.payload("payload", payload),
                              _arguments.whole("type", type), _arguments.rect("rect", rect),
                              _arguments.text("text", text)))

    def clear_measurements(self) -> None:
        """Deletes all measurements."""
        self._call("clear_measurements")

    # The file as a whole

    def check(self) -> List[Verdict]:
        """Checks the whole file, from its pages to whether its rows make sense. Not in a transaction."""
        return [record_of(Verdict, verdict) for verdict in self._call("check")]

    def diff(self, other: Path, *, key: Optional[str] = None, atol: float = 0, rtol: float = 0,
             dtype: Any = None) -> List[Difference]:
        """The differences to another file, as ``tovrdb diff`` lists them; empty if the contents are equal.

        :param other: its path
        :param key: its key, if it has another
        :param atol: absolute tolerance: scaled numbers this far apart count as equal
        :param rtol: relative tolerance, times the larger of the two sizes
        :param dtype: the type of the numbers, if none is kept with the blocks

        Only one file is open at a time: this one is closed meanwhile, and so must not be in a transaction.
        """
        name = _arguments.path("other", other)
        if not os.path.exists(name):
            raise NotFound(f"{shown(name)}: there is no such file")
        limits = _arguments.tolerance("atol", atol), _arguments.tolerance("rtol", rtol)
        found = self._call(
            "diff",
            os.fsencode(os.path.abspath(name)),
            None if key is None else _arguments.key(key),
            _native.Tolerance(*limits) if any(limits) else None,
            _arguments.dtype_name(dtype))
        return [record_of(Difference, difference) for difference in found]

    def transaction(self) -> Transaction:
        """A transaction: an exception rolls it back. An inner one rolls back by itself."""
        return Transaction(self)

    @property
    def closed(self) -> bool:
        """Whether the file is closed; waits for the thread whose turn it is."""
        with _library.lock:
            return self._file is None or bool(self._file.is_closed())

    def close(self) -> None:
        """Closes the file and rolls back transactions that have not ended. Closing twice does nothing."""
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
        except Exception:  # a destructor must not raise
            pass

    def __repr__(self) -> str:
        return f"<tovrdb.Wall '{shown(self.path)}'{', closed' if self.closed else ''}>"

    def __str__(self) -> str:
        if self.closed:
            return repr(self)
        with _library.lock:
            screens, areas = self.screens, self.areas
            lines = [f"{shown(self.path)}: type {self.type}, {_count(screens, 'screen')}, {_count(areas, 'area')}"]
        for screen in screens:
            lines.append(f"  {shown(screen.name)} ({screen.rect})")
            own = [area for area in areas if area.screen == screen.name]
            lines.extend(f"    area {area.id}: type {area.type}, {area.rect}, {_numbers(area)}"
                         for area in own[:_MOST_SHOWN])
            if len(own) > _MOST_SHOWN:
                lines.append(f"    and {len(own) - _MOST_SHOWN} more")
        return "\n".join(lines)

    def _call(self, operation: str, *arguments: Any) -> Any:
        if self._file is None:
            raise Invalid(f"{shown(self.path)}: the file is closed: open it again")
        return self._named(lambda: _library.call(getattr(self._file, operation), *arguments))

    def _named(self, work: Any) -> Any:
        """Puts the name of the file before the text of an error."""
        try:
            return work()
        except Error as error:
            raise type(error)(f"{shown(self.path)}: {error}", error.code) from None


def _count(things: List[Any], name: str) -> str:
    return f"{len(things)} {name}" + ("" if len(things) == 1 else "s")


def _numbers(area: Area) -> str:
    if area.fault:
        return f"damaged: {area.fault}"
    if area.dtype is None:
        return f"{area.cell_bytes} bytes per cell"
    scale = "" if area.scale == 1 else f", scale {area.scale:g}"
    unit = f", unit {shown(area.unit)}" if area.unit else ""
    return f"{area.cell_bytes // np.dtype(area.dtype).itemsize} x {area.dtype}{scale}{unit}"


def _area_id(name: str, area: Union[Area, int]) -> int:
    return area.id if isinstance(area, Area) else _arguments.row_id(name, area)


def _plain(array: Any) -> "np.ndarray[Any, Any]":
    """The same numbers in C order and little-endian, which blocks are."""
    _arguments.refuse_masked("array", array)
    given = np.asarray(array)
    if given.dtype.kind not in "iuf":
        raise Invalid(f"array: {given.dtype} is not a number type that a block can hold")
    return np.ascontiguousarray(given, dtype=given.dtype.newbyteorder("<"))


def _place(array: "np.ndarray[Any, Any]", at: Optional[Tuple[int, int]], rect: Optional[Edges]) -> Rect:
    if array.ndim < 2 or array.size == 0:
        raise Invalid(f"an array of shape {array.shape} is not a block: its shape must be (rows, columns, values) or "
                      "(rows, columns), none of them 0")
    rows, columns = array.shape[:2]
    if (at is None) == (rect is None):
        raise Invalid("the place of the block is required: at=(column, row) of its first cell, or rect=")
    if at is not None:
        left, top = _arguments.position("at", at)
        return Rect(left, top, left + columns - 1, top + rows - 1)
    cells = _arguments.rect("rect", rect)
    if cells.shape != (rows, columns):
        raise Invalid(f"an array of shape {array.shape} does not fit the rectangle {cells}, whose shape "
                      f"is {cells.shape}")
    return cells
