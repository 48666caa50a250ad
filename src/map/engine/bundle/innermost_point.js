// Finds the place for a country's name: the point of its largest part that is farthest from the
// edge, by a grid that is refined around the best cell. Degrees; longitudes shrunk by the cosine of
// the latitude, so that distances mean the same in both directions.

function ringArea(ring) {
    let sum = 0;
    for (let i = 1; i < ring.length; i++) {
        sum += ring[i - 1][0] * ring[i][1] - ring[i][0] * ring[i - 1][1];
    }
    return Math.abs(sum) / 2;
}

function distanceToSegment(x, y, [ax, ay], [bx, by]) {
    const length2 = (bx - ax) ** 2 + (by - ay) ** 2;
    const along = length2 === 0 ? 0 : ((x - ax) * (bx - ax) + (y - ay) * (by - ay)) / length2;
    const t = Math.max(0, Math.min(1, along));
    return Math.hypot(x - ax - t * (bx - ax), y - ay - t * (by - ay));
}

// Distance to the nearest edge, negative outside.
function depthInside(rings, x, y) {
    let inside = false;
    let nearest = Infinity;
    for (const ring of rings) {
        for (let i = 1; i < ring.length; i++) {
            const a = ring[i - 1];
            const b = ring[i];
            if (a[1] > y !== b[1] > y && x < ((b[0] - a[0]) * (y - a[1])) / (b[1] - a[1]) + a[0]) {
                inside = !inside;
            }
            nearest = Math.min(nearest, distanceToSegment(x, y, a, b));
        }
    }
    return inside ? nearest : -nearest;
}

// polygons: each an array of rings of [longitude, latitude]. Gives the point and its distance to the
// edge, the latter in degrees of longitude.
export function innermostPoint(polygons) {
    const largest = polygons.reduce((a, b) => (ringArea(b[0]) > ringArea(a[0]) ? b : a));
    const latitudes = largest[0].map((point) => point[1]);
    const shrink = Math.cos(((Math.min(...latitudes) + Math.max(...latitudes)) / 2) * (Math.PI / 180));
    const rings = largest.map((ring) => ring.map(([x, y]) => [x * shrink, y]));
    const xs = rings[0].map((point) => point[0]);
    let west = Math.min(...xs);
    let south = Math.min(...latitudes);
    let width = Math.max(...xs) - west;
    let height = Math.max(...latitudes) - south;
    const cells = 10;
    let best = { x: west, y: south, depth: -Infinity };
    for (let round = 0; round < 4; round++) {
        for (let row = 0; row <= cells; row++) {
            for (let column = 0; column <= cells; column++) {
                const x = west + (width * column) / cells;
                const y = south + (height * row) / cells;
                const depth = depthInside(rings, x, y);
                if (depth > best.depth) {
                    best = { x, y, depth };
                }
            }
        }
        width /= 4;
        height /= 4;
        west = best.x - width / 2;
        south = best.y - height / 2;
    }
    return { x: best.x / shrink, y: best.y, room: Math.max(0, best.depth) / shrink };
}
