// Pictures of icons, each address loaded once for the whole page.
const maxKept = 512;

export class ImageStore {
    #entries = new Map();

    // {image, state}: state is "loading", "ready" or "broken". `changed` is called once when a loading
    // picture has become one of the others.
    get(url, changed) {
        let entry = this.#entries.get(url);
        if (entry === undefined) {
            entry = this.#load(url);
        }
        if (entry.state === "loading") {
            entry.waiting.add(changed);
        }
        return entry;
    }

    #load(url) {
        if (this.#entries.size >= maxKept) {
            this.#entries.delete(this.#entries.keys().next().value);
        }
        const image = new Image();
        const entry = { image, state: "loading", waiting: new Set() };
        const settle = (state) => {
            entry.state = state;
            const waiting = [...entry.waiting];
            entry.waiting.clear();
            waiting.forEach((call) => call());
        };
        image.onload = () => settle(image.naturalWidth > 0 ? "ready" : "broken");
        image.onerror = () => settle("broken");
        image.src = url;
        this.#entries.set(url, entry);
        return entry;
    }
}
