// Makes what the program writes beside the published files: node bundle/bundle_live.js ENGINE FOLDER
// [DEPFILE]. ENGINE is the engine's own file. FOLDER gets live_page.html, live_page.css and live_page.js. The
// page names its parts with a version, so that a browser never mixes old ones with new ones.
import { createHash } from "node:crypto";
import { mkdirSync, readFileSync, writeFileSync } from "node:fs";
import { dirname, join, resolve } from "node:path";
import { fileURLToPath } from "node:url";
import { build } from "esbuild";
import { licences } from "./licences.js";

const engine = dirname(dirname(fileURLToPath(import.meta.url)));
const [engineFile, folder, depfile] = process.argv.slice(2);

const result = await build({
    entryPoints: [join(engine, "live/live_page.js"), join(engine, "live/live_page.css")],
    outdir: folder,
    bundle: true,
    minify: true,
    format: "iife",
    target: "es2022",
    charset: "ascii",
    legalComments: "none",
    write: false,
    metafile: true,
    absWorkingDir: engine,
    logLevel: "warning",
});
const output = (ending) => result.outputFiles.find(({ path }) => path.endsWith(ending)).text;
const script = output("live_page.js") + licences(["@tmcw/togeojson"]);
const style = output(".css");
const version = createHash("sha256").update(readFileSync(engineFile)).update(script).update(style).digest("hex").slice(0, 12);
const page = readFileSync(join(engine, "live/live_page.html"), "utf8").replaceAll("{VERSION}", version);

mkdirSync(folder, { recursive: true });
writeFileSync(join(folder, "live_page.js"), script);
writeFileSync(join(folder, "live_page.css"), style);
writeFileSync(join(folder, "live_page.html"), page);
if (depfile) {
    const paths = Object.keys(result.metafile.inputs).map((input) => resolve(engine, input).replaceAll(" ", "\\ "));
    writeFileSync(depfile, `${join(folder, "live_page.html")}: ${paths.join(" ")}\n`);
}
