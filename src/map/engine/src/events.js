// Listeners of the API's objects. They live on the object itself, so nothing here holds an object
// that the page has dropped. A listener that throws is reported; the others and the engine go on.

const listenersOf = Symbol("listeners");

function report(error) {
    if (typeof reportError === "function") {
        reportError(error);
    } else {
        console.error(error);
    }
}

class Listener {
    constructor(instance, name, handler, once) {
        Object.assign(this, { instance, name, handler, once });
    }

    remove() {
        const lists = this.instance?.[listenersOf];
        const list = lists?.get(this.name);
        if (list?.includes(this)) {
            lists.set(this.name, list.filter((other) => other !== this));
        }
        this.instance = null;
    }
}

function add(instance, name, handler, once) {
    const listener = new Listener(instance, String(name), handler, once);
    if (instance !== null && typeof instance === "object" && typeof handler === "function") {
        instance[listenersOf] ??= new Map();
        const lists = instance[listenersOf];
        lists.set(listener.name, [...(lists.get(listener.name) ?? []), listener]);
    }
    return listener;
}

class DomListener {
    constructor(target, name, handler, once) {
        Object.assign(this, { target, name, handler });
        this.options = { once };
        target?.addEventListener?.(name, handler, this.options);
    }

    remove() {
        this.target?.removeEventListener?.(this.name, this.handler, this.options);
    }
}

export const event = {
    addListener: (instance, name, handler) => add(instance, name, handler, false),
    addListenerOnce: (instance, name, handler) => add(instance, name, handler, true),
    addDomListener: (target, name, handler) => new DomListener(target, name, handler, false),
    addDomListenerOnce: (target, name, handler) => new DomListener(target, name, handler, true),
    removeListener: (listener) => listener?.remove?.(),

    clearListeners(instance, name) {
        instance?.[listenersOf]?.delete(String(name));
    },

    clearInstanceListeners(instance) {
        instance?.[listenersOf]?.clear();
    },

    // A listener that is added by another one waits for the next event.
    trigger(instance, name, ...values) {
        for (const listener of instance?.[listenersOf]?.get(String(name)) ?? []) {
            if (listener.instance === null) {
                continue; // removed by one before it
            }
            if (listener.once) {
                listener.remove();
            }
            try {
                listener.handler.apply(instance, values);
            } catch (error) {
                report(error);
            }
        }
    },
};

// What the objects of the API have in common: the page's own values are plain properties.
export class MVCObject {
    addListener(name, handler) {
        return event.addListener(this, name, handler);
    }

    get(key) {
        return this[key];
    }

    set(key, value) {
        this[key] = value;
        event.trigger(this, `${key}_changed`);
    }

    setValues(values) {
        Object.assign(this, values);
    }
}
