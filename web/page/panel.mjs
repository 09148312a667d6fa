// The panel's controls over its drawing, and the split, which has no place there: they show what the
// organ's parameters are and move them, and choose what MIDI learn is to teach.

import {drawing, element} from "./element.mjs";
import {Knob} from "./knob.mjs";
import {Split} from "./split.mjs";
import {wordsOf} from "./words.mjs";

const width = 480, height = 350; // of the drawing, without the manual

// Where on the panel a drawing's own zero lies.
const tabs = {Vibrato: [99, 176], BassChords: [156, 176], Flute: [212, 176], Bright: [269, 176], Brass: [326, 176],
    Mellow: [382, 176]};
const knobs = {Contour: [116.5, 299.5], Bass: [242, 299.5], Volume: [367, 299.5]};
const places = {learn: [323, 29], lamp: [368, 29], panic: [415, 29]};

const labels = {BassChords: "Bass chords", Bass: "Bass volume"};
const labelOf = (name) => labels[name] ?? name;

const lampTime = 120; // ms

function place(control, [x, y]) {
    const [left, top, across, down] = control.querySelector("svg").getAttribute("viewBox").split(" ").map(Number);
    Object.assign(control.style, {
        left: `${(x + left) / width * 100}%`, top: `${(y + top) / height * 100}%`,
        width: `${across / width * 100}%`, height: `${down / height * 100}%`,
    });
    return control;
}

export class Panel extends EventTarget {
    #organ;
    #controls = new Map(); // what shows a value, by the parameter's name
    #learn = element("button", {class: "learn", role: "switch", "aria-label": "MIDI learn", "aria-checked": "false"},
        drawing("toggle"));
    #lamp = element("div", {class: "lamp", role: "img", "aria-label": "MIDI lamp"}, drawing("lamp"));
    #lampTimer;

    constructor(organ, {panel, split}) {
        super();
        this.#organ = organ;
        const panic = element("button", {class: "panic", "aria-label": "Panic: silence everything"},
            drawing("button"));
        panic.addEventListener("click", () => this.dispatchEvent(new Event("panic")));
        this.#learn.addEventListener("click", () =>
            this.#isLearning ? this.#cancelLearning() : this.#beginLearning());
        panel.append(place(this.#learn, places.learn), place(this.#lamp, places.lamp), place(panic, places.panic));
        for (const [name, where] of Object.entries(tabs))
            panel.append(place(this.#makeTab(name), where));
        for (const [name, where] of Object.entries(knobs))
            panel.append(place(this.#makeSlider(name, new Knob(labelOf(name))), where));
        split.append(this.#makeSlider("Split", new Split()));
        for (const name of this.#controls.keys())
            this.#show(name);
        organ.addEventListener("change", ({detail}) => this.#show(detail.name));
        organ.addEventListener("learned", ({detail}) => this.#endLearning(detail));
    }

    // MIDI came.
    flash() {
        clearTimeout(this.#lampTimer);
        this.#lamp.classList.add("lit");
        this.#lampTimer = setTimeout(() => this.#lamp.classList.remove("lit"), lampTime);
    }

    #makeTab(name) {
        const tab = element("button", {class: `tab ${name.toLowerCase()}`, role: "switch",
            "aria-label": labelOf(name)}, drawing("tab"));
        tab.addEventListener("click", () => this.#edit(name, this.#organ.get(name) < 0.5 ? 1 : 0));
        this.#controls.set(name, (value) => tab.setAttribute("aria-checked", String(value >= 0.5)));
        return tab;
    }

    #makeSlider(name, slider) {
        const {defaultValue} = this.#organ.parameters.find((parameter) => parameter.name === name);
        slider.addEventListener("edit", ({detail}) => this.#edit(name, detail));
        slider.addEventListener("reset", () => this.#edit(name, defaultValue));
        this.#controls.set(name, (value, words) => slider.show(value, words));
        return slider.element;
    }

    #edit(name, value) {
        this.#organ.set(name, value);
        this.#show(name);
        if (this.#isLearning) {
            this.#organ.learn(name);
            this.#say(`Now move the controller that is to move ${labelOf(name)}.`);
        }
        this.dispatchEvent(new Event("edit"));
    }

    #show(name) {
        const value = this.#organ.get(name);
        this.#controls.get(name)(value, wordsOf(name, value, this.#organ.text(name)));
    }

    get #isLearning() {
        return this.#learn.getAttribute("aria-checked") === "true";
    }

    set #isLearning(isLearning) {
        this.#learn.setAttribute("aria-checked", String(isLearning));
    }

    #beginLearning() {
        this.#isLearning = true;
        this.#say("MIDI learn: touch the control that is to be taught.");
    }

    #cancelLearning() {
        this.#isLearning = false;
        this.#organ.learn(null);
        this.#say("");
    }

    #endLearning({name, number, channel}) {
        this.#isLearning = false;
        this.#say(`${labelOf(name)} follows controller ${number} on channel ${channel}.`);
    }

    #say(words) {
        this.dispatchEvent(new CustomEvent("say", {detail: words}));
    }
}
