// The page comes to life: viewers in every section, the map, keys, printing.

const kArrows = {
  ArrowLeft: [-1, 0],
  ArrowRight: [1, 0],
  ArrowUp: [0, -1],
  ArrowDown: [0, 1]
};

// Sizes on paper, as page.css has them, in pixels of the drawing.
const kPrintDots = 8;  // per millimetre
const kPrintSizes = {
  picture: [190, 85],
  histogram: [55, 85]
};

// The controls of a set, its picture and its tables.
class Viewer {
  constructor(section, set, cabinet) {
    this.section = section;
    this.set = set;
    this.canvas = element('canvas', {class: 'picture', role: 'img', tabindex: '0', width: 900, height: 450});
    this.histogram = element('canvas', {class: 'histogram', role: 'img', width: 260, height: 450});
    this.prints = element('div', {class: 'prints'});
    this.readout = element('output', {class: 'readout', 'aria-live': 'polite'});
    this.picture = new Picture(this.canvas, set, cabinet);
    this.controls = element('div', {class: 'controls'});
    const hint =
        'Wheel or + and - zoom, dragging or Shift and arrows move the picture, arrows move the pointer, 0 shows all.';
    section.querySelector('.viewer').replaceChildren(
        this.controls, this.readout, element('div', {class: 'panes'}, this.canvas, this.histogram),
        element('p', {class: 'hint'}, hint), this.prints);
    this.listen();
    this.showLayer(set.layers[0]);
  }

  showLayer(layer) {
    this.picture.show(layer);
    this.picture.options.component = Math.min(this.picture.options.component, layer.components.length - 1);
    this.addControls();
    this.addTables();
    this.draw();
  }

  draw() {
    this.picture.draw();
    drawHistogram(this.histogram, this.picture);
  }

  // On paper: what is shown, and the other layer whole.
  addPrints() {
    onPaper = true;
    this.prints.replaceChildren(...this.set.layers.map((layer) => this.printOf(layer)));
    onPaper = false;
  }

  printOf(layer) {
    const canvases = Object.entries(kPrintSizes).map(([name, size]) => {
      const [width, height] = size.map((length) => length * kPrintDots);
      return element('canvas', {class: name, width, height});
    });
    const picture = new Picture(canvases[0], this.set, this.picture.cabinet);
    picture.dots = kPrintDots / 4;
    if (layer === this.picture.layer) {
      picture.copyView(this.picture);
    } else {
      const {component, sheet, shared, areas, cabinets} = this.picture.options;
      picture.show(layer);
      Object.assign(picture.options, {component, sheet, shared, areas, cabinets});
    }
    picture.draw();
    drawHistogram(canvases[1], picture);
    const {sheet, component} = picture.options;
    const what =
        (layer.isDifference ? 'Difference, ' : 'Values, ') + (sheet ? 'all components' : `component ${component}`);
    const part = picture.isWhole ? '' : ', enlarged';
    return element('figure', {}, element('figcaption', {}, what + part), element('div', {class: 'panes'}, ...canvases));
  }

  // Ranges are found anew.
  recolour() {
    this.picture.ranges = null;
    this.draw();
  }

  choice(label, names, chosen, choose) {
    const select = element('select', {change: (event) => choose(event.target.value)});
    for (const [value, text] of names) select.append(element('option', {value, selected: value === chosen}, text));
    return element('label', {}, label + ' ', select);
  }

  tick(label, name, enabled = true) {
    const toggle = (event) => {
      this.picture.options[name] = event.target.checked;
      this.draw();
    };
    const box =
        element('input', {type: 'checkbox', checked: this.picture.options[name], disabled: !enabled, change: toggle});
    return element('label', {}, box, ' ' + label);
  }

  addControls() {
    const {picture} = this;
    const {options, layer} = picture;
    const component = layer.components.map((each, i) => [String(i), `component ${i}`]);
    const parts = [];
    if (this.set.layers.length > 1) {
      const names = this.set.layers.map((each, i) => [String(i), each.isDifference ? 'difference' : 'values']);
      const chosen = String(this.set.layers.indexOf(layer));
      parts.push(this.choice('show', names, chosen, (value) => this.showLayer(this.set.layers[Number(value)])));
    }
    parts.push(this.choice('component', component, String(options.component), (value) => {
      options.component = Number(value);
      this.addTables();
      this.draw();
    }));
    if (component.length > 1) parts.push(this.tick('all in one sheet', 'sheet'), this.tick('shared scale', 'shared'));
    if (layer.planeNames.length > 1) {
      const planes = layer.planeNames.map((name) => [name, name]);
      parts.push(this.choice('of each block the', planes, picture.plane, (value) => {
        picture.plane = value;
        this.recolour();
      }));
    }
    const maps = Object.keys(kColours).map((name) => [name, name]);
    parts.push(this.choice('colours', maps, options.colours, (value) => {
      options.colours = value;
      this.draw();
    }));
    parts.push(...this.rangeControls(), this.tick('areas', 'areas'));
    if (picture.cabinet) parts.push(this.tick('cabinets', 'cabinets'));
    parts.push(element('button', {type: 'button', click: () => this.showAll()}, 'show all'));
    this.controls.replaceChildren(...parts);
  }

  rangeControls() {
    const {picture} = this;
    const field = (label, value) => element('input', {type: 'number', step: 'any', 'aria-label': label, value});
    const isPercent = Boolean(picture.range.percents);
    const values = picture.range.percents || picture.range.numbers;
    const fields = [field('first colour', values[0]), field('last colour', values[1])];
    const set = () => {
      const numbers = fields.map((each) => Number(each.value));
      if (!(numbers[0] < numbers[1])) return;
      picture.range = picture.range.percents ? {percents: numbers} : {numbers};
      this.recolour();
    };
    for (const each of fields) each.addEventListener('change', set);
    const kinds = [['percents', 'percentiles'], ['numbers', 'numbers']];
    const kind = this.choice('colours span', kinds, isPercent ? 'percents' : 'numbers', (value) => {
      const numbers = picture.rangeOf(picture.options.component);
      picture.range = value === 'percents' ? {percents: [1, 99]} : {numbers};
      this.addControls();
      this.recolour();
    });
    return [kind, ...fields];
  }

  addTables() {
    const component = this.picture.layer.components[this.picture.options.component];
    const heading = (this.picture.layer.isDifference ? 'Difference of component ' : 'Component ') + component.component;
    this.section.querySelector('.tables').replaceChildren(
        ...component.tables.filter((each) => each.rows.length > 0)
            .map((each) => tableOf(each, heading, (place) => this.showPlace(place))));
  }

  showAll() {
    this.picture.place = null;
    this.picture.showAll();
    this.draw();
  }

  showPlace(rect) {
    this.canvas.scrollIntoView({block: 'nearest'});
    this.picture.showRect(rect);
    this.readout.textContent = `shown: ${rect.join(',')}`;
    if (rect[0] === rect[2] && rect[1] === rect[3]) this.tell({...this.componentCell(), x: rect[0], y: rect[1]});
  }

  componentCell() {
    return {component: this.picture.options.component};
  }

  // The value under the pointer.
  tell(cell) {
    const {layer} = this.picture;
    if (!cell) return;
    const index = layer.index(cell.x, cell.y);
    const where = `cell ${cell.x},${cell.y}, component ${cell.component}: `;
    if (index < 0) {
      const [left, top, right, bottom] = this.set.rect;
      const inside = cell.x >= left && cell.x <= right && cell.y >= top && cell.y <= bottom;
      this.readout.textContent = where + (layer.isDifference && inside ? 'unchanged' : 'no cell');
      return;
    }
    const texts = layer.planeNames.map((name) => {
      const plane = layer.plane(cell.component, name);
      const number = plane.at(index);
      const text = Number.isNaN(number) ? 'no number' : String(number);
      const about = plane.error > 0 ? `${text} (\u00b1 ${shortNumber(plane.error)})` : text;
      return layer.block > 1 ? `${name} ${about}` : about;
    });
    const block = layer.block > 1 ? ` (of its ${layer.block} \u00d7 ${layer.block} cells)` : '';
    this.readout.textContent = where + texts.join(', ') + (this.set.unit ? ' ' + this.set.unit : '') + block;
  }

  // Where an event is, in pixels of the canvas.
  pixelOf(event) {
    const box = this.canvas.getBoundingClientRect();
    return [
      (event.clientX - box.left) * this.canvas.width / box.width,
      (event.clientY - box.top) * this.canvas.height / box.height
    ];
  }

  listen() {
    let drag = null;
    this.canvas.addEventListener('pointerdown', (event) => {
      drag = this.pixelOf(event);
      this.canvas.setPointerCapture(event.pointerId);
    });
    this.canvas.addEventListener('pointerup', () => {
      drag = null;
    });
    this.canvas.addEventListener('pointermove', (event) => {
      const at = this.pixelOf(event);
      if (drag) {
        this.picture.panBy(drag[0] - at[0], drag[1] - at[1]);
        drag = at;
      }
      this.tell(this.picture.cellAt(...at));
    });
    this.canvas.addEventListener('wheel', (event) => {
      event.preventDefault();
      this.picture.zoomBy(event.deltaY < 0 ? 1.25 : 0.8);
    }, {passive: false});
    this.canvas.addEventListener('keydown', (event) => this.press(event));
  }

  press(event) {
    const {picture} = this;
    const arrow = kArrows[event.key];
    if (arrow && event.shiftKey) {
      picture.panBy(arrow[0] * 60, arrow[1] * 60);
    } else if (arrow) {
      this.moveCursor(arrow);
    } else if (event.key === '+' || event.key === '=') {
      picture.zoomBy(1.25);
    } else if (event.key === '-') {
      picture.zoomBy(0.8);
    } else if (event.key === '0' || event.key === 'Home') {
      this.showAll();
    } else {
      return;
    }
    event.preventDefault();
  }

  moveCursor(arrow) {
    const {picture} = this;
    const [left, top, right, bottom] = this.set.rect;
    const limit = (value, low, high) => Math.min(Math.max(value, low), high);
    const from =
        picture.cursor || {x: Math.floor(picture.centre[0]) - arrow[0], y: Math.floor(picture.centre[1]) - arrow[1]};
    picture.cursor = {x: limit(from.x + arrow[0], left, right), y: limit(from.y + arrow[1], top, bottom)};
    picture.draw();
    this.tell({...this.componentCell(), ...picture.cursor});
  }
}

function start() {
  const data = JSON.parse(document.getElementById('data').textContent);
  const viewers = new Map();
  const sections = Array.from(document.querySelectorAll('section.set'));
  const viewerOf = (index) => {
    const set = data.sets[index];
    if (!set || !set.values) return null;
    if (!viewers.has(index)) {
      set.layers = [new Layer(set.values, false)];
      if (set.difference) set.layers.push(new Layer(set.difference, true));
      viewers.set(index, new Viewer(document.getElementById('set-' + index), set, data.cabinet));
    }
    return viewers.get(index);
  };
  const redraw = () => viewers.forEach((viewer) => viewer.draw());

  // A viewer is made when its section comes into sight: a page may have many.
  const observer = new IntersectionObserver((entries) => {
    for (const entry of entries.filter((each) => each.isIntersecting)) viewerOf(Number(entry.target.dataset.set));
  }, {rootMargin: '300px'});
  sections.forEach((section) => observer.observe(section));
  document.querySelectorAll('table.sortable').forEach((table) => makeSortable(table));

  const openArea = (shape) => {
    const viewer = viewerOf(Number(shape.dataset.set));
    if (!viewer) return;
    const area = viewer.set.areas.find((each) => String(each.id) === shape.dataset.area);
    viewer.section.scrollIntoView();
    viewer.showPlace(area.rect);
    viewer.canvas.focus({preventScroll: true});
  };
  document.querySelectorAll('.map .area[data-set]').forEach((shape) => {
    shape.addEventListener('click', () => openArea(shape));
    shape.addEventListener('keydown', (event) => {
      if (event.key === 'Enter' || event.key === ' ') openArea(shape);
    });
  });

  window.addEventListener('resize', redraw);
  window.matchMedia('(prefers-color-scheme: dark)').addEventListener('change', redraw);
  window.addEventListener('beforeprint', () => {
    sections.forEach((section) => viewerOf(Number(section.dataset.set)));
    viewers.forEach((viewer) => viewer.addPrints());
  });
  window.addEventListener('afterprint', () => viewers.forEach((viewer) => viewer.prints.replaceChildren()));
}

start();
