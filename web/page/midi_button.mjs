// The button that asks for MIDI, and what its inputs do on the page.

import {MidiInputs} from "./midi_inputs.mjs";

const wordsOf = (names) => names.length === 0 ? "No MIDI keyboard is there yet: one that is plugged in plays."
    : `${names.join(", ")} ${names.length === 1 ? "plays" : "play"}.`;

export function connectMidi({organ, held, panel, registrations, button, attempt, say}) {
    const inputs = new MidiInputs(organ, held);
    const show = () => {
        button.classList.toggle("on", inputs.names.length !== 0);
        say(wordsOf(inputs.names));
    };
    button.addEventListener("click", () => attempt(async () => {
        await inputs.connect();
        show();
    }));
    inputs.addEventListener("change", show);
    inputs.addEventListener("activity", () => panel.flash());
    inputs.addEventListener("program", ({detail}) => registrations.draw(detail));
}
