// Packs Natural Earth's land and borders (package world-atlas) into the compact form that
// src/world.js unpacks in the page. Three generalisations drawn by the cartographers themselves:
// 1:110m for the whole world, 1:50m for continents, 1:10m for everything closer.
//
// A level, deflated and in base64: unsigned LEB128 numbers; signed ones in zigzag form.
//   number of rings, then for each its number of points and as many pairs of differences (x, y)
//   number of border lines, then the same
// x and y count steps of the level's grid from the south-west: longitude = west + x * stepX. A line that
// crosses 180° goes on beyond it, so x may lie outside the sheet.
import { readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { deflateRawSync } from "node:zlib";
import { feature, mesh } from "topojson-client";
import { innermostPoint } from "./innermost_point.js";

const require = createRequire(import.meta.url);

export class NumberWriter {
    #bytes = [];

    unsigned(value) {
        while (value > 127) {
            this.#bytes.push((value % 128) | 128);
            value = Math.floor(value / 128);
        }
        this.#bytes.push(value);
    }

    signed(value) {
        this.unsigned(value < 0 ? -2 * value - 1 : 2 * value);
    }

    bytes() {
        return Uint8Array.from(this.#bytes);
    }
}

// Writes lines of [longitude, latitude] on the grid; points that fall on their predecessor go.
export function writeLines(writer, lines, grid) {
    writer.unsigned(lines.length);
    for (const line of lines) {
        const points = [];
        let lastX = NaN;
        let lastY = NaN;
        for (const [longitude, latitude] of line) {
            const x = Math.round((longitude - grid.west) / grid.stepX);
            const y = Math.round((latitude - grid.south) / grid.stepY);
            if (x !== lastX || y !== lastY) {
                points.push([x, y]);
                lastX = x;
                lastY = y;
            }
        }
        writer.unsigned(points.length);
        let [fromX, fromY] = [0, 0];
        for (const [x, y] of points) {
            writer.signed(x - fromX);
            writer.signed(y - fromY);
            [fromX, fromY] = [x, y];
        }
    }
}

// The atlas has joined what 180° had cut: its lines jump there from one edge of the sheet to the other.
// Makes them go on instead. A ring around the pole ends a whole turn from its start and is closed below
// the sheet.
export function unwrapLine(line) {
    let turns = 0;
    const unwrapped = line.map(([longitude, latitude], i) => {
        const step = i === 0 ? 0 : longitude - line[i - 1][0];
        turns += step > 180 ? -1 : step < -180 ? 1 : 0;
        return [longitude + 360 * turns, latitude];
    });
    if (turns === 0) {
        return unwrapped;
    }
    const [first, last] = [unwrapped[0], unwrapped[unwrapped.length - 1]];
    const isRing = line[0][0] === line[line.length - 1][0] && line[0][1] === line[line.length - 1][1];
    return isRing ? [...unwrapped, [last[0], -90], [first[0], -90], first] : unwrapped;
}

function readAtlas(name) {
    return JSON.parse(readFileSync(require.resolve(`world-atlas/countries-${name}.json`), "utf8"));
}

// The parts of a feature collection, a single feature, a polygon or several of them.
function polygonsOf(geojson) {
    if (geojson.type === "FeatureCollection") {
        return geojson.features.flatMap(polygonsOf);
    }
    const geometry = geojson.geometry ?? geojson;
    return geometry.type === "Polygon" ? [geometry.coordinates] : geometry.coordinates;
}

// One generalisation's grid and numbers.
export function levelNumbers(name) {
    const atlas = readAtlas(name);
    const [stepX, stepY] = atlas.transform.scale;
    const [west, south] = atlas.transform.translate;
    const grid = { west, south, stepX, stepY };
    const rings = polygonsOf(feature(atlas, atlas.objects.land)).flat().map(unwrapLine);
    const borders = mesh(atlas, atlas.objects.countries, (a, b) => a !== b).coordinates.map(unwrapLine);
    const writer = new NumberWriter();
    writeLines(writer, rings, grid);
    writeLines(writer, borders, grid);
    return { grid, bytes: writer.bytes() };
}

function packLevel(name) {
    const { grid, bytes } = levelNumbers(name);
    return { ...grid, data: deflateRawSync(bytes, { level: 9 }).toString("base64") };
}

// [name, longitude, latitude, room]: where a country's name stands and how far from there, in
// degrees of longitude, the country's edge is.
function countryLabels() {
    const atlas = readAtlas("50m");
    const countries = feature(atlas, atlas.objects.countries).features;
    return countries
        .filter((country) => country.properties.name && country.geometry)
        .map((country) => {
            const { x, y, room } = innermostPoint(polygonsOf(country).map((rings) => rings.map(unwrapLine)));
            return [country.properties.name, ...[x, y, room].map((value) => Number(value.toFixed(2)))];
        })
        .sort((a, b) => b[3] - a[3]);
}

export function packWorld() {
    return { levels: ["110m", "50m", "10m"].map(packLevel), labels: countryLabels() };
}
