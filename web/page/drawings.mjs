// The panel's drawings as symbols of one inline SVG, from the files that the plug-in's pictures are
// made of.

import {readFileSync} from "node:fs";

const art = new URL("../../art/", import.meta.url);
const shared = ["materials", "keys"]; // only referred to by others
const drawn = ["panel", "tab", "knob", "toggle", "lamp", "button"];
const nameplate = /<text (?=[^>]*font-family="Lobster Two")([^>]*)>.*?<\/text>/;

// All files become one document, so each name gets its file's in front.
function withOwnNames(name, drawing) {
    return drawing
        .replace(/\bid="/g, `id="${name}-`)
        .replace(/(href="|url\()(?:(\w+)\.svg)?#/g, (_, before, file) => `${before}#${file ?? name}-`);
}

const bare = (drawing) => drawing.replace(/<!--.*?-->/gs, "").replace(/>\s+</g, "><").trim();

function contents(url) {
    return bare(readFileSync(url, "utf8")).match(/^<svg[^>]* viewBox="([^"]*)"[^>]*>(.*)<\/svg>$/s).slice(1);
}

// The name is set in a font that browsers do not have, so it comes in outlines.
function withNameplate(panel) {
    const [, outlines] = contents(new URL("nameplate.svg", import.meta.url));
    return panel.replace(nameplate, (_, attributes) =>
        outlines.replace("<path", `<path${attributes.match(/ fill="[^"]*"| filter="[^"]*"/g).join("")}`));
}

export function drawings() {
    const parts = [...shared, ...drawn].map((name) => {
        const [viewBox, inside] = contents(new URL(`${name}.svg`, art));
        const own = withOwnNames(name, name === "panel" ? withNameplate(inside) : inside);
        return shared.includes(name) ? own : `<symbol id="${name}" viewBox="${viewBox}">${own}</symbol>`;
    });
    return `<svg class="drawings" aria-hidden="true">${parts.join("")}</svg>`;
}
