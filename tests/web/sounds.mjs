// The suite's songs and what the plug-in has made of them.

import assert from "node:assert/strict";
import {readFileSync} from "node:fs";

const build = new URL("../../build/", import.meta.url);
const reference = new URL("tested/tests/conformance/reference", build);
const inaudible = 1e-30; // what the last of a release differs by, with denormals or without
const lowestRate = 32000; // at 22050 Hz the last of a release differs by 2e-30

export const seed = 1; // the suite's
export const bytes = readFileSync(new URL("wasm/dist/tindelwax.wasm", build));

function readSongs() {
    const sounds = new Float32Array(new Uint8Array(readFileSync(reference)).buffer);
    let next = 0;
    const songs = JSON.parse(readFileSync(`${reference.pathname}.json`)).map((song) => ({...song, wanted: [
        sounds.subarray(next, next += song.frames), sounds.subarray(next, next += song.frames)]}));
    assert.equal(next, sounds.length);
    return songs.filter(({rate}) => rate >= lowestRate);
}

export const songs = readSongs();

const isInaudible = (sample) => Math.abs(sample) < inaudible;

// Both outputs are the same to the bit wherever anybody could hear them.
export function assertSame(played, wanted) {
    for (const channel of [0, 1])
        for (let frame = 0; frame < wanted[channel].length; ++frame)
            if (!isInaudible(played[channel][frame]) || !isInaudible(wanted[channel][frame]))
                assert.equal(played[channel][frame], wanted[channel][frame], `output ${channel}, frame ${frame}`);
}
