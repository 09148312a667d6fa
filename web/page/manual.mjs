// The 49 keys in two halves, which stand side by side or, where the page is narrow, one above the
// other. Pointers play them, each finger for itself and gliding from key to key, and so do the arrow
// keys with the space bar. Enter, and the click of a screen reader, presses a key or lets go of it.

import {element} from "./element.mjs";

const lowestNote = 24, highestNote = 72;
const firstOfUpperHalf = 48;
const highestBassNote = 35;
const latch = "latch"; // the hand that holds what was toggled
const letters = ["C", "C sharp", "D", "D sharp", "E", "F", "F sharp", "G", "G sharp", "A", "A sharp", "B"];

// Sharps stand off the middle between their neighbours, as on any keyboard, by parts of a natural's width.
const sharpShifts = {1: -0.1, 3: 0.1, 6: -0.12, 8: 0, 10: 0.12};
const sharpWidth = 0.6; // of a natural's

const isSharp = (note) => note % 12 in sharpShifts;
const isBass = (note) => note <= highestBassNote;
const nameOf = (note) => `${letters[note % 12]} ${Math.floor(note / 12) - 1}${isBass(note) ? ", bass" : ""}`;

const range = (from, to) => Array.from({length: to - from}, (_, index) => from + index);

export class Manual {
    #held;
    #keys = new Map();
    #pointers = new Map(); // the note that each holds, by its id; undefined while beside the keys
    #root;
    #focused = 48;
    #spaced; // the note under the space bar

    constructor(root, held) {
        this.#root = root;
        this.#held = held;
        for (const [name, notes] of [["lower", range(lowestNote, firstOfUpperHalf)],
            ["upper", range(firstOfUpperHalf, highestNote + 1)]])
            root.append(this.#makeHalf(name, notes));
        root.addEventListener("pointerdown", (event) => this.#touch(event));
        addEventListener("pointermove", (event) => this.#move(event));
        for (const end of ["pointerup", "pointercancel"])
            addEventListener(end, (event) => this.#lift(event.pointerId));
        root.addEventListener("contextmenu", (event) => event.preventDefault());
        root.addEventListener("click", (event) => this.#click(event));
        root.addEventListener("keydown", (event) => this.#onKeyDown(event));
        root.addEventListener("keyup", (event) => event.code === "Space" && this.#releaseSpace());
        root.addEventListener("focusout", () => this.#releaseSpace());
        this.#keys.get(this.#focused).tabIndex = 0;
    }

    // Lights the keys of these notes and no others.
    light(notes) {
        const sounding = new Set(notes);
        for (const [note, key] of this.#keys) {
            key.classList.toggle("lit", sounding.has(note));
            key.setAttribute("aria-pressed", String(sounding.has(note)));
        }
    }

    // Letters on the keys, by their notes.
    label(lettering) {
        for (const [note, key] of this.#keys)
            key.dataset.letter = lettering.get(note) ?? "";
    }

    releaseAll() {
        for (const pointer of [...this.#pointers.keys()])
            this.#lift(pointer);
        this.#releaseSpace();
        this.#held.releaseAll(latch);
    }

    #makeHalf(name, notes) {
        const naturals = notes.filter((note) => !isSharp(note));
        const half = element("div", {class: `half ${name}`});
        half.style.setProperty("--naturals", naturals.length);
        for (const note of notes) {
            const before = naturals.filter((natural) => natural < note).length;
            const key = element("div", {class: `key ${isSharp(note) ? "sharp" : "natural"}`, role: "button",
                tabindex: -1, "aria-label": nameOf(note), "aria-pressed": "false"});
            key.classList.toggle("bass", isBass(note));
            key.dataset.note = note;
            const left = isSharp(note) ? before - sharpWidth / 2 + sharpShifts[note % 12] : before;
            key.style.setProperty("--left", left);
            this.#keys.set(note, key);
            half.append(key);
        }
        return half;
    }

    #noteAt({clientX, clientY}) {
        const key = document.elementFromPoint(clientX, clientY)?.closest(".key");
        return key ? Number(key.dataset.note) : undefined;
    }

    #touch(event) {
        if (event.button !== 0)
            return;
        event.preventDefault(); // the focus stays where it is
        this.#pointers.set(event.pointerId, undefined);
        this.#move(event);
    }

    #move(event) {
        const {pointerId: pointer, buttons} = event;
        if (!this.#pointers.has(pointer))
            return;
        if (buttons === 0) // it was let go of where nobody told
            return this.#lift(pointer);
        const before = this.#pointers.get(pointer), note = this.#noteAt(event);
        if (note === before)
            return;
        this.#pointers.set(pointer, note);
        if (note !== undefined)
            this.#held.press(note, pointer);
        if (before !== undefined)
            this.#held.release(before, pointer);
    }

    #lift(pointer) {
        if (this.#pointers.get(pointer) !== undefined)
            this.#held.release(this.#pointers.get(pointer), pointer);
        this.#pointers.delete(pointer);
    }

    // Only what no pointer has done: pointers play by themselves.
    #click({detail, target}) {
        const key = target.closest(".key");
        if (detail === 0 && key)
            this.#held.toggle(Number(key.dataset.note), latch);
    }

    #onKeyDown(event) {
        if (event.ctrlKey || event.metaKey || event.altKey)
            return;
        const to = {Home: lowestNote, ArrowLeft: this.#focused - 1, ArrowRight: this.#focused + 1,
            End: highestNote}[event.key];
        if (to !== undefined)
            this.#focus(Math.min(Math.max(to, lowestNote), highestNote));
        else if (event.code === "Space" && !event.repeat)
            this.#held.press(this.#spaced = this.#focused, this);
        else if (event.key === "Enter" && !event.repeat)
            this.#held.toggle(this.#focused, latch);
        else if (event.code !== "Space")
            return;
        event.preventDefault();
    }

    #focus(note) {
        this.#keys.get(this.#focused).tabIndex = -1;
        this.#keys.get(note).tabIndex = 0;
        this.#keys.get(this.#focused = note).focus();
    }

    #releaseSpace() {
        if (this.#spaced !== undefined)
            this.#held.release(this.#spaced, this);
        this.#spaced = undefined;
    }
}
