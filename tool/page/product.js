// SPDX-License-Identifier: MIT
// The product: items by number, the lines between them, and what is computed on both.

/// Groups the numbers of `keys` by key, in order: those of key k are `order[start[k]]` up to `order[start[k + 1]]`.
function groupBy(keys, count) {
  const start = new Int32Array(count + 1);
  for (const key of keys) start[key + 1]++;
  for (let k = 0; k < count; ++k) start[k + 1] += start[k];
  const next = start.slice();
  const order = new Int32Array(keys.length);
  keys.forEach((key, i) => order[next[key]++] = i);
  return {count: k => start[k + 1] - start[k], at: (k, i) => order[start[k] + i], of: k => order.subarray(start[k], start[k + 1])};
}

class Product {
  constructor(data) {
    Object.assign(this, data);
    this.count = this.items.code.length;
    this.linesDown = groupBy(this.lines.parent, this.count);
    this.linesUp = groupBy(this.lines.child, this.count);
    this.papersOf = groupBy(this.links.item, this.count);
    this.tops = this.findTops();
  }

  label(item) { return this.items.code[item] ?? ''; }
  name(item) { return this.items.name[item] ?? ''; }

  /// How many of its child a line brings in: 1 where it says nothing, or something that is no number.
  quantity(line) { return parseDecimal(this.lines.quantity[line]) ?? ONE; }

  /// The root, the other items without a parent, then one item of each part of the graph that only cycles hold.
  findTops() {
    const reached = new Uint8Array(this.count);
    const tops = [];
    const add = item => {
      tops.push(item);
      this.reach(item, reached);
    };
    if (this.root >= 0) add(this.root);
    for (let item = 0; item < this.count; ++item)
      if (item !== this.root && this.linesUp.count(item) === 0) add(item);
    for (let item = 0; item < this.count; ++item) if (!reached[item]) add(item);
    return tops;
  }

  reach(item, reached) {
    const open = [item];
    while (open.length) {
      const at = open.pop();
      if (reached[at]) continue;
      reached[at] = 1;
      for (const line of this.linesDown.of(at)) open.push(this.lines.child[line]);
    }
  }

  /// Items in an order in which every child stands before its parents, but for lines that close a cycle.
  bottomUp() {
    const state = new Uint8Array(this.count);  // 0 not met, 1 open, 2 done
    const order = [];
    const stack = [];
    for (let first = 0; first < this.count; ++first) {
      if (state[first]) continue;
      stack.push([first, 0]);
      state[first] = 1;
      while (stack.length) {
        const top = stack[stack.length - 1];
        if (top[1] === this.linesDown.count(top[0])) {
          state[top[0]] = 2;
          order.push(top[0]);
          stack.pop();
          continue;
        }
        const child = this.lines.child[this.linesDown.at(top[0], top[1]++)];
        if (!state[child]) {
          state[child] = 1;
          stack.push([child, 0]);
        }
      }
    }
    return order;
  }

  /// What one piece of each item holds of a field, or of parts when `field` is -1: an assembly has the sum of its
  /// children, a part its own value. For the chart only, so in floating point.
  rollUp(field) {
    const totals = new Float64Array(this.count);
    const done = new Uint8Array(this.count);
    this.order ??= this.bottomUp();
    for (const item of this.order) {
      done[item] = 1;
      const lines = this.linesDown.of(item);
      if (!lines.length) totals[item] = field < 0 ? 1 : Number(this.items.values[field][item]) || 0;
      for (const line of lines)
        if (done[this.lines.child[line]] && this.lines.child[line] !== item)
          totals[item] += totals[this.lines.child[line]] * this.rate(line);
    }
    return totals;
  }

  /// `quantity` for charts.
  rate(line) {
    const rate = Number(this.lines.quantity[line] || NaN);
    return Number.isNaN(rate) ? 1 : rate;
  }

  /// Fields whose values are numbers, mostly.
  numericFields() {
    return this.fields.map((_, f) => f).filter(f => {
      const given = this.items.values[f].filter(value => value);
      return given.length > 0 && given.filter(value => parseDecimal(value)).length * 2 > given.length;
    });
  }

  /// Items that have every word in their code, name or one of their fields, in record order.
  search(query) {
    this.texts ??= this.items.code.map((code, item) =>
      [code, this.items.name[item], ...this.items.values.map(column => column[item])].join('\n').toLowerCase());
    const words = query.toLowerCase().split(/\s+/).filter(Boolean);
    const found = [];
    for (let item = 0; item < this.count; ++item)
      if (words.every(word => this.texts[item].includes(word))) found.push(item);
    return found;
  }

  /// Items from a top down to `item`, by the shortest way up.
  pathTo(item) {
    const from = new Map([[item, -1]]);
    const tops = this.topSet ??= new Set(this.tops);
    const queue = [item];
    for (let i = 0; i < queue.length; ++i) {
      if (tops.has(queue[i])) {
        const path = [];
        for (let at = queue[i]; at !== -1; at = from.get(at)) path.push(at);
        return path;
      }
      for (const line of this.linesUp.of(queue[i])) {
        const parent = this.lines.parent[line];
        if (!from.has(parent)) {
          from.set(parent, queue[i]);
          queue.push(parent);
        }
      }
    }
    return [item];
  }
}
