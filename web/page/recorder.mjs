// Records what a node plays.

import {wavFile} from "./wav_file.mjs";
import tape from "./tape.mjs" with {type: "text"};

const nbChannels = 2;

// Before the first recorder of a context is made.
export function loadTape(context) {
    return context.audioWorklet.addModule(`data:text/javascript,${encodeURIComponent(tape)}`);
}

export class Recorder {
    #source;
    #node; // a tape; undefined while none runs
    #ended; // a promise of the pieces that it has handed over

    constructor(source) {
        this.#source = source;
    }

    get isRunning() {
        return this.#node !== undefined;
    }

    start() {
        const pieces = [], node = new AudioWorkletNode(this.#source.context, "tape", {
            numberOfOutputs: 0, channelCount: nbChannels, channelCountMode: "explicit"});
        this.#ended = new Promise((resolve) => {
            node.port.onmessage = ({data: piece}) => piece ? pieces.push(piece) : resolve(pieces);
        });
        this.#source.connect(node);
        this.#node = node;
    }

    // Returns the recording as a WAV file. The next may start meanwhile.
    async stop() {
        const node = this.#node;
        this.#node = undefined;
        node.port.postMessage("stop");
        const pieces = await this.#ended;
        this.#source.disconnect(node);
        return wavFile(pieces, this.#source.context.sampleRate, nbChannels);
    }
}
