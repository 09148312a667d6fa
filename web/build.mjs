// Builds, from what build/wasm has, what needs nothing beside it: dist/web/tindelwax.js, the organ as a
// module, and dist/tindelwax.html, the page.

import {mkdirSync, writeFileSync} from "node:fs";

import {bundle} from "./bundle.mjs";
import {assemblePage} from "./page/assemble.mjs";

const dist = new URL("../dist/", import.meta.url);

function write(name, text) {
    const file = new URL(name, dist);
    mkdirSync(new URL(".", file), {recursive: true});
    writeFileSync(file, text);
    console.log(`dist/${name}: ${Math.ceil(text.length / 1000)} kB`);
}

const bundled = (name) => bundle(new URL(name, import.meta.url));

write("web/tindelwax.js", bundled("organ.mjs"));
write("tindelwax.html", assemblePage(bundled("page/page.mjs")));
