"""The exceptions of the package: one family."""

import re
from typing import Dict, List, Optional, Type

__all__ = ["Error", "WrongKey", "Busy", "NotFound", "Conflict", "Damaged", "NoSpace", "Invalid", "OutOfRange"]


class Error(Exception):
    """Base of all errors of the package. Its text says what failed, on which thing, and what to do.

    ``code`` is the status code of the library or of its engine, which is also in the text, or None if neither was
    called. No text holds a key or the numbers of a cell.
    """

    def __init__(self, text: str, code: Optional[int] = None) -> None:
        super().__init__(text)
        self.code = code


class WrongKey(Error):
    """The key does not open the file, or the file is not an encrypted database: the two look alike."""


class Busy(Error):
    """Another program is using the file, or this process has one open already. Nothing is wrong with the file."""


class NotFound(Error):
    """There is no such file, screen, area, data or measurement."""


class Conflict(Error):
    """It conflicts with stored data, or with an existing file. Nothing was written."""


class Damaged(Error):
    """The file, or a block or row in it, is damaged."""


class NoSpace(Error):
    """The disk is full, or a quota is reached. The file is as it was."""


class Invalid(Error, ValueError):
    """An argument has a wrong value, or numbers would change if they were stored. Nothing was written."""


class OutOfRange(Error, IndexError):
    """An index or a slice is outside the block."""


# As programs end: part of the tool's interface with scripts.
_USAGE, _KEY_PROBLEM, _BUSY, _CONFLICT, _DAMAGED, _NO_SPACE = 2, 4, 6, 7, 8, 9

_BY_CODE: Dict[int, Type[Error]] = {
    11: Damaged,  # the engine's: the file is corrupt
    13: NoSpace,  # the engine's: the disk is full
    4097: NotFound,
    4106: Damaged,
    4112: NotFound,
    4113: NotFound,
    4116: NotFound,
}
_BY_EXIT: Dict[int, Type[Error]] = {
    _USAGE: Invalid,
    _KEY_PROBLEM: WrongKey,
    _BUSY: Busy,
    _CONFLICT: Conflict,
    _DAMAGED: Damaged,
    _NO_SPACE: NoSpace,
}

# Texts come from the code that the command-line tool is made of, and may name its commands and options.
_COMMANDS = {
    "check": "check()",
    "coef delete": "delete()",
    "coef get": "coef()",
    "coef list": "`areas`",
    "coef put": "put()",
    "create": "tovrdb.create()",
    "data delete": "delete_data()",
    "data get": "get_data()",
    "data list": "`data`",
    "data put": "put_data()",
    "measure list": "`measurements`",
    "screen add": "add_screen()",
    "screen delete": "delete_screen()",
    "screen list": "`screens`",
}
_OPTIONS = {
    "beside": 'mode="beside"',
    "force": "force=True",
    "id": "area=",
    "mosaic": "mosaic=True",
    "new-screen": "new_screen=True",
    "patch": 'mode="patch"',
    "replace": 'mode="replace"',
    "version-text": "text=",
    "wait SECONDS": "wait=SECONDS",
    "with-areas": "with_areas=True",
}
_NAMED = re.compile(r"`?\btovrdb (%s)\b`?|--(%s)\b|--([a-z][a-z-]*)"
                    % ("|".join(_COMMANDS), "|".join(sorted(_OPTIONS, key=len, reverse=True))))


def _in_python(named: "re.Match[str]") -> str:
    command, option, parameter = named.groups()
    if command:
        return _COMMANDS[command]
    return _OPTIONS[option] if option else parameter.replace("-", "_") + "="


def error_of(exit_code: int, status: int, text: str, details: List[str]) -> Error:
    """The exception for a failure of the compiled half, which calls this."""
    kind = _BY_EXIT.get(exit_code, _BY_CODE.get(status, Error))
    text = _NAMED.sub(_in_python, "\n".join([*details, text]))
    return kind(text, status or None)
