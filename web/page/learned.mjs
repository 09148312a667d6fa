// What MIDI learn has bound, kept for the next visit as far as the browser keeps things.

const place = "tindelwax.learned";

function recall() {
    try {
        return JSON.parse(localStorage.getItem(place)) ?? {};
    } catch { // a browser that keeps nothing, or keeps what somebody else wrote
        return {};
    }
}

export function followLearning(organ) {
    const learned = recall();
    for (const {name} of organ.parameters)
        if (learned[name])
            organ.bind(name, learned[name].number, learned[name].channel);
    organ.addEventListener("learned", ({detail: {name, number, channel}}) => {
        learned[name] = {number, channel};
        try {
            localStorage.setItem(place, JSON.stringify(learned));
        } catch {
            // Then it is bound for this visit.
        }
    });
}
