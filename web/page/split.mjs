// The split of the outputs, a slide switch of three positions: a point of its lettering, a click on
// it and the arrow keys move it.

import {element} from "./element.mjs";
import {Slider} from "./slider.mjs";
import {splitPositionOf, splitPositions} from "./words.mjs";

const step = 1 / (splitPositions.length - 1);

export class Split extends Slider {
    #labels;

    constructor() {
        const labels = splitPositions.map(({label}) => element("span", {}, label));
        super(element("div", {class: "slide", "aria-label": "Split"}, ...labels), step);
        this.#labels = labels;
        for (const [position, label] of labels.entries())
            label.addEventListener("click", () => this.move(splitPositions[position].value));
    }

    show(value, words) {
        super.show(value, words);
        for (const [position, label] of this.#labels.entries())
            label.classList.toggle("chosen", position === splitPositionOf(value));
    }
}
