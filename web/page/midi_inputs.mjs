// Every MIDI input that the browser has, also those that come later. One that goes lets go of its keys.

const systemMessage = 0xF0;
const [noteOff, noteOn, controlChange, programChange] = [0x80, 0x90, 0xB0, 0xC0];
const allSoundOff = 120; // a controller, with the value 0

export class MidiInputs extends EventTarget {
    #organ;
    #held;
    #access;

    constructor(organ, held) {
        super();
        this.#organ = organ;
        this.#held = held;
    }

    // Asks the user. Throws in words where there is no MIDI to be had.
    async connect() {
        if (!navigator.requestMIDIAccess)
            throw new Error("This browser has no MIDI. The mouse, fingers and computer keys play.");
        this.#access ??= await navigator.requestMIDIAccess().catch(() => {
            throw new Error("The browser is not allowed to use MIDI: its settings for this page say so.");
        });
        this.#access.onstatechange = ({port}) => this.#follow(port);
        for (const input of this.#access.inputs.values())
            this.#listen(input);
    }

    // Names of the inputs that are there.
    get names() {
        return Array.from(this.#access?.inputs.values() ?? [])
            .filter(({state}) => state === "connected")
            .map(({name}) => name ?? "an input without a name");
    }

    #follow(port) {
        if (port.type !== "input")
            return;
        if (port.state === "connected")
            this.#listen(port);
        else
            this.#held.releaseAll(port);
        this.dispatchEvent(new Event("change"));
    }

    #listen(input) {
        input.onmidimessage = ({data}) => this.#receive(data, input);
    }

    #receive([status, first, second], input) {
        if (status >= systemMessage)
            return;
        const kind = status & 0xF0;
        if (kind === noteOn && second > 0)
            this.#held.press(first, input);
        else if (kind === noteOn || kind === noteOff)
            this.#held.release(first, input);
        else if (kind === programChange)
            this.dispatchEvent(new CustomEvent("program", {detail: first}));
        else
            this.#organ.message([status, first, second]);
        if (kind === controlChange && first === allSoundOff && second === 0)
            this.#held.forget();
        this.dispatchEvent(new Event("activity"));
    }
}
