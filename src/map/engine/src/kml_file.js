// Gets a KML or KMZ file and what is packed into it.
import { unzipSync } from "fflate";

const waitFor = 20000; // milliseconds
const largestFile = 50e6; // bytes, on the way and unpacked

// Gives the file's bytes or rejects. XMLHttpRequest, because fetch refuses local files.
export function loadBytes(url) {
    return new Promise((resolve, reject) => {
        const request = new XMLHttpRequest();
        const fail = (reason) => reject(new Error(`${url}: ${reason}`));
        request.open("GET", url);
        request.responseType = "arraybuffer";
        request.timeout = waitFor;
        request.onprogress = ({ loaded }) => {
            if (loaded > largestFile) {
                request.abort();
            }
        };
        request.onload = () => {
            const bytes = new Uint8Array(request.response ?? 0);
            // Status 0: a local file.
            const good = (request.status === 0 || (request.status >= 200 && request.status < 300)) && bytes.length > 0;
            return good ? resolve(bytes) : fail(`status ${request.status}, ${bytes.length} bytes`);
        };
        request.onerror = () => fail("cannot be loaded");
        request.ontimeout = () => fail("no answer");
        request.onabort = () => fail("too large");
        request.send();
    });
}

// By its first bytes, because overlays on web hosts often have names such as "faults.kmz.txt".
function isZip(bytes) {
    return bytes[0] === 0x50 && bytes[1] === 0x4b && bytes[2] === 3 && bytes[3] === 4;
}

// {text, files}: the document and, by name, the files beside it in a KMZ. Throws on what is neither.
export function openKml(bytes) {
    if (!isZip(bytes)) {
        return { text: new TextDecoder().decode(bytes), files: {} };
    }
    let total = 0;
    const files = unzipSync(bytes, {
        filter: ({ originalSize }) => {
            total += originalSize;
            return total <= largestFile;
        },
    });
    const documents = Object.keys(files).filter((name) => /\.kml$/i.test(name));
    const name = documents.find((entry) => entry.toLowerCase() === "doc.kml") ?? documents[0];
    if (name === undefined) {
        throw new Error("No KML document in the KMZ file.");
    }
    return { text: new TextDecoder().decode(files[name]), files };
}
