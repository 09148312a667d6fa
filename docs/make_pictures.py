#!/usr/bin/env python3
"""Draws the manual's pictures beside this script: make_pictures.py COMMAND

The keys, the harmonics of each stop as COMMAND renders them, and panel.png with numbers.
"""

import base64
import cmath
import math
import subprocess
import sys
import tempfile
import wave
from pathlib import Path

DOCS = Path(__file__).resolve().parent
sys.dont_write_bytecode = True
sys.path.insert(0, str(DOCS.parent / "demo"))
from song_file import BASS_KEYS, OCTAVE, QUARTER, note_events, song, tempo_events

KEYS = range(BASS_KEYS[0], 73)
INK, PALE, WARM, COOL = "#222", "#666", "#b5402e", "#2f6f8f"


class Picture:
    def __init__(self, width, height):
        self.width, self.height = width, height
        self.parts = []

    def box(self, x, y, width, height, fill, edge="none"):
        self.parts.append(f'<rect x="{x:g}" y="{y:g}" width="{width:g}" height="{height:g}"'
                          f' fill="{fill}" stroke="{edge}"/>')

    def text(self, x, y, words, color=INK, size=12, anchor="middle"):
        self.parts.append(f'<text x="{x:g}" y="{y:g}" fill="{color}" font-size="{size}"'
                          f' text-anchor="{anchor}">{words}</text>')

    def bracket(self, left, right, y, words, color):
        self.parts.append(f'<path d="M{left:g} {y + 6} v-6 H{right:g} v6" fill="none"'
                          f' stroke="{color}" stroke-width="2"/>')
        self.text((left + right) / 2, y - 5, words, color)

    def write(self, name):
        lines = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {self.width} {self.height}"'
                 f' width="{self.width}" height="{self.height}" font-family="sans-serif">',
                 f'<rect width="{self.width}" height="{self.height}" fill="#fff"/>',
                 *self.parts, "</svg>"]
        (DOCS / name).write_text("\n".join(lines) + "\n")


def draw_keys():
    white, black, top, left = 24, 15, 92, 12
    is_black = {key: key % OCTAVE in (1, 3, 6, 8, 10) for key in KEYS}
    place, whites = {}, 0
    for key in KEYS:
        place[key] = left + whites * white - (black / 2 if is_black[key] else 0)
        whites += not is_black[key]
    picture = Picture(2 * left + whites * white, 262)
    end = left + whites * white
    split = place[BASS_KEYS[0] + OCTAVE]

    picture.bracket(left + 2, split - 2, 22, "bass: lowest key alone", WARM)
    picture.bracket(split + 2, end - 2, 22, "manual: every key, an octave above its note", COOL)
    picture.bracket(left + 2, split - 2, 52, "BassChords: manual too,", COOL)
    picture.text((left + split) / 2, 72, "at the pitch of the next octave", COOL, 11)
    for key in sorted(KEYS, key=is_black.get):
        tint = "#f6ddd8" if key in BASS_KEYS else "#fff"
        if is_black[key]:
            picture.box(place[key], top, black, 68, INK)
        else:
            picture.box(place[key], top, white, 110, tint, INK)
        if key % OCTAVE == 0:
            picture.text(place[key] + white / 2, top + 104, "C", INK)
            picture.text(place[key] + white / 2, top + 126, key, INK)
    for y, words in (142, "MIDI notes; 60 is middle C on a piano"), (160, "Keys beyond 24 to 72 are silent."):
        picture.text(left, top + y, words, PALE, anchor="start")
    picture.write("keys.svg")


def spectrum(samples):
    """The discrete Fourier transform; the length is a power of two."""
    if len(samples) == 1:
        return samples
    even, odd = spectrum(samples[::2]), spectrum(samples[1::2])
    half = [cmath.exp(-2j * math.pi * k / len(samples)) * value for k, value in enumerate(odd)]
    return [a + b for a, b in zip(even, half)] + [a - b for a, b in zip(even, half)]


def harmonics(command, stop, key, count):
    """The levels of a held key's first harmonics in dB below the loudest."""
    rate, length = 48000, 32768
    with tempfile.TemporaryDirectory() as folder:
        note = tempo_events([(0, 60)]) + note_events([(0, 2 * QUARTER, key)], KEYS)
        Path(folder, "key.mid").write_bytes(song("A key", note, 2 * QUARTER))
        settings = [f"--set={name}=0" for name in ("Flute", "Bright", "Brass", "Mellow", "Bass")]
        subprocess.run([command, "render", f"{folder}/key.mid", "-o", f"{folder}/key.wav", *settings,
                        f"--set={stop}=1", "--set=Volume=1", "--set=Contour=0", "--bits=24"],
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                       check=True)
        with wave.open(f"{folder}/key.wav") as sound:
            sound.setpos(rate // 2)
            frames = sound.readframes(length)
    window = (math.sin(math.pi * n / length) ** 2 for n in range(length))
    sound = [weight * int.from_bytes(frames[at:at + 3], "little", signed=True)
             for weight, at in zip(window, range(0, len(frames), 6))]
    bins = [abs(value) for value in spectrum(sound)[:length // 2]]
    first = 440 * 2 ** ((key + OCTAVE - 69) / OCTAVE) * length / rate
    levels = [max(bins[int(0.98 * n * first):int(1.02 * n * first) + 2]) for n in range(1, count + 1)]
    return [20 * math.log10(level / max(levels)) for level in levels]


def draw_stop(command, stop):
    count, step, height, depth, left, top = 24, 24, 150, 60, 44, 14
    picture = Picture(left + count * step + 10, top + height + 36)
    for level in range(0, depth + 1, 20):
        y = top + height * level / depth
        picture.box(left, y, count * step, 0.6, "#ddd")
        picture.text(left - 6, y + 4, f"-{level} dB" if level else "0 dB", PALE, 11, "end")
    for n, level in enumerate(harmonics(command, stop, 45, count)):
        rise = height * max(0, 1 + level / depth)
        x = left + n * step
        picture.box(x + 5, top + height - rise, step - 10, rise, COOL)
        if n % 4 == 3 or n == 0:
            picture.text(x + step / 2, top + height + 14, n + 1, PALE, 11)
    picture.text(left + count * step / 2, top + height + 30, "harmonic", PALE, 11)
    picture.write(f"stop-{stop.lower()}.svg")


def draw_panel():
    """Numbers beside the panel's parts, in the manual's order."""
    spots = [(99, 228), (155, 228), (212, 228), (268, 228), (325, 228), (382, 228),
             (62, 296), (188, 296), (314, 296), (296, 20), (340, 20), (386, 20)]
    panel = base64.b64encode((DOCS / "panel.png").read_bytes()).decode()
    picture = Picture(480, 400)
    picture.parts.append(f'<image width="480" height="400" href="data:image/png;base64,{panel}"/>')
    for number, (x, y) in enumerate(spots, start=1):
        picture.parts.append(f'<circle cx="{x}" cy="{y}" r="10" fill="#fff" stroke="{INK}"/>')
        picture.text(x, y + 4.5, number, INK, 13)
    picture.write("panel-numbers.svg")


if __name__ == "__main__":
    draw_keys()
    draw_panel()
    for name in "Flute", "Bright", "Brass", "Mellow":
        draw_stop(sys.argv[1], name)
