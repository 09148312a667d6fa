// Songs from the demo's button, from a file that is chosen and from one that is dropped on the page.

import {readMidiFile} from "./midi_file.mjs";
import {SongPlayer} from "./song_player.mjs";
import demoInBase64 from "../../demo/song.mid" with {type: "base64"};

const demoSong = () => readMidiFile(Uint8Array.from(atob(demoInBase64), (character) => character.charCodeAt(0)));

export function offerSongs(organ, {demo, song, file: chooser}, attempt, say) {
    const player = new SongPlayer(organ);

    const open = (file) => attempt(async () => {
        let read;
        try {
            read = readMidiFile(new Uint8Array(await file.arrayBuffer()));
        } catch (error) {
            throw new Error(`${file.name} ${error.message}.`);
        }
        const isAwake = organ.node.context.state === "running"; // a drop alone wakes no browser
        player.play(read);
        say(`${file.name} plays${isAwake ? "" : " as soon as you click or press a key"}.`);
    });

    demo.addEventListener("click", () => {
        if (player.isPlaying)
            return player.stop();
        player.play(demoSong());
        say("Six Tabs: a section for each thing that the organ does.");
    });
    player.addEventListener("change", () => {
        demo.textContent = player.isPlaying ? "Stop the song" : "Play the demo";
        demo.classList.toggle("on", player.isPlaying);
    });
    song.addEventListener("click", () => chooser.click());
    chooser.addEventListener("change", () => {
        if (chooser.files.length !== 0)
            open(chooser.files[0]);
        chooser.value = ""; // so that the same file can be chosen again
    });
    addEventListener("dragover", (event) => event.preventDefault());
    addEventListener("drop", (event) => {
        event.preventDefault();
        if (event.dataTransfer.files.length !== 0)
            open(event.dataTransfer.files[0]);
    });
    return player;
}
