#!/usr/bin/env python3
"""Writes canon.mid beside this script: Pachelbel's Canon in D for the manual and the bass.

The canon is kept as it is composed. GROUND goes round in the bass; one voice plays the VARIATIONS
over it, and the same voice enters twice more, each time one round later.
"""

from pathlib import Path

from song_file import (BASS_KEYS, MANUAL_KEYS, OCTAVE, QUARTER, controller_events, drawn, keyed,
                       note_events, phrased, song, tempo_events)

GROUND = "4 D2 A2 B2 F#2 | G2 D2 G2 A2"

VARIATIONS = [
    "4 F#5 E5 D5 C#5 | B4 A4 B4 C#5",
    "4 D5 C#5 B4 A4 | G4 F#4 G4 E4",
    "8 D4 F#4 A4 G4 F#4 D4 F#4 E4 | D4 B3 D4 A4 G4 B4 A4 G4",
    "8 F#4 D4 E4 C#5 D5 F#5 A5 A4 | B4 G4 A4 F#4 D4 D5 8. D5 16 C#5",
    "16 D5 C#5 D5 D4 C#4 A4 E4 F#4 D4 D5 C#5 B4 C#5 F#5 A5 B5 |"
    "   G5 F#5 E5 G5 F#5 E5 D5 C#5 B4 A4 G4 F#4 E4 G4 F#4 E4",
    "16 D4 E4 F#4 G4 A4 E4 A4 G4 F#4 B4 A4 G4 A4 G4 F#4 E4 |"
    "   D4 B3 B4 C#5 D5 C#5 B4 A4 G4 F#4 E4 B4 A4 B4 A4 G4",
    "16 A5 32 F#5 G5 16 A5 32 F#5 G5 A5 A4 B4 C#5 D5 E5 F#5 G5"
    "   16 F#5 32 D5 E5 16 F#5 32 F#4 G4 A4 B4 A4 G4 A4 F#4 G4 A4 |"
    "   16 G4 32 B4 A4 16 G4 32 F#4 E4 F#4 E4 D4 E4 F#4 G4 A4 B4"
    "   16 G4 32 B4 A4 16 B4 32 C#5 D5 A4 B4 C#5 D5 E5 F#5 G5 A5",
    "16 F#5 32 D5 E5 16 F#5 32 E5 D5 E5 C#5 D5 E5 F#5 E5 D5 C#5"
    "   16 D5 32 B4 C#5 16 D5 32 D4 E4 F#4 G4 F#4 E4 F#4 D5 C#5 D5 |"
    "   16 B4 32 D5 C#5 16 B4 32 A4 G4 A4 G4 F#4 G4 A4 B4 C#5 D5"
    "   16 B4 32 D5 C#5 16 D5 32 C#5 B4 C#5 D5 E5 D5 C#5 D5 B4 C#5",
]

# One round more, in which the three voices come together, and the last chord.
CLOSE_GROUND = GROUND + " | 1 D2"
CLOSE = [
    "4 F#5 E5 D5 C#5 | B4 A4 B4 C#5 | 1 D5",
    "4 D5 C#5 B4 A4 | G4 F#4 G4 E4 | 1 F#4",
    "4 A4 A4 F#4 F#4 | D4 D4 D4 A3 | 1 A3",
]

# A round: the switches that are on, Volume, Contour (0 bright, 127 dark) and Bass. The volumes
# even out what the stops add and keep the peaks below full scale: nothing limits the output.
REGISTRATIONS = [
    ("", 64, 13, 24),                       # the ground alone
    ("Flute", 108, 13, 18),
    ("Flute Mellow", 72, 13, 18),
    ("Flute Mellow Vibrato", 60, 13, 18),
    ("Brass Mellow Vibrato", 120, 13, 18),
    ("Brass", 127, 13, 18),
    ("Flute Bright", 80, 127, 18),          # opens in a sweep
    ("Flute Brass", 68, 0, 18),
    ("Bright Brass Vibrato", 92, 0, 18),
    ("Flute Bright Brass Mellow Vibrato BassChords", 48, 0, 14),
]
SWEEP_ROUND = 6

ROUND = 8 * QUARTER   # ticks, as are the lengths below
VOICE_GAP = 20
BASS_GAP = 60
BREATH = 60
CHANGE_LEAD = 4     # stops move just before a round, when the breath has faded
TEMPO = 66          # quarters a minute
RITARDANDO = [(-4, 63), (-3, 60), (-2, 55), (-1, 48), (0, 44)]  # quarters from the last chord


def arrange():
    """Returns the notes of the three voices and of the bass, and the tick of the last chord."""
    close = (1 + len(VARIATIONS)) * ROUND
    voices = []
    for entry, ending in enumerate(CLOSE, start=1):
        voice = phrased(ending, close, VOICE_GAP, BREATH)
        for start, text in zip(range(entry * ROUND, close, ROUND), VARIATIONS):
            voice += phrased(text, start, VOICE_GAP, BREATH)
        voices.append(voice)
    bass = phrased(CLOSE_GROUND, close, BASS_GAP, BREATH)
    for start in range(0, close, ROUND):
        bass += phrased(GROUND, start, BASS_GAP, BREATH)
    return voices, bass, close + ROUND


def check_harmony(voices, bass):
    """Passing sixteenths may rub a semitone or a major seventh against the bass; no more."""
    for start, length, low in bass:
        for at, duration, key in (note for voice in voices for note in voice):
            together = min(start + length, at + duration) - max(start, at)
            clash = (key - low) % OCTAVE in (1, OCTAVE - 1)
            assert not (clash and together > QUARTER // 4), f"{key} over {low} at tick {at}"


def registered():
    """Draws each registration in the breath before its round."""
    moves = []
    for number, (stops, volume, contour, bass) in enumerate(REGISTRATIONS):
        tick = max(0, number * ROUND - CHANGE_LEAD)
        moves += drawn(tick, stops, Volume=volume, Contour=contour, Bass=bass)
        if number == SWEEP_ROUND:
            moves += [(number * ROUND + step * ROUND // 128, "Contour", contour - step)
                      for step in range(contour + 1)]
    return moves


def compose():
    voices, bass, last_chord = arrange()
    check_harmony(voices, bass)
    tempos = [(0, TEMPO)] + [(last_chord + at * QUARTER, bpm) for at, bpm in RITARDANDO]
    events = tempo_events(tempos) + controller_events(registered())
    events += note_events(keyed(voices), MANUAL_KEYS) + note_events(bass, BASS_KEYS)
    return song("Canon in D (Johann Pachelbel)", events, last_chord + 5 * QUARTER)


if __name__ == "__main__":
    Path(__file__).with_name("canon.mid").write_bytes(compose())
