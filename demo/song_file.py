"""Turns readable notes and moves of the organ's controls into a MIDI file.

Notes stand at the pitch that sounds; the organ sounds an octave above its keys. A number sets the
length of what follows, as a fraction of a whole note; a dot makes it half as long again. A chord's
notes are joined by +, - is a rest, and ' halves what sounds of a note. Times are in ticks.
"""

import re
import struct

QUARTER = 480
BAR = 4 * QUARTER
REPEAT_GAP = 30     # 57 ms at 66 quarters a minute: a release and an attack take 30 ms each

OCTAVE = 12
MANUAL_KEYS = range(36, 73)     # above the octave that the manual shares with the bass
BASS_KEYS = range(24, 36)
SEMITONES = {"C": 0, "D": 2, "E": 4, "F": 5, "G": 7, "A": 9, "B": 11}

# Channel 1, 0 to 127; a stop is on from 64.
CONTROLLERS = {"Flute": 80, "Bright": 81, "Brass": 82, "Mellow": 83, "Vibrato": 84,
               "BassChords": 85, "Volume": 7, "Contour": 86, "Bass": 87, "Split": 88}
SWITCHES = ("Flute", "Bright", "Brass", "Mellow", "Vibrato", "BassChords")


def parse(text):
    """Returns (start, length, key) of every note; bars must hold four quarters."""
    notes, at, length = [], 0, 0
    for number, bar in enumerate(text.split("|"), start=1):
        for token in bar.split():
            if value := re.fullmatch(r"(\d+)(\.?)", token):
                length = BAR // int(value[1]) * (3 if value[2] else 2) // 2
                continue
            for pitch in token.rstrip("'").split("+") if token != "-" else ():
                step, sharp, octave = re.fullmatch(r"([A-G])(#?)(\d)", pitch).groups()
                sounding = OCTAVE * (int(octave) + 1) + SEMITONES[step] + len(sharp)
                notes.append((at, length // 2 if token[-1] == "'" else length, sounding - OCTAVE))
            at += length
        assert at == number * BAR, f"bar {number} is too long or too short: {text}"
    return notes


def phrased(text, start, gap, breath):
    """Returns the notes of a phrase that starts at a tick. Each ends `gap` ticks early, at most a
    quarter of its length, so that the next one speaks; the last leaves a breath."""
    notes = parse(text)
    last = notes[-1][0]
    return [(start + at, length - (min(length // 2, breath) if at == last else
                                   min(length // 4, gap)), key) for at, length, key in notes]


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


def note_events(notes, keys):
    events = []
    for start, length, key in notes:
        assert key in keys and length > 0, f"key {key} at tick {start}"
        events += [(start, bytes([0x90, key, 100])), (start + length, bytes([0x80, key, 64]))]
    return events


def drawn(tick, stops, **values):
    """Returns the moves that draw these switches, put the others back and set the values."""
    return [(tick, name, 127 if name in stops.split() else 0) for name in SWITCHES] + \
        [(tick, name, value) for name, value in values.items()]


def controller_events(moves):
    """Sends what each of the moves (tick, name, value) changes."""
    events, state = [], {}
    for tick, name, value in sorted(moves, key=lambda move: move[0]):
        assert 0 <= value <= 127
        if state.get(name) != value:
            state[name] = value
            events.append((tick, bytes([0xB0, CONTROLLERS[name], value])))
    return events


def tempo_events(changes):
    """Sets the quarters a minute at ticks."""
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


def song(title, events, end):
    """Returns the bytes of a MIDI file of one track, in bars of four quarters."""
    head = [(0, b"\xff\x03" + bytes([len(title)]) + title.encode()),
            (0, b"\xff\x58\x04\x04\x02\x18\x08")]
    return b"MThd" + struct.pack(">IHHH", 6, 0, 1, QUARTER) + track(head + events, end)
