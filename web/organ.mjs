// Makes organs for a page, of the engine and the AudioWorklet's module that it has within.

import engineInBase64 from "../build/wasm/dist/tindelwax.wasm" with {type: "base64"};
import {Organ} from "./organ_node.mjs";
import processor from "./processor.mjs" with {type: "text"};

const waiting = new WeakMap(); // the organs of each OfflineAudioContext

// Rendering would begin before what an organ was told has arrived: it waits at its first frame. The
// browsers where it cannot wait there are those where it need not.
async function waitAtStart(context, organ) {
    if (waiting.has(context)) {
        waiting.get(context).push(organ);
        return;
    }
    waiting.set(context, [organ]);
    await context.suspend(0);
    await Promise.all(waiting.get(context).map((waited) => waited.arrival()));
    context.resume();
}

let module; // a promise of the compiled engine, for all organs of the page

function compile() {
    const bytes = Uint8Array.from(atob(engineInBase64), (character) => character.charCodeAt(0));
    return globalThis.WebAssembly?.compile(bytes).catch(() => {});
}

// Makes an organ in a context, which may be an OfflineAudioContext. The seed, a number of 32 bits, is
// one of many instruments, that much alike; without one it is drawn. A state, as save gives it, has its
// own. A registration is drawn by its key.
export async function createOrgan(context, {seed, registration, state} = {}) {
    if (!context.audioWorklet)
        throw new Error("The organ needs an AudioWorklet, which newer browsers have for pages that come by "
            + "https, from a file or from this computer.");
    module ??= compile();
    if (!await module)
        throw new Error("The organ needs WebAssembly with SIMD, which newer browsers have where the page's "
            + "content security policy lets them.");
    await context.audioWorklet.addModule(`data:text/javascript,${encodeURIComponent(processor)}`).catch(() => {
        throw new Error("The organ's AudioWorklet comes from a data: address, which the page's content security "
            + "policy has to let it.");
    });
    seed ??= crypto.getRandomValues(new Uint32Array(1))[0];
    const organ = new Organ(context, await module, seed);
    if (context instanceof OfflineAudioContext && context.suspend)
        waitAtStart(context, organ);
    try {
        if (state !== undefined)
            await organ.load(state);
        if (registration !== undefined)
            organ.register(registration);
    } catch (error) {
        organ.close();
        throw error;
    }
    return organ;
}
