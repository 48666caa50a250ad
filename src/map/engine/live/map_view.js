// Geometry of the map: what it shows first, and which event a finger means.
import { unitX, unitY, worldSize } from "../src/mercator.js";

const leastMargin = 0.5; // degrees
const marginShare = 0.1;

// The rectangle {south, west, north, east} around all events with some room; null without any.
export function boundsOf(events) {
    if (events.length === 0) {
        return null;
    }
    const latitudes = events.map(({ latitude }) => latitude);
    const longitudes = events.map(({ longitude }) => longitude);
    const [south, north] = [Math.min(...latitudes), Math.max(...latitudes)];
    const [west, east] = [Math.min(...longitudes), Math.max(...longitudes)];
    const tall = Math.max(leastMargin, marginShare * (north - south));
    const wide = Math.max(leastMargin, marginShare * (east - west));
    return {
        south: Math.max(-85, south - tall),
        west: Math.max(-180, west - wide),
        north: Math.min(85, north + tall),
        east: Math.min(180, east + wide),
    };
}

// The event nearest to a position, at most `reach` pixels away at the zoom; null when none is.
export function nearestEvent(events, { latitude, longitude }, zoom, reach) {
    const scale = worldSize(zoom);
    let nearest = null;
    let least = reach;
    for (const event of events) {
        const apart = Math.abs(unitX(event.longitude) - unitX(longitude));
        const x = Math.min(apart, 1 - apart) * scale;
        const y = (unitY(event.latitude) - unitY(latitude)) * scale;
        if (Math.hypot(x, y) <= least) {
            least = Math.hypot(x, y);
            nearest = event;
        }
    }
    return nearest;
}
