// The engine in WebAssembly plays what the plug-in plays: the suite's sounds, as it has written them.

import assert from "node:assert/strict";
import test from "node:test";
import {gzipSync} from "node:zlib";

import {Engine} from "../../web/engine.mjs";
import {assertSame, bytes, seed, songs} from "./sounds.mjs";

const module = new WebAssembly.Module(bytes);
const block = 128;

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

test("the samples are the plug-in's", async (t) => {
    for (const song of songs)
        await t.test(song.name, () => {
            const engine = new Engine(module, {seed, rate: song.rate, block});
            for (const [index, value] of song.parameters)
                engine.set(index, value);
            assertSame(play(engine, song), song.wanted);
        });
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
