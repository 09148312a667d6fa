// The recorder's half on the thread where sound is made: it hands over what it hears, in large pieces.

const framesPerPiece = 4096;

class Tape extends AudioWorkletProcessor {
    #piece = new Float32Array(2 * framesPerPiece); // both channels interleaved
    #length = 0;
    #isRunning = true;

    constructor() {
        super();
        this.port.onmessage = () => this.#stop();
    }

    process([[left, right = left]]) {
        for (let frame = 0; frame < left?.length; ++frame) {
            this.#piece[this.#length++] = left[frame];
            this.#piece[this.#length++] = right[frame];
            if (this.#length === this.#piece.length)
                this.#handOver();
        }
        return this.#isRunning;
    }

    #handOver() {
        this.port.postMessage(this.#piece.slice(0, this.#length));
        this.#length = 0;
    }

    #stop() {
        this.#handOver();
        this.port.postMessage(null);
        this.#isRunning = false;
    }
}

registerProcessor("tape", Tape);
