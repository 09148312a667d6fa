// The page is played by whatever hands there are, and says what goes wrong.

import assert from "node:assert/strict";
import test from "node:test";

import {open, serve, waitForSound} from "./browser.mjs";

const dist = new URL("../../dist/", import.meta.url);
const fileName = "tindelwax.html";

async function openPage(t, {folder = dist.href, fragment = "", prepare} = {}) {
    const page = await open(t, folder + fileName + fragment, {prepare});
    await page.waitForSelector(".ready");
    return page;
}

// Waits until these keys are lit, and no others.
async function waitForLit(page, ...notes) {
    await page.waitForFunction((wanted) =>
        Array.from(document.querySelectorAll(".key.lit"), ({dataset}) => dataset.note).join() === wanted,
    {timeout: 5000}, notes.join());
}

// The place of a key's end that is nearest to the player.
async function placeOf(page, note) {
    const {x, y, width, height} = await (await page.$(`[data-note="${note}"]`)).boundingBox();
    return [x + width / 2, y + 0.95 * height];
}

// For what the driver's touchscreen cannot.
async function touch(page, type, ...touchPoints) {
    page.touching ??= await page.createCDPSession();
    await page.touching.send("Input.dispatchTouchEvent", {type, touchPoints});
}

const hands = {
    "a key of the computer's": [[36], (page) => page.keyboard.down("KeyZ"), (page) => page.keyboard.up("KeyZ")],
    "one an octave lower": [[25, 42], async (page) => {
        await page.keyboard.down("KeyG");
        await page.keyboard.press("Comma");
        await page.keyboard.down("KeyS");
    }, async (page) => {
        await page.keyboard.press("Period");
        await Promise.all(["KeyG", "KeyS"].map((key) => page.keyboard.up(key)));
    }],
    "one whose window loses the focus": [[42], (page) => page.keyboard.down("KeyG"),
        (page) => page.evaluate(() => dispatchEvent(new Event("blur")))],
    "one whose page is hidden": [[44], (page) => page.keyboard.down("KeyH"), (page) => page.evaluate(() => {
        Object.defineProperty(document, "hidden", {value: true, configurable: true});
        document.dispatchEvent(new Event("visibilitychange"));
        delete document.hidden;
    })],
    "one that is silenced": [[45], (page) => page.keyboard.down("KeyN"), (page) => page.keyboard.press("Escape")],
    "the space bar": [[49], async (page) => {
        await page.focus(".key[tabindex='0']");
        await page.keyboard.press("ArrowRight");
        await page.keyboard.down("Space");
    }, (page) => page.keyboard.up("Space")],
    "a screen reader's click, and the enter key": [[49, 50], async (page) => {
        await page.$eval("[data-note='49']", (key) => key.click());
        await page.keyboard.press("ArrowRight");
        await page.keyboard.press("Enter");
    }, async (page) => {
        await page.keyboard.press("Enter");
        await page.$eval("[data-note='49']", (key) => key.click());
    }],
    "the mouse, which glides": [[26], async (page) => {
        await page.mouse.move(...await placeOf(page, 24));
        await page.mouse.down();
        await page.mouse.move(...await placeOf(page, 26));
    }, (page) => page.mouse.up()],
    "the mouse, which slides off and comes back": [[62], async (page) => {
        await page.mouse.move(...await placeOf(page, 60));
        await page.mouse.down();
        await page.mouse.move(5, 5);
        await waitForLit(page);
        await page.mouse.move(...await placeOf(page, 62));
    }, (page) => page.mouse.up()],
    "the mouse and a key together": [[48], async (page) => {
        await page.mouse.move(...await placeOf(page, 48));
        await page.mouse.down();
        await page.keyboard.press("KeyQ"); // the same
        await page.keyboard.down("KeyW");
        await waitForLit(page, 48, 50);
        await page.keyboard.up("KeyW");
    }, (page) => page.mouse.up()],
    "two fingers": [[62, 66], async (page) => {
        await page.touchscreen.touchStart(...await placeOf(page, 62));
        const second = await page.touchscreen.touchStart(...await placeOf(page, 64));
        await second.move(...await placeOf(page, 66));
    }, async (page) => {
        await page.touchscreen.touchEnd();
        await page.touchscreen.touchEnd();
    }],
    "a finger that the system takes away": [[50], async (page) => {
        const [x, y] = await placeOf(page, 50);
        await touch(page, "touchStart", {x, y});
    }, (page) => touch(page, "touchCancel")],
};

test("every hand plays, and lets go", async (t) => {
    const page = await openPage(t);
    for (const [name, [notes, press, release]] of Object.entries(hands))
        await t.test(name, async () => {
            await press(page);
            await waitForLit(page, ...notes);
            await waitForSound(page);
            await release(page);
            await waitForLit(page);
            await waitForSound(page, false);
        });
});

async function centreOf(control) {
    const {x, y, width, height} = await control.boundingBox();
    return [x + width / 2, y + height / 2];
}

async function drag(page, control, pixels) {
    const [x, y] = await centreOf(control);
    await page.mouse.move(x, y);
    await page.mouse.down();
    await page.mouse.move(x, y - pixels);
    await page.mouse.up();
}

const fairground = {Contour: "0.5 of 10", Volume: "1.0 of 10, -19.9 decibels"};

const moves = [
    ["a click", "Vibrato", "true", "false", (page, tab) => tab.click()],
    ["the enter key", "Bass chords", "true", "false", (page, tab) => tab.press("Enter")],
    ["an arrow key", "Contour", fairground.Contour, "0.7 of 10", (page, knob) => knob.press("ArrowUp")],
    ["the home key", "Volume", fairground.Volume, "0.0 of 10, silent", (page, knob) => knob.press("Home")],
    ["a drag", "Contour", "0.7 of 10", "5.7 of 10", (page, knob) => drag(page, knob, 100)],
    ["a drag beyond the end", "Volume", "0.0 of 10, silent", "10.0 of 10, 0.0 decibels",
        (page, knob) => drag(page, knob, 300)],
    ["the wheel", "Contour", "5.7 of 10", "5.4 of 10", (page) => page.mouse.wheel({deltaY: 100})],
    ["an arrow key", "Split", "bass and manual on both sides", "bass right, manual left",
        (page, slide) => slide.press("ArrowLeft")],
    ["a click", "Split", "bass right, manual left", "bass left, manual right",
        async (page, slide) => page.mouse.click(...await centreOf(await slide.$("span")))],
    ["two clicks", "Contour", "5.4 of 10", "1.0 of 10", (page, knob) => knob.click({count: 2})],
];

test("controls move the organ, and tell it in words", async (t) => {
    const page = await openPage(t);
    const state = () => page.evaluate(() => overheard.context.state);
    assert.equal(await state(), "suspended"); // before a gesture
    for (const [by, name, before, after, move] of moves)
        await t.test(`${name} by ${by}`, async () => {
            const control = await page.$(`aria/${name}`);
            const told = () => control.evaluate((element) => element.ariaValueText ?? element.ariaChecked);
            await page.mouse.move(...await centreOf(control));
            assert.equal(await told(), before);
            await move(page, control);
            assert.equal(await told(), after);
        });
    assert.equal(await state(), "running");
});

// What switches, sliders and radio buttons tell of their values.
const toldBy = (page, names) => Promise.all(names.map((name) => page.$eval(`aria/${name}`,
    ({ariaValueText, ariaChecked, checked}) => ariaValueText ?? ariaChecked ?? String(checked))));
const waitForWords = (page, words) => page.waitForFunction((wanted) =>
    document.querySelector("#status").textContent.includes(wanted), {timeout: 5000}, words);

test("an address brings the organ that it was copied from", async (t) => {
    const controls = ["Flute", "Vibrato", "Contour", "Split", "Late night"];
    const page = await openPage(t);
    await page.click("aria/Late night");
    assert.deepEqual(await toldBy(page, controls),
        ["true", "true", "5.5 of 10", "bass and manual on both sides", "true"]);
    await page.click("aria/Vibrato");
    await (await page.$("aria/Split")).press("Home");
    await page.click("#link");
    await waitForWords(page, "The link is");
    const changed = ["true", "false", "5.5 of 10", "bass left, manual right", "false"];
    assert.deepEqual(await toldBy(page, controls), changed);

    const fragmentOf = (one) => one.evaluate(() => location.hash);
    const fragment = await fragmentOf(page);
    const opened = await openPage(t, {folder: await serve(t, dist), fragment});
    assert.deepEqual(await toldBy(opened, controls), changed);
    await opened.click("#link");
    await waitForWords(opened, "The link is");
    assert.equal(await fragmentOf(opened), fragment); // of the same seed, too
    await opened.evaluate(() => location.hash = "Flute=0&Volume=loud");
    await waitForWords(opened, "no registration");
    await opened.evaluate(() => location.hash = "Flute=0&Contour=1");
    await opened.waitForFunction(() => document.querySelector(".flute").ariaChecked === "false");
    assert.deepEqual(await toldBy(opened, controls), ["false", "false", "10.0 of 10", ...changed.slice(3)]);
});

// In the page: a browser with MIDI inputs that come and go.
function fakeMidi() {
    const inputs = new Map();
    const access = {inputs, onstatechange: null};
    navigator.requestMIDIAccess = async () => access;
    const change = (port, state) => {
        port.state = state;
        access.onstatechange?.({port});
    };
    globalThis.plug = (name) => {
        inputs.set(name, inputs.get(name) ?? {type: "input", name, onmidimessage: null});
        change(inputs.get(name), "connected");
    };
    globalThis.unplug = (name) => change(inputs.get(name), "disconnected");
    globalThis.send = (name, ...data) => inputs.get(name).onmidimessage?.({data: Uint8Array.from(data)});
    plug("one");
}

test("MIDI keyboards play, teach and go", async (t) => {
    const page = await openPage(t, {prepare: fakeMidi});
    const send = (name, ...bytes) => page.evaluate((...message) => send(...message), name, ...bytes);
    await page.click("#midi");
    await waitForWords(page, "one plays");
    await send("one", 0x90, 60, 100);
    await waitForLit(page, 60);
    assert(await page.evaluate(() => {
        send("one", 0x80, 10, 0);
        return document.querySelector(".lamp").matches(".lit");
    }));
    await page.evaluate(() => plug("two"));
    await waitForWords(page, "one, two play");
    await send("two", 0x95, 62, 100);
    await send("one", 0xB0, 120, 0);
    await waitForLit(page);
    await send("two", 0x95, 62, 100);
    await waitForLit(page, 62);
    await waitForSound(page);
    await page.evaluate(() => unplug("two"));
    await waitForWords(page, "one plays");
    await waitForLit(page);
    await waitForSound(page, false);

    await send("one", 0xC0, 6); // the seventh registration
    assert.deepEqual(await toldBy(page, ["Full organ", "Contour"]), ["true", "1.0 of 10"]);
    await page.click("aria/MIDI learn");
    await (await page.$("aria/Contour")).press("End");
    await send("one", 0xB2, 20, 127);
    await waitForWords(page, "Contour follows controller 20 on channel 3");
    assert.deepEqual(await toldBy(page, ["MIDI learn"]), ["false"]);
    await page.reload();
    await page.waitForSelector(".ready");
    await page.click("#midi");
    await send("one", 0xB2, 20, 0);
    await page.waitForFunction(() => document.querySelector("[aria-label=Contour]").ariaValueText === "0.0 of 10");
});

for (const [why, prepare, words] of [
    ["has no MIDI", () => delete Navigator.prototype.requestMIDIAccess, "has no MIDI"],
    ["is not to have MIDI", () => navigator.requestMIDIAccess = async () => {
        throw new DOMException();
    }, "not allowed"],
    ["has no AudioWorklet", () => delete BaseAudioContext.prototype.audioWorklet, "AudioWorklet"],
])
    test(`a browser that ${why} is told so`, async (t) => {
        const page = await open(t, dist.href + fileName, {prepare});
        if (why.includes("MIDI"))
            await (await page.waitForSelector("#midi", {visible: true})).click();
        await waitForWords(page, words);
    });

// A song of one note, from half a second on and as long.
const song = [..."MThd\0\0\0\x06\0\0\0\x01\0\x60MTrk\0\0\0\x0c\x60\x90\x40\x64\x60\x80\x40\0\0\xff\x2f\0"];

// In the page: returns which keys were lit together until the song ends.
async function watchSong() {
    const seen = new Set();
    while (document.querySelector("#demo").matches(".on")) {
        seen.add(Array.from(document.querySelectorAll(".key.lit"), ({dataset}) => dataset.note).join());
        await new Promise(requestAnimationFrame);
    }
    return [...seen];
}

test("songs play on the keys, and what is none says so", async (t) => {
    const page = await openPage(t);
    const drop = (name, bytes) => page.evaluate((name, bytes) => {
        const dataTransfer = new DataTransfer();
        dataTransfer.items.add(new File([Uint8Array.from(bytes)], name));
        dispatchEvent(new DragEvent("drop", {dataTransfer, cancelable: true}));
    }, name, bytes.map((character) => character.charCodeAt(0)));
    await drop("letter.txt", [..."Dear organist, please play softly."]);
    await waitForWords(page, "letter.txt is no MIDI file");
    await (await page.$("#file")).uploadFile(new URL("../../demo/song.mid", import.meta.url).pathname);
    await waitForWords(page, "song.mid plays as soon as you click");
    await page.waitForSelector(".key.lit");
    await page.click("aria/Stop the song");
    await waitForLit(page);
    await drop("note.mid", song);
    await waitForWords(page, "note.mid plays.");
    assert.deepEqual(await page.evaluate(watchSong), ["", "64"]); // and nothing of the other

    await page.click("aria/Play the demo");
    await page.waitForSelector(".key.lit");
    await page.click("aria/Panic: silence everything");
    await page.waitForSelector("aria/Play the demo");
    await waitForSound(page, false);
});

test("a recording is a WAV file of what was heard", async (t) => {
    const page = await openPage(t, {prepare: () => {
        const {createObjectURL} = URL;
        URL.createObjectURL = (file) => {
            globalThis.saved = file;
            return createObjectURL(file);
        };
    }});
    await (await page.$("aria/Split")).press("Home");
    await page.evaluate(() => { // as fast as anybody clicks
        for (let click = 0; click < 3; ++click)
            document.querySelector("#record").click();
    });
    await waitForWords(page, "tindelwax.wav");
    await page.evaluate(() => document.querySelector("#status").textContent = "");
    await page.keyboard.down("KeyZ");
    await waitForSound(page);
    await page.click("aria/Save the recording");
    await waitForWords(page, "tindelwax.wav");
    const bytes = await page.evaluate(async () => Array.from(new Uint8Array(await saved.arrayBuffer())));
    const file = Buffer.from(bytes);
    const rate = await page.evaluate(() => overheard.context.sampleRate);
    const headerBytes = 58;
    const nbFrames = (file.length - headerBytes) / 8;
    assert.equal(file.toString("latin1", 0, 4) + file.toString("latin1", 8, 16), "RIFFWAVEfmt ");
    assert.deepEqual([4, 16, 24, 28, 46, 54].map((at) => file.readUInt32LE(at)),
        [file.length - 8, 18, rate, rate * 8, nbFrames, nbFrames * 8]);
    assert.deepEqual([20, 22, 32, 34].map((at) => file.readUInt16LE(at)), [3, 2, 8, 32]);
    const peakOf = (channel) => Math.max(...Array.from({length: nbFrames}, (_, frame) =>
        Math.abs(file.readFloatLE(headerBytes + 8 * frame + 4 * channel))));
    assert.equal(peakOf(0), 0); // the bass alone is there, which nobody played
    assert(peakOf(1) > 1e-3);
});

const panelControls = [
    "switch MIDI learn", "button Panic: silence everything", "switch Vibrato", "switch Bass chords",
    "switch Flute", "switch Bright", "switch Brass", "switch Mellow", "slider Contour", "slider Bass volume",
    "slider Volume",
];
const deskControls = [
    "button Play the demo", "button Open a song…", "button Record", "button MIDI keyboard", "button Copy a link",
];
const otherControls = [...panelControls, ...deskControls, "slider Split"];

test("every control has a name, and the keyboard reaches it visibly", async (t) => {
    const page = await openPage(t);
    const flat = (node) => [node, ...(node.children ?? []).flatMap(flat)];
    const named = flat(await page.accessibility.snapshot())
        .filter(({role}) => ["button", "radio", "slider", "switch"].includes(role))
        .map(({role, name}) => `${role} ${name}`);
    assert.deepEqual(named.slice(12, -49), otherControls);
    assert(named.slice(0, 12).every((name) => /^radio \w/.test(name)));
    assert.deepEqual([named.at(-49), named.at(-36), named.at(-1)],
        ["button C 1, bass", "button C sharp 2", "button C 5"]);

    const reached = [];
    for (let stop; stop !== "body"; reached.push(stop)) {
        await page.keyboard.press("Tab");
        stop = await page.evaluate(() => {
            const {activeElement: element, body} = document;
            const isSeen = getComputedStyle(element.closest("label") ?? element).outlineStyle === "solid";
            const name = element.ariaLabel ?? (element.textContent || element.value);
            return element === body ? "body" : `${isSeen} ${name}`;
        });
    }
    const wanted = ["fairground", ...otherControls.map((name) => name.replace(/^\w+ /, "")), "C 3"];
    assert.deepEqual(reached.slice(0, -1), wanted.map((name) => `true ${name}`));
});

const sizes = [[360, 640], [640, 360], [768, 1024], [1024, 768], [1280, 800], [3840, 2160]];
const inSight = ".key, .panel > :not(svg), .slide, .desk button, .registrations label:nth-of-type(-n + 3)";

test("all that is played is in sight, from a phone to a wall", async (t) => {
    const page = await openPage(t);
    for (const [width, height] of sizes)
        await t.test(`${width} by ${height}`, async () => {
            await page.setViewport({width, height});
            const covered = await page.evaluate((inSight) => {
                const isOnTop = (element) => {
                    const {left, right, bottom, height} = element.getBoundingClientRect();
                    return element.contains(document.elementFromPoint((left + right) / 2, bottom - height / 8));
                };
                return Array.from(document.querySelectorAll(inSight))
                    .filter((element) => !isOnTop(element)).map(({outerHTML}) => outerHTML);
            }, inSight);
            assert.deepEqual(covered, []);
            assert.deepEqual(await page.$$eval("html, .plate", (parts) => parts
                .filter(({scrollWidth, clientWidth}) => scrollWidth > clientWidth).map(({outerHTML}) => outerHTML)), []);
            assert(await page.evaluate(() => document.documentElement.scrollHeight <= innerHeight));
        });
});
