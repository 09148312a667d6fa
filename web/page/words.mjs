// What the controls say of their values to whoever does not see them.

// The dials are lettered from 0 to 10.
const dialWords = (value) => `${(value * 10).toFixed(1)} of 10`;

function decibelWords(text) {
    const decibels = Number(text);
    return Number.isFinite(decibels) ? `${decibels.toFixed(1)} decibels` : "silent";
}

// The value of a parameter that is no switch; the engine's own text is in decibels where it is a level.
export function wordsOf(name, value, text) {
    return name === "Contour" ? dialWords(value) : `${dialWords(value)}, ${decibelWords(text)}`;
}
