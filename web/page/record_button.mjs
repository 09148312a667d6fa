// The button that records what is heard and saves it when it is pressed again.

import {element} from "./element.mjs";
import {loadTape, Recorder} from "./recorder.mjs";

function save(file, name) {
    const link = element("a", {href: URL.createObjectURL(file), download: name});
    link.click();
    setTimeout(() => URL.revokeObjectURL(link.href), 60_000); // the browser may ask where to
}

export async function offerRecording(organ, button, attempt, say) {
    await loadTape(organ.node.context);
    const recorder = new Recorder(organ.node);
    const show = () => {
        button.classList.toggle("on", recorder.isRunning);
        button.textContent = recorder.isRunning ? "Save the recording" : "Record";
    };
    button.addEventListener("click", () => attempt(async () => {
        if (recorder.isRunning) {
            const stopped = recorder.stop();
            show();
            const file = await stopped;
            save(file, "tindelwax.wav");
            say(`The recording is tindelwax.wav, ${(file.size / 1e6).toFixed(1)} MB.`);
        } else {
            recorder.start();
            show();
            say("What is heard is being recorded.");
        }
    }));
}
