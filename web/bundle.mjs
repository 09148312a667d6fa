// Makes one module of many, each in a scope of its own. They keep to what is simple: imports and
// exports by name, the latter where the thing is declared. An import with a type is the file itself,
// as text, which of a module is all that it stands on as well, or in base64.

import {readFileSync} from "node:fs";

const imports = /^import (\{[^}]*\}|\w+) from "([^"]+)"(?: with \{type: "(text|base64)"\})?;$/gm;
const exports = /^export ((?:async )?(?:function|class|const) (\w+))/gm;

function contentOf(file, type) {
    if (type === "base64")
        return readFileSync(file, "base64");
    return file.pathname.endsWith(".mjs") ? bundle(file) : readFileSync(file, "utf8");
}

export function bundle(entry) {
    const modules = new Map(); // by their addresses, in the order in which they run
    const add = (file) => {
        if (modules.has(file.href))
            return modules.get(file.href);
        const exported = [];
        const code = readFileSync(file, "utf8")
            .replace(imports, (_, names, path, type) => {
                const imported = new URL(path, file);
                return `const ${names} = ${type ? JSON.stringify(contentOf(imported, type)) : add(imported).name};`;
            })
            .replace(exports, (_, declaration, name) => {
                exported.push(name);
                return declaration;
            });
        const module = {name: `module${modules.size}`, code, exported: `{${exported.join(", ")}}`};
        modules.set(file.href, module);
        return module;
    };
    const {name, exported} = add(entry);
    const scopes = Array.from(modules.values(), (module) =>
        `const ${module.name} = (() => {\n${module.code}return ${module.exported};\n})();\n`);
    return `${scopes.join("")}export const ${exported} = ${name};\n`;
}
