// The registrations by their names. One stays marked until the stops are no longer as it draws them.

import {element} from "./element.mjs";

export class Registrations extends EventTarget {
    #organ;
    #inputs = [];
    #isDrawing = false;

    constructor(organ, root) {
        super();
        this.#organ = organ;
        for (const {key, name, description} of organ.registrations) {
            const input = element("input", {type: "radio", name: "registration", value: key});
            input.addEventListener("change", () => this.draw(key));
            this.#inputs.push(input);
            root.append(element("label", {title: description}, input, element("span", {}, name)));
        }
        organ.addEventListener("change", () => this.unmark());
    }

    // By its place in the list or its key; there may be none there.
    draw(which) {
        const input = this.#inputs[which] ?? this.#inputs.find(({value}) => value === which);
        if (!input)
            return;
        this.#isDrawing = true;
        this.#organ.register(input.value);
        this.#isDrawing = false;
        input.checked = true;
        const {name, description} = this.#organ.registrations.find(({key}) => key === input.value);
        this.dispatchEvent(new CustomEvent("say", {detail: `${name}. ${description}`}));
    }

    unmark() {
        if (!this.#isDrawing)
            for (const input of this.#inputs)
                input.checked = false;
    }
}
