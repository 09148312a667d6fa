// A key may be down under several hands, a finger and a MIDI keyboard: it sounds from the first press
// to the last release. Each hand can let go of all at once, so that nothing it held hangs.

export class HeldNotes {
    #organ;
    #hands = new Map(); // sets of those that hold a note, by the note

    constructor(organ) {
        this.#organ = organ;
    }

    press(note, hand) {
        if (!this.#hands.has(note)) {
            this.#hands.set(note, new Set());
            this.#organ.noteOn(note);
        }
        this.#hands.get(note).add(hand);
    }

    release(note, hand) {
        const hands = this.#hands.get(note);
        if (!hands?.delete(hand) || hands.size !== 0)
            return;
        this.#hands.delete(note);
        this.#organ.noteOff(note);
    }

    // Lets go of what the hand holds, else presses it.
    toggle(note, hand) {
        if (this.#hands.get(note)?.has(hand))
            this.release(note, hand);
        else
            this.press(note, hand);
    }

    releaseAll(hand) {
        for (const note of [...this.#hands.keys()])
            this.release(note, hand);
    }

    // Everything is silent already.
    forget() {
        this.#hands.clear();
    }
}
