// Reads MIDI files of the formats 0 and 1: what an organ plays of them, with its seconds.

const defaultTempo = 500_000; // microseconds a quarter
const endOfTrack = 0x2F, tempoChange = 0x51;
const channelMessages = [0x80, 0x90, 0xB0]; // of which all have two bytes of data
const largest = 8 << 20; // bytes

class ByteReader {
    #bytes;
    #place = 0;

    constructor(bytes) {
        this.#bytes = bytes;
    }

    get isAtEnd() {
        return this.#place === this.#bytes.length;
    }

    take(count) {
        if (this.#place + count > this.#bytes.length)
            throw new Error("breaks off too early");
        return this.#bytes.subarray(this.#place, this.#place += count);
    }

    number(nbBytes) {
        return this.take(nbBytes).reduce((number, byte) => number * 256 + byte, 0);
    }

    text(nbBytes) {
        return String.fromCharCode(...this.take(nbBytes));
    }

    // In groups of seven bits, four at most.
    variableLength() {
        let number = 0;
        for (let group = 0; group < 4; ++group) {
            const byte = this.number(1);
            number = number << 7 | byte & 0x7F;
            if (byte < 0x80)
                return number;
        }
        throw new Error("holds a length without an end");
    }
}

// What a track has at its ticks: {tick, bytes} of a message, {tick, tempo} of a change.
function readTrack(reader) {
    const events = [];
    let tick = 0, running = 0;
    while (!reader.isAtEnd) {
        tick += reader.variableLength();
        let status = reader.number(1), first;
        if (status < 0x80)
            [status, first] = [running, status];
        if (status === 0xFF) {
            const kind = reader.number(1), data = reader.take(reader.variableLength());
            if (kind === endOfTrack)
                break;
            if (kind === tempoChange && data.length === 3)
                events.push({tick, tempo: new ByteReader(data).number(3) || defaultTempo});
        } else if (status >= 0xF0) {
            reader.take(reader.variableLength());
        } else if (status < 0x80) {
            throw new Error("holds data that belong to no message");
        } else {
            running = status;
            first ??= reader.number(1);
            const kind = status & 0xF0;
            const second = kind === 0xC0 || kind === 0xD0 ? 0 : reader.number(1);
            if (channelMessages.includes(kind))
                events.push({tick, bytes: [status, first & 0x7F, second & 0x7F]});
        }
    }
    return {events, tick};
}

function readTracks(reader) {
    const tracks = [];
    while (!reader.isAtEnd) {
        const name = reader.text(4), data = reader.take(reader.number(4));
        if (name === "MTrk")
            tracks.push(readTrack(new ByteReader(data)));
    }
    return tracks;
}

// Seconds of a tick where a quarter lasts as long as the latest tempo says, for ticks in their order.
function clock(division) {
    let tempo = defaultTempo, start = 0, seconds = 0;
    const at = division & 0x8000 // counts frames, whatever the tempo
        ? (tick) => tick / ((256 - (division >> 8)) * (division & 0xFF))
        : (tick) => seconds + (tick - start) * tempo / (1e6 * division);
    const change = (tick, to) => [seconds, start, tempo] = [at(tick), tick, to];
    return {at, change};
}

// Returns {events: [{seconds, bytes}], seconds}. Throws what the file is or does, to be put behind its name.
export function readMidiFile(bytes) {
    const reader = new ByteReader(bytes);
    if (bytes.length > largest || bytes.length < 14 || reader.text(4) !== "MThd")
        throw new Error("is no MIDI file");
    const header = new ByteReader(reader.take(reader.number(4)));
    const [format, , division] = [header.number(2), header.number(2), header.number(2)];
    if (format > 1)
        throw new Error("is a MIDI file of a kind that holds no single song");
    if ((division & 0x7FFF) === 0)
        throw new Error("does not say how long its beats are");
    const tracks = readTracks(reader);
    if (tracks.length === 0)
        throw new Error("holds no track");

    const {at, change} = clock(division);
    const events = [];
    const inOrder = tracks.flatMap((track) => track.events).sort((one, other) => one.tick - other.tick);
    for (const {tick, bytes: message, tempo} of inOrder)
        if (message)
            events.push({seconds: at(tick), bytes: message});
        else
            change(tick, tempo);
    return {events, seconds: at(Math.max(...tracks.map(({tick}) => tick)))};
}
