// Reads a KML document into what the layer draws. Features of other namespaces and links to further
// documents are left out.
import { kml } from "@tmcw/togeojson";
import { maxLatitude } from "./mercator.js";

const mostFeatures = 50000;

function parseXml(text) {
    const xml = new DOMParser().parseFromString(text, "text/xml");
    const fault = xml.querySelector("parsererror");
    if (fault) {
        throw new Error(`Not a KML document: ${fault.textContent.slice(0, 200)}`);
    }
    return xml;
}

function goodPosition(position) {
    return Array.isArray(position) && Number.isFinite(position[0]) && Number.isFinite(position[1]) && Math.abs(position[0]) <= 540;
}

function boundedPosition([longitude, latitude]) {
    return [longitude, Math.max(-maxLatitude, Math.min(maxLatitude, latitude))];
}

function boundedLine(positions, least) {
    const good = positions.filter(goodPosition).map(boundedPosition);
    return good.length >= least ? [good] : [];
}

// Flattens a geometry into {points, lines, polygons} without positions that are nowhere.
function flatten(geometry, into = { points: [], lines: [], polygons: [] }) {
    const { type, coordinates } = geometry ?? {};
    if (type === "GeometryCollection") {
        geometry.geometries.forEach((part) => flatten(part, into));
    } else if (type === "Point" && goodPosition(coordinates)) {
        into.points.push(boundedPosition(coordinates));
    } else if (type === "LineString") {
        into.lines.push(...boundedLine(coordinates, 2));
    } else if (type === "MultiLineString") {
        into.lines.push(...coordinates.flatMap((line) => boundedLine(line, 2)));
    } else if (type === "Polygon") {
        const rings = coordinates.flatMap((ring) => boundedLine(ring, 3));
        if (rings.length > 0) {
            into.polygons.push(rings);
        }
    }
    return into;
}

// The words of a description, which is often HTML: nothing of it is taken over but its text.
export function plainDescription(description) {
    const source = typeof description === "object" ? (description?.value ?? "") : (description ?? "");
    const page = new DOMParser().parseFromString(String(source), "text/html");
    page.querySelectorAll("script, style").forEach((element) => element.remove());
    page.querySelectorAll("br, li, p, tr, div").forEach((element) => element.before("\n"));
    return page.body.textContent.replace(/[ \t]+/g, " ").replace(/\s*\n\s*/g, "\n").trim();
}

function numberAt(element, name) {
    return Number.parseFloat(element?.getAttribute(name) ?? "");
}

// A pair of coordinates such as <screenXY x="0.5" y="1" xunits="fraction" yunits="fraction"/>.
function screenPoint(overlay, name) {
    const element = overlay.getElementsByTagName(name)[0];
    return {
        x: numberAt(element, "x"),
        y: numberAt(element, "y"),
        xunits: element?.getAttribute("xunits") ?? "fraction",
        yunits: element?.getAttribute("yunits") ?? "fraction",
    };
}

function screenOverlays(xml) {
    return Array.from(xml.getElementsByTagName("ScreenOverlay"), (overlay) => ({
        name: overlay.getElementsByTagName("name")[0]?.textContent ?? "",
        href: overlay.getElementsByTagName("href")[0]?.textContent.trim() ?? "",
        overlayXY: screenPoint(overlay, "overlayXY"),
        screenXY: screenPoint(overlay, "screenXY"),
        size: screenPoint(overlay, "size"),
    }));
}

// {placemarks, images, screen}; placemarks with points, lines, polygons and togeojson's style
// properties; images: {bounds: [west, south, east, north], href}.
export function readKml(text) {
    const xml = parseXml(text);
    const features = kml(xml, { skipNullGeometry: true }).features.slice(0, mostFeatures);
    const shown = features.filter(({ properties }) => properties.visibility !== false);
    const isImage = ({ properties }) => properties["@geometry-type"] === "groundoverlay";
    return {
        placemarks: shown
            .filter(({ properties }) => properties["@geometry-type"] === undefined)
            .map(({ geometry, properties }) => ({
                ...flatten(geometry),
                name: String(properties.name ?? ""),
                description: properties.description,
                style: properties,
            })),
        images: shown
            .filter((feature) => isImage(feature) && feature.bbox?.every(Number.isFinite) && feature.properties.icon)
            .map(({ bbox, properties }) => ({ bounds: bbox, href: properties.icon })),
        screen: screenOverlays(xml),
    };
}
