// Colour maps whose lightness tells the value, so that they work for the colour-blind and in grey.

// Equally spaced colours of each map; between them colours are mixed. viridis by Nathaniel Smith, Stefan van der Walt
// and Eric Firing; cividis by Jamie Nunez, Christopher Anderton and Ryan Renslow; cool to warm by Kenneth Moreland.
const kColours = {
  viridis: ['440154', '482878', '3e4a89', '31688e', '26828e', '1f9e89', '35b779', '6dcd59', 'b4de2c', 'fde725'],
  cividis: ['00224e', '123570', '3b496c', '575d6d', '707173', '8a8678', 'a59c74', 'c3b369', 'e1cc55', 'fee838'],
  grey: ['111111', 'f4f4f4'],
  'cool to warm': ['3b4cc0', '6889ee', '9abbff', 'c9d8f0', 'dddddd', 'edd1c2', 'f7a889', 'e26a53', 'b40426'],
};

// 256 colours, three bytes each.
function colourTable(name) {
  const stops = kColours[name].map((hex) => [0, 2, 4].map((at) => parseInt(hex.slice(at, at + 2), 16)));
  const table = new Uint8Array(256 * 3);
  for (let i = 0; i < 256; ++i) {
    const place = i / 255 * (stops.length - 1);
    const before = Math.min(Math.floor(place), stops.length - 2);
    for (let channel = 0; channel < 3; ++channel) {
      const from = stops[before][channel];
      table[i * 3 + channel] = Math.round(from + (stops[before + 1][channel] - from) * (place - before));
    }
  }
  return table;
}
