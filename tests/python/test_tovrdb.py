"""The package as its users call it. Every test has a folder of its own, and closes what it opens."""

import copy
import ctypes.util
import inspect
import logging
import os
import pathlib
import pickle
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time

import numpy as np
import pytest

import tovrdb
from tovrdb import _errors

KEY = "the test key"
CELLS = np.arange(20 * 30 * 9, dtype="uint16").reshape(20, 30, 9)
RECT = (10, 5, 39, 24)  # of CELLS


@pytest.fixture
def tmp_path():
    """Unlike pytest's own, it leaves nothing behind."""
    with tempfile.TemporaryDirectory() as folder:
        yield pathlib.Path(folder)


@pytest.fixture
def path(tmp_path):
    """A file of type 0 with the screen "main" and CELLS as type 1."""
    path = tmp_path / "wall.db"
    with tovrdb.create(path, KEY, type=0) as wall:
        wall.add_screen("main", rect=(0, 0, 99, 49))
        wall.put(CELLS, type=1, rect=RECT, scale="1/16384", unit="cd/m2")
    return path


@pytest.fixture
def wall(path):
    with tovrdb.open(path, KEY) as wall:
        yield wall


def python(code, *arguments):
    """Another interpreter, with unbuffered streams that a test can read."""
    return subprocess.Popen([sys.executable, "-u", "-c", "import sys, tovrdb\n" + code, *map(str, arguments)],
                            stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)


INDICES = [
    np.s_[...],
    np.s_[2:7, 3:9],
    np.s_[-5:-1, -30:],
    np.s_[4],
    np.s_[4, -1, 3],
    np.s_[..., 0],
    np.s_[1:2, ..., 2:8:3],
    np.s_[::7, 28:3:-5],
    np.s_[::-1, 0, 5:1:-1],
    np.s_[3:3, 1:5],
    np.s_[np.int64(2), np.uint8(4):],
]


@pytest.mark.parametrize("index", INDICES, ids=str)
def test_an_index_reads_and_writes_what_it_does_in_numpy(wall, index):
    coef = wall.coef(type=1)
    read = coef[index]
    assert np.array_equal(read, CELLS[index])
    assert np.shape(read) == np.shape(CELLS[index])
    expected = CELLS.copy()
    expected[index] = expected[index] + np.uint16(7)
    coef[index] = read + np.uint16(7)
    assert np.array_equal(coef[...], expected)


@pytest.mark.parametrize("index, error", [
    (np.s_[0:21], tovrdb.OutOfRange),
    (np.s_[-21:], tovrdb.OutOfRange),
    (np.s_[0, 30], tovrdb.OutOfRange),
    (np.s_[0, 0, 9], tovrdb.OutOfRange),
    (np.s_[0, 0, 0, 0], tovrdb.OutOfRange),
    (np.s_[..., ...], tovrdb.OutOfRange),
    (np.s_[None], tovrdb.OutOfRange),
    (np.s_[1.5], TypeError),
    (np.s_[True], TypeError),
    (np.s_[[1, 2]], TypeError),
    (np.s_[::0], tovrdb.Invalid),
], ids=str)
def test_an_index_that_leaves_the_block_is_refused(wall, index, error):
    coef = wall.coef(type=1)
    with pytest.raises(error):
        coef[index]
    with pytest.raises(error):
        coef[index] = 1
    assert np.array_equal(coef[...], CELLS)


@pytest.mark.parametrize("values, written", [
    (CELLS[2:4, 3:5], True),
    (CELLS[2:4, 3:5].astype("float64"), True),
    (CELLS[2:4, 3:5].astype(">u4"), True),
    (np.asfortranarray(CELLS[2:4, 3:5]), True),
    (CELLS[2:4, 3:10:4], True),
    (65535, True),
    (True, True),
    (CELLS[2:4, 3:5] * 0.98, False),
    (np.nan, False),
    (65536.0, False),
    (-1, False),
    (np.float64(2.0) ** 70, False),
    ("text", False),
    (1j, False),
    (2 ** 80, False),
    (CELLS[2:5, 3:5], False),
    (np.ma.array(7, mask=True), False),
    (np.ma.array(7, mask=False), True),
], ids=repr)
def test_values_that_would_change_are_not_written(wall, values, written):
    coef = wall.coef(type=1)
    if written:
        coef[0:2, 0:2] = values
        assert np.array_equal(coef[0:2, 0:2], np.broadcast_to(values, (2, 2, 9)))
    else:
        with pytest.raises(tovrdb.Invalid):
            coef[0:2, 0:2] = values
        assert np.array_equal(coef[...], CELLS)


def test_wide_numbers_are_compared_exactly(wall):
    wall.put(np.zeros((1, 1), "float64"), type=8, at=(0, 0))
    wall.put(np.zeros((1, 1), "int64"), type=9, at=(0, 0))
    for type, refused in ((8, np.int64(2 ** 53 + 1)), (9, np.uint64(2 ** 64 - 1)), (9, 2.0 ** 63)):
        with pytest.raises(tovrdb.Invalid):
            wall.coef(type=type)[...] = refused
    wall.coef(type=8)[...] = np.nan
    assert np.isnan(wall.coef(type=8)[0, 0, 0])


def test_what_is_stored_is_told(wall):
    (area,) = wall.areas
    assert (area.screen, area.type, area.rect, area.cell_bytes) == ("main", 1, RECT, 18)
    assert (area.dtype, area.scale, area.unit) == ("uint16", 1 / 16384, "cd/m2")
    coef = wall.coef(area=area, rect=(12, 6, 14, 7))
    assert (coef.shape, coef.rect, coef.dtype) == ((2, 3, 9), (12, 6, 14, 7), np.dtype("uint16"))
    assert np.array_equal(np.asarray(coef), CELLS[1:3, 2:5])
    assert wall.coef(type=1, dtype="uint8").shape == (20, 30, 18)
    assert "main (0,0,99,49)" in str(wall) and "9 x uint16" in str(wall)
    assert wall.info["description"]["name"] == "wall"
    wall.put_data(3, b"bytes\0", text="v1")
    assert [(data.type, data.text, data.screen) for data in wall.data] == [(3, "v1", "main")]
    assert wall.get_data(3) == b"bytes\0"
    number = wall.put_measurement(b"measured", type=1, rect=RECT)
    assert wall.get_measurement(number) == b"measured"
    assert [measurement.id for measurement in wall.measurements] == [number]


def test_a_mosaic_reads_across_areas(wall):
    wall.put(CELLS[:, :5] + np.uint16(1), type=1, at=(40, 5))
    with pytest.raises(tovrdb.Invalid, match="scale="):
        wall.coef(type=1, mosaic=True)
    both = wall.coef(type=1, mosaic=True, rect=(35, 4, 44, 24), fill=9, scale=1, unit="")
    assert both.is_mosaic and both.shape == (21, 10, 9)
    assert (both[0] == 9).all()
    assert np.array_equal(both[1:, 5:], CELLS[:, :5] + 1)
    assert np.array_equal(both[1:, 3:5], CELLS[:, 28:30])
    with pytest.raises(tovrdb.NotFound, match="fill="):
        wall.coef(type=1, mosaic=True, rect=both.rect, scale=1, unit="")[...]
    with pytest.raises(tovrdb.Invalid):
        both[...] = 0


def test_blocks_are_put_by_the_tools_rules(wall):
    turned = CELLS.astype(">u2").transpose(1, 0, 2)  # foreign byte order, not contiguous
    wall.put(turned, type=2, at=(0, 0), text="v1")
    assert np.array_equal(wall.coef(type=2)[...], turned)
    before = wall.areas
    with pytest.raises(tovrdb.Conflict, match='mode="beside"'):
        wall.put(CELLS, type=1, at=(11, 6))
    for mode in ("careful", "patch"):
        with pytest.raises(tovrdb.Conflict, match="keeps its numbers as 9 x uint16, scale 1/16384"):
            wall.put(CELLS.astype("int16"), type=1, rect=RECT, mode=mode)
    assert wall.areas == before and np.array_equal(wall.coef(type=1)[...], CELLS)
    assert wall.put(CELLS[0:2, 0:2], type=1, at=(11, 6), mode="patch")
    assert np.array_equal(wall.coef(type=1)[1:3, 1:3], CELLS[0:2, 0:2])
    old = wall.coef(type=1)
    assert wall.delete(type=1, rect=RECT) and [area.type for area in wall.areas] == [2]
    with pytest.raises(tovrdb.NotFound):
        old[0, 0]


def test_an_area_that_an_older_one_hides_is_itself(wall):
    wall.put(CELLS[:2, :2] + np.uint16(1), type=1, at=(12, 7), mode="beside")
    hidden = wall.coef(area=wall.areas[-1])
    assert np.array_equal(hidden[...], CELLS[:2, :2] + 1)
    hidden[0] = 3
    assert (hidden[0] == 3).all() and np.array_equal(hidden[1], CELLS[1, :2] + 1)
    assert np.array_equal(wall.coef(area=1)[...], CELLS)


def test_screens_are_found_by_name_in_files_of_type_1(tmp_path):
    with tovrdb.create(tmp_path / "named.db", KEY, type=1) as wall:
        for screen in ("left", "right"):
            wall.put(CELLS, type=1, at=(0, 0), screen=screen)
        with pytest.raises(tovrdb.Invalid, match="screen="):
            wall.coef(type=1)
        with pytest.raises(tovrdb.Conflict, match="new_screen=True"):
            wall.put(CELLS, type=1, at=(0, 0), screen="Right")
        wall.rename_screen("right", "Right")
        with pytest.raises(tovrdb.Conflict, match="force=True"):
            wall.add_screen("right", rect=RECT)
        wall.rename_screen("Right", "right")
        wall.coef(type=1, screen="right")[0] = 1
        assert np.array_equal(wall.coef(type=1, screen="left")[...], CELLS)
        assert wall.delete_screen("left", with_areas=True) and [s.name for s in wall.screens] == ["right"]


def test_a_transaction_is_kept_whole_or_undone(path):
    with tovrdb.open(path, KEY) as wall:
        coef = wall.coef(type=1)
        with pytest.raises(ZeroDivisionError):
            with wall.transaction():
                coef[...] = 1
                wall.put(CELLS, type=2, at=(0, 0))
                1 / 0
        with wall.transaction():
            coef[0] = 2
            with pytest.raises(tovrdb.Conflict):
                with wall.transaction():
                    coef[1] = 3
                    wall.add_screen("main", rect=RECT)
            with pytest.raises(tovrdb.Invalid):
                wall.check()
    with tovrdb.open(path, KEY) as wall:
        assert len(wall.areas) == 1 and (wall.coef(type=1)[0] == 2).all()
        assert np.array_equal(wall.coef(type=1)[1:], CELLS[1:])


def test_errors_are_one_family_and_keep_the_key(path, tmp_path, wall):
    refusals = [
        (tovrdb.Busy, lambda: tovrdb.open(path, KEY)),
        (tovrdb.NotFound, lambda: tovrdb.open(tmp_path / "none.db", KEY)),
        (tovrdb.NotFound, lambda: wall.coef(type=4)),
        (tovrdb.NotFound, lambda: wall.coef(type=1, rect=(0, 0, 5, 5))),
        (tovrdb.NotFound, lambda: wall.get_data(5)),
        (tovrdb.NotFound, lambda: wall.get_measurement(5)),
        (tovrdb.NotFound, lambda: wall.delete(77)),
        (tovrdb.Invalid, lambda: wall.coef(type=1, rect=(5, 5, 0, 0))),
        (tovrdb.Invalid, lambda: wall.coef(type=1, dtype="float64")),
        (tovrdb.Invalid, lambda: wall.put(CELLS, type=1, rect=(0, 0, 1, 1))),
        (tovrdb.Invalid, lambda: wall.put(CELLS[0, 0], type=1, at=(0, 0))),
        (tovrdb.Invalid, lambda: wall.put(CELLS, type=1, at=(-1, 0))),
        (tovrdb.NotFound, lambda: wall.put(CELLS, type=1, at=(90, 0))),
        (tovrdb.Invalid, lambda: wall.put(np.zeros((2, 2), "complex128"), type=1, at=(0, 0))),
        (tovrdb.Conflict, lambda: tovrdb.create(path, KEY, type=0)),
        (tovrdb.Invalid, lambda: tovrdb.open(path, "")),
        (TypeError, lambda: tovrdb.open(path, None)),
        (TypeError, lambda: wall.put_data("three", KEY.encode())),
        (TypeError, lambda: wall.put_data(3, KEY)),
    ]
    for kind, refused in refusals:
        with pytest.raises(kind) as caught:
            refused()
        assert KEY not in str(caught.value) and "--" not in str(caught.value)
        assert isinstance(caught.value, (tovrdb.Error, TypeError))
    assert KEY not in repr(wall) + repr(vars(wall))
    wall.close()
    wall.close()
    for kind, refused in [
        (tovrdb.Invalid, lambda: wall.areas),
        (tovrdb.WrongKey, lambda: tovrdb.open(path, "another")),
        (tovrdb.Invalid, lambda: tovrdb.open(path, KEY, wait=-1)),
        (tovrdb.Invalid, lambda: tovrdb.open(path, KEY + "\udcff")),
        (tovrdb.Invalid, lambda: tovrdb.open(path, KEY + "\0")),
    ]:
        with pytest.raises(kind) as caught:
            refused()
        assert KEY not in str(caught.value)
        assert KEY not in str(caught.value.__context__)


@pytest.mark.parametrize("call, error, text", [
    (lambda wall: wall.delete(True), TypeError, "areas: must be a whole number, not bool"),
    (lambda wall: wall.delete([1, 1.0]), TypeError, "areas: must be a whole number, not float"),
    (lambda wall: wall.coef(area=np.True_), TypeError, "area: must be a whole number"),
    (lambda wall: wall.coef(type=2 ** 31), tovrdb.Invalid, "type: must be a whole number from -2147483648 to 2147483647"),
    (lambda wall: wall.coef(type=1, dtype=">u2"), tovrdb.Invalid, "'>u2' is big-endian"),
    (lambda wall: wall.coef(type=1, dtype="V4"), tovrdb.Invalid, "dtype: .*V4"),
    (lambda wall: wall.coef(type=1, mosaic=1), TypeError, "mosaic: must be True or False, not int"),
    (lambda wall: wall.coef(type=1, rect=(0, 0, 5)), tovrdb.Invalid, "rect: .* not 3"),
    (lambda wall: wall.coef(type=1, rect=(0, 0, 5, "5")), TypeError, r"rect\[3\]: must be a whole number, not str"),
    (lambda wall: wall.coef(type=1, scale=True), TypeError, "scale: must be a number"),
    (lambda wall: wall.put(CELLS, type=1, at=5), TypeError, "at: must be a position"),
    (lambda wall: wall.put(CELLS, type=1, rect=RECT, text="a\0b"), tovrdb.Invalid, "text: .* null character"),
    (lambda wall: wall.put(np.ma.masked_equal(CELLS, 5), type=1, rect=RECT), tovrdb.Invalid, r"array: .*\.filled"),
    (lambda wall: wall.add_screen("a\0b", rect=RECT), tovrdb.Invalid, "name: .* null character"),
    (lambda wall: wall.put_data(3, 5), TypeError, "payload: must be a bytes-like object, not int"),
    (lambda wall: wall.diff(wall.path, atol=-1), tovrdb.Invalid, "atol: must be a finite number"),
])
def test_an_argument_is_refused_by_its_name(wall, call, error, text):
    before = str(wall), wall.areas, wall.data
    with pytest.raises(error, match=text):
        call(wall)
    assert (str(wall), wall.areas, wall.data) == before


def test_advice_names_what_the_package_has():
    """The client suggests remedies as data and names no option of the tool; the package words every one of them."""
    client = pathlib.Path(__file__).parents[2] / "client"
    texts = [text for path in client.rglob("*.cpp") for text in re.findall(r'"[^"\n]*"', path.read_text())]
    assert len(texts) > 100 and not [text for text in texts if re.search("--[a-z]", text)]
    remedies = re.findall(r'{Remedy::\w+, "(.*)"}', (client / "base/Error.cpp").read_text())
    assert remedies and set(remedies) == set(_errors._ADVICE)
    operations = [tovrdb.open, tovrdb.create, *(member for _, member in inspect.getmembers(tovrdb.Wall, inspect.isfunction))]
    parameters = {name for operation in operations for name in inspect.signature(operation).parameters}
    for advice in _errors._ADVICE.values():
        assert set(re.findall(r"(\w+)=", advice)) <= parameters, advice
        assert all(hasattr(tovrdb.Wall, name) or name == "create" for name in re.findall(r"(\w+)\(\)", advice)), advice


def test_a_file_stays_open_when_a_copy_is_refused(path, wall):
    coef = wall.coef(type=1)
    with wall.transaction() as same:
        coef[0] = 1
        for thing in (wall, coef, same.transaction()):
            for copied in (copy.copy, copy.deepcopy, pickle.dumps):
                with pytest.raises(TypeError, match="open file"):
                    copied(thing)
    assert (wall.coef(type=1)[0] == 1).all()


def test_cells_of_another_form_are_looked_up_again(path, wall):
    """Whoever replaced them: this session, one that was undone, another program."""
    halves = CELLS.view("float16")
    elsewhere = ("with tovrdb.open(*sys.argv[1:3]) as wall:\n    import numpy as np\n"
                 "    wall.put(np.zeros((20, 30, 9), 'uint16'), type=1, rect=(10, 5, 39, 24), scale=2, force=True)")
    old, mosaic = wall.coef(type=1), wall.coef(type=1, mosaic=True)
    wall.put(halves, type=1, rect=RECT, force=True)
    for stale in (old, mosaic):
        with pytest.raises(tovrdb.NotFound, match="uint16.*float16"):
            stale[0, 1]
    with pytest.raises(tovrdb.NotFound, match="look it up again"):
        old[0, 1] = 5
    new = wall.coef(type=1)
    assert np.array_equal(new[...], halves, equal_nan=True)
    with pytest.raises(KeyError), wall.transaction():
        wall.put(CELLS, type=1, rect=RECT, force=True)
        undone = wall.coef(type=1)
        assert np.array_equal(undone[...], CELLS)
        raise KeyError
    with pytest.raises(tovrdb.NotFound):
        undone[0, 1]
    new[0] = new[0]
    process = python(elsewhere, path, KEY)
    assert process.communicate()[1] == ""
    with pytest.raises(tovrdb.NotFound, match="float16.*uint16"):
        new[0, 1]


def test_names_in_any_bytes_are_told_and_found(wall):
    name = b"caf\xe9 \x1b[31m".decode("utf-8", "surrogateescape")  # Latin-1, and a colour for terminals
    wall.add_screen(name, rect=(200, 0, 209, 9))
    wall.put(CELLS[:2, :2], type=1, at=(200, 0))
    wall.put_data(3, b"", text=name)
    assert (wall.screens[1].name, wall.areas[1].screen, wall.data[0].text) == (name, name, name)
    wall.delete_data(3)
    assert wall.coef(type=1, screen=name).rect == (200, 0, 201, 1)
    with pytest.raises(tovrdb.NotFound) as caught:
        wall.coef(type=1, screen="caf")
    for text in (str(wall), str(caught.value), wall.delete_screen(name, with_areas=True)[0]):
        assert "caf\ufffd " in text and "\x1b" not in text
    assert len(wall.screens) == 1


def test_damage_is_told(path, wall):
    wall.put(CELLS, type=2, at=(0, 0))
    assert all(verdict.ok for verdict in wall.check())
    wall.close()
    damaged = bytearray(path.read_bytes())
    damaged[-3000:-1000] = bytes(2000)
    path.write_bytes(damaged)
    with tovrdb.open(path, KEY) as wall:
        assert not all(verdict.ok for verdict in wall.check())
        assert [bool(area.fault) for area in wall.areas] == [False, True]
        assert "damaged: " in str(wall) and wall.info["type"] == 0
        assert np.array_equal(wall.coef(area=1)[...], CELLS)
        with pytest.raises(tovrdb.Damaged, match="area 2"):
            wall.coef(type=2)[...]


@pytest.mark.skipif(not ctypes.util.find_library("sqlcipher"), reason="the engine is not a library of the system")
def test_a_damaged_row_is_named(path):
    engine, file = ctypes.CDLL(ctypes.util.find_library("sqlcipher")), ctypes.c_void_p()
    engine.sqlite3_open(os.fsencode(path), ctypes.byref(file))
    sql = f"PRAGMA key = '{KEY}'; update Screen_Info set left = 'here'"
    assert engine.sqlite3_exec(file, sql.encode(), None, None, None) == engine.sqlite3_close(file) == 0
    with tovrdb.open(path, KEY) as wall:
        for work in (lambda: wall.screens, lambda: wall.put(CELLS, type=2, at=(0, 0)), lambda: str(wall),
                     lambda: wall.coef(type=1, rect=RECT)[...], lambda: wall.add_screen("new", rect=RECT)):
            with pytest.raises(tovrdb.Damaged, match="row 1 of Screen_Info"):
                work()


def test_two_files_are_compared(path, wall, tmp_path):
    wall.close()
    shutil.copy(path, tmp_path / "later.db")
    with tovrdb.open(tmp_path / "later.db", KEY) as later:
        later.coef(type=1)[2, 3, 4] = 0
    with tovrdb.open(path, KEY) as wall:
        (difference,) = wall.diff(tmp_path / "later.db")
        assert (difference.kind, difference.differing, difference.at) == ("cells", 1, (13, 7))
        assert (difference.component, difference.after) == (4, 0)
        assert difference.before == CELLS[2, 3, 4] / 16384
        assert wall.diff(tmp_path / "later.db", atol=10) == []
        assert wall.coef(type=1)[2, 3, 4] == CELLS[2, 3, 4]  # it is open again


def test_memory_is_for_trying_things_out():
    with tovrdb.create(":memory:", type=0) as wall:
        wall.add_screen("main", rect=(0, 0, 99, 49))
        wall.put(CELLS[..., 0], type=1, at=(0, 0))
        assert np.array_equal(wall.coef(type=1)[..., 0], CELLS[..., 0])
        assert all(verdict.ok for verdict in wall.check())


def test_the_librarys_lines_go_to_the_log(tmp_path, caplog, capfd):
    with caplog.at_level(logging.DEBUG, logger="tovrdb"):
        with tovrdb.create(tmp_path / "new.db", KEY, type=0):
            print("ours", flush=True)
    assert capfd.readouterr().out == "ours\n"
    assert "start create DB Table" in caplog.messages
    assert KEY not in caplog.text


def test_other_threads_run_on_and_take_turns(path, wall):
    """A writer waits for another process, which a second thread ends: it could not if the writer kept it from running."""
    wall.close()
    holder = python("with tovrdb.open(sys.argv[1], sys.argv[2]) as wall, wall.transaction():\n"
                    "    print('held', flush=True)\n    sys.stdin.readline()", path, KEY)
    assert holder.stdout.readline() == "held\n"
    with tovrdb.open(path, KEY, wait=0) as wall:
        with pytest.raises(tovrdb.Busy):
            wall.coef(type=1)[0] = 1
    with tovrdb.open(path, KEY, wait=60) as wall:
        coef = wall.coef(type=1)
        release = threading.Timer(0.2, lambda: holder.communicate("\n"))
        release.start()
        coef[0] = 1
        release.join()
        threads = [threading.Thread(target=coef.__setitem__, args=(row, row)) for row in range(10)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        assert all((coef[row] == row).all() for row in range(10))
    assert holder.returncode == 0


@pytest.mark.parametrize("operation, first", [("begin", CELLS[0]), ("patch", CELLS[0]), ("commit", 1)])
def test_an_interrupt_leaves_no_transaction(wall, monkeypatch, operation, first):
    """It comes just behind each step of a write, and only a commit is then kept."""
    def interrupted(name, *arguments, call=wall._call):
        result = call(name, *arguments)
        if name == operation:
            raise KeyboardInterrupt
        return result

    coef = wall.coef(type=1)
    with monkeypatch.context() as patched:
        patched.setattr(wall, "_call", interrupted)
        with pytest.raises(KeyboardInterrupt):
            coef[0] = 1
    assert wall._call("depth") == 0 and (coef[0] == first).all()


@pytest.mark.skipif(os.name == "nt", reason="signals are sent to a process here")
def test_a_keyboard_interrupt_ends_the_waiting(path, wall):
    with wall.transaction():
        waiting = python("wall = tovrdb.open(sys.argv[1], sys.argv[2], wait=600)\nprint('open', flush=True)\n"
                         "try:\n    wall.coef(type=1)[0] = 1\nexcept KeyboardInterrupt: print('interrupted')\n"
                         "wall._call('depth') == 0 and sys.stdin.readline()\n"
                         "wall.coef(type=1)[1] = 1", path, KEY)
        assert waiting.stdout.readline() == "open\n"
        time.sleep(0.5)
        waiting.send_signal(signal.SIGINT)
        assert waiting.stdout.readline() == "interrupted\n"
    assert waiting.communicate("\n")[1] == ""
    assert np.array_equal(wall.coef(type=1)[0], CELLS[0]) and (wall.coef(type=1)[1] == 1).all()


@pytest.mark.parametrize("ending", ["", "raise SystemExit(0)", "del wall", "import gc; gc.collect(); raise KeyError"])
def test_an_interpreter_may_end_with_an_open_file(path, ending):
    """What was kept is there, what a transaction had not finished is not."""
    process = python("wall = tovrdb.open(sys.argv[1], sys.argv[2])\nwall.coef(type=1)[0] = 1\n"
                     "unfinished = wall.transaction()\nunfinished.__enter__()\nwall.coef(type=1)[1] = 1\n" + ending,
                     path, KEY)
    out, error = process.communicate()
    assert (out, process.returncode) == ("", 1 if "KeyError" in ending else 0), error
    with tovrdb.open(path, KEY) as wall:
        assert (wall.coef(type=1)[0] == 1).all()
        assert np.array_equal(wall.coef(type=1)[1:], CELLS[1:])


@pytest.mark.skipif(not hasattr(os, "fork"), reason="processes are not forked here")
def test_a_forked_process_leaves_the_connection_alone(path, wall):
    with wall.transaction():
        wall.coef(type=1)[0] = 1
        child = os.fork()
        if child == 0:
            try:
                wall.areas
                os._exit(1)
            except tovrdb.Error:
                wall.__del__()
                os._exit(0)
        assert os.waitpid(child, 0)[1] == 0
        wall.coef(type=1)[1] = 1
    assert (wall.coef(type=1)[0:2] == 1).all()
