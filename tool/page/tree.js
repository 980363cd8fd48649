// SPDX-License-Identifier: MIT
// The structure with folding. A row knows its parent row; only unfolded rows exist.

class Tree {
  constructor(element, product, choose) {
    this.product = product;
    this.rows = product.tops.map(item => this.row(item, -1, null, false));
    this.list = new VirtualList(element, i => this.draw(i), i => choose(this.rows[i].item));
    element.addEventListener('keydown', event => this.onKey(event));
    element.addEventListener('dblclick', () => this.toggle(this.list.current));
    this.list.setCount(this.rows.length);
  }

  row(item, line, parent, cycle) {
    return {item, line, parent, cycle, level: parent ? parent.level + 1 : 1, open: false};
  }

  canUnfold(row) { return !row.cycle && this.product.linesDown.count(row.item) > 0; }

  /// How many of a row's item go into one piece of its top. Rows far down are rare, but may be: no recursion.
  total(row) {
    const waiting = [];
    for (let at = row; at && !at.total; at = at.parent) waiting.push(at);
    for (const at of waiting.reverse())
      at.total = at.parent ? multiply(at.parent.total, this.product.quantity(at.line)) : ONE;
    return row.total;
  }

  quantity(row) { return row.parent ? this.product.lines.quantity[row.line] || '–' : ''; }

  totalText(row) { return row.parent ? formatDecimal(this.total(row)) : ''; }

  draw(index) {
    const row = this.rows[index];
    const unfolds = this.canUnfold(row);
    const fold = make('button', {class: 'fold', tabindex: -1, 'aria-hidden': true, onclick: () => this.toggle(index)},
                      unfolds ? (row.open ? '▾' : '▸') : '');
    fold.style.marginLeft = Math.min(row.level - 1, 40) * 16 + 'px';
    return {
      attributes: {role: 'treeitem', 'aria-level': row.level, 'aria-expanded': unfolds ? String(row.open) : undefined},
      children: [
        fold, make('span', {class: 'code'}, this.product.label(row.item)),
        make('span', {class: 'name'}, this.product.name(row.item)), this.mark(row),
        make('span', {class: 'number'}, this.quantity(row)), make('span', {class: 'number'}, this.totalText(row))],
    };
  }

  mark(row) {
    if (row.cycle) return make('span', {class: 'mark'}, 'cycle');
    if (!row.parent && this.product.linesUp.count(row.item) > 0)
      return make('span', {class: 'mark'}, row.item === this.product.root ? 'root' : 'on a cycle');
    return this.product.papersOf.count(row.item) ? make('span', {class: 'mark', title: 'has documents'}, '▤') : null;
  }

  toggle(index) {
    const row = this.rows[index];
    if (!row || !this.canUnfold(row)) return;
    if (row.open) this.fold(index);
    else this.unfold(index);
    this.list.setCount(this.rows.length, true);
  }

  unfold(index) {
    const row = this.rows[index];
    const lines = this.product.linesDown.of(row.item);
    const above = new Set();
    for (let at = row; at; at = at.parent) above.add(at.item);
    const children = Array.from(lines, line => {
      const child = this.product.lines.child[line];
      return this.row(child, line, row, above.has(child));
    });
    row.open = true;
    this.rows = this.rows.slice(0, index + 1).concat(children, this.rows.slice(index + 1));
    if (this.list.current > index) this.list.current += children.length;
  }

  fold(index) {
    let end = index + 1;
    while (end < this.rows.length && this.rows[end].level > this.rows[index].level) ++end;
    this.rows[index].open = false;
    this.rows = this.rows.slice(0, index + 1).concat(this.rows.slice(end));
    if (this.list.current >= end) this.list.current -= end - index - 1;
    else if (this.list.current > index) this.list.current = index;
  }

  /// Unfolds the way to an item and makes its row current.
  reveal(item) {
    let index = -1;
    for (const step of this.product.pathTo(item)) {
      if (index >= 0 && !this.rows[index].open) this.unfold(index);
      const level = index < 0 ? 1 : this.rows[index].level + 1;
      do ++index; while (this.rows[index].item !== step || this.rows[index].level !== level);
    }
    this.list.setCount(this.rows.length, true);
    this.list.current = index;
    this.list.show(index);
  }

  onKey(event) {
    const index = this.list.current;
    const row = this.rows[index];
    if (!row) return;
    if (event.key === 'ArrowRight') row.open ? this.list.setCurrent(index + 1) : this.toggle(index);
    else if (event.key === 'ArrowLeft' && row.open) this.toggle(index);
    else if (event.key === 'ArrowLeft' && row.parent) this.list.setCurrent(this.rows.indexOf(row.parent));
    else if (event.key === 'Enter' || event.key === ' ') this.toggle(index);
    else return;
    event.preventDefault();
  }
}
