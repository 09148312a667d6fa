// A computer's keyboard as a manual, by the places of its keys: from Z to M lies an octave with its
// black keys above, from Q to P one and a half more; comma and full stop shift both by octaves.

const semitones = [..."zsxdcvgbhnjmq2w3er5t6y7ui9o0p"].map((letter) =>
    /\d/.test(letter) ? `Digit${letter}` : `Key${letter.toUpperCase()}`);
const lowestNote = 36;
const lowestOctave = -1, highestOctave = 1; // beyond, most keys would be beside the manual
const shifts = {Comma: -1, Period: 1};

export class ComputerKeys extends EventTarget {
    #held;
    #down = new Map(); // notes by the keys that began them
    #octave = 0;

    constructor(held) {
        super();
        this.#held = held;
        addEventListener("keydown", (event) => this.#press(event));
        addEventListener("keyup", (event) => this.#release(event.code));
    }

    // The code of each note's key.
    get codes() {
        return new Map(semitones.map((code, semitone) => [lowestNote + 12 * this.#octave + semitone, code]));
    }

    releaseAll() {
        for (const code of [...this.#down.keys()])
            this.#release(code);
    }

    #press({code, repeat, ctrlKey, metaKey, altKey}) {
        if (metaKey) // while it is down, some systems keep the release of the others to themselves
            return this.releaseAll();
        if (repeat || ctrlKey || altKey)
            return;
        if (code === "Escape")
            this.dispatchEvent(new Event("panic"));
        else if (code in shifts)
            this.#shift(shifts[code]);
        else if (semitones.includes(code) && !this.#down.has(code)) {
            const note = lowestNote + 12 * this.#octave + semitones.indexOf(code);
            this.#down.set(code, note);
            this.#held.press(note, code);
        }
    }

    #release(code) {
        if (!this.#down.has(code))
            return;
        this.#held.release(this.#down.get(code), code);
        this.#down.delete(code);
    }

    #shift(octaves) {
        this.#octave = Math.min(Math.max(this.#octave + octaves, lowestOctave), highestOctave);
        this.dispatchEvent(new Event("shift"));
    }
}
