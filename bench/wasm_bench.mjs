// What the engine costs as WebAssembly, beside the native one: CPU time of a second of sound at
// 48 kHz in blocks of 128, all stops and the vibrato on. The least of a few rounds of both.

import {execFileSync} from "node:child_process";
import {readFileSync} from "node:fs";

import {Engine} from "../web/engine.mjs";

const root = new URL("..", import.meta.url).pathname;
const module = new WebAssembly.Module(readFileSync(`${root}build/wasm/dist/tindelwax.wasm`));
const rate = 48000;
const block = 128;
const nbRounds = 5;
const nbSeconds = 200; // of sound, a round

// bench/sound_bench.cpp's, which plays the same.
function nativeMilliseconds(nbKeys) {
    const results = `${root}build/wasm_bench.json`;
    execFileSync(`${root}dist/bench`, [
        `--benchmark_filter=second_of_sound/keys:${nbKeys}/block:${block}/plain:0`,
        "--benchmark_out_format=json", `--benchmark_out=${results}`], {stdio: "ignore"});
    return JSON.parse(readFileSync(results)).benchmarks[0].cpu_time;
}

function wasmMilliseconds(nbKeys) {
    const engine = new Engine(module, {seed: 1, rate, block});
    const right = new Float32Array(block), left = new Float32Array(block);
    const render = () => {
        for (let frame = 0; frame < nbSeconds * rate; frame += block)
            engine.process(right, left);
    };
    for (const switchedOn of [0, 1, 2, 3, 4])
        engine.set(switchedOn, 1);
    for (let i = 0; i < nbKeys; ++i)
        engine.receive(0x90, nbKeys === 49 ? 24 + i : 36 + 3 * i, 100);
    render(); // and the compiler optimises
    const start = process.cpuUsage();
    render();
    const {user, system} = process.cpuUsage(start);
    return (user + system) / 1000 / nbSeconds;
}

console.log("keys  native ms/s  WebAssembly ms/s  ratio");
for (const nbKeys of [10, 49]) {
    let native = Infinity, wasm = Infinity;
    for (let round = 0; round < nbRounds; ++round) {
        native = Math.min(native, nativeMilliseconds(nbKeys));
        wasm = Math.min(wasm, wasmMilliseconds(nbKeys));
    }
    const columns = [native.toFixed(3).padStart(11), wasm.toFixed(3).padStart(16), (wasm / native).toFixed(2).padStart(5)];
    console.log(`${nbKeys}`.padStart(4), "", columns.join("  "));
}
