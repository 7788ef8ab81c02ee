"""Calibration data of LED walls, out of encrypted database files, as NumPy arrays.

::

    import tovrdb

    with tovrdb.open("wall.db", key=open("wall.key").read().strip()) as wall:
        print(wall)                                  # type, screens, areas, at a glance
        coef = wall.coef(type=1, screen="main")      # like an array: shape, dtype, rect
        part = coef[400:528, 600:856]                # rows, columns; only these cells are decrypted
        coef[400:528, 600:856] = (part * 0.98).round().astype(coef.dtype)
        with wall.transaction():                     # all or nothing
            wall.put(array, type=2, at=(0, 0))

    with tovrdb.create("new.db", key=..., type=0) as wall:
        wall.add_screen("main", rect=(0, 0, 1919, 1079))

Rectangles are left, top, right, bottom in cells of the screen, all four inclusive; slices are rows, then columns, from
the first cell of the block, half-open. Every error is a tovrdb.Error. The library's own lines go to the logger
``tovrdb``, level DEBUG.
"""

from ._coef import Coef
from ._errors import Busy, Conflict, Damaged, Error, Invalid, NoSpace, NotFound, OutOfRange, WrongKey
from ._native import VERSION as __version__
from ._records import Area, Data, Difference, Measurement, Rect, Screen, Verdict
from ._wall import Wall, create, open

__all__ = [
    "open", "create", "Wall", "Coef",
    "Rect", "Screen", "Area", "Data", "Measurement", "Verdict", "Difference",
    "Error", "WrongKey", "Busy", "NotFound", "Conflict", "Damaged", "NoSpace", "Invalid",
    "OutOfRange",
]

for _name in __all__:
    globals()[_name].__module__ = __name__  # where users find it
