"""Makes a wall, exchanges a cabinet in a copy of its file, and draws both: the wall, and what differs.

    python3 examples/draw_wall.py [FOLDER]

The cells between "# %%" can be run one by one in editors that know them. Without matplotlib the figures are printed and
no picture is drawn.
"""

# %% What the example works on
import os
import shutil
import sys
import tempfile

import numpy as np

import tovrdb

KEY = "a key of your own"
CABINET = (640, 360, 799, 539)  # left, top, right, bottom, all four inclusive
FOLDER = sys.argv[1] if len(sys.argv) > 1 else tempfile.mkdtemp(prefix="wall-")
BEFORE, AFTER = (os.path.join(FOLDER, name) for name in ("before.db", "after.db"))


def gains(rows, columns):
    """Synthetic gains of red, green and blue in Q2.14, rows x columns x 3: dim towards the edges, as a camera sees it."""
    y, x = np.mgrid[-1:1:rows * 1j, -1:1:columns * 1j]
    vignette = 1 + 0.15 * (x**2 + y**2)
    noise = np.random.default_rng(1).normal(1, 0.01, (rows, columns, 3))
    return (vignette[..., np.newaxis] * noise * 16384).round().astype("uint16")


# %% A new file
with tovrdb.create(BEFORE, KEY, type=0) as wall:
    wall.add_screen("main", rect=(0, 0, 1919, 1079))
    wall.put(gains(1080, 1920), type=1, at=(0, 0), scale="1/16384")
    print(wall)

# %% The same wall after a cabinet was exchanged
shutil.copy(BEFORE, AFTER)
with tovrdb.open(AFTER, KEY) as wall:
    cabinet = wall.coef(type=1, rect=CABINET)
    cabinet[...] = (cabinet[...] * 0.98).round().astype(cabinet.dtype)

# %% What differs, in words and as numbers
with tovrdb.open(BEFORE, KEY) as wall:
    for difference in wall.diff(AFTER):
        print(f"{difference.item}: {difference.differing} cells, most at {difference.at}: "
              f"{difference.before:.4f} -> {difference.after:.4f}")
    coef = wall.coef(type=1)
    before = coef[...] * coef.scale
with tovrdb.open(AFTER, KEY) as wall:
    coef = wall.coef(type=1)
    after = coef[...] * coef.scale
print(f"mean gain {before.mean():.4f} -> {after.mean():.4f}")

# %% Pictures
try:
    import matplotlib
except ImportError:
    sys.exit("no picture is drawn: matplotlib is not installed")
matplotlib.use("Agg")
import matplotlib.pyplot as plt  # noqa: E402

figure, (left, right) = plt.subplots(1, 2, figsize=(14, 4.5), constrained_layout=True)
figure.colorbar(left.imshow(before[..., 0]), ax=left, label="gain of red")
left.set_title("before")
change = (after - before)[..., 0]
most = np.abs(change).max()
figure.colorbar(right.imshow(change, cmap="RdBu_r", vmin=-most, vmax=most), ax=right, label="change")
right.set_title("after - before")
picture = os.path.join(FOLDER, "wall.png")
figure.savefig(picture, dpi=110)
print(f"drawn: {picture}")
