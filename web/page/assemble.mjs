// Puts the page into one file: markup, styles, drawings and script, and the policy that
// lets a browser fetch nothing else.

import {createHash} from "node:crypto";
import {readFileSync} from "node:fs";

import {drawings} from "./drawings.mjs";

const styles = ["console", "panel", "plates", "rail", "manual"];

const read = (name) => readFileSync(new URL(name, import.meta.url), "utf8");
const hashOf = (text) => `'sha256-${createHash("sha256").update(text).digest("base64")}'`;

// An AudioWorklet comes from a data: address, which opens as well where the page is a local file.
const policy = (style, script) =>
    `default-src 'none'; style-src ${hashOf(style)}; script-src ${hashOf(script)} data: 'wasm-unsafe-eval'; ` +
    "img-src data:; base-uri 'none'; form-action 'none'";

// Of the script that is page.mjs with all that it stands on.
export function assemblePage(module) {
    const script = module.replaceAll("</script", "<\\/script");
    const style = styles.map((name) => read(`${name}.css`)).join("\n");
    const parts = {
        policy: policy(style, script),
        style: `<style>${style}</style>`,
        drawings: drawings(),
        script: `<script type="module">${script}</script>`,
    };
    return read("index.html").replace(/<!-- (\w+) -->|\{(\w+)\}/g, (whole, element, attribute) =>
        parts[element ?? attribute] ?? whole);
}
