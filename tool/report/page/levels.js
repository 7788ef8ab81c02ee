// The page's numbers: levels in text become numbers of cells.

const kDigits = '0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz!#$%&()*+-;,=>?@^_`{|}~';

// Base 85: five digits are four bytes, the most significant first.
function unpack(text) {
  const values = new Uint8Array(128);
  for (let i = 0; i < kDigits.length; ++i) values[kDigits.charCodeAt(i)] = i;
  const bytes = new Uint8Array(text.length / 5 * 4);
  for (let from = 0, to = 0; from < text.length; from += 5, to += 4) {
    let word = 0;
    for (let i = 0; i < 5; ++i) word = word * 85 + values[text.charCodeAt(from + i)];
    bytes[to] = word >>> 24;
    bytes[to + 1] = word >>> 16 & 255;
    bytes[to + 2] = word >>> 8 & 255;
    bytes[to + 3] = word & 255;
  }
  return bytes;
}

function isSet(bits, index) {
  return (bits[index >> 3] >> (index & 7) & 1) === 1;
}

// One number of every cell of a layer.
class Plane {
  constructor(data, layer, changed) {
    this.data = data;
    this.changed = changed;  // of a difference: the cells that count
    this.size = layer.columns * layer.rows;
    this.times = layer.scale[0];
    this.over = layer.scale[1];
    this.absent = data.absent === undefined ? null : layer.absentBits(data.absent);
    const bytes = unpack(data.levels);
    this.levels = data.bits === 16 ? new Uint16Array(bytes.buffer) : bytes;
  }

  isAbsent(index) {
    return this.absent !== null && isSet(this.absent, index);
  }

  ofLevel(level) {
    return (this.data.offset + this.data.step * level) * this.times / this.over;
  }

  at(index) {
    if (this.isAbsent(index)) return NaN;
    return this.ofLevel(this.data.bits === 0 ? 0 : this.levels[index]);
  }

  // How far a number may lie from the one that it stands for.
  get error() {
    return this.data.exact ? 0 : this.data.step * this.times / this.over / 2;
  }

  // How many cells have each level; of a difference those that changed.
  counts() {
    if (this.counted) return this.counted;
    const counts = new Uint32Array(this.data.bits === 16 ? 65536 : 256);
    for (let i = 0; i < this.size; ++i) {
      if (this.isAbsent(i) || (this.changed && !isSet(this.changed, i))) continue;
      ++counts[this.data.bits === 0 ? 0 : this.levels[i]];
    }
    this.counted = counts;
    return counts;
  }

  // The number below which so many percent of the cells lie.
  percentile(percent) {
    const counts = this.counts();
    const all = counts.reduce((sum, count) => sum + count, 0);
    let below = 0;
    for (let level = 0; level < counts.length; ++level) {
      below += counts[level];
      if (below > 0 && below >= all * percent / 100) return this.ofLevel(level);
    }
    return this.ofLevel(0);
  }
}

// A grid of cells with several components: the values of a set, or what changed in them.
class Layer {
  constructor(data, isDifference) {
    Object.assign(this, {rect: data.rect, block: data.block, columns: data.columns, rows: data.rows});
    this.scale = data.scale;
    this.data = data;
    this.isDifference = isDifference;
    this.planes = new Map();
    this.masks = new Map();
  }

  get components() {
    return this.data.components;
  }

  get planeNames() {
    return Object.keys(this.components[0].planes);
  }

  absentBits(index) {
    return this.mask('absent ' + index, this.data.absent[index]);
  }

  changedBits(component) {
    const changed = this.components[component].changed;
    return changed ? this.mask('changed ' + component, changed.cells) : null;
  }

  mask(name, text) {
    if (!this.masks.has(name)) this.masks.set(name, unpack(text));
    return this.masks.get(name);
  }

  plane(component, name) {
    const key = component + ' ' + name;
    if (!this.planes.has(key))
      this.planes.set(key, new Plane(this.components[component].planes[name], this, this.changedBits(component)));
    return this.planes.get(key);
  }

  // The place of a cell in the planes; negative outside.
  index(x, y) {
    const [left, top, right, bottom] = this.rect;
    if (x < left || x > right || y < top || y > bottom) return -1;
    return Math.floor((y - top) / this.block) * this.columns + Math.floor((x - left) / this.block);
  }
}
