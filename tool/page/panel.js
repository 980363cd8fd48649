// SPDX-License-Identifier: MIT
// The panel of one item: its fields, where it is used, what it consists of, its papers, and where its weight sits.

class Panel {
  constructor(element, product, select) {
    Object.assign(this, {element, product, select, field: product.numericFields()[0] ?? -1});
    this.totals = new Map();
  }

  show(item) {
    this.item = item;
    this.element.replaceChildren(
      make('h2', {}, this.product.label(item)), make('div', {class: 'name'}, this.product.name(item)),
      ...this.fieldTable(item), ...this.papers(item),
      ...this.lines('Used in', 'parents', this.product.linesUp.of(item), this.product.lines.parent),
      ...this.lines('Consists of', 'children', this.product.linesDown.of(item), this.product.lines.child),
      ...this.chart(item));
    this.element.querySelectorAll('.list').forEach(list => list.fill());
    this.element.scrollTop = 0;
  }

  fieldTable(item) {
    const rows = this.product.fields.map((field, f) => [field, this.product.items.values[f][item]]).filter(row => row[1]);
    return rows.length ? [make('h3', {}, 'Fields'), table(rows)] : [];
  }

  papers(item) {
    const papers = Array.from(this.product.papersOf.of(item), link => this.product.papers[this.product.links.paper[link]]);
    return ['drawing', 'process plan'].flatMap(kind => {
      const some = papers.filter(paper => paper.kind === kind);
      return some.length ? [make('h3', {}, kind + 's'), ...some.map(paper => this.paper(paper))] : [];
    });
  }

  paper(paper) {
    return make('div', {class: 'paper'}, make('span', {class: 'code'}, paper.code ?? ''), ' ', paper.name ?? '',
                table(paper.fields), paper.document >= 0 ? documentLink(this.product.documents[paper.document]) : '');
  }

  /// A list of lines by the item at their other end.
  lines(title, id, lines, ends) {
    if (!lines.length) return [make('h3', {}, title), make('div', {class: 'empty'}, 'nothing')];
    return [make('h3', {}, `${title} (${lines.length})`), this.list(id, lines.length, i => ({
      item: ends[lines[i]],
      children: [
        make('span', {class: 'code'}, this.product.label(ends[lines[i]])),
        make('span', {class: 'name'}, this.product.name(ends[lines[i]])),
        make('span', {class: 'number'}, this.product.lines.quantity[lines[i]] || '–')],
    }))];
  }

  /// A list whose rows lead to items; it is filled once it stands in the page.
  list(id, count, row, kind = '') {
    const element = make('div', {id, class: 'list ' + kind, tabindex: 0, role: 'listbox'});
    element.style.height = Math.min(count, 12) * ROW_HEIGHT + 2 + 'px';
    element.fill = () => {
      const draw = i => ({attributes: {role: 'option'}, children: row(i).children});
      new VirtualList(element, draw, () => {}, i => this.select(row(i).item)).setCount(count);
    };
    return element;
  }

  total(field) {
    if (!this.totals.has(field)) this.totals.set(field, this.product.rollUp(field));
    return this.totals.get(field);
  }

  /// Bars: how much of the item's total each of its children holds, the largest first.
  chart(item) {
    if (!this.product.linesDown.count(item)) return [];
    const totals = this.total(this.field);
    const parts = new Map();
    for (const line of this.product.linesDown.of(item)) {
      const child = this.product.lines.child[line];
      parts.set(child, (parts.get(child) ?? 0) + totals[child] * this.product.rate(line));
    }
    const bars = [...parts].sort((a, b) => b[1] - a[1]);
    const sum = bars.reduce((all, bar) => all + bar[1], 0);
    return [
      make('h3', {}, 'Share of ', this.fieldChoice(), ` (${short(sum)})`),
      this.list('chart', bars.length, i => ({item: bars[i][0], children: this.bar(bars[i], sum, bars[0][1])}), 'chart')];
  }

  bar([child, value], sum, largest) {
    const share = make('span', {class: 'share'}, make('span'));
    share.firstChild.style.width = largest > 0 ? Math.max(0, value / largest * 100) + '%' : '0';
    return [make('span', {class: 'code', title: this.product.name(child)}, this.product.label(child)), share,
            make('span', {class: 'number'}, sum > 0 ? `${short(value)} · ${Math.round(value / sum * 100)}%` : short(value))];
  }

  fieldChoice() {
    const change = event => {
      this.field = Number(event.target.value);
      this.show(this.item);
    };
    return make('select', {id: 'chart-field', 'aria-label': 'Field of the chart', onchange: change},
                ...[-1, ...this.product.numericFields()].map(f => make('option', {value: f, selected: f === this.field},
                                                                       f < 0 ? 'parts (count)' : this.product.fields[f])));
  }
}

function table(rows) {
  return make('table', {}, ...rows.map(([name, value]) => make('tr', {}, make('td', {}, name), make('td', {}, value ?? ''))));
}

/// A number for the eye: four digits that count.
function short(number) { return String(Number(number.toPrecision(4))); }
