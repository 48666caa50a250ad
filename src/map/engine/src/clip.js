// Cutting outlines to a rectangle, so that a close view of a continent does not draw all of it.
// Points are flat arrays x0, y0, x1, y1, …; a rectangle is {left, top, right, bottom}.

// One pass of Sutherland and Hodgman: keeps the side of the line where `side` is not negative.
// `side` is linear in x and y.
function clipSide(points, side) {
    const kept = [];
    const count = points.length;
    if (count === 0) {
        return kept;
    }
    let fromX = points[count - 2];
    let fromY = points[count - 1];
    let from = side(fromX, fromY);
    for (let i = 0; i < count; i += 2) {
        const x = points[i];
        const y = points[i + 1];
        const here = side(x, y);
        if (from < 0 !== here < 0) {
            const t = from / (from - here);
            kept.push(fromX + t * (x - fromX), fromY + t * (y - fromY));
        }
        if (here >= 0) {
            kept.push(x, y);
        }
        [fromX, fromY, from] = [x, y, here];
    }
    return kept;
}

// The part of a ring inside the rectangle, as one ring that may run along the rectangle's edge.
export function clipRing(points, box) {
    let kept = clipSide(points, (x) => x - box.left);
    kept = clipSide(kept, (x) => box.right - x);
    kept = clipSide(kept, (x, y) => y - box.top);
    return clipSide(kept, (x, y) => box.bottom - y);
}

// Calls visit(ax, ay, bx, by, joined) for every stretch whose bounds touch the rectangle; `joined`
// tells that it goes on where the one before ended.
export function visitStretches(points, box, visit) {
    let joined = false;
    for (let i = 2; i < points.length; i += 2) {
        const ax = points[i - 2];
        const ay = points[i - 1];
        const bx = points[i];
        const by = points[i + 1];
        const outside =
            (ax < box.left && bx < box.left) ||
            (ax > box.right && bx > box.right) ||
            (ay < box.top && by < box.top) ||
            (ay > box.bottom && by > box.bottom);
        if (!outside) {
            visit(ax, ay, bx, by, joined);
        }
        joined = !outside;
    }
}
