// Runs in each map page before the page's own script and is what the program talks to.
//
// The pages keep their messages in attributes of hidden <input> elements and read and write them as
// properties ("element.VALORE"), which browsers do for declared attributes of HTML alone. So every
// name becomes a property here. What reaches the document by a click or a movement of the mouse goes
// to the program together with the state of the answering elements at that moment.
"use strict";
(() => {
    const names = [
        "BLAT", "BLNG", "BOL", "CHECK", "CLAT", "CLNG", "DEPTH", "EUTC", "EVENTSCOLOR", "FLAG",
        "GIFLAST", "LATITUDE", "LONGITUDE", "MAGNITUDE", "MARSEL", "PINSCALE", "PINSMODE", "SCALE",
        "STATIONCODE", "TLAT", "TLNG", "URLPIN", "UTC", "VALORE", "ZOOM",
    ];
    for (const name of names) {
        Object.defineProperty(HTMLInputElement.prototype, name, {
            configurable: true,
            get() {
                return this.getAttribute(name) ?? undefined;
            },
            set(value) {
                this.setAttribute(name, value);
            },
        });
    }

    const read = (id, name) => document.getElementById(id)?.getAttribute(name) ?? "";

    const viewNames = ["CLAT", "CLNG", "ZOOM", "BLAT", "BLNG", "TLAT", "TLNG", "SCALE"];

    function snapshot() {
        const selection = {};
        for (const name of viewNames) selection[name] = read("selection", name);
        return {
            VALORE: read("MapClick", "VALORE"),
            Cursore: document.getElementById("Cursore")?.value ?? "",
            MARSEL: read("markers", "MARSEL"),
            selection,
        };
    }

    let host = null; // the program's end of the channel
    let waiting = []; // events that the program has not been told
    let sending = false;
    let commanded = false; // a command is being carried out and takes the events with its answer

    function send() {
        sending = false;
        if (host === null || waiting.length === 0) return;
        host.takeEvents(location.search, JSON.stringify(waiting));
        waiting = [];
    }

    // Of equal messages in a row the last one tells all.
    function record(kind) {
        const page = snapshot();
        let i = waiting.length - 1;
        const same = () => i >= 0 && waiting[i].page.VALORE === page.VALORE;
        while (same() && waiting[i].kind !== kind) --i;
        if (same()) waiting[i].page = page;
        else waiting.push({ kind, page });
        if (sending || commanded) return;
        sending = true;
        setTimeout(send, 0);
    }

    document.addEventListener("click", () => record("click"));
    document.addEventListener("mousemove", () => record("move"));

    function write({ element, name, value, expected }) {
        const target = document.getElementById(element);
        if (target === null) return;
        if (expected !== undefined && (target.getAttribute(name) ?? "") !== expected) return;
        try {
            target.setAttribute(name, value);
        } catch (error) {
            console.error(error); // no name of an attribute; the other ones are written
        }
    }

    // True when the element was fired.
    function fire(element, how) {
        const target = document.getElementById(element);
        if (target === null) return false;
        if (how === "click") {
            target.click();
            return true;
        }
        if (typeof target.onclick !== "function") return false;
        target.onclick();
        return true;
    }

    Object.defineProperty(window, "tremorPage", {
        value: Object.freeze({
            // Writes, then fires when an element is named; everything in one go. The answer holds
            // what has reached the document until then.
            command(writes, element, how) {
                let done = true;
                commanded = true;
                try {
                    for (const one of writes) write(one);
                    if (element !== "") done = fire(element, how);
                } catch (error) {
                    console.error(error);
                }
                commanded = false;
                const answer = { done, page: snapshot(), events: waiting };
                waiting = [];
                return JSON.stringify(answer);
            },
            // The page's map script is there.
            hasMaps() {
                return typeof window.google?.maps?.Map === "function";
            },
        }),
    });

    // The engine says nothing of a load that began in the middle of another one.
    function tellLoaded() {
        if (host !== null && document.readyState === "complete") host.takeLoaded(location.search);
    }
    window.addEventListener("load", () => setTimeout(tellLoaded, 0));

    // The greeting can get lost when the page before is left in the middle of its own.
    const connect = () => {
        if (host !== null) return;
        new QWebChannel(qt.webChannelTransport, (channel) => {
            host = channel.objects.tremorHost;
            tellLoaded();
            send();
        });
        setTimeout(connect, 500);
    };
    if (typeof qt === "object" && typeof QWebChannel === "function") connect();
})();
