// SPDX-License-Identifier: MIT
// A list that draws only the rows in sight, so that its length costs nothing.

/// An element with attributes and children; texts become text, never markup.
function make(tag, attributes = {}, ...children) {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (name.startsWith('on')) element.addEventListener(name.slice(2), value);
    else if (value !== undefined && value !== false) element.setAttribute(name, value === true ? '' : value);
  }
  element.append(...children.filter(child => child !== null));
  return element;
}

const ROW_HEIGHT = 26;
const MOST_HEIGHT = 15e6;  // browsers clip elements that are much taller: beyond it, scrolling steps over rows

class VirtualList {
  /// `draw(i)` returns the attributes and the children of row i, `choose(i)` is called when it becomes current, and
  /// `open(i)` when it is pressed with the mouse or Enter.
  constructor(element, draw, choose, open = () => {}) {
    Object.assign(this, {element, draw, choose, open, count: 0, current: -1});
    this.room = make('div', {class: 'room', role: 'presentation'});
    element.replaceChildren(this.room);
    element.addEventListener('scroll', () => this.paint());
    element.addEventListener('keydown', event => this.onKey(event));
    element.addEventListener('mousedown', event => {
      const row = event.target.closest('.row');
      if (!row || event.target.closest('.fold')) return;
      this.setCurrent(Number(row.dataset.index));
      this.open(this.current);
    });
    new ResizeObserver(() => this.paint()).observe(element);
  }

  get full() { return this.count * ROW_HEIGHT; }
  get height() { return Math.min(this.full, MOST_HEIGHT); }
  get inSight() { return Math.max(1, Math.floor(this.element.clientHeight / ROW_HEIGHT)); }

  /// Index of the first row in sight, with its fraction.
  get first() {
    const way = this.height - this.element.clientHeight;
    return way > 0 ? this.element.scrollTop / way * (this.full - this.element.clientHeight) / ROW_HEIGHT : 0;
  }

  setCount(count, keep = false) {
    this.count = count;
    this.room.style.height = this.height + 'px';
    if (!keep) {
      this.current = -1;
      this.element.scrollTop = 0;
    }
    this.paint();
  }

  paint() {
    const first = this.first;
    const top = this.element.scrollTop - (first - Math.floor(first)) * ROW_HEIGHT;
    const rows = [];
    const end = Math.min(this.count, Math.floor(first) + this.inSight + 2);
    for (let i = Math.floor(first); i < end; ++i) {
      const {attributes = {}, children} = this.draw(i);
      const row = make('div', {class: 'row', id: `${this.element.id}-${i}`, 'data-index': i, ...attributes}, ...children);
      row.style.top = top + (i - Math.floor(first)) * ROW_HEIGHT + 'px';
      if (i === this.current) row.classList.add('current');
      rows.push(row);
    }
    this.room.replaceChildren(...rows);
    if (this.current >= 0) this.element.setAttribute('aria-activedescendant', `${this.element.id}-${this.current}`);
    else this.element.removeAttribute('aria-activedescendant');
  }

  setCurrent(index) {
    if (index < 0 || index >= this.count) return;
    this.current = index;
    this.show(index);
    this.choose(index);
  }

  show(index) {
    const first = this.first;
    let wanted = first;
    if (index < first) wanted = index;
    else if (index > first + this.inSight - 1) wanted = index - this.inSight + 1;
    const way = this.full - this.element.clientHeight;
    if (wanted !== first && way > 0)
      this.element.scrollTop = wanted * ROW_HEIGHT / way * (this.height - this.element.clientHeight);
    this.paint();
  }

  onKey(event) {
    if (event.key === 'Enter' && this.current >= 0) this.open(this.current);
    const steps = {ArrowUp: -1, ArrowDown: 1, PageUp: -this.inSight, PageDown: this.inSight, Home: -this.count, End: this.count};
    const step = steps[event.key];
    if (step === undefined || event.altKey || event.ctrlKey || event.metaKey) return;
    event.preventDefault();
    this.setCurrent(Math.max(0, Math.min(this.count - 1, this.current + step)));
  }
}
