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
    :param wait: seconds that other programs which use the file are waited for
    :param fast: do not wait for the disk; a power cut can then damage the file
    :param plugin: the plug-in library, if it is not where it was installed; else TOVRDB_PLUGIN names it
    :raises NotFound: there is no such file
    :raises WrongKey: the key does not open it
    :raises Busy: other programs use it for longer than that, or this process has a file open already
    """
    told = _opening(wait, fast, plugin)
    checked = _arguments.key(key)
    name = _arguments.path("path", path)
    if name == _MEMORY:
        raise NotFound("a database in memory begins with tovrdb.create(':memory:', type=0)")
    if not os.path.exists(name):
        raise NotFound(f"{shown(name)}: there is no such file; tovrdb.create() makes a new one")
    return Wall(name, lambda whole: _native.File(*told, whole, checked))


def create(path: Path, key: Optional[str] = None, *, type: int, name: str = "", wait: int = 5, fast: bool = False,
           plugin: Optional[str] = None) -> "Wall":
    """Makes a new database file and opens it. ":memory:" makes one in memory, without a key, gone when it is closed.

    :param type: 0, screens are found by rectangle, or 1, by name; it stays
    :param name: the database's name; by default the file's

    The other parameters are those of open().

    :raises Conflict: there is something of that name
    """
    kind = _arguments.whole("type", type)
    if kind not in (0, 1):
        raise Invalid("type: 0, screens are found by rectangle, or 1, by name")
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
    """How files are opened: the plug-in, the seconds to wait, whether the disk is waited for."""
    given = None if plugin is None else _arguments.path("plugin", plugin)
    return (os.fsencode(_library.plugin_path(given)), _arguments.whole("wait", wait, 0, _LONGEST_WAIT),
            not _arguments.flag("fast", fast))


class Transaction(NotCopied):
    """A context manager: all or nothing of what is written in it. Wall.transaction() makes one."""

    def __init__(self, wall: "Wall") -> None:
        self._wall = wall
        self._lock = _library.lock
        self._depth: Optional[int] = None  # how many were open before this one

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
        """Undoes what is not kept and releases the lock, also if this is interrupted."""
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

    A process has one file open at a time. Any of its threads may use it: they take turns, and a thread that has begun a
    transaction keeps its turn until the end. A process that was forked off opens the file by itself.
    """

    def __init__(self, path: str, opening: Any) -> None:
        self.path = path
        self._file: Any = None
        self._process = os.getpid()
        with _library.lock:
            last = _library.opened
            if last is not None and last.is_ours():
                raise Busy(f"{shown(last.path)} is open in this process, which can have one file open: close it first")
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
        :param screen: the screen's name; required if several have such areas
        :param area: instead of both, an area or its id
        :param rect: only these cells: left, top, right, bottom, all four inclusive
        :param dtype: the type of the numbers [as kept with the block]
        :param mosaic: read across areas; of those that overlap, the first stored one counts
        :param fill: with mosaic, the number, as stored, of cells that no area covers
        :param scale: what 1 stands for, and
        :param unit: the unit of the scaled numbers [as kept with the block]
        :raises NotFound: there is no such area; the text tells what there is
        :raises Invalid: several areas are meant, or nothing tells the type of the numbers
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
        """Stores a block by the rules of ``tovrdb coef put``; everything is decided before anything is written.

        :param array: numbers of shape (rows, columns) or (rows, columns, values...); stored in their own type, which is
            kept with the block. Any memory layout and byte order will do
        :param at: the column and row of its first cell on the screen; or
        :param rect: left, top, right, bottom, all four inclusive
        :param mode: what it may do to stored blocks. "careful": replace one of its very place; "patch": go into the one
            that holds its place; "replace": remove those inside; "beside": lie upon others; "update": rewrite the
            screen's and add nothing
        :param force: replace a block of another number of bytes per cell, of another type, scale or unit of its numbers
            or, in files of type 1, of another place
        :param number: other than -1: an area number; the block is always added
        :param text: kept with the block
        :param scale: what 1 stands for, 0.5 or "1/16384"; kept with the block, as is
        :param unit: the unit of the scaled numbers
        :param new_screen: in files of type 1, add the screen even if its name looks like a slip of another's: it differs
            only in case or blanks, or begins or ends with a blank
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
        """Deletes areas with their blocks: areas or ids, or the one of a type and rectangle. Returns what went."""
        if areas is not None:
            several = areas if isinstance(areas, Iterable) else [areas]
            return list(self._call("delete_areas", [_area_id("areas", area) for area in several]))
        if type is None or rect is None:
            raise Invalid("say which areas: areas or ids, or type and rect")
        return list(self._call("delete_at", _arguments.whole("type", type), _arguments.text("screen", screen),
                               _arguments.rect("rect", rect)))

    # Screens, data, measurements

    def add_screen(self, name: str, *, rect: Edges, force: bool = False) -> None:
        """Adds a screen of these cells: left, top, right, bottom, all four inclusive.

        Raises Conflict if there is one of that name and, unless ``force``, if the name looks like a slip of another's or
        if, in files of type 0, an older screen holds all of its cells.
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
        """Stores generic data in the place of what its type held. Returns what was replaced.

        It belongs to the screen that was added last.
        """
        return list(self._call("put_data", _arguments.whole("type", type), _arguments.payload("payload", payload),
                               _arguments.text("text", text)))

    def delete_data(self, type: int) -> List[str]:
        """Deletes the generic data of a type. Returns what went."""
        return list(self._call("delete_data", _arguments.whole("type", type)))

    def get_measurement(self, id: int) -> bytes:
        """The bytes of a measurement. Raises NotFound, Damaged."""
        return bytes(self._call("get_measurement", _arguments.row_id("id", id)))

    def put_measurement(self, payload: bytes, *, type: int, rect: Edges, text: str = "") -> int:
        """Stores a measurement and returns its id. The library keeps the bytes, but neither type nor rectangle."""
        return int(self._call("put_measurement", _arguments.payload("payload", payload),
                              _arguments.whole("type", type), _arguments.rect("rect", rect),
                              _arguments.text("text", text)))

    def clear_measurements(self) -> None:
        """Deletes all measurements."""
        self._call("clear_measurements")

    # The file as a whole

    def check(self) -> List[Verdict]:
        """Reads every byte of the file and judges it, from its pages to the sense of its rows. Not in a transaction."""
        return [record_of(Verdict, verdict) for verdict in self._call("check")]

    def diff(self, other: Path, *, key: Optional[str] = None, atol: float = 0, rtol: float = 0,
             dtype: Any = None) -> List[Difference]:
        """What differs in another file, as ``tovrdb diff`` tells it; empty if both hold the same.

        :param other: its path; no program needs to have it open
        :param key: its key, if it has another
        :param atol: numbers this far apart count as equal, scaled
        :param rtol: the same, as a share of the larger of the two
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
        """All or nothing: what an exception ends is undone. Within another one it is undone by itself."""
        return Transaction(self)

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
        """What an error happened on goes before it."""
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
        raise Invalid(f"an array of shape {array.shape} is not a block, which takes (rows, columns, values) or "
                      "(rows, columns), none of them 0")
    rows, columns = array.shape[:2]
    if (at is None) == (rect is None):
        raise Invalid("say where the block belongs: at=(column, row) of its first cell, or rect=")
    if at is not None:
        left, top = _arguments.position("at", at)
        return Rect(left, top, left + columns - 1, top + rows - 1)
    cells = _arguments.rect("rect", rect)
    if cells.shape != (rows, columns):
        raise Invalid(f"an array of shape {array.shape} does not fit the rectangle {cells}: its shape would begin "
                      f"with {cells.shape}")
    return cells
