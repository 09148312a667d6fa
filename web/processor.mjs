// The AudioWorklet's half of the organ, on the thread where sound is made. Its public methods are
// what the other half asks of it, by their names.

import {Engine} from "./engine.mjs";
import {Schedule} from "./schedule.mjs";

const isMessage = ({method}) => method === "receive";

// A note has its frame within a block; all else acts on the whole block that it comes with.
const isNote = (event) => isMessage(event) && (event.things[0] & 0xE0) === 0x80;

class Processor extends AudioWorkletProcessor {
    #engine;
    #block = globalThis.renderQuantumSize ?? 128;
    #schedule = new Schedule();
    #nbSettings = 0; // all that was told but messages
    #isOpen = true;

    constructor({processorOptions: {module, seed}}) {
        super();
        this.#engine = new Engine(module, {seed, rate: sampleRate, block: this.#block});
        this.port.onmessage = ({data: [asked, ...things]}) => this[asked](...things);
    }

    // Tells the engine something at a frame. What is late, or has no time at all, counts as coming
    // now, so that it stays behind what came before.
    tell(frame, method, ...things) {
        this.#schedule.add({frame: frame > currentFrame ? frame : currentFrame, method, things});
    }

    panic() {
        this.#schedule.drop((event) => !isMessage(event));
        this.#engine.panic();
    }

    // Answers when all has arrived that was asked before.
    answer() {
        this.port.postMessage(["answered"]);
    }

    close() {
        this.#isOpen = false;
    }

    // Allocates only where something cuts the block and where there is something to tell.
    process(_, outputs) {
        const first = outputs[0][0], second = outputs[0][1];
        for (let start = 0, end; start < first.length; start = end) {
            end = this.#tellDue(start, Math.min(start + this.#block, first.length));
            if (end - start === first.length)
                this.#engine.process(first, second);
            else
                this.#engine.process(first.subarray(start, end), second.subarray(start, end));
        }
        if (this.#engine.followKeys())
            this.port.postMessage(["notes", this.#engine.notes]);
        return this.#isOpen;
    }

    // Tells the engine what is due in a part of the block. Returns where the part must end.
    #tellDue(start, end) {
        for (let event; (event = this.#schedule.next)?.frame < currentFrame + end; this.#schedule.take()) {
            const frame = Math.max(event.frame - currentFrame, start);
            if (frame > start && !isNote(event))
                return frame;
            this.#tell(event, frame - start);
        }
        return end;
    }

    #tell(event, frame) {
        const {learning} = this.#engine;
        const hasMoved = this.#engine[event.method](...event.things, frame);
        if (!isMessage(event)) {
            ++this.#nbSettings;
            return;
        }
        if (hasMoved)
            this.port.postMessage(["moved", this.#engine.values, this.#nbSettings]);
        if (learning !== this.#engine.learning)
            this.port.postMessage(["learned", learning, this.#engine.binding(learning)]);
    }
}

registerProcessor("tindelwax", Processor);
