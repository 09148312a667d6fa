// Elements made in one call: element("button", {className: "tab", role: "switch"}, children...)

const svgNamespace = "http://www.w3.org/2000/svg";

export function element(name, properties = {}, ...children) {
    const made = document.createElement(name);
    for (const [key, value] of Object.entries(properties))
        if (key in made && !key.startsWith("aria"))
            made[key] = value;
        else
            made.setAttribute(key.replace(/^aria(?=[A-Z])/, "aria-").toLowerCase(), value);
    made.append(...children);
    return made;
}

// One of the panel's drawings, by its name.
export function drawing(name) {
    const svg = document.createElementNS(svgNamespace, "svg");
    const use = document.createElementNS(svgNamespace, "use");
    svg.setAttribute("viewBox", document.getElementById(name).getAttribute("viewBox"));
    svg.setAttribute("aria-hidden", "true");
    use.setAttribute("href", `#${name}`);
    const [left, top, width, height] = svg.getAttribute("viewBox").split(" ");
    for (const [attribute, value] of Object.entries({x: left, y: top, width, height}))
        use.setAttribute(attribute, value);
    svg.append(use);
    return svg;
}
