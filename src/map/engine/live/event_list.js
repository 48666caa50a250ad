// The list of events: a button for each. Texts from the files go in as text only.
import { depthClass, radius } from "./event_looks.js";
import { depthText, magnitudeText, placeText, spokenText, timeText } from "./event_texts.js";

export function element(name, className, text = "") {
    const made = document.createElement(name);
    made.className = className;
    made.textContent = text;
    return made;
}

export function dot(colour, pixels) {
    const made = element("span", "dot");
    made.setAttribute("aria-hidden", "true");
    made.style.setProperty("--colour", colour);
    made.style.setProperty("--radius", String(pixels));
    return made;
}

const largestDot = 18; // pixels that a row has room for

function row(event, fresh, select) {
    const button = element("button", "event");
    button.type = "button";
    button.setAttribute("aria-label", spokenText(event));
    const magnitude = element("span", "magnitude", magnitudeText(event));
    const facts = element("span", "facts");
    facts.append(
        element("span", "time", timeText(event)),
        element("span", "depth", depthText(event)),
        element("span", "place", placeText(event)),
        element("span", "source", event.source),
    );
    button.append(dot(depthClass(event.depth).colour, Math.min(radius(event.magnitude), largestDot)), magnitude, facts);
    button.addEventListener("click", () => select(event));
    const item = element("li", fresh ? "fresh" : "");
    item.append(button);
    return { item, button };
}

export class EventList {
    #list;
    #select;
    #buttons = new Map(); // key of the event -> button

    // select: called with the event whose row is chosen.
    constructor(list, select) {
        this.#list = list;
        this.#select = select;
    }

    // Shows these instead of what stood there; place and focus stay, new ones are marked.
    show(events, { markNew }) {
        const focused = [...this.#buttons].find(([, button]) => button === document.activeElement)?.[0];
        const { scrollTop } = this.#list;
        const rows = events.map((event) => ({ event, ...row(event, markNew && !this.#buttons.has(event.key), this.#select) }));
        this.#buttons = new Map(rows.map(({ event, button }) => [event.key, button]));
        this.#list.replaceChildren(...rows.map(({ item }) => item));
        this.#list.scrollTop = scrollTop;
        this.#buttons.get(focused)?.focus({ preventScroll: true });
    }

    // key: of the event that is chosen, null for none.
    choose(key, { reveal }) {
        for (const [each, button] of this.#buttons) {
            button.setAttribute("aria-pressed", String(each === key));
        }
        if (reveal) {
            this.#buttons.get(key)?.scrollIntoView({ block: "nearest" });
        }
    }
}
