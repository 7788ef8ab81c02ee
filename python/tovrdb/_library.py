"""Calls into the compiled half: one at a time, with the library's printed lines sent to the log."""

import atexit
import logging
import os
import threading
from typing import Any, Callable, NamedTuple, Optional

from . import _native

log = logging.getLogger("tovrdb")
log.addHandler(logging.NullHandler())

# The plug-in has one connection. A thread in a transaction keeps the lock until its end; other threads wait.
lock = threading.RLock()


class Opened(NamedTuple):
    """The file that was opened last, and the process that opened it. It may be closed."""

    process: int
    path: str
    file: Any

    def is_ours(self) -> bool:
        return self.process == os.getpid() and not self.file.is_closed()


opened: Optional[Opened] = None


def _renew_lock() -> None:  # the lock's owner may not exist in a forked process
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
            pass  # its text shows all arguments, including keys and payloads; they were checked before
        finally:
            lines = _native.take_lines()
            for line in lines.decode("utf-8", "replace").splitlines():
                log.debug("%s", line)
    raise TypeError("the compiled half of the package does not accept these arguments: is it of the same version?")


def close_last() -> None:
    """At the interpreter's exit: rolls back open transactions and closes the file."""
    if not lock.acquire(timeout=5):
        return  # a thread is still working; whoever opens the file next rolls back what it leaves unfinished
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
