// Headless Chromium, for the tests of what browsers play.

import assert from "node:assert/strict";
import {once} from "node:events";
import {readFileSync} from "node:fs";
import {createServer} from "node:http";
import puppeteer from "puppeteer-core";

// Serves a folder's files to this machine until the test ends. Returns the address.
export async function serve(t, folder) {
    const types = {html: "text/html", js: "text/javascript"};
    const server = createServer(({url}, response) => {
        response.setHeader("Content-Type", types[url.split(".").at(-1)] ?? "text/plain");
        response.end(readFileSync(new URL(url.slice(1), folder)));
    }).listen(0, "localhost");
    await once(server, "listening");
    t.after(() => server.close());
    return `http://localhost:${server.address().port}/`;
}

// In the page: what goes to the loudspeakers goes to an analyser as well.
function overhear() {
    const {connect} = AudioNode.prototype;
    AudioNode.prototype.connect = function (to, ...rest) {
        if (to instanceof AudioDestinationNode && to.context instanceof AudioContext)
            connect.call(this, globalThis.overheard ??= new AnalyserNode(to.context));
        return connect.call(this, to, ...rest);
    };
}

// Waits until what the page plays is heard, or else until nothing is.
export async function waitForSound(page, sounds = true) {
    await page.waitForFunction((wanted) => {
        const {overheard} = globalThis;
        const samples = new Float32Array(overheard?.fftSize ?? 0);
        overheard?.getFloatTimeDomainData(samples);
        return samples.some((sample) => Math.abs(sample) > 1e-4) === wanted;
    }, {timeout: 5000, polling: 20}, sounds);
}

// Opens a page until the test ends, in a browser of its own. What the page writes on the console, and
// what it asks for elsewhere than beside itself, fails the test. What is prepared runs in it first.
export async function open(t, address, {prepare = () => {}} = {}) {
    const browser = await puppeteer.launch({
        executablePath: "/usr/bin/chromium-headless-shell",
        args: ["--no-sandbox", "--autoplay-policy=document-user-activation-required"],
    });
    const [page] = await browser.pages();
    const complaints = [];
    page.on("console", (message) => complaints.push(message.text()));
    page.on("pageerror", (error) => complaints.push(String(error)));
    page.on("request", (request) => {
        const url = request.url();
        if (!/^(data|blob):/.test(url) && !url.startsWith(new URL(".", address).href))
            complaints.push(`It asks for ${url}`);
    });
    t.after(async () => {
        await browser.close();
        assert.deepEqual(complaints, []);
    });
    await page.evaluateOnNewDocument(overhear);
    await page.evaluateOnNewDocument(prepare);
    await page.goto(address);
    return page;
}
