// Draws all markers of a map on one canvas and finds the one under the pointer. Animated pictures stand
// above the canvas as elements, because a canvas would show their first picture only.
import L from "leaflet";
import { sizeCanvas } from "./canvas.js";
import { pictureBox, pin } from "./icons.js";
import { unitX, unitY, worldSize } from "./mercator.js";
import { beforeNextPicture } from "./schedule.js";

const pinOutline = "M0 0C-1-9-10-14-10-22A10 10 0 0 1 10-22C10-14 1-9 0 0Z";
const touchMargin = 2; // pixels around a marker that still count as it

function drawCircle(context, look, x, y) {
    context.beginPath();
    context.arc(x, y, look.radius, 0, 2 * Math.PI);
    if (look.fillOpacity > 0) {
        context.globalAlpha = look.fillOpacity;
        context.fillStyle = look.fillColour;
        context.fill();
    }
    if (look.strokeWeight > 0) {
        context.globalAlpha = look.strokeOpacity;
        context.strokeStyle = look.strokeColour;
        context.lineWidth = look.strokeWeight;
        context.stroke();
    }
    context.globalAlpha = 1;
}

function drawPin(context, x, y) {
    context.save();
    context.translate(x, y);
    const outline = new Path2D(pinOutline);
    context.fillStyle = "#d8392b";
    context.fill(outline);
    context.strokeStyle = "#7d1a11";
    context.lineWidth = 1;
    context.stroke(outline);
    context.beginPath();
    context.arc(0, -22, 3.5, 0, 2 * Math.PI);
    context.fillStyle = "#7d1a11";
    context.fill();
    context.restore();
}

const pinBox = { left: -pin.anchorX, top: -pin.anchorY, width: pin.width, height: pin.height };

function circleBox(look) {
    const reach = look.radius + look.strokeWeight / 2;
    return { left: -reach, top: -reach, width: 2 * reach, height: 2 * reach };
}

// Lower ones first; among equals the southern one is in front, as if the map lay flat.
function drawingOrder(a, b) {
    return a.order - b.order || a.y - b.y;
}

export const MarkerLayer = L.Renderer.extend({
    options: { padding: 0.25 },

    initialize(images) {
        this._images = images;
        this._entries = new Map(); // marker -> {marker, look, order, x, y on the unit square}
        this._sorted = null;
        this._drawn = []; // what the canvas shows, lowest first: {marker, x, y, box}
        this._animations = new Map(); // marker -> element
        this._onPicture = () => this.redraw();
        L.Renderer.prototype.initialize.call(this);
    },

    // Adds a marker or takes over what has changed about it.
    put(marker) {
        const { position, look, order } = marker.placed();
        this._entries.set(marker, { marker, look, order, x: unitX(position.lng()), y: unitY(position.lat()) });
        this._sorted = null;
        this.redraw();
    },

    take(marker) {
        this._entries.delete(marker);
        this._dropAnimation(marker);
        this._sorted = null;
        this.redraw();
    },

    redraw() {
        if (!this._drawingPending) {
            this._drawingPending = true;
            beforeNextPicture(() => {
                this._drawingPending = false;
                if (this._map) {
                    this._draw();
                }
            });
        }
    },

    // The topmost marker at a layer point, or null.
    markerAt(point) {
        for (let i = this._drawn.length - 1; i >= 0; i--) {
            const { marker, x, y, box, look } = this._drawn[i];
            const dx = point.x - x;
            const dy = point.y - y;
            const inBox =
                dx >= box.left - touchMargin &&
                dx <= box.left + box.width + touchMargin &&
                dy >= box.top - touchMargin &&
                dy <= box.top + box.height + touchMargin;
            if (inBox && (look.kind !== "circle" || Math.hypot(dx, dy) <= box.width / 2 + touchMargin)) {
                return this._entries.has(marker) ? marker : null;
            }
        }
        return null;
    },

    _initContainer() {
        this._container = document.createElement("canvas");
        this._container.className = "tremor-markers";
        this._container.style.pointerEvents = "none";
    },

    _destroyContainer() {
        this._container.remove();
        this._animations.forEach((element) => element.remove());
        this._animations.clear();
    },

    // The canvas is moved and emptied in _draw, together with what it shows.
    _update() {
        if (!(this._map._animatingZoom && this._bounds)) {
            this.redraw();
        }
    },

    _updatePaths() {},

    // Before the first picture there is nothing to move along with a zoom.
    _updateTransform(center, zoom) {
        if (this._bounds) {
            L.Renderer.prototype._updateTransform.call(this, center, zoom);
        }
    },

    _dropAnimation(marker) {
        this._animations.get(marker)?.remove();
        this._animations.delete(marker);
    },

    _draw() {
        if (this._map._animatingZoom) {
            return; // drawn anew at its end
        }
        L.Renderer.prototype._update.call(this);
        const { min } = this._bounds;
        const size = this._bounds.getSize();
        L.DomUtil.setPosition(this._container, min);
        const context = sizeCanvas(this._container, size.x, size.y);
        context.translate(-min.x, -min.y);
        this._sorted ??= [...this._entries.values()].sort(drawingOrder);
        this._drawn = [];
        this._centre = unitX(this._map.getCenter().lng);
        this._scale = worldSize(this._map.getZoom());
        this._origin = this._map.getPixelOrigin();
        for (const entry of this._sorted) {
            this._drawEntry(context, entry);
        }
    },

    // Of the world's copies beside each other a marker shows in the one nearest to the view's middle.
    _drawEntry(context, entry) {
        const copy = Math.round(this._centre - entry.x);
        const x = (entry.x + copy) * this._scale - this._origin.x;
        const y = entry.y * this._scale - this._origin.y;
        const { look, marker } = entry;
        const loaded = look.kind === "picture" ? this._images.get(look.url, this._onPicture) : null;
        if (loaded?.state === "loading") {
            return;
        }
        const box = this._boxOf(look, loaded);
        const { min, max } = this._bounds;
        if (x + box.left > max.x || x + box.left + box.width < min.x || y + box.top > max.y || y + box.top + box.height < min.y) {
            this._dropAnimation(marker);
            return;
        }
        if (look.kind === "circle") {
            drawCircle(context, look, x, y);
        } else if (loaded?.state !== "ready") {
            drawPin(context, x, y); // a picture that is missing still shows where its event is
        } else if (look.animated) {
            this._placeAnimation(marker, look, x + box.left, y + box.top, box);
        } else {
            context.drawImage(loaded.image, x + box.left, y + box.top, box.width, box.height);
        }
        if (!look.animated) {
            this._dropAnimation(marker);
        }
        this._drawn.push({ marker, look, x, y, box });
    },

    _boxOf(look, loaded) {
        if (look.kind === "circle") {
            return circleBox(look);
        }
        return loaded?.state === "ready" ? pictureBox(look, loaded.image.naturalWidth, loaded.image.naturalHeight) : pinBox;
    },

    _placeAnimation(marker, look, left, top, box) {
        let element = this._animations.get(marker);
        if (!element) {
            element = document.createElement("img");
            element.alt = "";
            element.className = "leaflet-zoom-hide";
            element.style.pointerEvents = "none";
            this._animations.set(marker, element);
        }
        if (element.getAttribute("src") !== look.url) {
            element.src = look.url;
        }
        element.style.width = `${box.width}px`;
        element.style.height = `${box.height}px`;
        L.DomUtil.setPosition(element, L.point(left, top).round());
        if (!element.isConnected) {
            this._map.getPane("markerPane").appendChild(element);
        }
    },
});
