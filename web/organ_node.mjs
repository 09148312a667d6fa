// The organ as a node of Web Audio. The engine that sounds is in an AudioWorklet; a silent twin of it
// stands here and answers at once: what moves here is told there, what moves there is told here.

import {Engine} from "./engine.mjs";

const [noteOff, noteOn, controlChange] = [0x80, 0x90, 0xB0];

export class Organ extends EventTarget {
    #twin;
    #indices; // of the parameters, by their names
    #defaults;
    #nbSettings = 0; // that were told there
    #latest; // which of them was the latest of each parameter
    #arrivals = []; // what waits for an answer
    #isOpen = true;

    constructor(context, module, seed) {
        super();
        this.#twin = new Engine(module, {seed, rate: 0});
        this.#indices = new Map(this.#twin.parameters.map((name, index) => [name, index]));
        this.#defaults = this.#twin.values;
        this.#latest = this.#defaults.map(() => 0);
        // An AudioNode with one output, whose channels are the plug-in's outputs.
        this.node = new AudioWorkletNode(context, "tindelwax", {
            numberOfInputs: 0, outputChannelCount: [2], processorOptions: {module, seed}});
        const heard = {
            moved: (values, nbSettings) => this.#follow(values, nbSettings),
            learned: (index, binding) => {
                this.#twin.bind(index, binding);
                this.#dispatch("learned", {name: this.#twin.parameters[index], ...binding});
            },
            notes: (notes) => this.#dispatch("notes", notes),
            answered: () => this.#arrivals.shift()(),
        };
        this.node.port.onmessage = ({data: [told, ...things]}) => heard[told](...things);
    }

    // Times are the context's, in seconds; what has none happens now.
    noteOn(note, when) {
        this.#play([noteOn, note, 127], when);
    }

    noteOff(note, when) {
        this.#play([noteOff, note, 0], when);
    }

    // Of the values from 0 to 127, on MIDI's first channel.
    controller(number, value, when) {
        this.#play([controlChange, number, value], when);
    }

    // A MIDI message; the system's own are none that an organ has heard of.
    message([status, first = 0, second = 0], when) {
        if (status >= 0xF0)
            return;
        this.#play([status, first, second], when);
        this.#dispatch("activity");
    }

    get parameters() {
        return this.#twin.parameters.map((name, index) => ({
            name, value: this.#twin.get(index), defaultValue: this.#defaults[index],
            isSwitch: this.#twin.isSwitch(index), ...this.#twin.binding(index)}));
    }

    get(name) {
        return this.#twin.get(this.#index(name));
    }

    // Values are from 0 to 1.
    set(name, value) {
        this.#set(this.#index(name), Math.min(Math.max(value, 0), 1));
    }

    // A parameter's value in words.
    text(name, value = this.get(name)) {
        return this.#twin.text(this.#index(name), value);
    }

    get registrations() {
        return Array.from(this.#twin.registrations, ([key, text]) => {
            const [name, ...description] = text.match(/^# .*/gm).map((line) => line.slice("# ".length));
            return {key, name, description: description.join(" ")};
        });
    }

    register(key) {
        const text = this.#twin.registrations.get(key);
        if (text === undefined)
            throw new Error(`The organ has no registration "${key}".`);
        this.#change(() => {
            this.#twin.register(text);
            this.#twin.values.forEach((value, index) => this.#set(index, value));
        });
    }

    // The whole state as text: seed, parameters and their controllers.
    async save() {
        return this.#twin.save();
    }

    // A state with another seed is another instrument, whose keys are all up.
    async load(state) {
        this.#change(() => {
            if (!this.#twin.load(state))
                throw new Error("That is no state of this organ.");
            this.#latest.fill(this.#tell("load", state));
        });
    }

    // The controller that comes next is the parameter's from then on, or that of a parameter which is
    // set before it comes. Null ends learning.
    learn(name) {
        this.#tell("learn", name === null ? -1 : this.#index(name));
    }

    // Gives a parameter the controller of that number, on a channel from 1 to 16.
    bind(name, number, channel) {
        const index = this.#index(name);
        this.#twin.bind(index, {number, channel});
        this.#tell("bind", index, {number, channel});
    }

    // Takes up what the browser, the system or a device that went has suspended, as every key does. Before
    // somebody touches the page browsers refuse it, and complain on the console.
    wake() {
        const {context} = this.node;
        const isTouched = navigator.userActivation?.hasBeenActive ?? true;
        if (isTouched && context instanceof AudioContext && context.state !== "running")
            context.resume();
    }

    // Silences what sounds and forgets what was to come.
    panic() {
        this.#ask("panic");
    }

    close() {
        this.#ask("close");
        this.#isOpen = false;
        this.node.disconnect();
        this.node.port.close();
        this.#arrivals.forEach((arrive) => arrive());
    }

    // Returns when all that was told has arrived, or when nobody is there any more to answer.
    async arrival() {
        if (!this.#isOpen)
            return;
        this.#ask("answer");
        await new Promise((resolve) => this.#arrivals.push(resolve));
    }

    #index(name) {
        const index = this.#indices.get(name);
        if (index === undefined)
            throw new Error(`The organ has no parameter "${name}".`);
        return index;
    }

    #ask(...things) {
        this.node.port.postMessage(things);
    }

    // A setting for the other half's engine. Returns how many that are.
    #tell(method, ...things) {
        this.#ask("tell", 0, method, ...things);
        return ++this.#nbSettings;
    }

    #dispatch(type, detail) {
        this.dispatchEvent(new CustomEvent(type, {detail}));
    }

    #play(message, when = 0) {
        if ((message[0] & 0xF0) === noteOn)
            this.wake();
        this.#ask("tell", Math.round(when * this.node.context.sampleRate), "receive", ...message);
    }

    #set(index, value) {
        this.#twin.set(index, value);
        this.#latest[index] = this.#tell("set", index, value);
    }

    // What was set here after the other half wrote its values is newer than they are.
    #follow(values, nbSettings) {
        const isNews = (_, index) => this.#latest[index] <= nbSettings;
        this.#change(() => values.forEach((value, index) => {
            if (isNews(value, index))
                this.#twin.set(index, value);
        }));
    }

    #change(action) {
        const before = this.#twin.values;
        action();
        this.#twin.values.forEach((value, index) => {
            if (value !== before[index])
                this.#dispatch("change", {name: this.#twin.parameters[index], value});
        });
    }
}
