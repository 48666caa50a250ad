// Makes the engine's one file: node bundle/bundle.js OUTPUT [DEPFILE]. The base map's data, the style
// sheet and the licences of what is inside go into it, so that a page needs nothing else. DEPFILE tells
// the build which sources it came from.
import { writeFileSync } from "node:fs";
import { dirname, join, resolve } from "node:path";
import { fileURLToPath } from "node:url";
import { build } from "esbuild";
import { licences } from "./licences.js";
import { packWorld } from "./pack_world.js";

const engine = dirname(dirname(fileURLToPath(import.meta.url)));
const inside = ["leaflet", "@tmcw/togeojson", "fflate", "world-atlas"];
const [output = join(engine, "maps_engine.js"), depfile] = process.argv.slice(2);

const worldData = {
    name: "world-data",
    setup(builder) {
        builder.onResolve({ filter: /^world-data$/ }, (args) => ({ path: args.path, namespace: "world" }));
        builder.onLoad({ filter: /.*/, namespace: "world" }, () => ({
            contents: JSON.stringify(packWorld()),
            loader: "json",
        }));
    },
};

const result = await build({
    entryPoints: [join(engine, "src/index.js")],
    bundle: true,
    minify: true,
    format: "iife",
    // Private fields stay as they are; older targets turn each into a WeakMap, whose tables never shrink.
    target: "es2022",
    charset: "ascii",
    legalComments: "none",
    loader: { ".css": "text" },
    plugins: [worldData],
    write: false,
    metafile: true,
    absWorkingDir: engine,
    logLevel: "warning",
});
writeFileSync(output, result.outputFiles[0].text + licences(inside, "Base map: Natural Earth (naturalearthdata.com), public domain"));
if (depfile) {
    const sources = Object.keys(result.metafile.inputs).filter((input) => !input.startsWith("world:"));
    const paths = sources.map((input) => resolve(engine, input).replaceAll(" ", "\\ "));
    writeFileSync(depfile, `${output}: ${paths.join(" ")}\n`);
}
