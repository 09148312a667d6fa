// The page: an organ to be seen and touched. Here its parts are made and told of each other.

import {createOrgan} from "../organ.mjs";
import {ComputerKeys} from "./computer_keys.mjs";
import {HeldNotes} from "./held_notes.mjs";
import {followLearning} from "./learned.mjs";
import {Link} from "./link.mjs";
import {Manual} from "./manual.mjs";
import {connectMidi} from "./midi_button.mjs";
import {Panel} from "./panel.mjs";
import {offerRecording} from "./record_button.mjs";
import {Registrations} from "./registrations.mjs";
import {offerSongs} from "./songs.mjs";

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

// What each key of the computer's is labelled with, where the browser tells; else as on most.
async function labelKeys(manual, computerKeys) {
    const layout = await navigator.keyboard?.getLayoutMap?.().catch(() => undefined);
    const labelOf = (code) => (layout?.get(code) ?? code.replace(/^(Key|Digit)/, "")).toUpperCase();
    const show = () =>
        manual.label(new Map(Array.from(computerKeys.codes, ([note, code]) => [note, labelOf(code)])));
    computerKeys.addEventListener("shift", show);
    show();
}

// Where the first gesture is a touch, a key begins too early for browsers that wait for its end.
function wakeWithGestures(organ) {
    for (const gesture of ["pointerup", "keydown"])
        addEventListener(gesture, () => organ.wake());
}

function releaseWhereNobodyLooks(...hands) {
    const releaseAll = () => hands.forEach((hand) => hand.releaseAll());
    addEventListener("blur", releaseAll);
    addEventListener("pagehide", releaseAll);
    document.addEventListener("visibilitychange", () => document.hidden && releaseAll());
}

function offerLink(organ, panel) {
    const link = new Link(organ);
    for (const [target, type] of [[organ, "change"], [panel, "edit"]])
        target.addEventListener(type, () => link.follow());
    addEventListener("hashchange", ({newURL}) => attempt(() => link.open(newURL)));
    find("#link").addEventListener("click", () => attempt(async () => {
        const address = await link.write();
        const isCopied = await navigator.clipboard?.writeText(address).then(() => true, () => false);
        say(`The link ${isCopied ? "is copied" : "is in the address line"}: it brings this very registration.`);
    }));
    return link;
}

async function start() {
    const context = new AudioContext({latencyHint: "interactive"});
    const organ = await createOrgan(context);
    organ.node.connect(context.destination);
    wakeWithGestures(organ);

    const held = new HeldNotes(organ);
    const panel = new Panel(organ, {panel: find(".panel"), split: find(".split")});
    const registrations = new Registrations(organ, find(".registrations"));
    const manual = new Manual(find(".manual"), held);
    const computerKeys = new ComputerKeys(held);
    releaseWhereNobodyLooks(manual, computerKeys);
    organ.addEventListener("notes", ({detail}) => manual.light(detail));
    followLearning(organ);
    await labelKeys(manual, computerKeys);

    const songs = offerSongs(organ, {demo: find("#demo"), song: find("#song"), file: find("#file")}, attempt, say);
    for (const source of [panel, computerKeys])
        source.addEventListener("panic", () => {
            songs.stop();
            held.forget();
            organ.panic();
        });
    for (const source of [panel, registrations])
        source.addEventListener("say", ({detail}) => say(detail));
    panel.addEventListener("edit", () => registrations.unmark());
    await offerRecording(organ, find("#record"), attempt, say);
    connectMidi({organ, held, panel, registrations, button: find("#midi"), attempt, say});

    const link = offerLink(organ, panel);
    registrations.draw(firstRegistration);
    await attempt(() => link.open(location.href));
    document.body.classList.add("ready");
}

attempt(start);
