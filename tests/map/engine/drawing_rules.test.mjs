import assert from "node:assert/strict";
import { test } from "node:test";
import { clipRing, visitStretches } from "../../../src/map/engine/src/clip.js";
import { degreeText, graticuleLines, graticuleStep } from "../../../src/map/engine/src/graticule.js";
import { overlayPlace, overlaySize } from "../../../src/map/engine/src/screen_overlay.js";

const box = { left: 0, top: 0, right: 10, bottom: 10 };

function area(points) {
    let sum = 0;
    for (let i = 0; i < points.length; i += 2) {
        const j = (i + 2) % points.length;
        sum += points[i] * points[j + 1] - points[j] * points[i + 1];
    }
    return Math.abs(sum) / 2;
}

test("A ring inside the rectangle stays, one outside goes, one around it becomes the rectangle", () => {
    assert.deepEqual(clipRing([1, 1, 9, 1, 5, 9], box), [1, 1, 9, 1, 5, 9]);
    assert.deepEqual(clipRing([20, 20, 30, 20, 25, 30], box), []);
    assert.equal(area(clipRing([-50, -50, 50, -50, 50, 50, -50, 50], box)), 100);
    assert.deepEqual(clipRing([], box), []);
});

test("A ring across an edge is cut at the edge", () => {
    assert.equal(area(clipRing([5, 2, 15, 2, 15, 8, 5, 8], box)), 30);
});

test("Only stretches that touch the rectangle are drawn, and a gap starts a new line", () => {
    const seen = [];
    visitStretches([1, 1, 2, 2, 20, 2, 20, 30, 5, 30, 5, 5], box, (ax, ay, bx, by, joined) => seen.push([ax, ay, bx, by, joined]));
    assert.deepEqual(seen, [[1, 1, 2, 2, false], [2, 2, 20, 2, true], [5, 30, 5, 5, false]]);
});

test("Meridians stay between 110 and some 300 pixels apart at every zoom up to 18", () => {
    for (let zoom = 1; zoom <= 18; zoom++) {
        const pixels = (graticuleStep(zoom) * 256 * 2 ** zoom) / 360;
        assert.ok(pixels >= 110 && pixels < 300, `zoom ${zoom}: ${pixels}`);
    }
    assert.equal(graticuleStep(7), 2);
});

test("Lines are the multiples of the step, ends included", () => {
    assert.deepEqual(graticuleLines(-4, 4.1, 2), [-4, -2, 0, 2, 4]);
    assert.deepEqual(graticuleLines(0.1, 0.3, 0.1).map((value) => value.toFixed(1)), ["0.1", "0.2", "0.3"]);
    assert.deepEqual(graticuleLines(5, 4, 1), []);
});

test("Degrees carry the decimals of their step and a letter where there is a side", () => {
    assert.equal(degreeText(42, 2, "N", "S"), "42° N");
    assert.equal(degreeText(-42.5, 0.5, "N", "S"), "42.5° S");
    assert.equal(degreeText(0, 1, "E", "W"), "0°");
    assert.equal(degreeText(-180, 10, "E", "W"), "180°");
    assert.equal(degreeText(0.1 + 0.2, 0.1, "E", "W"), "0.3° E");
});

const screen = { width: 800, height: 600 };
const natural = { width: 200, height: 100 };
const size = (x, y, units = "pixels") => ({ x, y, xunits: units, yunits: units });

test("An overlay's size is its own, in pixels, or a part of the screen; 0 keeps the proportions", () => {
    assert.deepEqual(overlaySize(size(NaN, NaN), natural, screen), natural);
    assert.deepEqual(overlaySize(size(0, 0), natural, screen), natural);
    assert.deepEqual(overlaySize(size(-1, -1), natural, screen), natural);
    assert.deepEqual(overlaySize(size(100, 0), natural, screen), { width: 100, height: 50 });
    assert.deepEqual(overlaySize(size(0, 0.5, "fraction"), natural, screen), { width: 600, height: 300 });
});

test("An overlay hangs at its place, counted from the lower left or inwards from the upper right", () => {
    const corner = { x: 1, y: 1, xunits: "fraction", yunits: "fraction" };
    const inset = { x: 8, y: 24, xunits: "insetPixels", yunits: "insetPixels" };
    assert.deepEqual(overlayPlace({ overlayXY: corner, screenXY: inset }, natural, screen), { left: 592, top: 24 });
    const origin = { x: 0, y: 0, xunits: "fraction", yunits: "fraction" };
    assert.deepEqual(overlayPlace({ overlayXY: origin, screenXY: origin }, natural, screen), { left: 0, top: 500 });
});
