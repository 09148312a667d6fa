// Sound as a WAV file of 32-bit floats, which hold what is beyond full scale as well.

const ieeeFloat = 3;
const bytesPerSample = 4;

// Of blocks of interleaved samples.
export function wavFile(blocks, rate, nbChannels) {
    const nbSamples = blocks.reduce((sum, block) => sum + block.length, 0);
    const frameBytes = nbChannels * bytesPerSample, dataBytes = nbSamples * bytesPerSample;
    const chunks = [
        ["fmt ", [[2, ieeeFloat], [2, nbChannels], [4, rate], [4, rate * frameBytes], [2, frameBytes],
            [2, 8 * bytesPerSample], [2, 0]]], // the last: nothing follows
        ["fact", [[4, nbSamples / nbChannels]]],
        ["data", []],
    ];
    const sizes = {"fmt ": 18, fact: 4, data: dataBytes};
    const header = new DataView(new ArrayBuffer(12 + 8 + sizes["fmt "] + 8 + sizes.fact + 8));
    let place = 0;
    const putText = (text) => [...text].forEach((letter) => header.setUint8(place++, letter.charCodeAt(0)));
    const put = (nbBytes, number) => {
        header[nbBytes === 2 ? "setUint16" : "setUint32"](place, number, true);
        place += nbBytes;
    };
    putText("RIFF");
    put(4, header.byteLength - 8 + dataBytes);
    putText("WAVE");
    for (const [name, fields] of chunks) {
        putText(name);
        put(4, sizes[name]);
        for (const field of fields)
            put(...field);
    }
    return new Blob([header, ...blocks], {type: "audio/wav"});
}
