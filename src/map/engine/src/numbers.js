// Numbers as pages hand them in: often text, sometimes nothing.

// The number in a value; NaN for empty text and for anything that is none. "" is no 0.
export function toNumber(value) {
    if (typeof value === "number") {
        return value;
    }
    return typeof value === "string" && value.trim() !== "" ? Number(value) : NaN;
}

// The number in a value when it is finite, else the given one.
export function finiteOr(value, otherwise) {
    const number = toNumber(value);
    return Number.isFinite(number) ? number : otherwise;
}

export function clamp(value, low, high) {
    return Math.min(high, Math.max(low, value));
}
