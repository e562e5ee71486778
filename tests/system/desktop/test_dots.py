# SPDX-License-Identifier: GPL-2.0-or-later
"""The program's own window on a screen with small dots: icons have all of them."""

import os
import shutil
import subprocess
import time
import unittest
from pathlib import Path

import pictures
from recorders import SHARE, SOURCE, Recorders

PROGRAM = Path(os.environ.get("VOK_BUILD", SOURCE / "build" / "release")) / "src" / "shell" / "vok"

# On the display: starts the program and takes pictures until the test says that it has seen enough.
CAMERA = """"$1" >"$2/output" 2>&1 &
vok=$!
while [ ! -e "$2/enough" ] && kill -0 $vok 2>/dev/null; do
    import -window root -depth 8 -define png:color-type=2 "$2/new.png" && mv "$2/new.png" "$2/screen.png"
    sleep 0.3
done
kill $vok
wait $vok
"""


def contains(screen, icon):
    """Whether the opaque dots of `icon` stand somewhere on the screen exactly as they are."""
    solid = [(x, y) for y in range(icon.height) for x in range(icon.width) if icon.dots[y * icon.width + x][3] == 255]
    rows = {}
    for x, y in solid:
        rows.setdefault(y, []).append(x)
    # The row that shows most is looked for first.
    y, xs = max(rows.items(), key=lambda row: len({icon.dots[row[0] * icon.width + x][:3] for x in row[1]}) * 100 + len(row[1]))
    start = xs[0]
    length = next((i for i, x in enumerate(xs) if x != start + i), len(xs))
    wanted = bytes(value for x in range(start, start + length) for value in icon.dots[y * icon.width + x][:3])
    for top in range(screen.height):
        line = bytes(value for dot in screen.dots[top * screen.width:(top + 1) * screen.width] for value in dot[:3])
        at = line.find(wanted)
        while at >= 0:
            left, above = at // 3 - start, top - y
            if at % 3 == 0 and all(
                    0 <= left + dx < screen.width and 0 <= above + dy < screen.height
                    and screen.dots[(above + dy) * screen.width + left + dx][:3] == icon.dots[dy * icon.width + dx][:3]
                    for dx, dy in solid):
                return True
            at = line.find(wanted, at + 1)
    return False


@unittest.skipUnless(PROGRAM.exists(), "the program isn't built")
@unittest.skipUnless(shutil.which("Xvfb") and shutil.which("import"), "Xvfb or import is missing")
class Dots(Recorders):
    def share(self):
        """The share directory with the double of the script in place of the package manager."""
        share = self.folder / "share"
        share.mkdir()
        for name in ("icons", "pixmaps"):
            (share / name).symlink_to(SHARE / name)
        (share / "python").symlink_to(SOURCE / "tests" / "contract" / "double" / "python")
        plan = self.folder / "plan.json"
        plan.write_text("{}")
        (self.folder / "root" / "etc").mkdir(parents=True)
        (self.folder / "root" / "etc" / "yum.conf").write_text("[main]\n")
        return {"VOKSHARE": str(share), "VOK_DOUBLE": str(plan), "VOKROOT": str(self.folder / "root")}

    def test_icons_have_all_dots_at_scale_2(self):
        environment = dict(os.environ, QT_SCALE_FACTOR="2", QT_QPA_PLATFORM="xcb", LC_ALL="C.UTF-8", HOME=str(self.folder),
                           XDG_CONFIG_HOME=str(self.folder), VOK_SCREEN="2100x1200x24", **self.share())
        icon = pictures.read(SHARE / "icons" / "update.png")
        screen = self.folder / "screen.png"
        with subprocess.Popen([str(SOURCE / "tests" / "support" / "with-display"), "bash", "-c", CAMERA, "camera",
                               str(PROGRAM), str(self.folder)], env=environment) as camera:
            try:
                deadline = time.monotonic() + 90
                while not (screen.exists() and contains(pictures.read(screen), icon)):
                    self.assertIsNone(camera.poll(), "the program has ended")
                    if time.monotonic() > deadline:
                        if os.environ.get("VOK_KEEP_SCREEN"):
                            shutil.copy(str(screen), os.environ["VOK_KEEP_SCREEN"])
                        self.fail("the icon isn't there dot by dot")
                    time.sleep(0.2)
                if os.environ.get("VOK_KEEP_SCREEN"):
                    shutil.copy(str(screen), os.environ["VOK_KEEP_SCREEN"])
            finally:
                (self.folder / "enough").write_text("")
                camera.wait()


if __name__ == "__main__":
    unittest.main()
