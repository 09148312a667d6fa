// The organ's engine for whoever plays it, an AudioWorklet or a test: it keeps to what both have.

// The C library asks for a system, for its files and its clock, and hears that there is none.
const badDescriptor = 8;

function withoutSystem(module) {
    const imports = {};
    for (const {module: from, name} of WebAssembly.Module.imports(module))
        (imports[from] ??= {})[name] = () => badDescriptor;
    return imports;
}

export class Engine {
    #engine; // what WebAssembly exports
    #self; // and its first argument
    #block;
    #right = new Float32Array(0); // views of the latest block's length
    #left = this.#right;

    // Of a WebAssembly.Module of the engine, for blocks of at most so many frames. A seed is one
    // instrument: its tolerances, and with them each sample, are drawn from it. At the rate 0 it is
    // made in no time, and silent.
    constructor(module, {seed, rate, block = 128}) {
        this.#engine = new WebAssembly.Instance(module, withoutSystem(module)).exports;
        this.#engine._initialize();
        this.#self = this.#engine.engine_create(seed, rate, block);
        this.#block = block;
        const {engine_nb_parameters, engine_parameter_name} = this.#engine;
        // The parameters' names, by their indices.
        this.parameters = Array.from({length: engine_nb_parameters(this.#self)}, (_, index) =>
            this.#textAt(engine_parameter_name(this.#self, index)));
    }

    get(index) {
        return this.#engine.engine_get_parameter(this.#self, index);
    }

    get values() {
        return this.parameters.map((_, index) => this.get(index));
    }

    set(index, value) {
        this.#engine.engine_set_parameter(this.#self, index, value);
    }

    isSwitch(index) {
        return this.#engine.engine_is_switch(this.#self, index) !== 0;
    }

    // The controller that moves a parameter, and its channel, from 1, or 0 for none.
    binding(index) {
        const {engine_controller, engine_channel} = this.#engine;
        return {number: engine_controller(this.#self, index), channel: engine_channel(this.#self, index)};
    }

    bind(index, {number, channel}) {
        this.#engine.engine_bind(this.#self, index, number, channel);
    }

    // The next controller that comes is the parameter's, or that of one which is set before; -1 ends
    // that.
    learn(index) {
        this.#engine.engine_learn(this.#self, index);
    }

    // The index of the parameter that learns, or -1.
    get learning() {
        return this.#engine.engine_learning(this.#self);
    }

    // A value in the words of its parameter.
    text(index, value = this.get(index)) {
        return this.#textAt(this.#engine.engine_parameter_text(this.#self, index, value));
    }

    // Takes a message for the coming block. Returns whether it moved a parameter.
    receive(status, first, second, frame = 0) {
        return this.#engine.engine_receive(this.#self, status, first, second, frame) !== 0;
    }

    // Plays a block of the outputs' length into them. Allocates where that is not the last one's.
    process(right, left) {
        if (right.length > this.#block)
            throw new RangeError(`${right.length} frames are more than ${this.#block}`);
        this.#engine.engine_process(this.#self, right.length);
        if (this.#right.length !== right.length) { // or 0, since the memory has grown
            this.#right = this.#output(0, right.length);
            this.#left = this.#output(1, right.length);
        }
        right.set(this.#right);
        left.set(this.#left);
    }

    // Whether other keys sound than the last time.
    followKeys() {
        return this.#engine.engine_follow_keys(this.#self) !== 0;
    }

    // The notes that sound, releases included.
    get notes() {
        const sounding = new Uint8Array(this.#engine.memory.buffer, this.#engine.engine_notes(this.#self), 128);
        return Array.from(sounding.keys()).filter((note) => sounding[note]);
    }

    // Whether nothing sounds or rings on.
    get isResting() {
        return this.#engine.engine_is_resting(this.#self) !== 0;
    }

    panic() {
        this.#engine.engine_panic(this.#self);
    }

    // The whole state as text, and back. Returns whether there was a state in it.
    save() {
        return this.#textAt(this.#engine.engine_save(this.#self));
    }

    load(text) {
        this.#hand(text);
        return this.#engine.engine_load(this.#self) !== 0;
    }

    // Draws the stops as a registration has them. Returns whether the text is one.
    register(text) {
        this.#hand(text);
        return this.#engine.engine_register(this.#self) !== 0;
    }

    // The texts of the registrations that the instrument brings along, by their keys.
    get registrations() {
        const {engine_nb_registrations, engine_registration_key, engine_registration_text} = this.#engine;
        return new Map(Array.from({length: engine_nb_registrations()}, (_, index) =>
            [this.#textAt(engine_registration_key(index)), this.#textAt(engine_registration_text(index))]));
    }

    #output(channel, length) {
        const address = this.#engine.engine_output(this.#self, channel);
        return new Float32Array(this.#engine.memory.buffer, address, length);
    }

    // Texts are ASCII, read and written by hand: an AudioWorklet has no TextDecoder.
    #textAt(address) {
        const bytes = new Uint8Array(this.#engine.memory.buffer);
        let text = "";
        for (; bytes[address] !== 0; ++address)
            text += String.fromCharCode(bytes[address]);
        return text;
    }

    #hand(text) {
        const address = this.#engine.engine_text_room(this.#self, text.length);
        const room = new Uint8Array(this.#engine.memory.buffer, address, text.length);
        for (let i = 0; i < text.length; ++i)
            room[i] = text.charCodeAt(i) < 128 ? text.charCodeAt(i) : "?".charCodeAt(0);
    }
}
