// Tables that sort, and rows that lead to a place.

function element(tag, attributes, ...children) {
  const made = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes || {})) {
    if (typeof value === 'function') {
      made.addEventListener(name, value);
    } else if (value !== undefined && value !== false) {
      made.setAttribute(name, value === true ? '' : value);
    }
  }
  made.append(...children);
  return made;
}

// Numbers by size, texts after them; what is no number is no smallest one.
function compareTexts(one, other) {
  const numbers = [Number(one), Number(other)];
  const isNumber = [one, other].map((text, i) => text.trim() !== '' && !Number.isNaN(numbers[i]));
  if (isNumber[0] && isNumber[1]) return numbers[0] - numbers[1];
  if (isNumber[0] !== isNumber[1]) return isNumber[0] ? -1 : 1;
  return one.localeCompare(other);
}

const kPrintedRows = 25;  // of a long table; page.css leaves out the others on paper

// What a print says of the rows that it leaves out.
function notePrinted(table, order) {
  const rows = table.tBodies[0].rows.length;
  const note = table.parentElement.querySelector('.printed');
  if (note) note.textContent = `Printed: ${kPrintedRows} of ${rows} rows, ${order}.`;
}

function sortBy(table, column, heading) {
  const descending = heading.getAttribute('aria-sort') === 'ascending';
  for (const each of table.tHead.rows[0].cells) each.removeAttribute('aria-sort');
  heading.setAttribute('aria-sort', descending ? 'descending' : 'ascending');
  const rows = Array.from(table.tBodies[0].rows);
  rows.sort((one, other) => {
    const order = compareTexts(one.cells[column].textContent, other.cells[column].textContent);
    return descending ? -order : order;
  });
  table.tBodies[0].append(...rows);
  notePrinted(table, `the first by ${heading.textContent}${descending ? ', largest first' : ''}`);
}

function makeSortable(table) {
  Array.from(table.tHead.rows[0].cells).forEach((heading, column) => {
    const button =
        element('button', {type: 'button', click: () => sortBy(table, column, heading)}, heading.textContent);
    heading.replaceChildren(button);
  });
  for (const row of table.tBodies[0].rows) {
    for (const cell of row.cells) cell.classList.toggle('number', compareTexts(cell.textContent, '') < 0);
  }
}

// A rectangle or a cell, by the names of the columns.
function placeOf(columns, row) {
  const at = (name) => row[columns.indexOf(name)];
  if (columns.includes('x')) return [at('x'), at('y'), at('x'), at('y')];
  return columns.includes('left') ? [at('left'), at('top'), at('right'), at('bottom')] : null;
}

function tableOf(data, heading, show) {
  const rows = data.rows.map((row) => {
    const place = placeOf(data.columns, row);
    const open = () => show(place);
    const key = (event) => {
      if (event.key === 'Enter') open();
    };
    const cells = row.map((cell) => element('td', {}, cell === null ? '-' : String(cell)));
    return element('tr', {class: 'place', tabindex: '0', click: open, keydown: key}, ...cells);
  });
  const head = element('tr', {}, ...data.columns.map((name) => element('th', {scope: 'col'}, name)));
  const shown = data.rows.length < data.all ? ` (${data.rows.length} of ${data.all})` : '';
  const table = element(
      'table', {class: 'sortable long'}, element('caption', {}, `${heading}: ${data.name}${shown}`),
      element('thead', {}, head), element('tbody', {}, ...rows));
  makeSortable(table);
  const box = element('div', {class: 'scroll', tabindex: '0'}, table);
  if (rows.length > kPrintedRows) box.append(element('p', {class: 'printed'}));
  notePrinted(table, 'the worst first');
  return box;
}
