// Plays a song on the organ. All of it is handed over at once, so that a page goes on playing where
// its timers rest.

const leadTime = 0.1; // seconds
const noteBits = 0xE0; // in which a note's beginning and end are the same
const pollTime = 200; // ms

export class SongPlayer extends EventTarget {
    #organ;
    #end; // in the context's seconds; undefined while nothing plays
    #timer;

    constructor(organ) {
        super();
        this.#organ = organ;
    }

    get isPlaying() {
        return this.#end !== undefined;
    }

    play({events, seconds}) {
        this.stop();
        const {context} = this.#organ.node;
        this.#organ.wake();
        const start = context.currentTime + leadTime;
        const sounding = new Set();
        for (const {seconds: at, bytes} of events) {
            this.#organ.message(bytes, start + at);
            const [status, note, velocity] = bytes;
            if ((status & noteBits) === 0x80)
                sounding[(status & 0x10) !== 0 && velocity > 0 ? "add" : "delete"](note);
        }
        this.#end = start + seconds;
        for (const note of sounding)
            this.#organ.noteOff(note, this.#end);
        this.#timer = setInterval(() => context.currentTime > this.#end && this.#finish(), pollTime);
        this.dispatchEvent(new Event("change"));
    }

    // Silences what the song, or anybody else, holds.
    stop() {
        if (!this.isPlaying)
            return;
        this.#organ.panic();
        this.#finish();
    }

    #finish() {
        clearInterval(this.#timer);
        this.#end = undefined;
        this.dispatchEvent(new Event("change"));
    }
}
