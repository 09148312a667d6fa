#!/usr/bin/env python3
"""Writes song.mid beside this script: a tune of the organ's own, one section for each thing it does.

It is in A minor, with a call in C that goes from stop to stop. MANUAL and BASS are bars of four
quarters; `moves` are what changes inside a section, at quarters from its beginning.
"""

from dataclasses import dataclass, field
from pathlib import Path

from song_file import (BAR, BASS_KEYS, MANUAL_KEYS, QUARTER, controller_events, drawn, keyed,
                       note_events, phrased, song, tempo_events)

ALL = "Flute Bright Brass Mellow"
LEFT, RIGHT, BOTH = 0, 64, 127      # where Split puts the bass; the manual goes to the other side


@dataclass
class Section:
    name: str
    stops: str              # the switches that are on
    volume: int
    bass_volume: int
    manual: str
    bass: str
    contour: int = 8        # 0 bright, 127 dark
    split: int = BOTH
    chords: str = ""        # keys of the lowest octave, in place of the bass
    moves: list = field(default_factory=list)

    def bars(self):
        return 1 + self.manual.count("|")


SECTIONS = [
    Section("full organ, with stabs", ALL, 48, 14,
            "4. A3+A4+C5+E5 8 A4+C5+E5' - A4+C5+E5' A4+D5+F#5' - |"
            "8 A4+C5+E5' - G4+B4+D5' 4 A4+C5+E5 8 - G4+B4+D5' A4+C5+E5' |"
            "4. A4+C5+F5 8 A4+C5+F5' - B4+D5+G5' 4 B4+D5+G5 |"
            "8 C5+E5+A5' - B4+D5+G5' A4+C5+E5' - 4. G#4+B4+E5",
            "4. A2 8 A2' - A2' D2' - | 8 A2' - G2' 4 A2 8 - G2' A2' |"
            "4. F2 8 F2' - G2' 4 G2 | 8 A2' - G2' A2' - 4. E2"),
    Section("bass against chords", "Flute Brass", 63, 12,
            "8 - A4+C5+E5' - A4+C5+E5' 4 A4+C5+E5 A4+D5+F#5 |"
            "8 - A4+C5+F5' - A4+C5+F5' 4 B4+D5+G5 B4+D5+F5",
            "8 A2 E2 G2 A2 C2 E2 D2 F#2 | 8 F2 C2 F2 A2 G2 D2 G2 B2"),
    Section("Flute", "Flute", 60, 9,
            "8 G4+C5+E5' D5 C5 G4 4 G4+C5+E5 8 B4+D5 C5+E5", "4. C2 8 C2 4 G2 8 E2 D2"),
    Section("Bright", "Bright", 127, 11,
            "8 E4+A4+C5' B4 A4 E4 4 E4+A4+C5 8 G4+B4 A4+C5", "4. A2 8 A2 4 E2 8 G2 E2"),
    Section("Brass", "Brass", 127, 9,
            "8 C4+F4+A4' G4 F4 C4 4 C4+F4+A4 8 E4+G4 F4+A4", "4. F2 8 F2 4 C2 8 F2 A2"),
    Section("Mellow", "Mellow", 127, 11,
            "8 D4+G4+B4' A4 G4 D4 4 D4+G4+B4 8 F4+A4 G4+B4", "4. G2 8 G2 4 D2 8 G2 B2"),
    Section("vibrato", "Flute Mellow", 38, 9,
            "1 G4+C5+E5 | 2 A4+C5+F5 4 B4+D5+G5 G#4+D5+E5", "2 C2 C2 | 2 F2 4 G2 E2",
            moves=[(2, "Vibrato", 127)]),
    Section("contour", "Flute Bright Brass", 66, 11,
            "8 A4+C5+E5' A4+C5+E5' 4 A4+C5+E5 8 A4+C5+E5' G4+C5+E5' 4 A4+C5+E5 |"
            "8 A4+D5+F#5' A4+D5+F#5' 4 A4+D5+F#5 8 A4+C5+F5' A4+C5+F5' 4 B4+D5+G5",
            "4 A2 A2 C2 A2 | 4 D2 D2 F2 G2",
            contour=127, moves=[(step / 16, "Contour", 127 - step) for step in range(1, 128)]),
    Section("bass on the left", "Flute Bright", 112, 14,
            "8 - A4+C5+E5' - A4+C5+E5' - A4+C5+E5' A4+D5+F#5 -", "8 A2 A2' C2 D2 E2 E2' D2 F#2",
            split=LEFT),
    Section("bass on the right", "Flute Bright", 112, 14,
            "8 - A4+C5+F5' - A4+C5+F5' - B4+D5+G5' B4+D5+G5 -", "8 F2 F2' A2 C2 G2 G2' B2 D2",
            split=RIGHT),
    Section("bass chords", "Flute Brass Mellow BassChords", 36, 12,
            "4. E5 8 D5 4 C5 A4 | 4. F5 8 E5 4 D5 B4", "",
            chords="4 A2' C2+E2+A2' E2' C2+E2+A2' | 4 F2' C2+F2+A2' G2' D2+G2+B2'"),
    Section("full organ again", ALL, 46, 14,
            "8 C5+E5+A5' - B4+D5+G5' A4+C5+E5' - A4+C5+F5' 4 B4+D5+G5 | 2. A4+C#5+E5+A5 4 -",
            "8 A2' - G2' A2' - F2' 4 G2 | 2. A2 4 -",
            moves=[(5, "Vibrato", 127)]),
]

TEMPO = 132         # quarters a minute
GAP = 60            # ticks, 57 ms
BREATH = 100
CHANGE_LEAD = 4     # controls move just before a section, when the breath has faded
SILENCE = 3 * QUARTER


def compose():
    manual, bass, moves, at = [], [], [], 0
    for section in SECTIONS:
        tick = max(0, at - CHANGE_LEAD)
        moves += drawn(tick, section.stops, Volume=section.volume, Contour=section.contour,
                       Bass=section.bass_volume, Split=section.split)
        moves += [(at + int(quarter * QUARTER), name, value)
                  for quarter, name, value in section.moves]
        manual += phrased(section.manual, at, GAP, BREATH)
        bass += keyed([phrased(section.chords or section.bass, at, GAP, BREATH)])
        at += BAR * section.bars()
    events = tempo_events([(0, TEMPO)]) + controller_events(moves)
    events += note_events(keyed([manual]), MANUAL_KEYS) + note_events(bass, BASS_KEYS)
    return song("Six Tabs", events, at + SILENCE)


if __name__ == "__main__":
    Path(__file__).with_name("song.mid").write_bytes(compose())
