// Writes Natural Earth's 1:10m outlines for the program's own map pictures:
// node bundle/pack_outlines.js OUTPUT. West, south, step of x and step of y as 64-bit floats (little-endian,
// degrees), then the numbers that pack_world.js describes, neither deflated nor in base64.
import { writeFileSync } from "node:fs";
import { levelNumbers } from "./pack_world.js";

const { grid, bytes } = levelNumbers("10m");
const head = Buffer.alloc(32);
[grid.west, grid.south, grid.stepX, grid.stepY].forEach((value, i) => head.writeDoubleLE(value, 8 * i));
writeFileSync(process.argv[2], Buffer.concat([head, bytes]));
