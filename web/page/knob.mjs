// A knob: dragged up or to the right it opens, and finer while Shift is held.

import {drawing, element} from "./element.mjs";
import {Slider} from "./slider.mjs";

const keyStep = 0.02;
const travel = 200; // pixels from end to end
const notch = 0.03; // of the wheel
const finer = 0.2;

export class Knob extends Slider {
    #last; // place of the pointer that drags

    constructor(label) {
        super(element("div", {class: "knob", "aria-label": label}, drawing("knob")), keyStep);
        const {element: dial} = this;
        dial.addEventListener("pointerdown", (event) => this.#grasp(event));
        dial.addEventListener("pointermove", (event) => this.#drag(event));
        dial.addEventListener("wheel", (event) => this.#roll(event), {passive: false});
        dial.addEventListener("dblclick", () => this.dispatchEvent(new Event("reset")));
    }

    #grasp(event) {
        if (event.button !== 0)
            return;
        this.element.setPointerCapture(event.pointerId);
        this.#last = event;
        if (event.ctrlKey)
            this.dispatchEvent(new Event("reset"));
    }

    #drag(event) {
        if (!this.element.hasPointerCapture(event.pointerId))
            return;
        const way = event.clientX - this.#last.clientX - (event.clientY - this.#last.clientY);
        this.#last = event;
        if (way !== 0)
            this.move(this.value + way / travel * (event.shiftKey ? finer : 1));
    }

    #roll(event) {
        event.preventDefault();
        this.move(this.value - Math.sign(event.deltaY || event.deltaX) * notch * (event.shiftKey ? finer : 1));
    }
}
