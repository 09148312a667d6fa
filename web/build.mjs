// Builds dist/web/tindelwax.js, the organ as a module that needs nothing beside it, from what
// build/wasm has.

import {mkdirSync, writeFileSync} from "node:fs";

import {bundle} from "./bundle.mjs";

const dist = new URL("../dist/", import.meta.url);

function write(name, text) {
    const file = new URL(name, dist);
    mkdirSync(new URL(".", file), {recursive: true});
    writeFileSync(file, text);
    console.log(`dist/${name}: ${Math.ceil(text.length / 1000)} kB`);
}

write("web/tindelwax.js", bundle(new URL("organ.mjs", import.meta.url)));
