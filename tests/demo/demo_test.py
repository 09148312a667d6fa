"""Holds the demo song to what strangers hear first: demo_test.py COMMAND"""

import array
import math
import pathlib
import subprocess
import sys
import tempfile
import unittest
import wave

DEMO = pathlib.Path(__file__).resolve().parents[2] / "demo"
sys.dont_write_bytecode = True
sys.path.insert(0, str(DEMO))
import make_canon
import make_phrase
import make_song
from song_file import BAR, QUARTER

COMMAND = sys.argv[1]
RATE = 48000


def db(value):
    return 20 * math.log10(value / 32768) if value else -math.inf


def rms(samples):
    return db(math.sqrt(sum(x * x for x in samples) / len(samples)))


def above(hz, samples):
    """What a high pass of the first order leaves: 3 dB less at its corner."""
    decay, before, left = math.exp(-2 * math.pi * hz / RATE), 0, []
    for now in samples:
        left.append(decay * ((left[-1] if left else 0) + now - before))
        before = now
    return left


class Demo(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        with tempfile.TemporaryDirectory() as folder:
            file = f"{folder}/demo.wav"
            subprocess.run([COMMAND, "render", DEMO / "song.mid", "-o", file, "--normalize", "-1",
                            "--bits", "16"], stderr=subprocess.DEVNULL, check=True)
            with wave.open(file) as sound:
                cls.samples = array.array("h", sound.readframes(sound.getnframes()))
        cls.left, cls.right = cls.samples[::2], cls.samples[1::2]

    def test_scripts_write_the_songs(self):
        for script in make_song, make_canon, make_phrase:
            name = script.__name__.removeprefix("make_") + ".mid"
            self.assertEqual(script.compose(), (DEMO / name).read_bytes(), name)

    def test_opens_loud_on_small_speakers_too_and_ends_in_silence(self):
        opening = self.left[:RATE // 2]
        self.assertTrue(30 < len(self.left) / RATE < 40)
        self.assertGreater(rms(opening), -20)
        self.assertGreater(rms(above(300, opening)), -20)
        self.assertAlmostEqual(db(max(map(abs, self.samples))), -1, delta=0.01)
        self.assertLess(db(max(map(abs, self.samples[-2 * RATE:]))), -80)

    def test_sections_are_equally_loud(self):
        levels, end = {}, 0
        for section in make_song.SECTIONS:
            begin, end = end, end + section.bars() * BAR * 60 * RATE // (QUARTER * make_song.TEMPO)
            levels[section.name] = rms(self.samples[2 * begin:2 * end])
        self.assertLess(max(levels.values()) - min(levels.values()), 3, levels)
        self.assertGreater(min(levels.values()), -26, levels)


unittest.main(argv=sys.argv[:1])
