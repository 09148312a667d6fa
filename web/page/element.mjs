// Elements made in one call: element("button", {className: "tab", role: "switch"}, children...)

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
