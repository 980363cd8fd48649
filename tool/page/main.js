// SPDX-License-Identifier: MIT
// Puts the page together: search, keys, print.

const MOST_PRINTED = 20000;

const product = new Product(JSON.parse(document.getElementById('product').textContent));
const summary = document.getElementById('summary');
const search = document.getElementById('search');
const treeElement = document.getElementById('tree');
const foundElement = document.getElementById('found');

function select(item) {
  search.value = '';
  showFound(false);
  tree.reveal(item);
  panel.show(item);
}

const panel = new Panel(document.getElementById('panel'), product, select);
const tree = new Tree(treeElement, product, item => panel.show(item));

let found = [];
const foundList = new VirtualList(foundElement, i => ({
  attributes: {role: 'option'},
  children: [make('span', {class: 'code'}, product.label(found[i])), make('span', {class: 'name'}, product.name(found[i]))],
}), i => panel.show(found[i]));

function showFound(shown) {
  foundElement.hidden = !shown;
  treeElement.hidden = shown;
  summary.textContent = shown ? `${found.length} found`
    : `${product.count} items, ${product.lines.parent.length} lines` + (product.left_out ? `, ${product.left_out} lines lead nowhere` : '');
}

search.addEventListener('input', () => {
  found = search.value.trim() ? product.search(search.value) : [];
  showFound(Boolean(search.value.trim()));
  foundList.setCount(found.length);
});
search.addEventListener('keydown', event => {
  if (event.key !== 'ArrowDown' && event.key !== 'Enter') return;
  event.preventDefault();
  const list = foundElement.hidden ? tree.list : foundList;
  list.element.focus();
  list.setCurrent(Math.max(0, list.current));
});
foundElement.addEventListener('keydown', event => event.key === 'Enter' && reveal());
foundElement.addEventListener('dblclick', reveal);

function reveal() {
  if (foundList.current < 0) return;
  select(found[foundList.current]);
  treeElement.focus();
}

document.addEventListener('keydown', event => {
  if (document.getElementById('viewer').open) return;
  if (event.key === '/' && document.activeElement !== search) {
    event.preventDefault();
    search.focus();
    search.select();
  } else if (event.key === 'Escape') {
    search.value = '';
    showFound(false);
    treeElement.focus();
  }
});
document.getElementById('viewer-close').addEventListener('click', () => document.getElementById('viewer').close());

/// On paper every unfolded row is drawn, as a table.
window.addEventListener('beforeprint', () => {
  const rows = tree.rows.slice(0, MOST_PRINTED).map(row => {
    const code = make('td', {}, `${product.label(row.item)}  ${product.name(row.item)}`);
    code.style.paddingLeft = (row.level - 1) * 14 + 6 + 'px';
    return make('tr', {}, code, make('td', {class: 'number'}, tree.quantity(row)),
                make('td', {class: 'number'}, tree.totalText(row)));
  });
  if (tree.rows.length > MOST_PRINTED)
    rows.push(make('tr', {}, make('td', {}, `… and ${tree.rows.length - MOST_PRINTED} more rows that are not printed`)));
  document.body.append(make('table', {id: 'print'}, ...rows));
});
window.addEventListener('afterprint', () => document.getElementById('print')?.remove());

showFound(false);
if (tree.rows.length === 1) tree.toggle(0);
if (tree.rows.length) tree.list.setCurrent(0);
treeElement.focus();
document.documentElement.dataset.ready = 'true';
setTimeout(() => product.search(''), 100);  // so that the first letter typed finds the texts ready
