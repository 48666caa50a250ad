// How events look: coloured by depth and sized by magnitude like the circles of the program's own map.
import { clamp } from "../src/numbers.js";

// Upper bounds in km, inclusive; the first class that fits is taken.
export const depthClasses = [
    { upTo: 5, colour: "#ff9900", label: "0–5 km" },
    { upTo: 10, colour: "#ffff00", label: "5–10 km" },
    { upTo: 20, colour: "#33ff00", label: "10–20 km" },
    { upTo: 50, colour: "#0033ff", label: "20–50 km" },
    { upTo: 100, colour: "#9933ff", label: "50–100 km" },
    { upTo: Infinity, colour: "#ff0000", label: "over 100 km" },
];

export const unknownDepth = { colour: "#ffffff", label: "unknown" };

const pixelsPerMagnitude = 3;
const smallestRadius = 4;
const largestRadius = 30;

export function depthClass(depth) {
    return depth === null || depth < 0 ? unknownDepth : depthClasses.find(({ upTo }) => depth <= upTo);
}

// Pixels; an event without a magnitude is as small as the smallest.
export function radius(magnitude) {
    return clamp((magnitude ?? 0) * pixelsPerMagnitude, smallestRadius, largestRadius);
}
