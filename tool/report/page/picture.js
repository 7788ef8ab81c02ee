// The picture of one set: draws a component or all of them, at any zoom, into a canvas.

const kBins = 48;
const kThinnest = 40;  // pixels of a wall's shorter side

// Paper is light, whatever the screen is.
const kPaperColours = {
  '--ink': '#000',
  '--paper': '#fff'
};
let onPaper = false;

function cssColour(name) {
  if (onPaper) return kPaperColours[name];
  return getComputedStyle(document.documentElement).getPropertyValue(name).trim();
}

class Picture {
  constructor(canvas, set, cabinet) {
    this.canvas = canvas;
    this.set = set;
    this.cabinet = cabinet;
    this.options = {component: 0, sheet: false, shared: false, colours: 'viridis', areas: true, cabinets: true};
    this.range = {percents: [1, 99]};  // or {numbers: [low, high]}
    this.cursor = null;                // a cell
    this.place = null;                 // a rectangle that is pointed at
    this.dots = 1;                     // pixels of the canvas for one of the page
    this.show(set.layers[0]);
    this.showAll();
  }

  show(layer) {
    this.layer = layer;
    this.plane = layer.planeNames.includes('mean') ? 'mean' : 'value';
    this.options.colours = layer.isDifference ? 'cool to warm' : 'viridis';
    this.ranges = null;
  }

  // Everything, with a little room around it.
  showAll() {
    const [left, top, right, bottom] = this.set.rect;
    this.centre = [(left + right + 1) / 2, (top + bottom + 1) / 2];
    this.zoom = 0;  // pixels per cell; 0: as it fits
  }

  get isWhole() {
    return this.zoom === 0;
  }

  // What another picture of the same set shows, as far as it shows it.
  copyView(other) {
    this.show(other.layer);
    Object.assign(this.options, other.options);
    Object.assign(this, {plane: other.plane, range: other.range, place: other.place, centre: other.centre});
    const fits = [this, other].map((each) => each.fittingZoom(each.panels()[0]));
    this.zoom = other.zoom * fits[0] / fits[1];
  }

  showRect(rect) {
    this.place = rect;
    this.centre = [(rect[0] + rect[2] + 1) / 2, (rect[1] + rect[3] + 1) / 2];
    const panel = this.panels()[0];
    const fit = Math.min(panel.width / (rect[2] - rect[0] + 1), panel.height / (rect[3] - rect[1] + 1)) * 0.6;
    this.zoom = Math.min(Math.max(fit, this.fittingZoom(panel)), 24);
    this.draw();
  }

  fittingZoom(panel) {
    const [left, top, right, bottom] = this.set.rect;
    return Math.min(panel.width / (right - left + 1), panel.height / (bottom - top + 1));
  }

  zoomOf(panel) {
    return this.zoom === 0 ? this.fittingZoom(panel) : this.zoom;
  }

  // Pixels per column and per row: one for both, but where a wall of few lines would become too thin to see.
  zooms(panel) {
    const [left, top, right, bottom] = this.set.rect;
    const fit = this.fittingZoom(panel);
    const stretch = (cells) => Math.max(1, kThinnest * this.dots / (cells * fit));
    const zoom = this.zoomOf(panel);
    return [zoom * stretch(right - left + 1), zoom * stretch(bottom - top + 1)];
  }

  zoomBy(factor) {
    const panel = this.panels()[0];
    const least = this.fittingZoom(panel);
    this.zoom = Math.min(Math.max(this.zoomOf(panel) * factor, least / 2), Math.max(64, least));
    this.draw();
  }

  panBy(across, down) {
    const zooms = this.zooms(this.panels()[0]);
    this.centre = [this.centre[0] + across / zooms[0], this.centre[1] + down / zooms[1]];
    this.draw();
  }

  // Where components are drawn, in pixels of the canvas.
  panels() {
    const {width, height} = this.canvas;
    const title = 20 * this.dots;
    if (!this.options.sheet)
      return [{component: this.options.component, x: 0, y: title, width, height: height - title}];
    const count = this.layer.components.length;
    const columns = Math.ceil(Math.sqrt(count));
    const rows = Math.ceil(count / columns);
    return this.layer.components.map((each, i) => ({
                                       component: i,
                                       x: Math.floor(i % columns * width / columns) + 2,
                                       y: Math.floor(Math.floor(i / columns) * height / rows) + title,
                                       width: Math.floor(width / columns) - 4,
                                       height: Math.floor(height / rows) - title - 2,
                                     }));
  }

  // The cell under a pixel of the canvas, and its component; null outside of all panels.
  cellAt(x, y) {
    const panel =
        this.panels().find((each) => x >= each.x && x < each.x + each.width && y >= each.y && y < each.y + each.height);
    if (!panel) return null;
    const zooms = this.zooms(panel);
    const cell = [
      Math.floor(this.centre[0] + (x - panel.x - panel.width / 2) / zooms[0]),
      Math.floor(this.centre[1] + (y - panel.y - panel.height / 2) / zooms[1])
    ];
    return {component: panel.component, x: cell[0], y: cell[1]};
  }

  // The numbers of the first and the last colour of a component.
  rangeOf(component) {
    if (this.range.numbers) return this.range.numbers;
    if (!this.ranges) this.ranges = this.layer.components.map((each, i) => this.percentileRange(i));
    if (!this.options.shared || !this.options.sheet) return this.ranges[component];
    return [Math.min(...this.ranges.map((each) => each[0])), Math.max(...this.ranges.map((each) => each[1]))];
  }

  percentileRange(component) {
    const plane = this.layer.plane(component, this.plane);
    let [low, high] = this.range.percents.map((percent) => plane.percentile(percent));
    if (this.layer.isDifference) {
      high = Math.max(Math.abs(low), Math.abs(high)) || this.largestChange(component);
      low = -high;
    }
    return low < high ? [low, high] : [low - 0.5, high + 0.5];
  }

  // Few cells may have changed: what they changed by counts, not what the others did not.
  largestChange(component) {
    const statistics = this.layer.components[component].statistics;
    return statistics.count > 0 ? Math.max(Math.abs(statistics.minimum), Math.abs(statistics.maximum)) : 0;
  }

  draw() {
    const box = this.canvas.getBoundingClientRect();
    const scale = window.devicePixelRatio || 1;
    if (box.width > 0 && this.canvas.width !== Math.round(box.width * scale)) {
      this.canvas.width = Math.round(box.width * scale);
      this.canvas.height = Math.round(box.height * scale);
    }
    if (box.width > 0) this.dots = scale;
    const context = this.canvas.getContext('2d');
    context.fillStyle = cssColour('--paper');
    context.fillRect(0, 0, this.canvas.width, this.canvas.height);
    for (const panel of this.panels()) this.drawPanel(context, panel);
    this.canvas.setAttribute('aria-label', this.description());
  }

  description() {
    const {component, sheet} = this.options;
    const [low, high] = this.rangeOf(component);
    const what = sheet ? 'all components' : `component ${component}, colours from ${low} to ${high}`;
    return `Picture of ${this.layer.isDifference ? 'the difference of ' : ''}screen ${this.set.screen}, type ${
        this.set.type}, ${what}. Arrow keys move the pointer, plus and minus zoom, 0 shows all.`;
  }

  drawPanel(context, panel) {
    const [low, high] = this.rangeOf(panel.component);
    context.fillStyle = cssColour('--ink');
    context.font = `${13 * this.dots}px system-ui, sans-serif`;
    const numbers = `${shortNumber(low)} \u2026 ${shortNumber(high)}`;
    context.fillText(`component ${panel.component}: ${numbers}`, panel.x + 2, panel.y - 6 * this.dots, panel.width);
    context.putImageData(this.image(context, panel, low, high), panel.x, panel.y);
    context.save();
    context.beginPath();
    context.rect(panel.x, panel.y, panel.width, panel.height);
    context.clip();
    this.drawLines(context, panel);
    if (this.place) this.drawFrame(context, panel, this.place, 3 * this.dots);
    if (this.cursor) {
      this.drawFrame(context, panel, [this.cursor.x, this.cursor.y, this.cursor.x, this.cursor.y], 2 * this.dots);
    }
    context.restore();
  }

  // Each pixel shows the mean of its cells, of differences the one farthest from zero.
  image(context, panel, low, high) {
    const image = context.createImageData(panel.width, panel.height);
    const table = colourTable(this.options.colours);
    const across = this.places(panel, 0);
    const down = this.places(panel, 1);
    const numberAt = this.sampler(panel.component);
    for (let y = 0; y < panel.height; ++y) {
      for (let x = 0; x < panel.width; ++x) {
        const number = numberAt(across[x], across[x + 1], down[y], down[y + 1]);
        const at = (y * panel.width + x) * 4;
        if (Number.isNaN(number)) {
          this.shade(image.data, at, across[x], down[y], x, y);
          continue;
        }
        image.data[at + 3] = 255;
        const colour = Math.round(Math.min(Math.max((number - low) / (high - low), 0), 1) * 255) * 3;
        for (let channel = 0; channel < 3; ++channel) image.data[at + channel] = table[colour + channel];
      }
    }
    if (this.layer.isDifference) this.addFrames(panel, image.data);
    return image;
  }

  // Hatched: no number; plain: unchanged; nothing: beside the wall.
  shade(pixels, at, x, y, column, row) {
    const [left, top, right, bottom] = this.set.rect;
    if (x < left || x >= right + 1 || y < top || y >= bottom + 1) return;
    const hatched = (column + row) / this.dots % 8 < 2 ? 150 : 225;
    pixels[at] = pixels[at + 1] = pixels[at + 2] = this.layer.isDifference ? 221 : hatched;
    pixels[at + 3] = 255;
  }

  // Where the pixels of a panel begin, in cells.
  places(panel, axis) {
    const size = axis === 0 ? panel.width : panel.height;
    const zoom = this.zooms(panel)[axis];
    return Float64Array.from({length: size + 1}, (unused, i) => this.centre[axis] + (i - size / 2) / zoom);
  }

  sampler(component) {
    const layer = this.layer;
    const plane = layer.plane(component, this.plane);
    const [left, top] = layer.rect;
    const limit = (value, size) => Math.min(Math.max(value, 0), size);
    return (x0, x1, y0, y1) => {
      const firstColumn = limit(Math.floor((x0 - left) / layer.block), layer.columns);
      const firstRow = limit(Math.floor((y0 - top) / layer.block), layer.rows);
      // Zoomed in, a pixel on the line between two cells shows the first.
      const past = (first, end, size, length) => limit(length < layer.block ? first + 1 : Math.ceil(end), size);
      const lastColumn = past(firstColumn, (x1 - left) / layer.block, layer.columns, x1 - x0);
      const lastRow = past(firstRow, (y1 - top) / layer.block, layer.rows, y1 - y0);
      if (x1 <= left || y1 <= top) return NaN;
      let sum = 0;
      let count = 0;
      let farthest = 0;
      const stepX = Math.max(1, Math.floor((lastColumn - firstColumn) / 6));
      const stepY = Math.max(1, Math.floor((lastRow - firstRow) / 6));
      for (let row = firstRow; row < lastRow; row += stepY) {
        for (let column = firstColumn; column < lastColumn; column += stepX) {
          const number = plane.at(row * layer.columns + column);
          if (Number.isNaN(number)) continue;
          sum += number;
          ++count;
          if (Math.abs(number) > Math.abs(farthest)) farthest = number;
        }
      }
      if (count === 0) return NaN;
      return layer.isDifference ? farthest : sum / count;
    };
  }

  boxOf(panel, rect) {
    const zooms = this.zooms(panel);
    const x = panel.x + panel.width / 2 + (rect[0] - this.centre[0]) * zooms[0];
    const y = panel.y + panel.height / 2 + (rect[1] - this.centre[1]) * zooms[1];
    return [x, y, (rect[2] - rect[0] + 1) * zooms[0], (rect[3] - rect[1] + 1) * zooms[1]];
  }

  // White on black, to be seen on every colour; none where they would bury the cells.
  drawFrame(context, panel, rect, thickness) {
    const box = this.boxOf(panel, rect);
    context.setLineDash([]);
    context.strokeStyle = '#000';
    context.lineWidth = thickness + 2 * this.dots;
    context.strokeRect(...box);
    context.strokeStyle = '#fff';
    context.lineWidth = thickness;
    context.strokeRect(...box);
  }

  drawLines(context, panel) {
    const zoom = this.zoomOf(panel);
    context.lineWidth = this.dots;
    context.strokeStyle = '#000';
    if (this.options.areas) {
      for (const area of this.set.areas) {
        const box = this.boxOf(panel, area.rect);
        if (Math.min(box[2], box[3]) < 12 * this.dots) continue;
        context.setLineDash(area.fault ? [3 * this.dots, 3 * this.dots] : []);
        context.strokeRect(...box);
      }
    }
    if (!this.cabinet || !this.options.cabinets) return;
    context.setLineDash([6 * this.dots, 4 * this.dots]);
    context.strokeStyle = '#fff';
    const [left, top, right, bottom] = this.set.rect;
    for (const [axis, from, to] of [[0, left, right], [1, top, bottom]]) {
      const size = this.cabinet[axis];
      const origin = this.set.screen_rect[axis];
      if (size * zoom < 8 * this.dots) continue;
      for (let at = origin + Math.ceil((from - origin) / size) * size; at <= to; at += size) {
        const line = axis === 0 ? [at, top, at - 1, bottom] : [left, at, right, at - 1];
        const box = this.boxOf(panel, line);
        context.beginPath();
        context.moveTo(box[0], box[1]);
        context.lineTo(box[0] + box[2], box[1] + box[3]);
        context.stroke();
      }
    }
  }

  // Around every group of changed cells, and apart from them: black, and white outside.
  addFrames(panel, pixels) {
    const bits = this.layer.changedBits(panel.component);
    if (!bits) return;
    const marked = this.changedPixels(panel, bits);
    const [inner, outer, edge] =
        [3, 5, 6].map((reach) => grown(marked, panel.width, panel.height, Math.round(reach * this.dots)));
    for (let i = 0; i < edge.length; ++i) {
      if (!edge[i] || inner[i]) continue;
      pixels.fill(outer[i] ? 0 : 255, i * 4, i * 4 + 3);
      pixels[i * 4 + 3] = 255;
    }
  }

  changedPixels(panel, bits) {
    const {layer} = this;
    const marked = new Uint8Array(panel.width * panel.height);
    for (let row = 0; row < layer.rows; ++row) {
      for (let column = 0; column < layer.columns; ++column) {
        if (!isSet(bits, row * layer.columns + column)) continue;
        const cell = [layer.rect[0] + column * layer.block, layer.rect[1] + row * layer.block];
        const [x, y, width, height] =
            this.boxOf(panel, [...cell, cell[0] + layer.block - 1, cell[1] + layer.block - 1]);
        const left = Math.max(Math.floor(x - panel.x), 0);
        const right = Math.min(Math.max(Math.ceil(x - panel.x + width), left + 1), panel.width);
        const bottom = Math.min(Math.ceil(y - panel.y + height), panel.height);
        for (let at = Math.max(Math.floor(y - panel.y), 0); at < bottom; ++at) {
          if (left < right) marked.fill(1, at * panel.width + left, at * panel.width + right);
        }
      }
    }
    return marked;
  }
}

// The pixels with all that lie no farther than `reach` in a row and in a column from one of them.
function grown(pixels, width, height, reach) {
  const spread = (from, lines, length, step, stride) => {
    const to = new Uint8Array(from.length);
    for (let line = 0; line < lines; ++line) {
      for (let i = 0, until = -1; i < length + reach; ++i) {
        if (i < length && from[line * stride + i * step]) until = i + 2 * reach;
        if (i >= reach && i <= until) to[line * stride + (i - reach) * step] = 1;
      }
    }
    return to;
  };
  return spread(spread(pixels, height, width, 1, width), width, height, width, 1);
}

// Six digits are enough for a heading.
function shortNumber(number) {
  return String(Number(number.toPrecision(6)));
}

// How often numbers occur, beside the colours that stand for them.
function drawHistogram(canvas, picture) {
  const box = canvas.getBoundingClientRect();
  const scale = window.devicePixelRatio || 1;
  if (box.width > 0) {
    canvas.width = Math.round(box.width * scale);
    canvas.height = Math.round(box.height * scale);
  }
  const component = picture.options.component;
  const plane = picture.layer.plane(component, picture.plane);
  const [low, high] = picture.rangeOf(component);
  const bins = new Array(kBins).fill(0);
  let beyond = 0;
  plane.counts().forEach((count, level) => {
    const bin = Math.floor((plane.ofLevel(level) - low) / (high - low) * kBins);
    if (bin >= 0 && bin < kBins) {
      bins[bin] += count;
    } else if (plane.ofLevel(level) === high) {
      bins[kBins - 1] += count;
    } else {
      beyond += count;
    }
  });
  const context = canvas.getContext('2d');
  const ink = cssColour('--ink');
  const {dots} = picture;
  const top = 26 * dots;
  const height = canvas.height - 2 * top;
  const table = colourTable(picture.options.colours);
  const most = Math.max(1, ...bins);
  context.clearRect(0, 0, canvas.width, canvas.height);
  bins.forEach((count, i) => {
    const y = top + height * (kBins - 1 - i) / kBins;
    const colour = Math.round((i + 0.5) / kBins * 255) * 3;
    context.fillStyle = `rgb(${table[colour]}, ${table[colour + 1]}, ${table[colour + 2]})`;
    context.fillRect(2 * dots, y, 22 * dots, height / kBins + 1);
    context.fillStyle = ink;
    context.fillRect(30 * dots, y + 1, (canvas.width - 40 * dots) * count / most, Math.max(1, height / kBins - 1));
  });
  context.font = `${13 * dots}px system-ui, sans-serif`;
  context.fillStyle = ink;
  context.fillText(shortNumber(high), 2 * dots, top - 8 * dots);
  context.fillText(`${shortNumber(low)}   (${beyond} beyond)`, 2 * dots, canvas.height - 8 * dots);
  canvas.setAttribute(
      'aria-label', `Histogram of component ${component} from ${low} to ${high}; ${beyond} cells beyond`);
}
