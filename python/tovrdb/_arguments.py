"""Checks of arguments before the compiled half is called; each error names the argument.

Texts are passed on as bytes, in UTF-8. Names that another program has stored in another encoding are read and passed
back unchanged with Python's "surrogateescape", as file names are.
"""

import math
import operator
import os
import re
from numbers import Real
from typing import Any, List, Optional, Tuple

import numpy as np

from . import _native
from ._errors import Invalid
from ._records import Rect


def wanted(name: str, what: str, value: Any) -> TypeError:
    """The error for a value of the wrong type; it does not show the value, which may be a key."""
    return TypeError(f"{name}: must be {what}, not {type(value).__name__}")


def whole(name: str, value: Any, least: int = -2**31, most: int = 2**31 - 1) -> int:
    """A whole number, not a bool: delete(True) would delete area 1."""
    what = "a whole number"
    if isinstance(value, (bool, np.bool_)):
        raise wanted(name, what, value)
    try:
        number = operator.index(value)
    except TypeError:
        raise wanted(name, what, value) from None
    if not least <= number <= most:
        raise Invalid(f"{name}: must be {what} from {least} to {most}")
    return number


def row_id(name: str, value: Any) -> int:
    """The id of a row of the file."""
    return whole(name, value, -2**63, 2**63 - 1)


def flag(name: str, value: Any) -> bool:
    if not isinstance(value, (bool, np.bool_)):
        raise wanted(name, "True or False", value)
    return bool(value)


def real(name: str, value: Any) -> float:
    if isinstance(value, (bool, np.bool_)) or not isinstance(value, Real):
        raise wanted(name, "a number", value)
    return float(value)


def tolerance(name: str, value: Any) -> float:
    number = real(name, value)
    if not 0 <= number < math.inf:
        raise Invalid(f"{name}: must be a finite number that is not negative")
    return number


def text(name: str, value: Any) -> bytes:
    if not isinstance(value, str):
        raise wanted(name, "a str", value)
    if "\0" in value:
        raise Invalid(f"{name}: must not contain a null character; the stored text would end there")
    try:
        return value.encode("utf-8", "surrogateescape")
    except UnicodeEncodeError:
        raise Invalid(f"{name}: contains half of a surrogate pair, which cannot be stored as text") from None


def optional_text(name: str, value: Any) -> Optional[bytes]:
    return None if value is None else text(name, value)


def key(value: Any) -> bytes:
    """The key. No error text or context contains any part of it."""
    if not isinstance(value, str):
        raise wanted("key", "the page key as a str", value)
    if not value:
        raise Invalid("the key is empty: an empty key would leave the file unencrypted")
    if "\0" in value or any("\ud800" <= character <= "\udfff" for character in value):
        raise Invalid("key: must not contain null characters or halves of surrogate pairs")
    return value.encode("utf-8")


def path(name: str, value: Any) -> str:
    """A path as a str. A file name that is not UTF-8 contains surrogates, as everywhere in Python."""
    if not isinstance(value, (str, bytes, os.PathLike)):
        raise wanted(name, "a path", value)
    found = os.fsdecode(value)
    if "\0" in found:
        raise Invalid(f"{name}: must not contain a null character")
    try:
        os.fsencode(found)
    except UnicodeEncodeError:
        raise Invalid(f"{name}: contains half of a surrogate pair, which no file name can") from None
    return found


def payload(name: str, value: Any) -> bytes:
    """Bytes as they are stored. A number is refused, of which bytes() would make zeros."""
    try:
        view = memoryview(value)
    except TypeError:
        raise wanted(name, "a bytes-like object", value) from None
    refuse_masked(name, value)
    return view.tobytes()


def rect(name: str, edges: Any) -> Rect:
    """Four edges. The compiled half checks that they are a rectangle."""
    return Rect(*_whole_numbers(name, 4, "a rectangle of four whole numbers (left, top, right, bottom)", edges))


def position(name: str, value: Any) -> Tuple[int, int]:
    column, row = _whole_numbers(name, 2, "a position of two whole numbers (column, row)", value)
    return column, row


def _whole_numbers(name: str, count: int, what: str, value: Any) -> List[int]:
    try:
        numbers = tuple(value)
    except TypeError:
        raise wanted(name, what, value) from None
    if len(numbers) != count:
        raise Invalid(f"{name}: must be {what}, not {len(numbers)}")
    return [whole(f"{name}[{index}]", number) for index, number in enumerate(numbers)]


def scale(value: Any) -> Optional[bytes]:
    if value is None or isinstance(value, str):
        return optional_text("scale", value)
    if isinstance(value, (bool, np.bool_)) or not isinstance(value, Real):
        raise wanted("scale", "a number, or a str such as '1/16384'", value)
    return str(value).encode()


def dtype_name(value: Any) -> Optional[str]:
    """NumPy's name of the number type. Blocks are little-endian."""
    if value is None:
        return None
    try:
        dtype = np.dtype(value)
    except (TypeError, ValueError, SyntaxError):
        dtype = None
    if dtype is None or dtype.kind not in "iuf":
        raise Invalid(f"dtype: there is no number type '{value}'")
    if dtype != dtype.newbyteorder("<"):
        raise Invalid(f"dtype: blocks are read as little-endian, and '{value}' is big-endian: read them as {dtype.name}, "
                      f"or, if another program has stored big-endian cells, with coef[...].view('{dtype.str}')")
    return str(dtype.name)


def refuse_masked(name: str, values: Any) -> None:
    """Raises Invalid for a masked array, whose masked numbers would be stored."""
    if _is_masked(values):
        raise Invalid(f"{name}: has masked numbers, but a block has no mask: replace them with .filled(number)")


def _is_masked(values: Any) -> bool:
    if isinstance(values, (list, tuple)):
        return any(_is_masked(value) for value in values)
    return bool(np.ma.is_masked(values))


def shown(text: str) -> str:
    """Text for messages: control characters and bytes that are not UTF-8 are replaced."""
    return _native.printable(re.sub("[\ud800-\udfff]", "\ufffd", text).encode())
