// Gets a file from the page's own folder.
const waitFor = 20000; // milliseconds
const largestFile = 10e6; // bytes

async function readBytes(response) {
    const reader = response.body.getReader();
    const chunks = [];
    let size = 0;
    for (let part = await reader.read(); !part.done; part = await reader.read()) {
        size += part.value.length;
        if (size > largestFile) {
            await reader.cancel();
            throw new Error("The file is too large.");
        }
        chunks.push(part.value);
    }
    const bytes = new Uint8Array(size);
    let at = 0;
    for (const chunk of chunks) {
        bytes.set(chunk, at);
        at += chunk.length;
    }
    return bytes;
}

// {bytes, modified}: modified in milliseconds since 1970, null when the host does not tell. Rejects when
// the file is missing, too large or late. Always asks the host, which need not send again what the
// browser holds already.
export async function loadFile(name) {
    const response = await fetch(name, { cache: "no-cache", credentials: "same-origin", signal: AbortSignal.timeout(waitFor) });
    if (!response.ok) {
        throw new Error(`${name}: status ${response.status}`);
    }
    const modified = Date.parse(response.headers.get("Last-Modified") ?? "");
    return { bytes: await readBytes(response), modified: Number.isFinite(modified) ? modified : null };
}
