// Runs the script of the map pages against stand-ins for the document and the maps API: what the
// pages of tests/data/pages do when their hidden elements are set and clicked.
// Run: node --test page_script_test.mjs

import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { test } from 'node:test';
import vm from 'node:vm';

// Hidden elements with their attributes as properties, as the program's browser gives them.
function hiddenElements(html, clicks) {
  const elements = { map_canvas: {} };
  for (const [line, id] of html.matchAll(/^<input .*? Id=['"](\w+)['"].*>$/gm)) {
    const element = { click() { clicks.push(id); this.onclick?.(); } };
    for (const [, name] of line.matchAll(/ (\w+)=(?:''|"")/g)) element[name] = '';
    elements[id] = element;
  }
  return elements;
}

function mapsApi(page) {
  class LatLng {
    constructor(lat, lng) { this.values = [Number(lat), Number(lng)]; }
    lat() { return this.values[0]; }
    lng() { return this.values[1]; }
  }
  class Map {
    constructor(canvas, options) { Object.assign(this, { options, center: options.center, zoom: options.zoom, listeners: [] }); page.map = this; }
    setCenter(center) { this.center = center; }
    setZoom(zoom) { this.zoom = zoom; }
    getCenter() { return this.center; }
    getZoom() { return this.zoom; }
    getBounds() { return { getSouthWest: () => new LatLng(40, 10), getNorthEast: () => new LatLng(44, 16) }; }
  }
  class Marker {
    constructor(options) { Object.assign(this, options, { listeners: [] }); page.markers.push(this); }
    setMap(map) { this.map = map; }
    setIcon(icon) { this.icon = icon; }
    setZIndex(index) { this.zIndex = index; }
    getPosition() { return this.position; }
  }
  class KmlLayer {
    constructor(url) { this.url = url; page.layers.push(this); }
    setMap(map) { this.map = map; }
  }
  const add = (once) => (object, name, handler) => object.listeners.push({ name, handler, once });
  const event = {
    addListener: add(false),
    addListenerOnce: add(true),
    addDomListener: (object, name, handler) => { page.load = handler; },
    trigger: (object, name, argument) => {
      const due = object.listeners.filter((listener) => listener.name === name);
      object.listeners = object.listeners.filter((listener) => !(listener.once && listener.name === name));
      for (const { handler } of due) handler.call(object, argument);
    },
  };
  return {
    Map, Marker, KmlLayer, LatLng, event, Polyline: class {}, Size: class {}, Point: class {},
    MapTypeId: { HYBRID: 'hybrid' }, SymbolPath: { CIRCLE: 0, FORWARD_CLOSED_ARROW: 1 },
  };
}

function open(name) {
  const html = readFileSync(new URL(`../data/pages/${name}`, import.meta.url), 'utf8');
  const page = { markers: [], layers: [], clicks: [] };
  page.elements = hiddenElements(html, page.clicks);
  const start = html.lastIndexOf('<script>') + '<script>'.length;
  const maps = mapsApi(page);
  page.fire = (event, argument) => maps.event.trigger(page.map, event, argument);
  page.clickMarker = (marker) => maps.event.trigger(marker, 'click');
  page.point = (lat, lng) => ({ latLng: new maps.LatLng(lat, lng) });
  page.shown = () => page.markers.filter((marker) => marker.map);
  page.draw = (...events) => {
    const list = (values) => `'${values.map((value) => `${value}'`).join('')}`;
    Object.assign(page.elements.markers, {
      EUTC: list(events.map(([utc]) => utc)), LATITUDE: list(events.map(([, lat]) => lat)),
      LONGITUDE: list(events.map(([, , lng]) => lng)), MAGNITUDE: list(events.map(([, , , mag]) => mag)),
      EVENTSCOLOR: list(events.map(() => '#FF9900')), DEPTH: list(events.map(() => '#FF9900')),
      PINSMODE: '1', PINSCALE: '3',
    });
    page.elements.eventi.click();
  };
  vm.runInNewContext(html.slice(start, html.indexOf('</script>', start)),
    { document: { getElementById: (id) => page.elements[id] ?? null }, window: {}, google: { maps } });
  page.load();
  return page;
}

const older = ['2021-01-14 05:45:26.600', '42.5', '13.25', '3.1'];
const newer = ['2021-01-15 05:45:26.600', '43.5', '14.25', '0'];
const newest = ['2021-01-16 05:45:26.600', '44.5', '15.25', '2'];

for (const name of ['TremorLedger.html', 'last_event.html', 'workspace.html', 'without_lastepic.html']) {
  test(`${name}: lists of a lone apostrophe draw no marker`, () => {
    const page = open(name);
    page.draw();
    assert.equal(page.markers.length, 0);
  });

  test(`${name}: the second loading of tiles tells that the map is ready`, () => {
    const page = open(name);
    const codes = [];
    page.elements.MapClick.onclick = () => codes.push(page.elements.MapClick.VALORE);
    page.fire('tilesloaded');
    assert.deepEqual(codes, []);
    page.fire('tilesloaded');
    assert.deepEqual(codes, [99]);
    assert.equal(page.elements.MapClick.VALORE, '');
  });

  test(`${name}: every event becomes a circle and removal takes all off`, () => {
    const page = open(name);
    page.draw(older, newer);
    assert.deepEqual(page.shown().map((marker) => marker.title),
      ['2021-01-14 05:45:26.600 Mg: 3.1', '2021-01-15 05:45:26.600 Mg: 0']);
    assert.deepEqual(page.shown().map(({ icon }) => [icon.scale.toFixed(1), icon.fillColor]),
      [['9.3', '#FF9900'], ['6.0', '#FF9900']]);
    assert.equal(page.elements.MapClick.VALORE, 99);
    page.elements.removeAll.click();
    assert.equal(page.shown().length, 0);
  });
}

test('drawing again replaces the markers', () => {
  const page = open('TremorLedger.html');
  page.draw(older);
  page.draw(newer, newest);
  assert.equal(page.shown().length, 2);
});

test('images take their address from prefix and file name', () => {
  const page = open('TremorLedger.html');
  page.draw(older);
  Object.assign(page.elements.markers, { PINSMODE: '0', URLPIN: '/pins/', EVENTSCOLOR: "'o_14.png'" });
  page.elements.eventi.click();
  assert.equal(page.shown()[0].icon.url, '/pins/o_14.png');
});

test('only the last-event map follows its markers', () => {
  const last = open('last_event.html');
  assert.deepEqual([last.map.center.values, last.map.zoom], [[42, 12], 9]);
  last.draw(older, newer);
  assert.deepEqual(last.map.center.values, [43.5, 14.25]);
  const main = open('TremorLedger.html');
  main.draw(older, newer);
  assert.deepEqual(main.map.center.values, [42.5, 13.25]);
});

test('a click on a marker centres the map and leaves its title', () => {
  const page = open('TremorLedger.html');
  page.draw(older, newer);
  page.clickMarker(page.shown()[1]);
  assert.deepEqual([page.map.center.values, page.map.zoom], [[43.5, 14.25], 7]);
  assert.equal(page.elements.markers.MARSEL, '2021-01-15 05:45:26.600 Mg: 0');
  assert.equal(page.elements.MapClick.VALORE, 2);
});

test('selecting by time clicks the marker, at the zoom that is asked for', () => {
  const page = open('TremorLedger.html');
  page.draw(older, newer);
  Object.assign(page.elements.SelezioneMar, { UTC: '2021-01-14 05', ZOOM: '11' });
  page.elements.SelezioneMar.click();
  assert.deepEqual([page.map.center.values, page.map.zoom], [[42.5, 13.25], 11]);
  assert.equal(page.elements.markers.MARSEL, '2021-01-14 05:45:26.600 Mg: 3.1');
});

test('the image of the last event goes to its marker, but never to the last one', () => {
  const page = open('TremorLedger.html');
  page.draw(older, newer);
  for (const [event, image] of [[older, true], [newer, false]]) {
    page.elements.UltimoEvento.UTC = event[0];
    page.elements.UltimoEvento.click();
    const marker = page.shown().find(({ title }) => title.startsWith(event[0]));
    assert.equal(marker.icon.url === '{FOLDER}/Img/lastepic.gif', image, event[0]);
  }
});

test('without the image nothing hangs on the element', () => {
  const page = open('without_lastepic.html');
  assert.equal(page.elements.UltimoEvento.onclick, undefined);
});

test('the legend is switched in the main map, always on in a workspace, absent in the last-event map', () => {
  const main = open('TremorLedger.html');
  const legend = main.layers.find(({ url }) => url.endsWith('LegendZ.kmz.txt'));
  assert.equal(legend.map, undefined);
  for (const [flag, shown] of [['1', true], ['0', false]]) {
    main.elements.Legenda.BOL = flag;
    main.elements.Legenda.click();
    assert.equal(legend.map === main.map, shown);
  }
  const workspace = open('workspace.html');
  assert.deepEqual(workspace.layers.map(({ map }) => map === workspace.map), [true, true]);
  assert.equal(workspace.elements.Legenda.onclick, undefined);
  const last = open('last_event.html');
  assert.deepEqual([last.layers.length, last.elements.Legenda.onclick], [0, undefined]);
});

test('the faults are loaded once for each switching on', () => {
  const page = open('TremorLedger.html');
  const faults = () => page.layers.filter(({ url }) => url.endsWith('prova.kmz.txt'));
  for (const [flag, loaded, shown] of [['1', 1, 1], ['1', 1, 1], ['0', 1, 0], ['0', 1, 0], ['1', 2, 1]]) {
    page.elements.faglie.FLAG = flag;
    page.elements.faglie.click();
    assert.deepEqual([faults().length, faults().filter(({ map }) => map).length], [loaded, shown]);
  }
});

test('stations are shown and hidden', () => {
  const page = open('TremorLedger.html');
  Object.assign(page.elements.stazioni, { LATITUDE: "'42'43'", LONGITUDE: "'13'14'", STATIONCODE: "'AQU'CAMP'", CHECK: '1' });
  page.elements.stazioni.click();
  assert.deepEqual(page.shown().map(({ title }) => title), ['AQU', 'CAMP']);
  page.elements.stazioni.CHECK = '0';
  page.elements.stazioni.click();
  assert.equal(page.shown().length, 0);
});

test('the view is written into the selection, with metres per pixel', () => {
  const page = open('TremorLedger.html');
  page.elements.getDataMap.click();
  const { CLAT, CLNG, ZOOM, BLAT, BLNG, TLAT, TLNG, SCALE } = page.elements.selection;
  assert.deepEqual([CLAT, CLNG, ZOOM, BLAT, BLNG, TLAT, TLNG], [42.5, 13.25, 7, 40, 10, 44, 16]);
  assert.equal(SCALE.toFixed(2), '901.68'); // 156543.03392 cos 42.5 deg / 128
});

test('a workspace moves the view', () => {
  const page = open('workspace.html');
  Object.assign(page.elements.Workspace, { CLAT: '38', CLNG: '15.5', ZOOM: '9' });
  page.elements.Workspace.click();
  assert.deepEqual([page.map.center.values, page.map.zoom], [[38, 15.5], 9]);
});

test('the pointer and a change of the view are told by a click', () => {
  const page = open('TremorLedger.html');
  for (const [event, code, clicked] of [['mousemove', 77, 'Cursore'], ['mouseover', 77, 'Cursore'],
    ['drag', 3, 'getDataMap'], ['dragend', 3, 'getDataMap'], ['zoom_changed', 3, 'getDataMap']]) {
    page.fire(event, page.point(42.123456, 13));
    assert.deepEqual([page.elements.MapClick.VALORE, page.clicks.pop()], [code, clicked], event);
  }
  assert.equal(page.elements.Cursore.value, '42.12346 | 13.00000');
  page.fire('click', page.point(42.123456, 13));
  assert.deepEqual([page.elements.MapClick.VALORE, page.elements.Cursore.value, page.clicks.pop()],
    [78, '42.123456 | 13', 'Cursore']);
  assert.equal(page.clicks.length, 0);
});
