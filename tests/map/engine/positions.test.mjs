import assert from "node:assert/strict";
import { test } from "node:test";
import { LatLng, LatLngBounds, toLatLng } from "../../../src/map/engine/src/lat_lng.js";
import { maxLatitude, unitX, unitY, wrapLongitude } from "../../../src/map/engine/src/mercator.js";
import { finiteOr, toNumber } from "../../../src/map/engine/src/numbers.js";

test("A text is a number only when it holds one", () => {
    assert.equal(toNumber(" 42.5 "), 42.5);
    for (const value of ["", "  ", "42,5", "12x", undefined, null, {}, [], true]) {
        assert.ok(Number.isNaN(toNumber(value)), `${value}`);
    }
    assert.equal(finiteOr("Infinity", 3), 3);
});

test("A position takes texts, as the pages hand them in", () => {
    const position = new LatLng("42.7", "-12.25");
    assert.deepEqual([position.lat(), position.lng()], [42.7, -12.25]);
    assert.equal(position.toString(), "(42.7, -12.25)");
    assert.equal(position.toUrlValue(), "42.7,-12.25");
    assert.deepEqual(new LatLng({ lat: 1, lng: 2 }).toJSON(), { lat: 1, lng: 2 });
});

test("A position without numbers is nowhere", () => {
    for (const [lat, lng] of [["", ""], [NaN, 1], [1, undefined], ["x", 2], [1, Infinity]]) {
        assert.equal(new LatLng(lat, lng).isFinite(), false);
        assert.equal(toLatLng(new LatLng(lat, lng)), null);
    }
    assert.equal(toLatLng(undefined), null);
    assert.equal(toLatLng("42,12"), null);
});

test("Longitudes outside -180 to 180 are wrapped, both ends stay", () => {
    assert.deepEqual([180, -180, 190, -190, 540.5].map(wrapLongitude), [180, -180, -170, 170, -179.5]);
    assert.equal(new LatLng(1e300, 0).lat(), 90);
    assert.equal(new LatLng(0, 200, true).lng(), 200);
});

test("The world is 256 pixels wide at zoom 0 and its edges are the projection's", () => {
    assert.equal(unitX(-180), 0);
    assert.equal(unitX(180), 1);
    assert.ok(Math.abs(unitY(maxLatitude)) < 1e-9);
    assert.ok(Math.abs(unitY(-90) - 1) < 1e-9);
    // 256 * 2^5 * y of 45 degrees, by hand: 0.5 - ln(tan(67.5°)) / 2π.
    assert.ok(Math.abs(unitY(45) - (0.5 - Math.log(Math.tan((67.5 * Math.PI) / 180)) / (2 * Math.PI))) < 1e-12);
});

test("Bounds hold what lies between their corners, across 180° too", () => {
    const plain = new LatLngBounds(new LatLng(40, 10), new LatLng(45, 15));
    assert.ok(plain.contains(new LatLng(40, 15)));
    assert.ok(!plain.contains(new LatLng(46, 12)));
    const crossing = new LatLngBounds(new LatLng(-10, 170), new LatLng(10, -170));
    assert.ok(crossing.contains(new LatLng(0, 179)));
    assert.ok(crossing.contains(new LatLng(0, -175)));
    assert.ok(!crossing.contains(new LatLng(0, 0)));
    assert.equal(crossing.getCenter().lng(), 180);
});

test("Bounds grow by the shorter way", () => {
    const bounds = new LatLngBounds();
    assert.ok(bounds.isEmpty());
    assert.ok(!bounds.contains(new LatLng(0, 0)));
    assert.ok(Number.isNaN(bounds.getSouthWest().lat()));
    bounds.extend(new LatLng(0, 175)).extend(new LatLng(5, -175)).extend(new LatLng(NaN, 0));
    assert.deepEqual(bounds.getSouthWest().toJSON(), { lat: 0, lng: 175 });
    assert.deepEqual(bounds.getNorthEast().toJSON(), { lat: 5, lng: -175 });
    bounds.extend(new LatLng(-3, 170));
    assert.deepEqual(bounds.getSouthWest().toJSON(), { lat: -3, lng: 170 });
});
