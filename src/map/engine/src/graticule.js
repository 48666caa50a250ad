// Which meridians and parallels a zoom shows and what is written at them.

const steps = [90, 45, 30, 20, 10, 5, 2, 1, 0.5, 0.2, 0.1, 0.05, 0.02, 0.01, 0.005, 0.002, 0.001];
const leastSpacing = 110; // pixels between two meridians

// Degrees between two lines at a zoom.
export function graticuleStep(zoom) {
    const degreesPerPixel = 360 / (256 * 2 ** zoom);
    const fitting = steps.filter((step) => step >= leastSpacing * degreesPerPixel);
    return fitting.length > 0 ? fitting[fitting.length - 1] : steps[0];
}

// The multiples of the step from low to high, counted in whole steps so that no error adds up.
export function graticuleLines(low, high, step) {
    const lines = [];
    for (let n = Math.ceil(low / step - 1e-9); n * step <= high + 1e-9; n++) {
        lines.push(n * step);
    }
    return lines;
}

// "42.5° N", "0°": as many decimals as the step needs.
export function degreeText(value, step, positive, negative) {
    const text = Math.abs(value).toFixed(Math.max(0, -Math.floor(Math.log10(step) + 1e-9)));
    const letter = Number(text) === 0 || Number(text) === 180 ? "" : ` ${value > 0 ? positive : negative}`;
    return `${text}°${letter}`;
}
