// Runs a function before the next picture is painted. A page that is not shown paints nothing, so a
// timer stands in; whichever comes first runs, once.
const longestWait = 100; // milliseconds

export function beforeNextPicture(run) {
    let done = false;
    const once = () => {
        if (!done) {
            done = true;
            run();
        }
    };
    if (document.visibilityState === "hidden") {
        setTimeout(once, 0);
        return;
    }
    requestAnimationFrame(once);
    setTimeout(once, longestWait);
}
