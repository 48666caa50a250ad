// What a marker looks like, worked out once from what the page gave: a circle, a picture, or the pin.
import { clamp, finiteOr, toNumber } from "./numbers.js";

const largestRadius = 1000; // pixels
const smallestRadius = 1.5; // what has no usable size is still to be seen
const largestPicture = 2000; // pixels

export const pin = Object.freeze({ kind: "pin", width: 20, height: 32, anchorX: 10, anchorY: 32, animated: false });

function colourOr(value, otherwise) {
    const text = String(value ?? "");
    return text !== "" && CSS.supports("color", text) ? text : otherwise;
}

function opacity(value) {
    return clamp(finiteOr(value, 1), 0, 1);
}

// Every symbol is drawn as a circle: it is the only one that the pages give to markers. A negative
// scale, as a magnitude below 0 makes it, mirrors the circle, which leaves it as it is.
function circle(symbol) {
    const radius = Math.abs(finiteOr(symbol.scale, smallestRadius));
    const usedRadius = clamp(radius, smallestRadius, largestRadius);
    return {
        kind: "circle",
        radius: usedRadius,
        strokeWeight: clamp(finiteOr(symbol.strokeWeight, usedRadius), 0, largestRadius),
        strokeColour: colourOr(symbol.strokeColor, "#000"),
        strokeOpacity: opacity(symbol.strokeOpacity),
        fillColour: colourOr(symbol.fillColor, "#000"),
        fillOpacity: clamp(finiteOr(symbol.fillOpacity, 0), 0, 1),
        animated: false,
    };
}

function side(value) {
    const number = toNumber(value);
    return Number.isFinite(number) && number > 0 ? Math.min(number, largestPicture) : null;
}

// Sides and anchor are null where the picture's own size decides: its size as it is, its anchor at the
// middle of the lower edge. `scale` multiplies the picture's own size.
function picture(icon) {
    const size = icon.scaledSize ?? icon.size;
    const url = String(icon.url);
    return {
        kind: "picture",
        url,
        width: side(size?.width),
        height: side(size?.height),
        anchorX: icon.anchor ? finiteOr(icon.anchor.x, 0) : null,
        anchorY: icon.anchor ? finiteOr(icon.anchor.y, 0) : null,
        anchorFraction: icon.anchorFraction ?? null,
        scale: clamp(finiteOr(icon.scale, 1), 0, 50),
        animated: /^data:image\/gif|\.gif(?:[?#]|$)/i.test(url),
    };
}

// icon: a symbol {path, scale, …}, an address, {url, scaledSize, anchor}, or nothing.
export function iconLook(icon) {
    if (typeof icon === "string" && icon !== "") {
        return picture({ url: icon });
    }
    if (icon !== null && typeof icon === "object") {
        if (icon.path !== undefined) {
            return circle(icon);
        }
        if (icon.url) {
            return picture(icon);
        }
    }
    return pin;
}

// The picture's box relative to the marker's position, once its own size is known.
export function pictureBox(look, naturalWidth, naturalHeight) {
    const width = look.width ?? naturalWidth * look.scale;
    const height = look.height ?? naturalHeight * look.scale;
    const [fractionX, fractionY] = look.anchorFraction ?? [0.5, 1];
    return {
        left: -(look.anchorX ?? width * fractionX),
        top: -(look.anchorY ?? height * fractionY),
        width,
        height,
    };
}
