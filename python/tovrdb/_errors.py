"""The exceptions of the package: one family."""

import re
from typing import Dict, List, Optional, Type

__all__ = ["Error", "WrongKey", "Busy", "NotFound", "Conflict", "Damaged", "Invalid", "OutOfRange"]


class Error(Exception):
    """Whatever the package refuses to do. Its text says what failed, on which thing, and what to do.

    ``code`` is the status code of the library or of its engine, which also stands in the text, or None where neither was
    asked. No text holds a key or the numbers of a cell.
    """

    def __init__(self, text: str, code: Optional[int] = None) -> None:
        super().__init__(text)
        self.code = code


class WrongKey(Error):
    """The key does not open the file, or the file is no encrypted database: the two look alike."""


class Busy(Error):
    """Another program is using the file, or this process has one open already. Nothing is wrong with the file."""


class NotFound(Error):
    """There is no such file, screen, area, data or measurement."""


class Conflict(Error):
    """What is stored stands against it. Nothing was written."""


class Damaged(Error):
    """The file, or a block in it, is damaged."""


class Invalid(Error, ValueError):
    """An argument does not say what to do, or numbers would change on their way into a block. Nothing was written."""


class OutOfRange(Error, IndexError):
    """An index or a slice leaves the block."""


# As programs end: part of the tool's interface with scripts.
_USAGE, _KEY_PROBLEM, _BUSY, _CONFLICT = 2, 4, 6, 7

_BY_CODE: Dict[int, Type[Error]] = {
    11: Damaged,  # the engine's: the file is corrupt
    4097: NotFound,
    4106: Damaged,
    4112: NotFound,
    4113: NotFound,
    4116: NotFound,
}
_BY_EXIT: Dict[int, Type[Error]] = {_USAGE: Invalid, _KEY_PROBLEM: WrongKey, _BUSY: Busy, _CONFLICT: Conflict}

# Advice is worded for a command line where it comes from.
_WORDS = [
    (r"`?tovrdb create`?", "tovrdb.create()"),
    (r"`?tovrdb check`?", "check()"),
    (r"tovrdb coef list shows (them|the areas)", r"`areas` lists \1"),
    (r"tovrdb coef put stores", "put() stores"),
    (r"tovrdb data list shows", "`data` lists"),
    (r"tovrdb measure list shows", "`measurements` lists"),
    (r"with tovrdb screen add", "with add_screen()"),
    (r"with tovrdb data delete", "with delete_data()"),
    (r"coef get of", "reading"),
    (r"--(patch|replace|beside)", r'mode="\1"'),
    (r"--(mosaic|force)", r"\1=True"),
    (r"--with-areas", "with_areas=True"),
    (r"--wait SECONDS", "wait=SECONDS"),
    (r"--plugin", "plugin="),
    (r"--id", "area="),
    (r"--version-text", "text="),
    (r"--(area|dtype|fill|rect|scale|screen|type|unit)", r"\1="),
]


def error_of(exit_code: int, status: int, text: str, details: List[str]) -> Error:
    """The exception for a failure of the compiled half, which calls this."""
    kind = _BY_EXIT.get(exit_code, _BY_CODE.get(status, Error))
    text = "\n".join([*details, text])
    for pattern, words in _WORDS:
        text = re.sub(pattern, words, text)
    return kind(text, status or None)
