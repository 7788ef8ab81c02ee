"""The way to the library: one call at a time, its printed lines into the log, the plug-in found."""

import atexit
import logging
import os
import threading
from typing import Any, Callable, NamedTuple, Optional

from . import _native

log = logging.getLogger("tovrdb")
log.addHandler(logging.NullHandler())

# The plug-in has one connection. Whoever has a transaction keeps the lock until its end, so other threads wait.
lock = threading.RLock()


class Opened(NamedTuple):
    """The file that was opened last, and by which process. It may be closed."""

    process: int
    path: str
    file: Any

    def is_ours(self) -> bool:
        return self.process == os.getpid() and not self.file.is_closed()


opened: Optional[Opened] = None


def _renew_lock() -> None:  # in a process that was forked off the lock's owner may not exist
    global lock
    lock = threading.RLock()


if hasattr(os, "register_at_fork"):
    os.register_at_fork(after_in_child=_renew_lock)


def call(work: Callable[..., Any], *arguments: Any) -> Any:
    """``work(*arguments)``, an operation of the compiled half. Raises TypeError for arguments that it does not take."""
    with lock:
        _native.keep_lines(log.isEnabledFor(logging.DEBUG))
        try:
            return work(*arguments)
        except TypeError:
            pass  # its text shows every argument, keys and payloads among them; they were checked before
        finally:
            lines = _native.take_lines()
            for line in lines.decode("utf-8", "replace").splitlines():
                log.debug("%s", line)
    raise TypeError("the compiled half of the package does not take these arguments: is it of the same version?")


def close_last() -> None:
    """At the interpreter's end: what no transaction has kept is undone, and the file is closed as it should be."""
    if not lock.acquire(timeout=5):
        return  # a thread works on; the next to open the file undoes what it does not finish
    try:
        if opened is not None and opened.is_ours():
            call(opened.file.close)
    finally:
        lock.release()


atexit.register(close_last)


def plugin_path(given: Optional[str]) -> str:
    """The plug-in library: `given`, else TOVRDB_PLUGIN, else near the package, else left to the system's search."""
    path = given or os.environ.get("TOVRDB_PLUGIN")
    if path:
        return path
    here = os.path.dirname(os.path.abspath(__file__))
    for folder in _native.PLUGIN_FOLDERS:
        candidate = os.path.normpath(os.path.join(here, folder, _native.PLUGIN_NAME))
        if os.path.exists(candidate):
            return candidate
    return _native.PLUGIN_NAME
