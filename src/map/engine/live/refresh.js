// How often the page reads its files: every minute, or as "?refresh=10" says.
import { clamp, finiteOr } from "../src/numbers.js";

const usual = 60; // seconds

export function refreshSeconds(query) {
    return clamp(finiteOr(new URLSearchParams(query).get("refresh"), usual), 1, 3600);
}
