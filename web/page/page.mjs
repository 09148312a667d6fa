// The page: an organ to be seen and touched. Here its parts are made and told of each other.

import {createOrgan} from "../organ.mjs";
import {ComputerKeys} from "./computer_keys.mjs";
import {HeldNotes} from "./held_notes.mjs";

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

function releaseWhereNobodyLooks(...hands) {
    const releaseAll = () => hands.forEach((hand) => hand.releaseAll());
    addEventListener("blur", releaseAll);
    addEventListener("pagehide", releaseAll);
    document.addEventListener("visibilitychange", () => document.hidden && releaseAll());
}

async function start() {
    const context = new AudioContext({latencyHint: "interactive"});
    const organ = await createOrgan(context, {registration: firstRegistration});
    organ.node.connect(context.destination);

    const held = new HeldNotes(organ);
    const computerKeys = new ComputerKeys(held);
    releaseWhereNobodyLooks(computerKeys);

    computerKeys.addEventListener("panic", () => {
        held.forget();
        organ.panic();
    });
    document.body.classList.add("ready");
}

attempt(start);
