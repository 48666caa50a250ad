// The base map's outlines: unpacks what bundle/pack_world.js has packed, a level when it is first
// needed. A line is {points, shift, left, top, right, bottom}, on the unit square of mercator.js: the points
// and, with the shift to be added to each x, their bounds. A line across 180° is there twice.
import { inflateSync } from "fflate";
import { unitX, unitY } from "./mercator.js";

class NumberReader {
    #bytes;
    #at = 0;

    constructor(bytes) {
        this.#bytes = bytes;
    }

    unsigned() {
        let value = 0;
        let factor = 1;
        for (;;) {
            const byte = this.#bytes[this.#at++];
            value += (byte & 127) * factor;
            if (byte < 128) {
                return value;
            }
            if (byte === undefined) {
                throw new RangeError("The base map's data end too early.");
            }
            factor *= 128;
        }
    }

    signed() {
        const value = this.unsigned();
        return value % 2 === 1 ? -(value + 1) / 2 : value / 2;
    }
}

function readLine(reader, grid) {
    const count = reader.unsigned();
    const points = new Float32Array(2 * count);
    const line = { points, shift: 0, left: Infinity, top: Infinity, right: -Infinity, bottom: -Infinity };
    let x = 0;
    let y = 0;
    for (let i = 0; i < count; i++) {
        x += reader.signed();
        y += reader.signed();
        const atX = unitX(grid.west + x * grid.stepX);
        const atY = unitY(grid.south + y * grid.stepY);
        points[2 * i] = atX;
        points[2 * i + 1] = atY;
        line.left = Math.min(line.left, atX);
        line.right = Math.max(line.right, atX);
        line.top = Math.min(line.top, atY);
        line.bottom = Math.max(line.bottom, atY);
    }
    return line;
}

function shifted(line, shift) {
    return { ...line, shift, left: line.left + shift, right: line.right + shift };
}

function readLines(reader, grid) {
    const lines = Array.from({ length: reader.unsigned() }, () => readLine(reader, grid));
    const beyondEast = lines.filter((line) => line.right > 1).map((line) => shifted(line, -1));
    const beyondWest = lines.filter((line) => line.left < 0).map((line) => shifted(line, 1));
    return [...lines, ...beyondEast, ...beyondWest];
}

function bytesOf(base64) {
    const text = atob(base64);
    const bytes = new Uint8Array(text.length);
    for (let i = 0; i < bytes.length; i++) {
        bytes[i] = text.charCodeAt(i);
    }
    return bytes;
}

// packed: {west, south, stepX, stepY, data}. Gives {land, borders}.
export function unpackLevel(packed) {
    const reader = new NumberReader(inflateSync(bytesOf(packed.data)));
    return { land: readLines(reader, packed), borders: readLines(reader, packed) };
}

// Up to which zoom a level is drawn; from 1:10m on there is nothing finer.
const lastZoom = [1, 4, Infinity];

export class World {
    #packed;
    #levels = [];

    constructor(packed) {
        this.#packed = packed;
        this.labels = packed.labels.map(([name, longitude, latitude, room]) => ({
            name,
            x: unitX(longitude),
            y: unitY(latitude),
            room: room / 360,
        }));
    }

    atZoom(zoom) {
        const index = lastZoom.findIndex((last) => zoom <= last);
        this.#levels[index] ??= unpackLevel(this.#packed.levels[index]);
        return this.#levels[index];
    }
}
