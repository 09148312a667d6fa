#!/usr/bin/env python3
"""Writes phrase.mid beside this script: the demo's call and an ending, for a clip of any sound.

It moves no control, so that it sounds as the organ is set.
"""

from pathlib import Path

from song_file import (BAR, BASS_KEYS, MANUAL_KEYS, keyed, note_events, phrased, song,
                       tempo_events)

MANUAL = ("8 G4+C5+E5' D5 C5 G4 4 G4+C5+E5 8 B4+D5 C5+E5 |"
          "8 E4+A4+C5' B4 A4 E4 4 E4+A4+C5 8 G4+B4 A4+C5 |"
          "2 F4+A4+C5 4 F4+A4+D5 F4+B4+D5 | 1 E4+G4+C5")
BASS = "4. C2 8 C2 4 G2 8 E2 D2 | 4. A2 8 A2 4 E2 8 G2 E2 | 2 F2 4 D2 G2 | 1 C2"
TEMPO = 120     # quarters a minute
GAP = 50        # ticks, 52 ms


def compose():
    manual, bass = (phrased(part, 0, GAP, GAP) for part in (MANUAL, BASS))
    events = tempo_events([(0, TEMPO)]) + note_events(keyed([manual]), MANUAL_KEYS)
    events += note_events(bass, BASS_KEYS)
    return song("A phrase", events, 4 * BAR)


if __name__ == "__main__":
    Path(__file__).with_name("phrase.mid").write_bytes(compose())
