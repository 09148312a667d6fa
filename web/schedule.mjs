// What is to happen at its frame, in order: of two events for one frame, first the one that came first.

export class Schedule {
    #events = [];
    #nbTaken = 0;

    add(event) {
        this.#events.splice(0, this.#nbTaken);
        this.#nbTaken = 0;
        let place = this.#events.length; // mostly the last, of a whole song too
        while (place > 0 && this.#events[place - 1].frame > event.frame)
            --place;
        this.#events.splice(place, 0, event);
    }

    // Undefined where nothing waits.
    get next() {
        return this.#events[this.#nbTaken];
    }

    // The event stays where it is, for nothing is to be freed where sound is due.
    take() {
        ++this.#nbTaken;
    }

    // Drops all that waits but what is to be kept.
    drop(isKept) {
        this.#events = this.#events.slice(this.#nbTaken).filter(isKept);
        this.#nbTaken = 0;
    }
}
