"""Runs every command that the manual and the README show: manual_test.py PROGRAMS FAULTY

PROGRAMS is the folder of the command and the plug-ins, FAULTY a plug-in as the judge's tests have
it. In a document, commands stand in fences marked sh, or marked console, behind $ and above what
they print, where ... stands for anything; and in prose, as code, with options of the command alone
as well. A document's commands run one after the other in one folder, which holds what they speak
of. Those that play do so through a JACK server without a sound card, until they say it.
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
PROGRAMS, FAULTY = (pathlib.Path(argument).resolve() for argument in sys.argv[1:])
CODE = re.compile(r"^```(\w+)\n(.*?)^```$|`((?:tindelwax |pw-jack |\./|--)[^`]*)`", re.M | re.S)
DATA = {"html", "ini", "text"}
SCRIPTS = r"\./(?:run|test)(?: (?:bench|package|page|sounds|windows).*)?"
NOT_RUN = {
    SCRIPTS: "builds for minutes; that the scripts know the command is seen",
    r"cmake .*": "builds for minutes",
    r".*\bsudo .*": "changes the system; tests/packages/check installs and removes in a folder",
    r"cp -r /usr/.*": "reads what a package installs",
    r"pw-jack .*": "wants PipeWire, which the tests of play bring",
}
# Stands for the command, and ends it once it plays.
PLAYER = f"""#!/bin/bash
program='{PROGRAMS}/tindelwax'
[[ $1 == play ]] || exec "$program" "$@"
exec {{said}}< <(exec "$program" "$@" 2>&1)
while read -r line; do
    echo "$line"
    [[ $line != "plays through JACK "* ]] || kill $!
done <&$said
wait $!
"""


def run(commands, **options):
    return subprocess.run(["bash", "-ec", commands], text=True, stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, **options)


def furnish(folder):
    home = folder / "home"
    (home / ".vst").mkdir(parents=True)
    for song in "song.mid", "my_song.mid":
        shutil.copy(ROOT / "demo/phrase.mid", folder / song)
    for plugin in folder / "plugin.so", home / ".vst/tindelwax.so":
        plugin.symlink_to(PROGRAMS / "tindelwax.so")
    (folder / "broken.so").symlink_to(FAULTY)
    player = folder / "bin/tindelwax"
    player.parent.mkdir()
    player.write_text(PLAYER)
    player.chmod(0o755)
    (folder / "run").symlink_to(player) # as run hands its arguments on
    wiring = folder / "wiring"
    shutil.copytree(ROOT / "src/harpmatrix", wiring / "harpmatrix")
    shutil.copytree(ROOT / "src/control", wiring / "control")
    return os.environ | {"HOME": str(home), "PATH": f"{player.parent}:{os.environ['PATH']}",
                         "DISPLAY": "", "LC_ALL": "C.UTF-8",
                         "TINDELWAX_TEST_FAULT": "no_number"}


class Documents(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        os.environ |= {"JACK_DEFAULT_SERVER": f"tindelwax-manual-{os.getpid()}",
                       "JACK_NO_AUDIO_RESERVATION": "1"}
        cls.jackd = subprocess.Popen(
            ["jackd", "-n", os.environ["JACK_DEFAULT_SERVER"], "-r", "-S", "-d", "dummy"],
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        tindelwax = PROGRAMS / "tindelwax"
        while cls.jackd.poll() is None and "JACK: none" in run(f"'{tindelwax}' play --list").stdout:
            pass
        helped = re.findall(r"^  ([a-z]+) ", run(f"'{tindelwax}' --help").stdout, re.M)
        cls.known = "".join([run(f"'{tindelwax}' {command} --help").stdout for command in helped]
                            + [(ROOT / script).read_text() for script in ("run", "test")])

    @classmethod
    def tearDownClass(cls):
        cls.jackd.terminate()
        cls.jackd.wait()

    def run_all(self, name):
        text = (ROOT / name).read_text()
        self.assertIsNone(re.search(r"^\n    \S", CODE.sub("", text), re.M), "code without a fence")
        with tempfile.TemporaryDirectory() as folder:
            surroundings = furnish(pathlib.Path(folder))
            for kind, block, prose in CODE.findall(text):
                with self.subTest(block or prose):
                    if prose.startswith("--"):
                        self.see(prose.split()[0])
                    elif kind not in DATA:
                        self.run_block(kind or "sh", block or prose, folder, surroundings)

    def see(self, words):
        self.assertTrue(re.search(re.escape(words) + r"(?![\w-])", self.known), "nobody knows it")

    def run_block(self, kind, block, folder, surroundings):
        self.assertIn(kind, ("sh", "console"))
        commands, shown = "", ""
        for line in re.sub(r"\\\n *", "", block).splitlines(keepends=True):
            command = line.removeprefix("$ ")
            bare = re.sub(r" *#.*", "", command).strip()
            if kind == "console" and command == line:
                shown += line
            elif not any(re.fullmatch(pattern, bare) for pattern in NOT_RUN):
                commands += command
            elif re.fullmatch(SCRIPTS, bare):
                self.see(f"#   {bare} ")
        result = run(commands, cwd=folder, env=surroundings)
        if shown:
            check = doctest.OutputChecker().check_output
            self.assertTrue(check(shown, result.stdout, doctest.ELLIPSIS), result.stdout)
        else:
            self.assertEqual(result.returncode, 0, result.stdout)

    def test_numbers_are_on_the_panel_as_it_is(self):
        panel = base64.b64encode((ROOT / "docs/panel.png").read_bytes()).decode()
        self.assertTrue(panel in (ROOT / "docs/panel-numbers.svg").read_text(),
                        "./run pictures makes them anew")

    def test_manual(self):
        self.run_all("docs/manual.md")

    def test_readme(self):
        self.run_all("README.md")


unittest.main(argv=sys.argv[:1])
