// Positions and rectangles of the API.
import { clamp, toNumber } from "./numbers.js";
import { wrapLongitude } from "./mercator.js";

// A position in degrees. What is no number makes a position that is nowhere: isFinite() is false,
// and whoever draws leaves it out.
export class LatLng {
    #latitude;
    #longitude;

    // LatLng(latitude, longitude, noWrap) or LatLng({lat, lng}).
    constructor(latitude, longitude, noWrap = false) {
        const literal = latitude !== null && typeof latitude === "object";
        const given = literal ? latLngValues(latitude) : [latitude, longitude];
        const [lat, lng] = given.map(toNumber);
        this.#latitude = noWrap ? lat : clamp(lat, -90, 90);
        this.#longitude = noWrap ? lng : wrapLongitude(lng);
    }

    lat() {
        return this.#latitude;
    }

    lng() {
        return this.#longitude;
    }

    isFinite() {
        return Number.isFinite(this.#latitude) && Number.isFinite(this.#longitude);
    }

    equals(other) {
        return (
            other instanceof LatLng &&
            Math.abs(this.lat() - other.lat()) < 1e-9 &&
            Math.abs(this.lng() - other.lng()) < 1e-9
        );
    }

    toString() {
        return `(${this.#latitude}, ${this.#longitude})`;
    }

    toUrlValue(precision = 6) {
        return [this.#latitude, this.#longitude].map((value) => Number(value.toFixed(precision))).join(",");
    }

    toJSON() {
        return { lat: this.#latitude, lng: this.#longitude };
    }
}

function latLngValues(literal) {
    return ["lat", "lng"].map((key) => (typeof literal[key] === "function" ? literal[key]() : literal[key]));
}

// A LatLng, or one made from {lat, lng}; null when it is nowhere.
export function toLatLng(value) {
    if (value === null || typeof value !== "object") {
        return null;
    }
    const position = value instanceof LatLng ? value : new LatLng(value);
    return position.isFinite() ? position : null;
}

// A rectangle from its south-west to its north-east corner; west above east crosses 180°.
export class LatLngBounds {
    #southWest;
    #northEast;

    constructor(southWest = null, northEast = southWest) {
        this.#southWest = toLatLng(southWest);
        this.#northEast = toLatLng(northEast);
    }

    getSouthWest() {
        return this.#southWest ?? new LatLng(NaN, NaN);
    }

    getNorthEast() {
        return this.#northEast ?? new LatLng(NaN, NaN);
    }

    isEmpty() {
        return this.#southWest === null || this.#northEast === null;
    }

    // Width in degrees of longitude, from 0 to 360.
    #width() {
        const width = this.#northEast.lng() - this.#southWest.lng();
        return width < 0 ? width + 360 : width;
    }

    getCenter() {
        if (this.isEmpty()) {
            return new LatLng(NaN, NaN);
        }
        const latitude = (this.#southWest.lat() + this.#northEast.lat()) / 2;
        return new LatLng(latitude, this.#southWest.lng() + this.#width() / 2);
    }

    contains(value) {
        const position = toLatLng(value);
        if (position === null || this.isEmpty()) {
            return false;
        }
        const [south, north] = [this.#southWest.lat(), this.#northEast.lat()];
        const [west, east] = [this.#southWest.lng(), this.#northEast.lng()];
        const [latitude, longitude] = [position.lat(), position.lng()];
        const between = west <= east ? longitude >= west && longitude <= east : longitude >= west || longitude <= east;
        return latitude >= south && latitude <= north && between;
    }

    // Grows by the shorter way round to hold the position.
    extend(value) {
        const position = toLatLng(value);
        if (position === null || this.contains(position)) {
            return this;
        }
        if (this.isEmpty()) {
            this.#southWest = this.#northEast = position;
            return this;
        }
        let [west, east] = [this.#southWest.lng(), this.#northEast.lng()];
        const degreesEast = (from, to) => (to - from + 360) % 360;
        if (degreesEast(west, position.lng()) > this.#width()) {
            if (degreesEast(east, position.lng()) <= degreesEast(position.lng(), west)) {
                east = position.lng();
            } else {
                west = position.lng();
            }
        }
        this.#southWest = new LatLng(Math.min(this.#southWest.lat(), position.lat()), west);
        this.#northEast = new LatLng(Math.max(this.#northEast.lat(), position.lat()), east);
        return this;
    }
}
