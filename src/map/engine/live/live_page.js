// The page that an operator puts on a web site: reads the published files beside it again and again
// and shows their events on a map and in a list.
import { finiteOr } from "../src/numbers.js";
import { element, dot, EventList } from "./event_list.js";
import { EventMap } from "./event_map.js";
import { depthClasses, radius } from "./event_looks.js";
import { noticeText, summaryText, updatedText } from "./event_texts.js";
import { decodeText, readCsvEvents, readKmlEvents } from "./published_events.js";
import { loadFile } from "./published_file.js";
import { refreshSeconds } from "./refresh.js";

const files = {
    csv: { name: "last24H.csv", read: readCsvEvents, title: "Last 24 hours" },
    kml: { name: "tremorledger.kml", read: readKmlEvents, title: "Operator’s map" },
};
const fromFolder =
    "This page is opened from a folder, where browsers do not let it read the list of events. Put it on a web server together with its files.";

const part = (id) => document.getElementById(id);
const lists = { csv: null, kml: null }; // what was read last: {text, list, modified, readAt}
const reached = { csv: false, kml: false };
let wanted = "csv";
let shown = null; // the text that stands on the page
let chosen = null; // key of the chosen event

const { latitude, longitude, zoom } = document.body.dataset;
const view = { latitude: finiteOr(latitude, 0), longitude: finiteOr(longitude, 0), zoom: finiteOr(zoom, 2) };
const eventMap = new EventMap(part("map"), view, (event) => choose(event, { move: false, reveal: true }));
const eventList = new EventList(part("events"), (event) => choose(event, { move: true, reveal: false }));

function choose(event, { move, reveal }) {
    chosen = event?.key ?? null;
    eventMap.choose(event, { move });
    eventList.choose(chosen, { reveal });
}

// The list asked for, else the one that is there.
function listToShow() {
    const other = wanted === "csv" ? "kml" : "csv";
    return lists[wanted] === null && lists[other] !== null ? other : wanted;
}

function showEvents(list, kind) {
    if (list.text === shown?.text && kind === shown.kind) {
        return;
    }
    const { events } = list.list;
    eventList.show(events, { markNew: shown?.kind === kind });
    eventMap.show(events);
    choose(events.find(({ key }) => key === chosen) ?? null, { move: false, reveal: false });
    part("empty").hidden = events.length > 0;
    part("summary").textContent = summaryText(list.list);
    shown = { text: list.text, kind };
}

function showPage() {
    const kind = listToShow();
    const list = lists[kind];
    part("list-title").textContent = files[kind].title;
    part("choice").hidden = lists.csv === null || lists.kml === null;
    if (list !== null) {
        showEvents(list, kind);
        part("updated").textContent = updatedText(list);
    }
    const notice = noticeText({ shown: list, reached: reached[kind], now: Date.now() });
    if (part("notice").textContent !== notice) {
        part("notice").textContent = notice; // said aloud once, when it changes
    }
}

async function read(kind) {
    try {
        const { bytes, modified } = await loadFile(files[kind].name);
        const text = decodeText(bytes);
        const list = lists[kind]?.text === text ? lists[kind].list : files[kind].read(text);
        lists[kind] = { text, list, modified, readAt: Date.now() };
        reached[kind] = true;
    } catch {
        reached[kind] = false; // said on the page
    }
}

async function refresh() {
    await Promise.all(Object.keys(files).map(read));
    showPage();
}

// Hidden pages rest and catch up when they are looked at again.
function keepFresh(seconds) {
    let timer = null;
    let running = false;
    const run = async () => {
        clearTimeout(timer);
        if (document.hidden || running) {
            return;
        }
        running = true;
        await refresh();
        running = false;
        timer = setTimeout(run, seconds * 1000);
    };
    document.addEventListener("visibilitychange", run);
    run();
}

function showLegend() {
    const entry = (mark, label) => {
        const item = element("li", "");
        item.append(mark, element("span", "", label));
        return item;
    };
    part("legend-depths").append(...depthClasses.map(({ colour, label }) => entry(dot(colour, 6), label)));
    part("legend-magnitudes").append(...[1, 3, 5, 7].map((magnitude) => entry(dot("none", radius(magnitude)), String(magnitude))));
    part("legend").open = window.matchMedia("(min-width: 761px) and (min-height: 560px)").matches;
}

part("choice").addEventListener("change", ({ target }) => {
    wanted = target.value;
    choose(null, { move: false, reveal: false });
    showPage();
});
showLegend();
if (window.location.protocol === "file:") {
    part("notice").textContent = fromFolder;
} else {
    keepFresh(refreshSeconds(window.location.search));
}
