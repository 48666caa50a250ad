// A picture that stays at its place on the screen, such as a logo or a legend. KML counts from the
// lower left corner.

function length(value, units, whole) {
    if (!Number.isFinite(value)) {
        return 0;
    }
    if (units === "fraction") {
        return value * whole;
    }
    return units === "insetPixels" ? whole - value : value;
}

// Width and height on the screen: 0 keeps the picture's proportions, -1 its own size.
export function overlaySize(size, natural, screen) {
    const wanted = (value, units, whole, own) => (value === -1 ? own : length(value, units, whole));
    const width = wanted(size.x, size.xunits, screen.width, natural.width);
    const height = wanted(size.y, size.yunits, screen.height, natural.height);
    if (width <= 0 && height <= 0) {
        return natural;
    }
    if (width <= 0) {
        return { width: (natural.width * height) / natural.height, height };
    }
    return { width, height: height <= 0 ? (natural.height * width) / natural.width : height };
}

// Left and top on the screen.
export function overlayPlace({ overlayXY, screenXY }, size, screen) {
    const left = length(screenXY.x, screenXY.xunits, screen.width) - length(overlayXY.x, overlayXY.xunits, size.width);
    const bottom = length(screenXY.y, screenXY.yunits, screen.height) - length(overlayXY.y, overlayXY.yunits, size.height);
    return { left, top: screen.height - bottom - size.height };
}

export class ScreenOverlay {
    #overlay;
    #container;
    #image = document.createElement("img");
    #observer = new ResizeObserver(() => this.#place());

    constructor(overlay, url, container) {
        this.#overlay = overlay;
        this.#container = container;
        this.#image.alt = overlay.name;
        this.#image.onload = () => this.#place();
        this.#image.onerror = () => this.remove();
        this.#image.style.visibility = "hidden";
        this.#image.src = url;
        let box = container.querySelector(":scope > .tremor-screen-overlays");
        if (box === null) {
            box = document.createElement("div");
            box.className = "tremor-screen-overlays";
            container.appendChild(box);
        }
        box.appendChild(this.#image);
        this.#observer.observe(container);
    }

    remove() {
        this.#observer.disconnect();
        this.#image.remove();
    }

    #place() {
        const { naturalWidth: width, naturalHeight: height } = this.#image;
        if (width === 0 || height === 0) {
            return;
        }
        const screen = { width: this.#container.clientWidth, height: this.#container.clientHeight };
        const size = overlaySize(this.#overlay.size, { width, height }, screen);
        const { left, top } = overlayPlace(this.#overlay, size, screen);
        Object.assign(this.#image.style, {
            left: `${Math.round(left)}px`,
            top: `${Math.round(top)}px`,
            width: `${Math.round(size.width)}px`,
            height: `${Math.round(size.height)}px`,
            visibility: "visible",
        });
    }
}
