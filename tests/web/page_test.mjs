// The page is played by whatever hands there are, and says what goes wrong.

import assert from "node:assert/strict";
import test from "node:test";

import {open, waitForSound} from "./browser.mjs";

const address = new URL("../../dist/tindelwax.html", import.meta.url).href;

async function openPage(t, {fragment = "", prepare} = {}) {
    const page = await open(t, address + fragment, {prepare});
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
    "the mouse and a key together": [[48, 50], async (page) => {
        await page.mouse.move(...await placeOf(page, 48));
        await page.mouse.down();
        await page.keyboard.press("KeyQ"); // the same
        await page.keyboard.down("KeyW");
    }, async (page) => {
        await page.mouse.up();
        await page.keyboard.up("KeyW");
    }],
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
