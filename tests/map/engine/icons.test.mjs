import assert from "node:assert/strict";
import { test } from "node:test";
import { iconLook, pictureBox } from "../../../src/map/engine/src/icons.js";

globalThis.CSS = { supports: (_, colour) => /^(#[0-9a-f]{6}|yellow)$/i.test(colour) };

const circle = (symbol) => iconLook({ path: 0, ...symbol });

test("A circle has the given size and colours", () => {
    const look = circle({ scale: 9, strokeWeight: 1, fillColor: "yellow", fillOpacity: 1 });
    assert.equal(look.kind, "circle");
    assert.equal(look.radius, 9);
    assert.equal(look.strokeWeight, 1);
    assert.equal(look.fillColour, "yellow");
    assert.equal(look.fillOpacity, 1);
});

test("A circle of a magnitude below 0 is as large as above it", () => {
    assert.equal(circle({ scale: -4 }).radius, 4);
});

test("What has no usable size or colour is small and black", () => {
    for (const scale of [NaN, "", undefined, 0, "x"]) {
        assert.equal(circle({ scale }).radius, 1.5);
    }
    assert.equal(circle({ scale: 1e300 }).radius, 1000);
    assert.equal(circle({ fillColor: "undefined" }).fillColour, "#000");
    assert.equal(circle({ fillOpacity: 7 }).fillOpacity, 1);
});

test("A picture without an anchor stands on the middle of its lower edge", () => {
    const look = iconLook({ url: "Img/o_14.png" });
    assert.deepEqual(pictureBox(look, 14, 20), { left: -7, top: -20, width: 14, height: 20 });
    assert.equal(look.animated, false);
});

test("Size and anchor of a picture are the page's when it gives them", () => {
    const look = iconLook({ url: "Img/lastepic.gif", scaledSize: { width: 90, height: 90 }, anchor: { x: 45, y: 45 } });
    assert.deepEqual(pictureBox(look, 10, 10), { left: -45, top: -45, width: 90, height: 90 });
    assert.equal(look.animated, true);
    assert.deepEqual(pictureBox(iconLook({ url: "a.png", scaledSize: { width: -1, height: NaN } }), 8, 8).width, 8);
});

test("No icon is the pin", () => {
    for (const icon of [undefined, null, "", {}, { url: "" }, 7]) {
        assert.equal(iconLook(icon).kind, "pin");
    }
    assert.equal(iconLook("a.png").kind, "picture");
});
