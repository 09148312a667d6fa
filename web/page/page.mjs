// The page: an organ to be seen and touched. Here its parts are made and told of each other.

import {createOrgan} from "../organ.mjs";

const firstRegistration = "fairground";

const find = (selector) => document.querySelector(selector);
const say = (words) => find("#status").textContent = words;

// Runs what may fail, and says why it did.
async function attempt(action) {
    try {
        await action();
    } catch (error) {
        say(error.message);
    }
}

async function start() {
    const context = new AudioContext({latencyHint: "interactive"});
    const organ = await createOrgan(context, {registration: firstRegistration});
    organ.node.connect(context.destination);
    document.body.classList.add("ready");
}

attempt(start);
