// The engine in WebAssembly plays what the plug-in plays: the suite's sounds, as it has written them.

import assert from "node:assert/strict";
import {readFileSync} from "node:fs";
import test from "node:test";
import {gzipSync} from "node:zlib";

import {Engine} from "../../web/engine.mjs";

const build = new URL("../../build/", import.meta.url);
const bytes = readFileSync(new URL("wasm/dist/tindelwax.wasm", build));
const module = new WebAssembly.Module(bytes);
const reference = new URL("tested/tests/conformance/reference", build);
const songs = JSON.parse(readFileSync(`${reference.pathname}.json`));
const seed = 1; // the suite's
const block = 128;
const inaudible = 1e-30; // what the last of a release differs by, with denormals or without
const lowestRate = 32000; // at 22050 Hz the last of a release differs by 2e-30

function play(engine, {frames, messages}) {
    const right = new Float32Array(frames), left = new Float32Array(frames);
    for (let start = 0, end; start < frames; start = end) {
        end = Math.min(start + block, frames);
        for (const [frame, ...message] of messages)
            if (frame >= start && frame < end)
                engine.receive(...message, frame - start);
        engine.process(right.subarray(start, end), left.subarray(start, end));
    }
    return [right, left];
}

const isInaudible = (sample) => Math.abs(sample) < inaudible;

test("the samples are the plug-in's", async (t) => {
    const sounds = new Float32Array(new Uint8Array(readFileSync(reference)).buffer);
    let next = 0;
    for (const song of songs) {
        const wanted = [sounds.subarray(next, next += song.frames), sounds.subarray(next, next += song.frames)];
        if (song.rate < lowestRate)
            continue;
        await t.test(song.name, () => {
            const engine = new Engine(module, {seed, rate: song.rate, block});
            for (const [index, value] of song.parameters)
                engine.set(index, value);
            for (const [channel, played] of play(engine, song).entries())
                for (let frame = 0; frame < song.frames; ++frame)
                    if (!isInaudible(played[frame]) || !isInaudible(wanted[channel][frame]))
                        assert.equal(played[frame], wanted[channel][frame], `frame ${frame}`);
        });
    }
    assert.equal(next, sounds.length);
});

test("an organ that plays and loads a state is the organ that saved it", () => {
    const {rate, ...song} = songs.at(-1);
    const saved = new Engine(module, {seed, rate, block});
    const loaded = new Engine(module, {seed: seed + 1, rate, block});
    const [volume, contour] = ["Volume", "Contour"].map((name) => saved.parameters.indexOf(name));
    assert(saved.register(saved.registrations.get("late-night")));
    assert(saved.receive(0xB0, 86, 127));
    assert.deepEqual([saved.text(volume), saved.get(contour)], ["-17.7211", 1]);

    const held = {frames: rate, messages: [[0, 0x90, 60, 100]]};
    play(loaded, held);
    assert(loaded.load(saved.save()));
    assert.deepEqual(play(loaded, song), play(saved, song));
    assert(!loaded.load("a song") && !loaded.register("a song"));

    play(loaded, held);
    assert(!loaded.isResting);
    loaded.panic();
    play(loaded, {frames: rate, messages: []});
    assert(loaded.isResting);
});

test("a page can hold it", () => assert(gzipSync(bytes).length <= 120_000));
