// The list of rows: read from the texts of the page, filtered, sorted, and shown a hundred lines at a
// time, so that its length costs little. The search for words, the buttons that fold the tree, and those that
// hand out tables. Text from the data becomes text nodes only.
'use strict';
(() => {
  const kStep = 100;
  const find = (id) => document.getElementById(id);
  const data = readRows();
  const hasClasses = data.classnames.length > 0;
  const folded = data.labels.map((label) => label.toLowerCase());
  const collator = new Intl.Collator(undefined, {numeric: true});
  const wanted = {text: '', cluster: '', rowClass: ''};
  const order = {key: 'row', direction: 1};
  let rows = [];
  let shown = kStep;

  // A line is a row, with its number, z-scores and label, or the class of the rows below it.
  function readRows() {
    const data = {labels: [], clusters: [], classes: [], internal: [], external: [], classnames: []};
    const classes = find('row-class');
    if (classes) data.classnames = [...classes.options].slice(1).map((option) => option.textContent);
    const numbers = new Map(data.classnames.map((name, c) => [name, c]));
    const score = (text) => text === '-' ? null : Number(text);
    for (const fold of find('row-texts').querySelectorAll('details')) {
      let rowClass = -1;
      for (const line of fold.querySelector('pre').textContent.split('\n')) {
        if (line === '') continue;
        if (line[0] === ':') {
          rowClass = numbers.get(line.slice(1));
          continue;
        }
        const [number, internal, external, ...label] = line.split('\t');
        const i = Number(number);
        data.labels[i] = label.join('\t');
        data.clusters[i] = Number(fold.dataset.cluster);
        data.classes[i] = rowClass;
        data.internal[i] = score(internal);
        data.external[i] = score(external);
      }
    }
    return data;
  }

  // What column `key` shows of row i.
  function valueOf(key, i) {
    if (key === 'row') return i;
    return key === 'classes' ? data.classnames[data.classes[i]] : data[key][i];
  }

  function isWanted(i) {
    return (wanted.cluster === '' || data.clusters[i] === Number(wanted.cluster)) &&
        (wanted.rowClass === '' || data.classes[i] === Number(wanted.rowClass)) &&
        folded[i].includes(wanted.text);
  }

  // Absent values come last in either direction; equal ones stay in the order of the rows.
  function compare(i, j) {
    const a = valueOf(order.key, i);
    const b = valueOf(order.key, j);
    if (a === null || b === null) return (a === null) - (b === null) || i - j;
    const difference = typeof a === 'string' ? collator.compare(a, b) : a - b;
    return order.direction * difference || i - j;
  }

  function select() {
    rows = [];
    for (let i = 0; i < data.labels.length; ++i) {
      if (isWanted(i)) rows.push(i);
    }
    if (order.key !== 'row' || order.direction < 0) rows.sort(compare);
    shown = kStep;
    show();
  }

  function cell(text, kind) {
    const td = document.createElement('td');
    if (kind) td.className = kind;
    td.textContent = text;
    return td;
  }

  function clusterCell(cluster) {
    const td = cell(cluster < 0 ? 'none' : '');
    if (cluster < 0) return td;
    const link = document.createElement('a');
    link.href = '#cluster-' + cluster;
    link.textContent = cluster;
    td.append(link);
    return td;
  }

  function scoreText(score) {
    return score === null ? 'n/a' : score.toFixed(2);
  }

  function line(i) {
    const tr = document.createElement('tr');
    tr.append(cell(i, 'text'), cell(data.labels[i], 'text label'));
    if (hasClasses) tr.append(cell(valueOf('classes', i), 'text'));
    tr.append(clusterCell(data.clusters[i]), cell(scoreText(data.internal[i])),
        cell(scoreText(data.external[i])));
    return tr;
  }

  function show() {
    const upTo = Math.min(shown, rows.length);
    find('row-lines').replaceChildren(...rows.slice(0, upTo).map(line));
    const name = find('row-count').dataset.rows;
    find('row-count').textContent = rows.length === 0 ? `No ${name}` :
        `${upTo.toLocaleString('en')} of ${rows.length.toLocaleString('en')} ${name} shown`;
    find('row-more').hidden = upTo === rows.length;
  }

  function listen(id, key, clean) {
    const field = find(id);
    if (!field) return;
    field.addEventListener('input', () => {
      wanted[key] = clean(field.value);
      select();
    });
  }

  function sortBy(button) {
    const key = button.dataset.sort;
    order.direction = order.key === key ? -order.direction : 1;
    order.key = key;
    for (const th of document.querySelectorAll('#row-view th')) th.removeAttribute('aria-sort');
    button.parentElement.setAttribute('aria-sort',
        order.direction > 0 ? 'ascending' : 'descending');
    select();
  }

  function showCluster(cluster) {
    find('row-cluster').value = cluster;
    wanted.cluster = cluster;
    select();
    find('rows').scrollIntoView();
    find('row-cluster').focus({preventScroll: true});
  }

  // A cluster is found by any word of its card, and by its name in the overview.
  function searchWord(text) {
    let found = 0;
    const cards = document.querySelectorAll('.card');
    const lines = document.querySelectorAll('.overview li');
    cards.forEach((card, k) => {
      let hits = 0;
      for (const th of card.querySelectorAll('.words tbody th')) {
        const hit = text !== '' && th.firstChild.data.toLowerCase().includes(text);
        th.classList.toggle('hit', hit);
        if (hit && !th.parentElement.classList.contains('weaker')) ++hits;
      }
      const miss = text !== '' && hits === 0;
      found += miss ? 0 : 1;
      card.classList.toggle('miss', miss);
      lines[k].classList.toggle('miss', miss);
    });
    find('word-count').textContent = text === '' ? '' :
        found === 1 ? '1 cluster' : `${found.toLocaleString('en')} clusters`;
  }

  // Numbers without what makes them pleasant to read.
  function csvField(text) {
    const plain = /^-?[\d,]+(\.\d+)?(\u00a0%)?$/.test(text) ? text.replace(/,|\u00a0%/g, '') : text;
    return /[",\r\n]|^\s|\s$/.test(plain) ? '"' + plain.replaceAll('"', '""') + '"' : plain;
  }

  // Hands a table to the browser as a file to keep.
  function download(name, lines) {
    const text = lines.map((line) => line.map(csvField).join(',') + '\r\n').join('');
    const link = document.createElement('a');
    link.href = URL.createObjectURL(new Blob([text], {type: 'text/csv;charset=utf-8'}));
    link.download = document.querySelector('h1').textContent + '-' + name + '.csv';
    link.click();
    URL.revokeObjectURL(link.href);
  }

  const textsOf = (cells) => [...cells].map((cell) => cell.textContent);

  function clusterLines() {
    return [...document.querySelector('#quality table').rows].map((row) => textsOf(row.cells));
  }

  function wordLines() {
    const lines = [];
    document.querySelectorAll('.card').forEach((card, k) => {
      const table = card.querySelector('.words');
      if (!table) return;
      if (lines.length === 0) {
        const [word, ...numbers] = table.tHead.rows[0].cells;
        const names = numbers.map((cell) => cell.textContent + (cell.dataset.unit ?? ''));
        lines.push(['cluster', word.textContent, 'mark', ...names]);
      }
      for (const row of table.tBodies[0].rows) {
        const [head, ...cells] = row.cells;
        const mark = head.querySelector('small');
        lines.push([String(k), head.firstChild.data.trimEnd(), mark ? mark.textContent : '',
            ...textsOf(cells).map((text) => text === '–' ? '' : text)]);
      }
    });
    return lines;
  }

  function rowLines() {
    const names = textsOf(document.querySelectorAll('#row-view th'));
    return [names, ...rows.map((i) => textsOf(line(i).cells))];
  }

  function foldTree(open) {
    for (const details of document.querySelectorAll('.tree details')) details.open = open;
  }

  listen('row-search', 'text', (text) => text.trim().toLowerCase());
  listen('row-cluster', 'cluster', (value) => value);
  listen('row-class', 'rowClass', (value) => value);
  for (const form of document.forms) {
    form.addEventListener('submit', (event) => event.preventDefault());
  }
  find('word-search').addEventListener('input',
      () => searchWord(find('word-search').value.trim().toLowerCase()));
  find('row-more').addEventListener('click', () => {
    shown += kStep;
    show();
  });
  for (const button of document.querySelectorAll('[data-sort]')) {
    button.addEventListener('click', () => sortBy(button));
  }
  for (const button of document.querySelectorAll('.show-rows')) {
    button.hidden = false;
    button.addEventListener('click', () => showCluster(button.dataset.cluster));
  }
  const tables = {clusters: clusterLines, words: wordLines, rows: rowLines};
  for (const button of document.querySelectorAll('[data-csv]')) {
    button.addEventListener('click',
        () => download(button.dataset.csv, tables[button.dataset.csv]()));
  }
  for (const tools of document.querySelectorAll('.tools')) tools.hidden = false;
  find('fold').addEventListener('click', () => foldTree(false));
  find('unfold').addEventListener('click', () => foldTree(true));
  find('row-view').hidden = false;
  find('row-texts').hidden = true;
  select();
})();
