// Elements made in one call: element("button", {class: "tab", role: "switch"}, children...)

const svgNamespace = "http://www.w3.org/2000/svg";

function withAttributes(made, attributes) {
    for (const [name, value] of Object.entries(attributes))
        made.setAttribute(name, value);
    return made;
}

export function element(name, attributes = {}, ...children) {
    const made = withAttributes(document.createElement(name), attributes);
    made.append(...children);
    return made;
}

// One of the panel's drawings, by its name.
export function drawing(name) {
    const viewBox = document.getElementById(name).getAttribute("viewBox");
    const [x, y, width, height] = viewBox.split(" ");
    const svg = withAttributes(document.createElementNS(svgNamespace, "svg"), {viewBox, "aria-hidden": "true"});
    svg.append(withAttributes(document.createElementNS(svgNamespace, "use"), {href: `#${name}`, x, y, width, height}));
    return svg;
}
