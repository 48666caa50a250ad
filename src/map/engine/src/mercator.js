// The Web-Mercator projection on a world of width 1: x grows to the east from 180° W, y to the south
// from the northernmost latitude. At zoom z the world is 256 * 2^z pixels wide.

export const maxLatitude = 85.0511287798066;
export const tileSize = 256;

export function unitX(longitude) {
    return longitude / 360 + 0.5;
}

export function unitY(latitude) {
    const bounded = Math.max(-maxLatitude, Math.min(maxLatitude, latitude));
    const sine = Math.sin((bounded * Math.PI) / 180);
    return 0.5 - Math.log((1 + sine) / (1 - sine)) / (4 * Math.PI);
}

export function worldSize(zoom) {
    return tileSize * 2 ** zoom;
}

// Longitude in -180 to 180; only what lies outside is wrapped, so both ends stay as they are.
export function wrapLongitude(longitude) {
    if (longitude >= -180 && longitude <= 180) {
        return longitude;
    }
    return ((((longitude + 180) % 360) + 360) % 360) - 180;
}
