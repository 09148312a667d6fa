// The organ's whole state in the address's fragment, so that a link sends a registration: the seed and
// the parameters. Which controllers were learned stays with whoever learned them.

const calmTime = 300; // ms, for browsers take few changes of the address a second
const stateLine = /^(\S+) (\S+)(.*)$/gm;
const digits = 4; // of a value

export class Link {
    #organ;
    #timer;

    constructor(organ) {
        this.#organ = organ;
    }

    // Takes over what an address says, if it says anything. Throws in words where that is no state.
    async open(address) {
        const wanted = new URLSearchParams(new URL(address).hash.slice(1));
        if (wanted.toString() === "")
            return;
        const state = (await this.#organ.save()).replace(stateLine, (line, name, before, rest) =>
            wanted.has(name) ? `${name} ${wanted.get(name)}${rest}` : line);
        await this.#organ.load(state).catch(() => {
            throw new Error("The address holds no registration of this organ.");
        });
    }

    // Writes the state into the address as soon as it rests.
    follow() {
        clearTimeout(this.#timer);
        this.#timer = setTimeout(() => this.write(), calmTime);
    }

    // Returns the whole address.
    async write() {
        const [, seed] = (await this.#organ.save()).match(/^seed (\d+)$/m);
        const values = this.#organ.parameters.map(({name, value}) => [name, Number(value.toFixed(digits))]);
        history.replaceState(null, "", `#${new URLSearchParams([["seed", seed], ...values])}`);
        return location.href;
    }
}
