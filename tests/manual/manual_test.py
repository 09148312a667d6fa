"""Runs every command that the manual and the README show: manual_test.py PROGRAMS

PROGRAMS is the folder of the command and the plug-ins. In a document, commands stand in fences
marked sh, or marked console, behind $ and above what they print, where ... stands for anything.
What a test cannot run has the line "<!-- not run: REASON -->" above its fence. A document's
commands run one after the other in one folder, which holds what they speak of.
"""

import base64
import doctest
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
PROGRAMS = pathlib.Path(sys.argv[1]).resolve()
FENCE = re.compile(r"(<!-- not run: [^\n]+ -->\n)?^```(\w+)\n(.*?)^```$", re.M | re.S)
DATA = {"html", "ini", "text"}


def furnish(folder):
    home = folder / "home"
    (home / ".vst").mkdir(parents=True)
    for song in "song.mid", "my_song.mid":
        shutil.copy(ROOT / "demo/phrase.mid", folder / song)
    for plugin in folder / "plugin.so", home / ".vst/tindelwax.so":
        plugin.symlink_to(PROGRAMS / "tindelwax.so")
    (folder / "run").symlink_to(PROGRAMS / "tindelwax") # as run hands its arguments on
    wiring = folder / "wiring"
    shutil.copytree(ROOT / "src/harpmatrix", wiring / "harpmatrix")
    shutil.copytree(ROOT / "src/control", wiring / "control")
    return {"HOME": str(home), "PATH": f"{PROGRAMS}:{os.environ['PATH']}", "LC_ALL": "C.UTF-8"}


class Documents(unittest.TestCase):
    def run_all(self, name):
        text = (ROOT / name).read_text()
        self.assertIsNone(re.search(r"^\n    \S", FENCE.sub("", text), re.M), "code without a fence")
        with tempfile.TemporaryDirectory() as folder:
            surroundings = furnish(pathlib.Path(folder))
            for mark, kind, block in FENCE.findall(text):
                if kind not in DATA and not mark:
                    with self.subTest(block):
                        self.run_block(kind, block, folder, surroundings)

    def run_block(self, kind, block, folder, surroundings):
        self.assertIn(kind, ("sh", "console"))
        lines = block.splitlines(keepends=True)
        shown = [line for line in lines if kind == "console" and not line.startswith("$ ")]
        commands = "".join(line.removeprefix("$ ") for line in lines if line not in shown)
        result = subprocess.run(["bash", "-ec", commands], cwd=folder, env=surroundings, text=True,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        self.assertEqual(result.returncode, 0, result.stdout)
        if shown:
            check = doctest.OutputChecker().check_output
            self.assertTrue(check("".join(shown), result.stdout, doctest.ELLIPSIS), result.stdout)

    def test_numbers_are_on_the_panel_as_it_is(self):
        panel = base64.b64encode((ROOT / "docs/panel.png").read_bytes()).decode()
        self.assertTrue(panel in (ROOT / "docs/panel-numbers.svg").read_text(),
                        "./run pictures makes them anew")

    def test_manual(self):
        self.run_all("docs/manual.md")

    def test_readme(self):
        self.run_all("README.md")


unittest.main(argv=sys.argv[:1])
