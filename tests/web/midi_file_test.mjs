// The page's reader of MIDI files knows when each message is due, and what is no song.

import assert from "node:assert/strict";
import test from "node:test";

import {readMidiFile} from "../../web/page/midi_file.mjs";

const chunk = (name, ...bytes) => [...Buffer.from(name), 0, 0, bytes.length >> 8, bytes.length & 0xFF, ...bytes];
const header = (format, nbTracks, ...division) => chunk("MThd", 0, format, 0, nbTracks, ...division);
const end = [0, 0xFF, 0x2F, 0];
const on = [0x90, 60, 100], off = [0x80, 60, 0];
const secondAQuarter = [0xFF, 0x51, 3, 0x0F, 0x42, 0x40];

const songs = {
    "a quarter lasts half a second unless told": [
        [...header(0, 1, 0, 96), ...chunk("MTrk", 0, ...on, 96, ...off, ...end)], [[0, on], [0.5, off]], 0.5],
    "a tempo holds for all tracks from its tick": [
        [...header(1, 2, 0, 96), ...chunk("MTrk", 48, ...secondAQuarter, ...end),
            ...chunk("MTrk", 0, ...on, 96, ...off, 96, ...end.slice(1))], [[0, on], [0.75, off]], 1.75],
    "a status runs on, past what no organ hears": [
        [...header(0, 1, 0, 96),
            ...chunk("MTrk", 0, ...on, 0, 0xF0, 2, 1, 0xF7, 0, 0xC0, 5, 0, ...on, 0x81, 0x40, 60, 0, ...end)],
        [[0, on], [0, on], [1, [0x90, 60, 0]]], 1],
    "frames keep their time": [
        [...header(0, 1, 0xE7, 40), ...chunk("MTrk", 0, ...secondAQuarter, 100, ...on, ...end)], [[0.1, on]], 0.1],
    "strange chunks are skipped": [
        [...header(0, 1, 0, 96), ...chunk("Junk", 1, 2), ...chunk("MTrk", 0, ...on, ...end)], [[0, on]], 0],
};

for (const [name, [bytes, events, seconds]] of Object.entries(songs))
    test(name, () => assert.deepEqual(readMidiFile(Uint8Array.from(bytes)),
        {events: events.map(([at, message]) => ({seconds: at, bytes: message})), seconds}));

const noSongs = {
    "is no MIDI file": [[], [...Buffer.from("A letter to the organist")]],
    "breaks off": [header(0, 1, 0, 96).slice(0, 10).concat(1, 2, 3, 4, 5),
        [...header(0, 1, 0, 96), ...chunk("MTrk", 0, 0x90)],
        [...header(0, 1, 0, 96), ...chunk("MTrk", 0, ...on, ...end).slice(0, -2)]],
    "no track": [header(0, 1, 0, 96)],
    "no single song": [header(2, 1, 0, 96)],
    "how long its beats are": [header(0, 1, 0, 0)],
    "belong to no message": [[...header(0, 1, 0, 96), ...chunk("MTrk", 0, 60, 100)]],
    "without an end": [[...header(0, 1, 0, 96), ...chunk("MTrk", 0xFF, 0xFF, 0xFF, 0xFF, 0)]],
};

for (const [words, files] of Object.entries(noSongs))
    test(`a file ${words}`, () => {
        for (const bytes of files)
            assert.throws(() => readMidiFile(Uint8Array.from(bytes)), new RegExp(words));
    });
