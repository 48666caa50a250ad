import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { test } from "node:test";
import { deflateRawSync } from "node:zlib";
import { NumberWriter, packWorld, unwrapLine, writeLines } from "../../../src/map/engine/bundle/pack_world.js";
import { innermostPoint } from "../../../src/map/engine/bundle/innermost_point.js";
import { openKml } from "../../../src/map/engine/src/kml_file.js";
import { unitX, unitY } from "../../../src/map/engine/src/mercator.js";
import { World, unpackLevel } from "../../../src/map/engine/src/world.js";

const grid = { west: -180, south: -90, stepX: 0.5, stepY: 0.25 };

function pack(land, borders) {
    const writer = new NumberWriter();
    writeLines(writer, land, grid);
    writeLines(writer, borders, grid);
    return { ...grid, data: deflateRawSync(writer.bytes()).toString("base64") };
}

test("What is packed comes out again on the projection", () => {
    const { land, borders } = unpackLevel(pack([[[12, 42], [12, 42], [13.5, -42.25]]], [[[-180, 0], [180, 0]]]));
    const expected = [unitX(12), unitY(42), unitX(13.5), unitY(-42.25)].map(Math.fround);
    assert.deepEqual([...land[0].points], expected);
    assert.ok(Math.abs(land[0].left - unitX(12)) < 1e-12 && Math.abs(land[0].bottom - unitY(-42.25)) < 1e-12);
    assert.deepEqual([...borders[0].points], [0, 0.5, 1, 0.5]);
});

test("Cut data are an error and no endless loop", () => {
    const bytes = new NumberWriter();
    bytes.unsigned(1000000);
    assert.throws(() => unpackLevel({ ...grid, data: deflateRawSync(bytes.bytes()).toString("base64") }), RangeError);
});

test("The level follows the zoom and is unpacked once", () => {
    const level = pack([], []);
    const world = new World({ levels: [level, level, level], labels: [["Italy", 12, 42, 3.6]] });
    assert.equal(world.atZoom(0), world.atZoom(1));
    assert.notEqual(world.atZoom(1), world.atZoom(2));
    assert.equal(world.atZoom(5), world.atZoom(20));
    assert.equal(world.labels[0].room, 0.01);
});

test("A line across 180° goes on beyond it, a ring around the pole is closed below the sheet", () => {
    assert.deepEqual(unwrapLine([[170, 1], [-170, 2], [175, 3]]), [[170, 1], [190, 2], [175, 3]]);
    const round = [[-180, -70], [0, -80], [170, -70], [-180, -70]];
    assert.deepEqual(unwrapLine(round).slice(3), [[180, -70], [180, -90], [-180, -90], [-180, -70]]);
});

test("A line across 180° shows at both edges of the sheet", () => {
    const { land } = unpackLevel(pack([[[170, 0], [190, 0]]], []));
    assert.deepEqual(land.map(({ shift }) => shift), [0, -1]);
    assert.ok(land[1].left < 0 && land[1].right > 0);
});

test("No line of the packed world leaps from one edge to the other", () => {
    const world = new World(packWorld());
    for (const zoom of [0, 3, 6]) {
        const { land, borders } = world.atZoom(zoom);
        assert.ok(land.length > 100 && borders.length > 100);
        for (const { points } of [...land, ...borders]) {
            for (let i = 2; i < points.length; i += 2) {
                const belowSheet = points[i + 1] > 0.9999;
                assert.ok(belowSheet || Math.abs(points[i] - points[i - 2]) < 0.5);
            }
        }
    }
    assert.ok(world.labels.some(({ name }) => name === "Italy"));
});

test("A name stands in the middle of the largest part", () => {
    const square = (x, y, side) => [[[x, y], [x + side, y], [x + side, y + side], [x, y + side], [x, y]]];
    const { x, y, room } = innermostPoint([square(50, 50, 1), square(-2, -2, 4)]);
    assert.ok(Math.hypot(x, y) < 0.1);
    assert.ok(Math.abs(room - 2) < 0.1);
});

const share = new URL("../../../share/Img/", import.meta.url);
const bytesOf = (name) => new Uint8Array(readFileSync(new URL(name, share)));

test("A packed overlay gives its document and its picture, whatever its name", () => {
    const { text, files } = openKml(bytesOf("LegendZ.kmz.txt"));
    assert.match(text, /<ScreenOverlay>/);
    assert.deepEqual([...files["legend.png"].slice(1, 4)], [..."PNG"].map((letter) => letter.charCodeAt(0)));
});

test("Plain KML is taken as it is", () => {
    assert.equal(openKml(new TextEncoder().encode("<kml/>")).text, "<kml/>");
});

test("A cut or empty KMZ is an error", () => {
    const whole = bytesOf("OrvaLogo.kmz.txt");
    assert.throws(() => openKml(whole.slice(0, whole.length / 2)));
    assert.throws(() => openKml(whole.slice(0, 4)));
});

test("All forty pins and the animation are there and are pictures", () => {
    for (const letter of "oygbv") {
        for (const side of [14, 18, 23, 28, 34, 44, 50, 58]) {
            const png = readFileSync(new URL(`${letter}_${side}.png`, share));
            assert.deepEqual([png.readUInt32BE(16), png.readUInt32BE(20)], [side, side]);
        }
    }
    const gif = readFileSync(new URL("lastepic.gif", share));
    assert.equal(gif.toString("latin1", 0, 6), "GIF89a");
    assert.deepEqual([gif.readUInt16LE(6), gif.readUInt16LE(8)], [90, 90]);
    assert.ok(gif.includes("NETSCAPE2.0"));
});
