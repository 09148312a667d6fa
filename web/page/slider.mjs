// What a knob and the split have in common: a value that keys, wheel and pointer move.

export class Slider extends EventTarget {
    #element;
    #step; // of an arrow key
    #value = 0;

    constructor(element, step) {
        super();
        this.#element = element;
        this.#step = step;
        element.setAttribute("role", "slider");
        element.setAttribute("aria-valuemin", "0");
        element.setAttribute("aria-valuemax", "1");
        element.tabIndex = 0;
        element.addEventListener("keydown", (event) => this.#onKey(event));
    }

    get element() {
        return this.#element;
    }

    get value() {
        return this.#value;
    }

    show(value, words) {
        this.#value = value;
        this.#element.setAttribute("aria-valuenow", value.toFixed(3));
        this.#element.setAttribute("aria-valuetext", words);
        this.#element.style.setProperty("--value", value);
    }

    // As the user wants it, who may want more than there is.
    move(value) {
        this.dispatchEvent(new CustomEvent("edit", {detail: value}));
    }

    #onKey(event) {
        const far = Math.max(this.#step, 0.1);
        const wanted = {
            ArrowUp: this.#value + this.#step, ArrowRight: this.#value + this.#step,
            ArrowDown: this.#value - this.#step, ArrowLeft: this.#value - this.#step,
            PageUp: this.#value + far, PageDown: this.#value - far, Home: 0, End: 1,
        }[event.key];
        if (wanted === undefined || event.ctrlKey || event.metaKey || event.altKey)
            return;
        event.preventDefault();
        this.move(wanted);
    }
}
