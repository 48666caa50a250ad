import assert from "node:assert/strict";
import { test } from "node:test";
import { depthClass, radius, unknownDepth } from "../../../src/map/engine/live/event_looks.js";
import {
    depthText,
    magnitudeText,
    noticeText,
    placeText,
    spokenText,
    summaryText,
    timeText,
    updatedText,
} from "../../../src/map/engine/live/event_texts.js";
import { boundsOf, nearestEvent } from "../../../src/map/engine/live/map_view.js";
import {
    decodeText,
    mostEvents,
    placemarkFields,
    readCsvEvents,
    readNumber,
    readUtc,
} from "../../../src/map/engine/live/published_events.js";
import { loadFile } from "../../../src/map/engine/live/published_file.js";
import { refreshSeconds } from "../../../src/map/engine/live/refresh.js";

const head = "UTC;Latitude;Longitude;Depth;Magnitude;Source\n";
const line = "2021-01-14 05:45:26.600;38.9802;15.3048;268.5;3.3;SURVEY-INGV\n";
const end = "\r\n";
const january14 = Date.UTC(2021, 0, 14, 5, 45, 26, 600);

test("An event of last24H.csv has its numbers, its time and its source", () => {
    const { events, total, unreadable } = readCsvEvents(head + line + end);
    assert.deepEqual({ total, unreadable }, { total: 1, unreadable: 0 });
    assert.deepEqual(events, [
        {
            key: "2021-01-14 05:45:26.600 38.9802 15.3048",
            utc: "2021-01-14 05:45:26.600",
            time: january14,
            latitude: 38.9802,
            longitude: 15.3048,
            depth: 268.5,
            magnitude: 3.3,
            source: "SURVEY-INGV",
        },
    ]);
});

test("A file without events is an empty list", () => {
    assert.deepEqual(readCsvEvents(head + end), { events: [], total: 0, unreadable: 0 });
});

test("Line ends, a byte order mark, quotes and decimal commas do not matter", () => {
    const text = "\uFEFF" + (head + '"2021-01-14 05:45:26.600";"38,9802";15,3048; 268,5 ;3,3;"a";b\n').replaceAll("\n", "\r\n");
    const [event] = readCsvEvents(text).events;
    assert.deepEqual([event.latitude, event.longitude, event.depth, event.magnitude], [38.9802, 15.3048, 268.5, 3.3]);
    assert.equal(event.source, "a;b");
});

test("Lines without a place on earth or a time are left out and counted", () => {
    const bad = ["2021-01-14;91;0;1;1;x", "2021-01-14;0;181;1;1;x", "2021-01-14;;;1;1;x", ";1;1;1;1;x", "<script>alert(1)</script>", ";;;;;"];
    const { total, unreadable } = readCsvEvents(head + line + bad.join("\n") + "\n" + end);
    assert.deepEqual({ total, unreadable }, { total: 1, unreadable: bad.length });
});

test("A host's own page in place of the list is no list", () => {
    for (const text of ["", "<!DOCTYPE html>\n<html>UTC;</html>", "not found", line]) {
        assert.throws(() => readCsvEvents(text), /no list of events/, text);
    }
});

test("Of many events the newest are shown, newest first, and all are counted", () => {
    const minute = (i) => new Date(january14 + i * 60000).toISOString().replace("T", " ").slice(0, 23);
    const lines = Array.from({ length: mostEvents + 5 }, (_, i) => `${minute(i)};42;13;10;2;x\n`);
    const { events, total } = readCsvEvents(head + lines.join("") + end);
    assert.equal(events.length, mostEvents);
    assert.equal(total, mostEvents + 5);
    assert.equal(events[0].utc, minute(mostEvents + 4));
    assert.equal(summaryText({ events, total, unreadable: 0 }), "1005 events, the newest 1000 shown, strongest magnitude 2.0");
});

test("Numbers are decimal numbers and nothing else", () => {
    for (const [text, number] of [["1", 1], ["-1.5", -1.5], [" 2,5 ", 2.5], ["+3", 3], [".5", 0.5], ["1e2", 100], ["0", 0]]) {
        assert.equal(readNumber(text), number, text);
    }
    for (const text of ["", " ", "x", "1x", "1.2.3", "1,2,3", "0x10", "1e999", "Infinity", "NaN", "--1", undefined, null]) {
        assert.equal(readNumber(text), null, String(text));
    }
});

test("Times are those of the catalogue; what is none stays text", () => {
    assert.equal(readUtc("2021-01-14 05:45:26.600"), january14);
    assert.equal(readUtc("2021-01-14T05:45:26"), january14 - 600);
    assert.equal(readUtc("2021-01-14 05:45:26.6"), january14);
    for (const text of ["", "yesterday", "2021-02-31 00:00:00", "2021-01-14 25:00:00", "2021-01-14 00:61:00", "14/01/2021 05:45:26"]) {
        assert.equal(readUtc(text), null, text);
    }
    assert.equal(timeText({ time: january14, utc: "" }), "14 Jan 05:45:26");
    assert.equal(timeText({ time: null, utc: "<b>then</b>" }), "<b>then</b>");
});

test("Bytes are UTF-8, else Windows-1252", () => {
    assert.equal(decodeText(new TextEncoder().encode("Forlì")), "Forlì");
    assert.equal(decodeText(Uint8Array.of(0x46, 0x6f, 0x72, 0x6c, 0xec)), "Forlì");
});

test("A placemark gives the fields of its event", () => {
    const description = "UTC: 2021-01-14 05:45:26.600\nDepth: 268.5\nMagnitude: 3.3\nSource: SURVEY: INGV";
    const mark = { name: "2021-01-14 05:45:26.600 Mg: 3.3", description, points: [[15.3048, 38.9802]] };
    assert.deepEqual(placemarkFields(mark), {
        utc: "2021-01-14 05:45:26.600",
        latitude: 38.9802,
        longitude: 15.3048,
        depth: "268.5",
        magnitude: "3.3",
        source: "SURVEY: INGV",
    });
    assert.deepEqual(Object.values(placemarkFields({ name: "", description: "", points: [] })), Array(6).fill(undefined));
});

test("Depth chooses the colour, its classes include their upper bound", () => {
    const colours = [0, 5, 5.1, 10, 20, 50, 100, 100.1, 700].map((depth) => depthClass(depth).colour);
    assert.deepEqual(colours, ["#ff9900", "#ff9900", "#ffff00", "#ffff00", "#33ff00", "#0033ff", "#9933ff", "#ff0000", "#ff0000"]);
    assert.equal(depthClass(null), unknownDepth);
    assert.equal(depthClass(-1), unknownDepth);
});

test("Magnitude chooses the size between a smallest and a largest", () => {
    assert.deepEqual([null, -1, 0, 1, 4, 6.5, 99].map(radius), [4, 4, 4, 4, 12, 19.5, 30]);
});

test("Facts are told in words of their own", () => {
    assert.equal(placeText({ latitude: 38.9802, longitude: -15.3048 }), "38.98° N, 15.30° W");
    assert.equal(placeText({ latitude: -0.5, longitude: 0 }), "0.50° S, 0.00° E");
    assert.equal(depthText({ depth: 268.54 }), "268.5 km deep");
    assert.equal(depthText({ depth: 10 }), "10 km deep");
    assert.equal(depthText({ depth: null }), "depth unknown");
    assert.equal(magnitudeText({ magnitude: 3 }), "3.0");
    assert.equal(magnitudeText({ magnitude: null }), "–");
    assert.equal(summaryText({ events: [], total: 0, unreadable: 0 }), "0 events");
    assert.equal(summaryText({ events: [{ magnitude: 3.3 }], total: 1, unreadable: 1 }), "1 event, strongest magnitude 3.3, 1 line left out");
    const event = { time: january14, utc: "", latitude: 38.98, longitude: 15.3, depth: 10, magnitude: 3.3, source: "" };
    assert.equal(spokenText(event), "Magnitude 3.3, 14 Jan 05:45:26 UTC, 38.98° N, 15.30° E, 10 km deep");
    assert.equal(updatedText({ modified: january14, readAt: 0 }), "Updated 14 Jan 05:45:26 UTC");
    assert.equal(updatedText({ modified: null, readAt: january14 }), "Read 14 Jan 05:45:26 UTC");
});

test("A visitor is told when the list cannot be read or is old, and nothing when all is well", () => {
    const minutes = (count) => ({ modified: january14, readAt: 0, now: january14 + count * 60000 });
    const notice = (count, reached = true) => noticeText({ shown: minutes(count), reached, now: minutes(count).now });
    assert.equal(notice(59), "");
    assert.match(notice(61), /not been renewed for 1 hour\./);
    assert.match(notice(180), /for 3 hours/);
    assert.match(notice(60 * 24 * 3), /for 3 days/);
    assert.match(notice(1, false), /cannot be read at the moment. Shown is what was read last/);
    assert.match(noticeText({ shown: null, reached: false, now: 0 }), /keeps trying/);
    assert.equal(noticeText({ shown: { modified: null, readAt: 0 }, reached: true, now: 1e12 }), "");
});

test("The first view holds all events with some room and stays on the map", () => {
    assert.equal(boundsOf([]), null);
    assert.deepEqual(boundsOf([{ latitude: 42, longitude: 13 }]), { south: 41.5, west: 12.5, north: 42.5, east: 13.5 });
    assert.deepEqual(boundsOf([{ latitude: 89, longitude: 180 }, { latitude: -89, longitude: -180 }]), { south: -85, west: -180, north: 85, east: 180 });
});

test("A touch means the nearest event within reach, across the edge of the map too", () => {
    const near = { latitude: 42, longitude: 13 };
    const nearer = { latitude: 42, longitude: 13.02 };
    assert.equal(nearestEvent([near, nearer], { latitude: 42, longitude: 13.03 }, 8, 22), nearer);
    assert.equal(nearestEvent([near], { latitude: 43, longitude: 13 }, 8, 22), null);
    const edge = { latitude: 0, longitude: 179.99 };
    assert.equal(nearestEvent([edge], { latitude: 0, longitude: -179.99 }, 5, 22), edge);
});

test("The address may ask for another interval between a second and an hour", () => {
    assert.deepEqual(["", "?refresh=5", "?refresh=0", "?refresh=x", "?refresh=99999"].map(refreshSeconds), [60, 5, 1, 60, 3600]);
});

function answering(body, init) {
    globalThis.fetch = async (name, options) => {
        assert.equal(options.cache, "no-cache");
        assert.ok(options.signal instanceof AbortSignal);
        return new Response(body, init);
    };
}

test("A file comes with the time it was written, if the host tells", async (t) => {
    t.after(() => delete globalThis.fetch);
    answering("text", { headers: { "Last-Modified": "Thu, 14 Jan 2021 05:45:26 GMT" } });
    const { bytes, modified } = await loadFile("last24H.csv");
    assert.equal(decodeText(bytes), "text");
    assert.equal(modified, january14 - 600);
    answering("text", {});
    assert.equal((await loadFile("last24H.csv")).modified, null);
});

test("A missing file and one without end are refused", async (t) => {
    t.after(() => delete globalThis.fetch);
    answering("no", { status: 404 });
    await assert.rejects(loadFile("last24H.csv"), /status 404/);
    let sent = 0;
    let cancelled = false;
    const endless = new ReadableStream({
        pull: (controller) => {
            sent += 1;
            controller.enqueue(new Uint8Array(1e6));
        },
        cancel: () => (cancelled = true),
    });
    answering(endless, {});
    await assert.rejects(loadFile("last24H.csv"), /too large/);
    assert.ok(cancelled && sent < 20);
});

// A generator of its own, so that every run sees the same damage.
function* numbersFrom(seed) {
    for (let state = seed; ; ) {
        state = (Math.imul(state, 1664525) + 1013904223) >>> 0;
        yield state;
    }
}

test("However a file is damaged, it gives events on earth or is refused", () => {
    const whole = new TextEncoder().encode(head + line.repeat(3) + end);
    const random = numbersFrom(1);
    const next = (below) => random.next().value % below;
    let refused = 0;
    for (let run = 0; run < 3000; run++) {
        const bytes = whole.slice(next(3) === 0 ? next(4) : 0, next(3) === 0 ? next(whole.length) : undefined);
        for (let i = next(8); i > 0 && bytes.length > 0; i--) {
            bytes[next(bytes.length)] = next(256);
        }
        try {
            for (const { latitude, longitude, depth, magnitude, utc } of readCsvEvents(decodeText(bytes)).events) {
                assert.ok(Math.abs(latitude) <= 90 && Math.abs(longitude) <= 180 && utc !== "");
                assert.ok([depth, magnitude].every((value) => value === null || Number.isFinite(value)), new TextDecoder().decode(bytes));
            }
        } catch (error) {
            assert.equal(error.message, "This is no list of events.");
            refused += 1;
        }
    }
    assert.ok(refused > 0 && refused < 3000);
});
