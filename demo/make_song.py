#!/usr/bin/env python3
"""Writes song.mid beside this script: Pachelbel's Canon in D for the manual and the bass.

The canon is kept as it is composed. GROUND goes round in the bass; one voice plays the VARIATIONS
over it, and the same voice enters twice more, each time one round later. Notes stand at the pitch
that sounds; the organ sounds an octave above its keys. A number sets the length of the notes after
it, as a fraction of a whole note; a dot makes it half as long again.
"""

import re
import struct
from pathlib import Path

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

# Channel 1, 0 to 127; a stop is on from 64. Split keeps its default, both sections on both sides.
CONTROLLERS = {"Flute": 80, "Bright": 81, "Brass": 82, "Mellow": 83, "Vibrato": 84,
               "BassChords": 85, "Volume": 7, "Contour": 86, "Bass": 87}
SWITCHES = ("Flute", "Bright", "Brass", "Mellow", "Vibrato", "BassChords")

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

QUARTER = 480       # ticks, as are the lengths below
ROUND = 8 * QUARTER
VOICE_GAP = 20
BASS_GAP = 60
REPEAT_GAP = 30     # 57 ms at the tempo: a release and an attack take 30 ms each
BREATH = 60
CHANGE_LEAD = 4     # stops move just before a round, when the breath has faded
TEMPO = 66          # quarters a minute
RITARDANDO = [(-4, 63), (-3, 60), (-2, 55), (-1, 48), (0, 44)]  # quarters from the last chord

OCTAVE = 12
MANUAL_KEYS = range(36, 73)     # above the octave that the manual shares with the bass
BASS_KEYS = range(24, 36)
SEMITONES = {"C": 0, "D": 2, "E": 4, "F": 5, "G": 7, "A": 9, "B": 11}


def parse(text):
    """Returns (start, length, key) of every note, in ticks; bars must hold four quarters."""
    notes, at, length = [], 0, 0
    for number, bar in enumerate(text.split("|"), start=1):
        for token in bar.split():
            if value := re.fullmatch(r"(\d+)(\.?)", token):
                length = 4 * QUARTER // int(value[1]) * (3 if value[2] else 2) // 2
                continue
            step, sharp, octave = re.fullmatch(r"([A-G])(#?)(\d)", token).groups()
            sounding = OCTAVE * (int(octave) + 1) + SEMITONES[step] + len(sharp)
            notes.append((at, length, sounding - OCTAVE))
            at += length
        assert at == number * 4 * QUARTER, f"bar {number} is too long or too short: {text}"
    return notes


def phrased(text, start, gap):
    """Returns the notes of a phrase that starts at a tick. Each ends `gap` ticks early, at most a
    quarter of its length, so that the next one speaks; the last leaves a breath."""
    *notes, (last, last_length, last_key) = parse(text)
    phrase = [(start + at, length - min(length // 4, gap), key) for at, length, key in notes]
    return phrase + [(start + last, last_length - min(last_length // 2, BREATH), last_key)]


def arrange():
    """Returns the notes of the three voices and of the bass, and the tick of the last chord."""
    close = (1 + len(VARIATIONS)) * ROUND
    voices = []
    for entry, ending in enumerate(CLOSE, start=1):
        voice = phrased(ending, close, VOICE_GAP)
        for start, text in zip(range(entry * ROUND, close, ROUND), VARIATIONS):
            voice += phrased(text, start, VOICE_GAP)
        voices.append(voice)
    bass = phrased(CLOSE_GROUND, close, BASS_GAP)
    for start in range(0, close, ROUND):
        bass += phrased(GROUND, start, BASS_GAP)
    return voices, bass, close + ROUND


def keyed(voices):
    """Puts the voices on one manual: a key that a voice strikes while another holds it comes up
    for a moment first, and stays down as long as either asks."""
    keys = {}
    for start, length, key in sorted(note for voice in voices for note in voice):
        spans, end = keys.setdefault(key, []), start + length
        if spans and spans[-1][1] > start - REPEAT_GAP:
            down, up = spans.pop()
            end = max(end, up)
            if down < start:
                spans.append((down, max(start - REPEAT_GAP, (down + start) // 2)))
        spans.append((start, end))
    return [(down, up - down, key) for key, spans in keys.items() for down, up in spans]


def check_harmony(voices, bass):
    """Passing sixteenths may rub a semitone or a major seventh against the bass; no more."""
    for start, length, low in bass:
        for at, duration, key in (note for voice in voices for note in voice):
            together = min(start + length, at + duration) - max(start, at)
            clash = (key - low) % OCTAVE in (1, OCTAVE - 1)
            assert not (clash and together > QUARTER // 4), f"{key} over {low} at tick {at}"


def note_events(notes, keys):
    events = []
    for start, length, key in notes:
        assert key in keys and length > 0, f"key {key} at tick {start}"
        events += [(start, bytes([0x90, key, 100])), (start + length, bytes([0x80, key, 64]))]
    return events


def controller_events():
    """Sends what each registration changes, in the breath before its round; the first sends all."""
    events, state = [], {}

    def send(tick, name, value):
        assert 0 <= value <= 127
        if state.get(name) != value:
            state[name] = value
            events.append((tick, bytes([0xB0, CONTROLLERS[name], value])))

    for number, (stops, volume, contour, bass) in enumerate(REGISTRATIONS):
        tick = max(0, number * ROUND - CHANGE_LEAD)
        for name in SWITCHES:
            send(tick, name, 127 if name in stops.split() else 0)
        for name, value in (("Volume", volume), ("Contour", contour), ("Bass", bass)):
            send(tick, name, value)
        if number == SWEEP_ROUND:
            for step in range(contour + 1):
                send(number * ROUND + step * ROUND // 128, "Contour", contour - step)
    return events


def tempo_events(last_chord):
    changes = [(0, TEMPO)] + [(last_chord + at * QUARTER, bpm) for at, bpm in RITARDANDO]
    return [(tick, b"\xff\x51\x03" + (60_000_000 // bpm).to_bytes(3, "big"))
            for tick, bpm in changes]


def variable_length(value):
    octets = [value & 0x7F]
    while value := value >> 7:
        octets.append(value & 0x7F | 0x80)
    return bytes(reversed(octets))


def track(events, end):
    """A track of (tick, message); at one tick releases go first, then controls, then strikes."""
    order = {0x80: 0, 0xFF: 1, 0xB0: 2, 0x90: 3}
    data, now = b"", 0
    for tick, message in sorted(events, key=lambda event: (event[0], order[event[1][0]])):
        data += variable_length(tick - now) + message
        now = tick
    data += variable_length(end - now) + b"\xff\x2f\x00"
    return b"MTrk" + struct.pack(">I", len(data)) + data


def main():
    voices, bass, last_chord = arrange()
    check_harmony(voices, bass)
    title = b"Canon in D (Johann Pachelbel)"
    events = [(0, b"\xff\x03" + bytes([len(title)]) + title),
              (0, b"\xff\x58\x04\x04\x02\x18\x08")]  # four quarters a bar
    events += tempo_events(last_chord) + controller_events()
    events += note_events(keyed(voices), MANUAL_KEYS) + note_events(bass, BASS_KEYS)
    song = b"MThd" + struct.pack(">IHHH", 6, 0, 1, QUARTER)
    song += track(events, last_chord + 5 * QUARTER)
    Path(__file__).with_name("song.mid").write_bytes(song)


if __name__ == "__main__":
    main()
