// The organ in a browser plays what the plug-in plays, and tells the page what it does.

import assert from "node:assert/strict";
import {mkdirSync, readFileSync, writeFileSync} from "node:fs";
import test from "node:test";

import {Engine} from "../../web/engine.mjs";
import {open, serve, waitForSound} from "./browser.mjs";
import {assertSame, bytes, seed, songs} from "./sounds.mjs";

const folder = new URL("../../build/web/", import.meta.url);
const built = readFileSync(new URL("../../dist/web/tindelwax.js", import.meta.url), "utf8");

// A page that has the module within, as a file must, and makes it global for the tests.
mkdirSync(folder, {recursive: true});
writeFileSync(new URL("organ.html", folder), `<!DOCTYPE html><meta charset="utf-8"><title>Organ</title>
<script type="module">${built} globalThis.createOrgan = createOrgan;</script>`);

const addressOf = {
    file: () => new URL("organ.html", folder).href,
    server: async (t) => `${await serve(t, folder)}organ.html`,
};

// Returns both outputs.
async function render(page, song, renderSizeHint) {
    const outputs = await page.evaluate(async ({rate, frames, parameters, messages}, seed, renderSizeHint) => {
        const context = new OfflineAudioContext({
            numberOfChannels: 2, length: frames, sampleRate: rate, renderSizeHint});
        const drawn = await createOrgan(context, {seed});
        for (const [index, value] of parameters)
            drawn.set(drawn.parameters[index].name, value);
        const organ = await createOrgan(context, {state: await drawn.save()});
        drawn.close();
        await createOrgan(context, {registration: "none"}).catch(() => {});
        organ.node.connect(context.destination);
        for (const [frame, ...message] of messages)
            organ.message(message, frame / rate);
        const sound = await context.startRendering();
        return [0, 1].map((channel) => Array.from(sound.getChannelData(channel)));
    }, song, seed, renderSizeHint);
    return outputs.map((output) => Float32Array.from(output));
}

for (const [from, name, block] of [["file", "all stops and vibrato at 48000", 128], ["server", "both at 44100", 256]])
    test(`opened from a ${from}, the samples are the plug-in's in blocks of ${block}`, async (t) => {
        const page = await open(t, await addressOf[from](t));
        const song = songs.find((one) => one.name === name);
        assertSame(await render(page, song, block), song.wanted);
    });

test("a controller acts on its frame, whatever was told first", async (t) => {
    const page = await open(t, await addressOf.file());
    const rate = 48000, cut = 1000, frames = 1024;
    const messages = [[cut, 0xB0, 7, 0], [0, 0x90, 60, 100]];
    const engine = new Engine(new WebAssembly.Module(bytes), {seed, rate});
    const wanted = [new Float32Array(frames), new Float32Array(frames)];
    engine.receive(...messages[1].slice(1));
    for (let start = 0, end; start < frames; start = end) {
        end = start < cut ? Math.min(start + 128, cut) : frames;
        if (start === cut)
            engine.receive(...messages[0].slice(1));
        engine.process(...wanted.map((output) => output.subarray(start, end)));
    }
    assertSame(await render(page, {rate, frames, parameters: [], messages}), wanted);
});

test("a page plays it, and hears of all that moves", async (t) => {
    const page = await open(t, await addressOf.file());
    await page.evaluate(async () => {
        const context = new AudioContext();
        globalThis.organ = await createOrgan(context, {registration: "glass"});
        globalThis.told = [];
        for (const type of ["change", "learned", "notes", "activity"])
            organ.addEventListener(type, ({detail}) => told.push([type, detail]));
        organ.node.connect(context.destination);
        await context.suspend();
    });
    const tells = async (action, ...wanted) => {
        await page.evaluate(`told.length = 0; ${action}`);
        await page.waitForFunction((nbWanted) => told.length >= nbWanted, {timeout: 5000}, wanted.length);
        await page.evaluate(() => organ.arrival());
        assert.deepEqual(await page.evaluate("told"), wanted);
    };
    await tells("organ.noteOn(60)", ["notes", [60]]); // which takes up the suspended context
    await waitForSound(page);
    await tells("organ.learn('Bass'); organ.message([0xB1, 20, 127])",
        ["activity", null], ["learned", {name: "Bass", number: 20, channel: 2}]);
    await tells("organ.bind('Bass', 21, 1); organ.controller(21, 0)", ["change", {name: "Bass", value: 0}]);
    // What the page has set since is newer than what the controller did.
    await tells("organ.controller(7, 0); organ.set('Volume', 0.5); organ.controller(86, 127)",
        ["change", {name: "Contour", value: 1}]);
    await tells("organ.register('glass')", ...[["Volume", 0.173], ["Contour", 0], ["Bass", 0.122]].map(
        ([name, value]) => ["change", {name, value: Math.fround(value)}]));
    await tells("organ.noteOn(62, organ.node.context.currentTime + 0.1); organ.panic()", ["notes", []]);
    await waitForSound(page, false);
    await tells("organ.noteOn(64, organ.node.context.currentTime + 0.2)", ["notes", [64]]);
});

test("the manual's example plays", async (t) => {
    const manual = readFileSync(new URL("../../docs/manual.md", import.meta.url), "utf8");
    const [, example] = manual.match(/```html\n([^]*?)```/);
    writeFileSync(new URL("example.html", folder), example);
    writeFileSync(new URL("tindelwax.js", folder), built);
    const page = await open(t, `${await serve(t, folder)}example.html`);
    await page.click("button");
    await waitForSound(page);
    await waitForSound(page, false);
});

for (const [lack, prepare] of [
    ["AudioWorklet", () => delete BaseAudioContext.prototype.audioWorklet],
    ["data: address", () => AudioWorklet.prototype.addModule = () => Promise.reject(new DOMException())],
    ["WebAssembly with SIMD", () => WebAssembly.compile = () => Promise.reject(new WebAssembly.CompileError())],
])
    test(`a browser without ${lack} is told so`, async (t) => {
        const page = await open(t, await addressOf.file(), {prepare});
        const told = await page.evaluate(() => createOrgan(new AudioContext()).catch(({message}) => message));
        assert.match(told, new RegExp(lack));
    });
