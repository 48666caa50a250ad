// The small box with a marker's title beside the pointer. Plain text, whatever the title holds.
const longestTitle = 300;
const offset = 14; // pixels from the pointer

export class Tip {
    #box;
    #container;

    constructor(container) {
        this.#container = container;
        this.#box = document.createElement("div");
        this.#box.className = "tremor-tip";
        this.#box.setAttribute("role", "tooltip");
        this.#box.hidden = true;
        container.appendChild(this.#box);
    }

    // at: pixels from the container's corner. An empty title hides the box.
    show(title, at) {
        const text = String(title ?? "").slice(0, longestTitle);
        this.#box.hidden = text === "";
        if (text === "") {
            return;
        }
        if (this.#box.textContent !== text) {
            this.#box.textContent = text;
        }
        const { clientWidth, clientHeight } = this.#container;
        const { offsetWidth, offsetHeight } = this.#box;
        const x = at.x + offset + offsetWidth > clientWidth ? at.x - offset - offsetWidth : at.x + offset;
        const y = at.y + offset + offsetHeight > clientHeight ? at.y - offset - offsetHeight : at.y + offset;
        this.#box.style.left = `${Math.max(0, x)}px`;
        this.#box.style.top = `${Math.max(0, y)}px`;
    }

    hide() {
        this.#box.hidden = true;
    }
}
