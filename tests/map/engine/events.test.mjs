import assert from "node:assert/strict";
import { beforeEach, test } from "node:test";
import { MVCObject, event } from "../../../src/map/engine/src/events.js";

let reported = [];
beforeEach(() => {
    reported = [];
    globalThis.reportError = (error) => reported.push(error);
});

test("Listeners run in their order, on the object, with the event's values", () => {
    const object = new MVCObject();
    const seen = [];
    event.addListener(object, "click", function (a, b) {
        seen.push([this === object, a, b]);
    });
    object.addListener("click", () => seen.push("second"));
    event.trigger(object, "click", 1, 2);
    assert.deepEqual(seen, [[true, 1, 2], "second"]);
});

test("A listener for once that is added meanwhile waits for the next event", () => {
    const object = {};
    const seen = [];
    event.addListenerOnce(object, "tilesloaded", () => {
        seen.push("first");
        event.addListenerOnce(object, "tilesloaded", () => seen.push("second"));
    });
    event.trigger(object, "tilesloaded");
    assert.deepEqual(seen, ["first"]);
    event.trigger(object, "tilesloaded");
    event.trigger(object, "tilesloaded");
    assert.deepEqual(seen, ["first", "second"]);
});

test("A listener that throws is reported and the others run", () => {
    const object = {};
    const seen = [];
    event.addListener(object, "idle", () => {
        throw new Error("from the page");
    });
    event.addListener(object, "idle", () => seen.push("ran"));
    event.trigger(object, "idle");
    assert.deepEqual(seen, ["ran"]);
    assert.equal(reported[0].message, "from the page");
});

test("A removed listener is silent, also when one before it removes it", () => {
    const object = {};
    const seen = [];
    let second = null;
    event.addListener(object, "idle", () => event.removeListener(second));
    second = event.addListener(object, "idle", () => seen.push("second"));
    event.trigger(object, "idle");
    event.removeListener(second);
    event.removeListener(undefined);
    assert.deepEqual(seen, []);
});

test("Clearing takes one event's listeners or all of them", () => {
    const object = new MVCObject();
    const heard = [];
    const names = ["click", "idle"];
    names.forEach((name) => object.addListener(name, () => heard.push(name)));
    event.clearListeners(object, "click");
    names.forEach((name) => event.trigger(object, name));
    assert.deepEqual(heard, ["idle"]);
    event.clearInstanceListeners(object);
    names.forEach((name) => event.trigger(object, name));
    assert.deepEqual(heard, ["idle"]);
});

test("Nothing, no function and nobody are no errors", () => {
    event.trigger(null, "click");
    event.trigger(undefined, "click");
    event.addListener(null, "click", () => {});
    event.addListener({}, "click", "no function").remove();
    event.clearInstanceListeners(undefined);
    assert.deepEqual(reported, []);
});

test("A listener of the window is the browser's own", () => {
    const target = new EventTarget();
    const seen = [];
    const listener = event.addDomListener(target, "load", () => seen.push("load"));
    target.dispatchEvent(new Event("load"));
    event.removeListener(listener);
    target.dispatchEvent(new Event("load"));
    assert.deepEqual(seen, ["load"]);
});
