"""The exceptions of the package: one family."""

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


_BY_KIND: Dict[str, Type[Error]] = {
    "invalid": Invalid,
    "key problem": WrongKey,
    "busy": Busy,
    "conflict": Conflict,
    "damaged": Damaged,
    "no space": NoSpace,
}
_BY_CODE: Dict[int, Type[Error]] = {
    11: Damaged,  # the engine's: the file is corrupt
    13: NoSpace,  # the engine's: the disk is full
    4097: NotFound,
    4106: Damaged,
    4112: NotFound,
    4113: NotFound,
    4116: NotFound,
}

# What the person may do, by the names of the compiled half.
_ADVICE = {
    "patch": 'mode="patch" puts the cells into the stored block',
    "replace": 'mode="replace" removes areas that lie wholly inside',
    "beside": 'mode="beside" stores in addition',
    "new screen": "new_screen=True adds such a screen",
    "force": "force=True does it anyway",
    "with areas": "with_areas=True deletes them with it",
    "overwrite": "force=True replaces it",
    "wait": "try again, or wait longer with wait=SECONDS",
    "check file": "check() tells more",
    "recover file": "open the database once with its key, which completes or undoes it, and try again",
    "export and import": "export the file, correct the manifest, and import it",
    "create file": "tovrdb.create() makes a new one",
    "locate plug-in": "say where it is with plugin= or TOVRDB_PLUGIN",
    "list areas": "`areas` lists them",
    "list data": "`data` lists the types",
    "list measurements": "`measurements` lists them",
    "store block": "put() stores them",
    "add screen": "add one with add_screen()",
    "move data": "read it with get_data(), delete it with delete_data(), and put it back afterwards",
    "give type or area": "type= or area= is required",
    "give rect or screen": "choose one with rect= or screen=",
    "give screen": "say which with screen=",
    "omit screen": "leave out screen=",
    "give area ids": "say which with area=",
    "read across": "read across them with mosaic=True",
    "read apart": "read them apart, with area=",
    "fill": "fill= gives the number for such cells",
    "give number type": "say it with dtype=",
    "give number form": "say how to read them with dtype=, scale= and unit=",
    "other number type": "choose another dtype= or leave it out",
    "read raw": "read the file as raw bytes",
}


def error_of(kind: str, status: int, text: str, remedies: List[str], details: List[str]) -> Error:
    """The exception for an error of the compiled half, which calls this."""
    exception = _BY_KIND.get(kind, _BY_CODE.get(status, Error))
    advised = "; ".join([text, *(_ADVICE[remedy] for remedy in remedies)])
    return exception("\n".join([*details, advised]), status or None)
