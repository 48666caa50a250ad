// What the page says about events and files. Times are UTC.
const months = ["Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"];
const oldAfter = 60 * 60 * 1000; // milliseconds

function twoDigits(number) {
    return String(number).padStart(2, "0");
}

function clockText(time) {
    const date = new Date(time);
    return [date.getUTCHours(), date.getUTCMinutes(), date.getUTCSeconds()].map(twoDigits).join(":");
}

function dayText(time) {
    const date = new Date(time);
    return `${date.getUTCDate()} ${months[date.getUTCMonth()]}`;
}

// "14 Jan 05:45:26"; what the file says where that is no time.
export function timeText({ time, utc }) {
    return time === null ? utc : `${dayText(time)} ${clockText(time)}`;
}

function degrees(value, positive, negative) {
    return `${Math.abs(value).toFixed(2)}° ${value < 0 ? negative : positive}`;
}

export function placeText({ latitude, longitude }) {
    return `${degrees(latitude, "N", "S")}, ${degrees(longitude, "E", "W")}`;
}

export function depthText({ depth }) {
    return depth === null ? "depth unknown" : `${Number(depth.toFixed(1))} km deep`;
}

export function magnitudeText({ magnitude }) {
    return magnitude === null ? "–" : magnitude.toFixed(1);
}

// One line for the marker's tip.
export function titleText(event) {
    return `${timeText(event)} UTC\nMagnitude ${magnitudeText(event)}, ${depthText(event)}`;
}

// For who hears the list.
export function spokenText(event) {
    const facts = [`Magnitude ${magnitudeText(event)}`, `${timeText(event)} UTC`, placeText(event), depthText(event), event.source];
    return facts.filter((fact) => fact !== "").join(", ");
}

// "38 events, strongest magnitude 4.2"
export function summaryText({ events, total, unreadable }) {
    const magnitudes = events.map(({ magnitude }) => magnitude).filter((magnitude) => magnitude !== null);
    const parts = [total === 1 ? "1 event" : `${total} events`];
    if (total > events.length) {
        parts.push(`the newest ${events.length} shown`);
    }
    if (magnitudes.length > 0) {
        parts.push(`strongest magnitude ${magnitudeText({ magnitude: magnitudes.reduce((a, b) => Math.max(a, b)) })}`);
    }
    if (unreadable > 0) {
        parts.push(unreadable === 1 ? "1 line left out" : `${unreadable} lines left out`);
    }
    return parts.join(", ");
}

// When the file was written, or read where the host does not tell.
export function updatedText({ modified, readAt }) {
    return modified === null
        ? `Read ${dayText(readAt)} ${clockText(readAt)} UTC`
        : `Updated ${dayText(modified)} ${clockText(modified)} UTC`;
}

function durationText(milliseconds) {
    const hours = Math.floor(milliseconds / 3600000);
    return hours < 48 ? `${hours} ${hours === 1 ? "hour" : "hours"}` : `${Math.floor(hours / 24)} days`;
}

// What a visitor should know about the list, "" when all is well. shown: the list on the page, null
// before there was one: {modified, readAt}; reached: the last attempt to read it went well.
export function noticeText({ shown, reached, now }) {
    if (!reached) {
        return shown === null
            ? "The list of events cannot be read at the moment. This page keeps trying."
            : "The list of events cannot be read at the moment. Shown is what was read last.";
    }
    const age = shown?.modified == null ? 0 : now - shown.modified;
    return age > oldAfter ? `The list has not been renewed for ${durationText(age)}. Newer events may be missing.` : "";
}
