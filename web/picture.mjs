// Pictures the page of dist/tindelwax.html, as it is played, for the README.

import puppeteer from "puppeteer-core";

const chord = ["KeyQ", "KeyE", "KeyT", "KeyI"]; // in the manual's middle

const browser = await puppeteer.launch({executablePath: "/usr/bin/chromium-headless-shell", args: ["--no-sandbox"]});
const page = await browser.newPage();
await page.setViewport({width: 1280, height: 800});
await page.goto(new URL("../dist/tindelwax.html", import.meta.url));
await page.waitForSelector(".ready");
await page.keyboard.press("Comma");
await page.keyboard.down("KeyX"); // a bass below it
await page.keyboard.press("Period");
for (const key of chord)
    await page.keyboard.down(key);
await page.waitForFunction((nbKeys) => document.querySelectorAll(".key.lit").length === nbKeys, {}, chord.length + 1);
await page.screenshot({path: new URL("../docs/page.jpg", import.meta.url).pathname, type: "jpeg", quality: 85});
await browser.close();
