// Records what a node plays.

import {wavFile} from "./wav_file.mjs";
import tape from "./tape.mjs" with {type: "text"};

const nbChannels = 2;

export class Recorder {
    #source;
    #node; // a tape; undefined while none runs
    #pieces;
    #ended; // a promise

    constructor(source) {
        this.#source = source;
    }

    get isRunning() {
        return this.#node !== undefined;
    }

    async start() {
        const {context} = this.#source;
        await context.audioWorklet.addModule(`data:text/javascript,${encodeURIComponent(tape)}`);
        this.#node = new AudioWorkletNode(context, "tape", {numberOfOutputs: 0, channelCount: nbChannels,
            channelCountMode: "explicit"});
        this.#pieces = [];
        this.#ended = new Promise((resolve) => {
            this.#node.port.onmessage = ({data: piece}) => piece ? this.#pieces.push(piece) : resolve();
        });
        this.#source.connect(this.#node);
    }

    // Returns the recording as a WAV file.
    async stop() {
        const node = this.#node;
        this.#node = undefined;
        node.port.postMessage("stop");
        await this.#ended;
        this.#source.disconnect(node);
        return wavFile(this.#pieces, this.#source.context.sampleRate, nbChannels);
    }
}
