// The events in the published files. What stands in a file is text from outside: a line that is no
// event is left out and counted, and nothing of it is ever taken for markup.
import { plainDescription, readKml } from "../src/kml_document.js";

export const mostEvents = 1000; // the newest; a list beyond that helps nobody

const csvHead = /^"?#?UTC"?\s*;/i;
const kmlName = /^(.*) Mg: (.*)$/s;
const utcForm = /^(\d{4})-(\d{2})-(\d{2})[ T](\d{2}):(\d{2}):(\d{2})(?:\.(\d{1,3})\d*)?/;

// The text of a file: UTF-8, or Windows-1252 as the catalogue of an older installation may hold it.
export function decodeText(bytes) {
    try {
        return new TextDecoder("utf-8", { fatal: true }).decode(bytes);
    } catch {
        return new TextDecoder("windows-1252").decode(bytes);
    }
}

// A number with a point or, as some locales write it, a comma; null for anything else.
export function readNumber(text) {
    const plain = String(text ?? "").trim().replace(",", ".");
    const number = /^[+-]?(\d+\.?\d*|\.\d+)(e[+-]?\d+)?$/i.test(plain) ? Number(plain) : NaN;
    return Number.isFinite(number) ? number : null;
}

// Milliseconds since 1970 of "2021-01-14 05:45:26.600"; null for what is no such time.
export function readUtc(text) {
    const parts = utcForm.exec(text);
    if (parts === null) {
        return null;
    }
    const [year, month, day, hour, minute, second] = parts.slice(1, 7).map(Number);
    const time = Date.UTC(year, month - 1, day, hour, minute, second, Number((parts[7] ?? "").padEnd(3, "0")));
    return new Date(time).getUTCDate() === day && hour < 24 && minute < 60 && second < 61 ? time : null;
}

// {key, utc, time, latitude, longitude, depth, magnitude, source}: degrees, km; null where the file
// gives no number. null when there is no place on earth.
function eventOf({ utc, latitude, longitude, depth, magnitude, source }) {
    const [lat, lng] = [readNumber(latitude), readNumber(longitude)];
    const name = String(utc ?? "").trim();
    if (name === "" || lat === null || lng === null || Math.abs(lat) > 90 || Math.abs(lng) > 180) {
        return null;
    }
    return {
        key: `${name} ${lat} ${lng}`,
        utc: name,
        time: readUtc(name),
        latitude: lat,
        longitude: lng,
        depth: readNumber(depth),
        magnitude: readNumber(magnitude),
        source: String(source ?? "").trim(),
    };
}

// {events, total, unreadable}: newest first, at most mostEvents of the total.
function listOf(candidates) {
    const events = candidates.map(eventOf).filter((event) => event !== null);
    events.sort((a, b) => (b.time ?? -Infinity) - (a.time ?? -Infinity) || 0);
    return {
        events: events.slice(0, mostEvents),
        total: events.length,
        unreadable: candidates.length - events.length,
    };
}

function csvFields(line) {
    const fields = line.split(";").map((field) => field.trim().replace(/^"(.*)"$/, "$1"));
    const [utc, latitude, longitude, depth, magnitude, ...rest] = fields;
    return { utc, latitude, longitude, depth, magnitude, source: rest.join(";") };
}

// last24H.csv: "UTC;Latitude;Longitude;Depth;Magnitude;Source" and a line for each event. Throws when
// the head is not there, as when a host answers with a page of its own.
export function readCsvEvents(text) {
    const [head, ...lines] = text.replace(/^\uFEFF/, "").split(/\r\n|\r|\n/);
    if (!csvHead.test(head)) {
        throw new Error("This is no list of events.");
    }
    return listOf(lines.filter((line) => line.trim() !== "").map(csvFields));
}

// One placemark's parts as the fields of an event: the name is "UTC Mg: magnitude", the description
// has lines such as "Depth: 10".
export function placemarkFields({ name, description, points }) {
    const [, utc, magnitude] = kmlName.exec(name) ?? [];
    const [longitude, latitude] = points[0] ?? [];
    const line = (title) => description.split("\n").find((each) => each.startsWith(`${title}: `))?.slice(title.length + 2);
    return { utc, magnitude, latitude, longitude, depth: line("Depth"), source: line("Source") };
}

// tremorledger.kml. Throws on what is no KML document.
export function readKmlEvents(text) {
    const { placemarks } = readKml(text);
    return listOf(
        placemarks.map((mark) => placemarkFields({ ...mark, description: plainDescription(mark.description) })),
    );
}
