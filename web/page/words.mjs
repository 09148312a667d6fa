// What the controls say of their values to whoever does not see them.

// Where the split leads bass and manual.
export const splitPositions = [
    {value: 0, upTo: 1 / 3, label: "Bass left", words: "bass left, manual right"},
    {value: 0.5, upTo: 2 / 3, label: "Bass right", words: "bass right, manual left"},
    {value: 1, upTo: 1, label: "Both", words: "bass and manual on both sides"},
];

export function splitPositionOf(value) {
    return splitPositions.findIndex(({upTo}) => value <= upTo);
}

// The dials are lettered from 0 to 10.
const dialWords = (value) => `${(value * 10).toFixed(1)} of 10`;

function decibelWords(text) {
    const decibels = Number(text);
    return Number.isFinite(decibels) ? `${decibels.toFixed(1)} decibels` : "silent";
}

// The value of a parameter that is no switch; the engine's own text is in decibels where it is a level.
export function wordsOf(name, value, text) {
    if (name === "Split")
        return splitPositions[splitPositionOf(value)].words;
    return name === "Contour" ? dialWords(value) : `${dialWords(value)}, ${decibelWords(text)}`;
}
