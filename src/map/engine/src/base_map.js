// The offline base map: land, borders, graticule and the countries' names, drawn tile by tile.
import L from "leaflet";
import { sizeCanvas } from "./canvas.js";
import { clipRing, visitStretches } from "./clip.js";
import { graticuleLines, graticuleStep } from "./graticule.js";
import { tileSize, unitX, unitY, worldSize } from "./mercator.js";

// Calm colours below the saturated ones of the events. The sea stands in style.css, too: it is what
// lies beyond the poles.
const colours = {
    sea: "#d3e2ec",
    land: "#f6f2e9",
    coast: "#7d97a8",
    border: "#bfae9c",
    graticule: "rgba(64, 96, 120, 0.16)",
    name: "#857a6c",
};
const margin = 4; // pixels drawn beyond a tile's edge, so that strokes meet
const lastNamedZoom = 8;
const nameFont = "12px 'Liberation Sans', 'DejaVu Sans', Arial, sans-serif";

// From the unit square to a tile's pixels.
class TileView {
    constructor(x, y, zoom) {
        this.zoom = zoom;
        this.scale = worldSize(zoom);
        this.left = x * tileSize;
        this.top = y * tileSize;
        const edge = margin / this.scale;
        const side = tileSize / this.scale;
        this.box = {
            left: this.left / this.scale - edge,
            top: this.top / this.scale - edge,
            right: this.left / this.scale + side + edge,
            bottom: this.top / this.scale + side + edge,
        };
    }

    pixelX(x) {
        return x * this.scale - this.left;
    }

    pixelY(y) {
        return y * this.scale - this.top;
    }

    // The view's rectangle among the points of a line that is drawn with a shift.
    boxFor({ shift }) {
        return { ...this.box, left: this.box.left - shift, right: this.box.right - shift };
    }

    shows(line) {
        const { box } = this;
        return line.left <= box.right && line.right >= box.left && line.top <= box.bottom && line.bottom >= box.top;
    }
}

function fillLand(context, view, rings) {
    context.beginPath();
    for (const ring of rings) {
        const points = clipRing(ring.points, view.boxFor(ring));
        for (let i = 0; i < points.length; i += 2) {
            const x = view.pixelX(points[i] + ring.shift);
            const y = view.pixelY(points[i + 1]);
            if (i === 0) {
                context.moveTo(x, y);
            } else {
                context.lineTo(x, y);
            }
        }
        context.closePath();
    }
    context.fillStyle = colours.land;
    context.fill("evenodd");
}

// Where the outline of Antarctica leaves the sheet for the pole there is no coast.
function belowSheet(ay, by) {
    return ay > 0.99999 || by > 0.99999;
}

function strokeLines(context, view, lines, colour, width) {
    context.beginPath();
    for (const line of lines) {
        let skipped = false;
        visitStretches(line.points, view.boxFor(line), (ax, ay, bx, by, joined) => {
            if (belowSheet(ay, by)) {
                skipped = true;
                return;
            }
            if (!joined || skipped) {
                context.moveTo(view.pixelX(ax + line.shift), view.pixelY(ay));
                skipped = false;
            }
            context.lineTo(view.pixelX(bx + line.shift), view.pixelY(by));
        });
    }
    context.strokeStyle = colour;
    context.lineWidth = width;
    context.stroke();
}

function strokeGraticule(context, view) {
    const step = graticuleStep(view.zoom);
    const west = (view.box.left - 0.5) * 360;
    const east = (view.box.right - 0.5) * 360;
    context.beginPath();
    for (const longitude of graticuleLines(west, east, step)) {
        const x = Math.round(view.pixelX(unitX(longitude))) + 0.5;
        context.moveTo(x, 0);
        context.lineTo(x, tileSize);
    }
    for (const latitude of graticuleLines(-85, 85, step)) {
        const y = Math.round(view.pixelY(unitY(latitude))) + 0.5;
        if (y > -1 && y < tileSize + 1) {
            context.moveTo(0, y);
            context.lineTo(tileSize, y);
        }
    }
    context.strokeStyle = colours.graticule;
    context.lineWidth = 1;
    context.stroke();
}

// A name stands where its country has room for it; neighbouring tiles each draw their part of it.
function writeNames(context, view, labels) {
    if (view.zoom > lastNamedZoom) {
        return;
    }
    context.font = nameFont;
    context.textAlign = "center";
    context.textBaseline = "middle";
    context.lineJoin = "round";
    context.lineWidth = 3;
    context.strokeStyle = colours.land;
    context.fillStyle = colours.name;
    for (const label of labels) {
        const x = view.pixelX(label.x);
        const y = view.pixelY(label.y);
        if (Math.abs(x - tileSize / 2) > tileSize || y < -20 || y > tileSize + 20) {
            continue;
        }
        const halfWidth = context.measureText(label.name).width / 2;
        if (label.room * view.scale >= Math.max(12, 0.9 * halfWidth)) {
            context.strokeText(label.name, x, y);
            context.fillText(label.name, x, y);
        }
    }
}

function drawTile(canvas, world, { x, y, z }) {
    const context = sizeCanvas(canvas, tileSize, tileSize);
    const view = new TileView(x, y, z);
    const { land, borders } = world.atZoom(z);
    const shown = land.filter((ring) => view.shows(ring));
    context.fillStyle = colours.sea;
    context.fillRect(0, 0, tileSize, tileSize);
    fillLand(context, view, shown);
    strokeGraticule(context, view);
    strokeLines(context, view, borders.filter((line) => view.shows(line)), colours.border, 1);
    strokeLines(context, view, shown, colours.coast, z < 4 ? 0.6 : 0.9);
    writeNames(context, view, world.labels);
}

export const BaseMap = L.GridLayer.extend({
    options: { tileSize, keepBuffer: 1, attribution: "Map data: Natural Earth" },

    initialize(world, options) {
        this._world = world;
        L.setOptions(this, options);
    },

    createTile(coords, done) {
        const canvas = document.createElement("canvas");
        Promise.resolve().then(() => {
            // A page that moves the map many times in a row draws the last view only.
            if (canvas.isConnected) {
                drawTile(canvas, this._world, coords);
            }
            done(null, canvas);
        });
        return canvas;
    },
});
