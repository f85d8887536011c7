'use strict';
(() => {

// ---- What there is -----------------------------------------------------------------

const byId = id => document.getElementById(id);
const data = JSON.parse(byId('data').textContent);
const collator = new Intl.Collator(undefined, {numeric: true, sensitivity: 'base'});
const KNOWN_TYPES = ['surface', 'displace', 'light', 'shadow', 'fog'];
const MOST_TYPES = 12; // with a button of their own; the others are found by searching

const byName = (a, b) => collator.compare(a.name, b.name) || collator.compare(a.folder, b.folder);
const ORDERS = {
  name: byName,
  changed: (a, b) => b.changed - a.changed || byName(a, b),
  made: (a, b) => b.made - a.made || byName(a, b),
};
const sorted = {}; // entries by order, each sorted when first asked for

function inOrder(order) {
  sorted[order] = sorted[order] || data.entries.slice().sort(ORDERS[order]);
  return sorted[order];
}

const isFailed = entry => entry.message !== '';
const isMissing = entry => entry.message === '' && entry.made === 0;
const stateOf = entry => isFailed(entry) ? 'failed' : isMissing(entry) ? 'missing' : '';

// A picture that is made again is not taken from the browser's cache.
const pictureUrl = entry => entry.picture + '?' + entry.made;

function dateText(seconds) {
  return seconds === 0 ? '' : new Date(seconds * 1000).toLocaleString(undefined,
      {day: 'numeric', month: 'short', year: 'numeric', hour: '2-digit', minute: '2-digit'});
}

// ---- Searching ---------------------------------------------------------------------

// Accents, composed letters and capitals make no difference.
const fold = text => text.normalize('NFKD').replace(/\p{M}/gu, '').toLowerCase();

function searchedText(entry) {
  if (entry.searched === undefined)
    entry.searched = fold([entry.name, entry.folder, entry.type,
      ...entry.texts.map(([, text]) => text)].join('\n'));
  return entry.searched;
}

function matching(query, entries) {
  const words = fold(query).split(/\s+/).filter(word => word !== '');
  return words.length === 0 ? entries :
    entries.filter(entry => words.every(word => searchedText(entry).includes(word)));
}

// ---- Filters -----------------------------------------------------------------------

function typesByNumber() {
  const numbers = new Map();
  for (const {type} of data.entries)
    numbers.set(type, (numbers.get(type) || 0) + 1);
  const others = [...numbers.keys()].filter(type => type !== '' && !KNOWN_TYPES.includes(type))
    .sort((a, b) => numbers.get(b) - numbers.get(a));
  return [...KNOWN_TYPES.filter(type => numbers.has(type)), ...others].slice(0, MOST_TYPES);
}

const filters = [
  {label: 'All', takes: () => true},
  ...typesByNumber().map(type => ({label: type, takes: entry => entry.type === type})),
  {label: 'failed', wrong: true, takes: isFailed},
  {label: 'no picture', wrong: true, takes: isMissing},
].filter(({wrong, takes}) => !wrong || data.entries.some(takes));

const numberOf = (filter, entries) => entries.filter(filter.takes).length.toLocaleString();

function addFilter(filter) {
  filter.button = document.createElement('button');
  filter.count = document.createElement('span');
  filter.count.className = 'count';
  // As wide as it may become: nothing moves while somebody types.
  filter.count.style.minWidth = numberOf(filter, data.entries).length + 'ch';
  filter.button.type = 'button';
  filter.button.append(filter.label, filter.count);
  filter.button.classList.toggle('wrong', Boolean(filter.wrong));
  filter.button.addEventListener('click', () => choose(filter));
  byId('filters').append(filter.button);
}

function choose(filter) {
  chosen = filter;
  refresh();
}

function showFilters(found) {
  for (const filter of filters) {
    filter.count.textContent = numberOf(filter, found);
    filter.button.setAttribute('aria-pressed', String(filter === chosen));
  }
}

// ---- The sheet ---------------------------------------------------------------------
// Only the rows in sight, and some beyond, are in the document; the list's padding stands
// for the others. So ten thousand pictures cost what a hundred do.

const SPARE_ROWS = 3;
const grid = byId('grid'), search = byId('search'), sort = byId('sort');
const tiles = new Map(); // entry -> its list item, of those in the document
let chosen = filters[0];
let shown = [];          // entries, as found and filtered, in order
let current = 0;         // place in shown: where the keys are
let columns = 1, rowHeight = 100;

function note(entry) {
  return isFailed(entry) ? entry.message : isMissing(entry) ? 'no picture' : '';
}

function kind(entry) {
  return [isFailed(entry) ? 'failed' : '', entry.type, entry.folder].filter(Boolean).join(' · ');
}

function fillTile(item, entry) {
  item.className = stateOf(entry);
  item.querySelector('.note').textContent = note(entry);
  item.querySelector('.name').textContent = entry.name;
  item.querySelector('.kind').textContent = kind(entry);
  item.querySelector('button').title = entry.name;
}

function newTile(entry) {
  const item = byId('tile').content.firstElementChild.cloneNode(true);
  const picture = item.querySelector('img');
  fillTile(item, entry);
  picture.addEventListener('error', () => { entry.made = 0; fillTile(item, entry); });
  if (stateOf(entry) === '')
    picture.src = pictureUrl(entry);
  item.querySelector('button').addEventListener('click', () => open(shown.indexOf(entry)));
  tiles.set(entry, item);
  return item;
}

function measure() {
  if (grid.firstElementChild === null)
    return;
  const style = getComputedStyle(grid);
  columns = style.gridTemplateColumns.split(' ').length;
  rowHeight = tileHeight() + parseFloat(style.rowGap);
}

function tileHeight() {
  return grid.querySelector('button').getBoundingClientRect().height;
}

// The places [first, end) of the rows in sight and the spare ones.
function range() {
  const above = -grid.getBoundingClientRect().top;
  const firstRow = Math.floor(above / rowHeight) - SPARE_ROWS;
  const endRow = Math.ceil((above + innerHeight) / rowHeight) + SPARE_ROWS;
  const last = Math.max(0, rowOf(shown.length - 1) - SPARE_ROWS);
  return [Math.max(0, Math.min(firstRow, last)) * columns,
    Math.min(shown.length, Math.max(endRow, 1) * columns)];
}

const rowOf = place => Math.floor(place / columns);

function pad(first, end) {
  const rows = rowOf(shown.length - 1) - rowOf(end - 1);
  grid.style.paddingTop = rowOf(first) * rowHeight + 'px';
  grid.style.paddingBottom = Math.max(0, rows) * rowHeight + 'px';
}

function dropTiles(kept) {
  for (const [entry, item] of tiles) {
    if (kept.has(entry))
      continue;
    item.querySelector('img').removeAttribute('src'); // what still loads is in the others' way
    item.remove();
    tiles.delete(entry);
  }
}

// Tiles that stay in order are not touched: that would take the focus from them.
function placeTiles(first, entries) {
  let at = grid.firstElementChild;
  entries.forEach((entry, i) => {
    const item = tiles.get(entry) || newTile(entry);
    if (item === at)
      at = at.nextElementSibling;
    else
      grid.insertBefore(item, at);
    item.setAttribute('aria-setsize', shown.length);
    item.setAttribute('aria-posinset', first + i + 1);
  });
}

// One tile is reached with Tab: the current one, or the first in sight.
function setTabStop(first, end) {
  const stop = current >= first && current < end ? current : first;
  for (const [entry, item] of tiles)
    item.querySelector('button').tabIndex = entry === shown[stop] ? 0 : -1;
}

function render() {
  const [first, end] = range();
  const entries = shown.slice(first, end);
  dropTiles(new Set(entries));
  pad(first, end);
  placeTiles(first, entries);
  setTabStop(first, end);
}

function layOut() {
  render();
  measure();
  render();
}

function refresh() {
  const found = matching(search.value, inOrder(sort.value));
  shown = found.filter(chosen.takes);
  current = 0;
  byId('clear').hidden = search.value === '';
  showFilters(found);
  tellNumber();
  scrollTo(0, 0);
  layOut();
}

function tellNumber() {
  const nothing = byId('nothing');
  byId('status').textContent =
    shown.length.toLocaleString() + ' of ' + data.entries.length.toLocaleString() + ' palettes';
  nothing.hidden = shown.length > 0;
  nothing.querySelector('p').textContent = data.entries.length === 0 ?
    'There are no palettes here.' : 'No palette matches.';
  nothing.querySelector('button').hidden = data.entries.length === 0;
}

function clearSearch() {
  search.value = '';
  refresh();
  search.focus();
}

function showAll() {
  chosen = filters[0];
  clearSearch();
}

// ---- Moving ------------------------------------------------------------------------

function bringIntoView(place) {
  const top = grid.getBoundingClientRect().top + rowOf(place) * rowHeight;
  const least = byId('bar').getBoundingClientRect().bottom + 12, most = innerHeight - rowHeight - 4;
  if (top < least)
    scrollBy(0, top - least);
  else if (top > most)
    scrollBy(0, top - most);
}

function go(place) {
  if (shown.length === 0)
    return;
  current = Math.max(0, Math.min(place, shown.length - 1));
  bringIntoView(current);
  render();
  tiles.get(shown[current]).querySelector('button').focus({preventScroll: true});
}

const rowsInSight = () => Math.max(1, Math.floor((innerHeight - byId('bar').offsetHeight) / rowHeight));

function goDown(rows) {
  const place = current + rows * columns;
  if (place < 0 && rowOf(current) === 0)
    search.focus();
  else
    go(place < 0 ? current % columns : place);
}

const SHEET_KEYS = {
  ArrowLeft: () => go(current - 1),
  ArrowRight: () => go(current + 1),
  ArrowUp: () => goDown(-1),
  ArrowDown: () => goDown(1),
  PageUp: () => go(Math.max(current % columns, current - rowsInSight() * columns)),
  PageDown: () => goDown(rowsInSight()),
  Home: () => go(0),
  End: () => go(shown.length - 1),
  Escape: () => { if (search.value !== '' || chosen !== filters[0]) showAll(); },
  '/': () => { search.focus(); search.select(); },
};

const SEARCH_KEYS = {
  ArrowDown: () => go(current),
  Enter: () => { if (shown.length > 0) open(current); },
  Escape: () => { if (search.value === '') search.blur(); else clearSearch(); },
};

const VIEW_KEYS = {
  ArrowLeft: () => step(-1),
  ArrowRight: () => step(1),
  Home: () => open(0),
  End: () => open(shown.length - 1),
  c: () => { const button = view.querySelector('#view-texts button'); if (button) button.click(); },
};

function keysFor(target) {
  if (view.open)
    return VIEW_KEYS;
  if (target === search)
    return SEARCH_KEYS;
  if (target === document.body || grid.contains(target))
    return SHEET_KEYS;
  return {'/': SHEET_KEYS['/']};
}

function onKey(event) {
  const action = keysFor(event.target)[event.key];
  if (!action || event.ctrlKey || event.altKey || event.metaKey || event.isComposing)
    return;
  event.preventDefault();
  action();
}

// ---- One palette -------------------------------------------------------------------

const view = byId('view'), viewPicture = byId('view-picture');

const fileName = link => {
  const last = link.slice(link.lastIndexOf('/') + 1);
  try { return decodeURIComponent(last); } catch { return last; } // no UTF-8
};

function addFact(label, link, date) {
  const fact = byId('fact').content.firstElementChild.cloneNode(true);
  const anchor = fact.querySelector('a');
  fact.querySelector('dt').textContent = label;
  anchor.textContent = fileName(link);
  anchor.href = link;
  fact.querySelector('span').textContent = date;
  byId('view-facts').append(fact);
}

function showFacts(entry) {
  byId('view-facts').replaceChildren();
  addFact('Palette', entry.palette, dateText(entry.changed));
  if (stateOf(entry) === '')
    addFact('Picture', entry.picture, dateText(entry.made));
}

function addText([label, text]) {
  const section = byId('text').content.firstElementChild.cloneNode(true);
  const button = section.querySelector('button'), pre = section.querySelector('pre');
  section.querySelector('h3').textContent = label;
  pre.textContent = text;
  pre.setAttribute('aria-label', label);
  button.setAttribute('aria-label', 'Copy ' + label);
  button.addEventListener('click', () => copy(button, pre));
  byId('view-texts').append(section);
}

// The modern way only works where the page came from the disk or over https.
async function toClipboard(pre) {
  try {
    await navigator.clipboard.writeText(pre.textContent);
    return true;
  } catch {
    getSelection().selectAllChildren(pre);
    return document.execCommand('copy');
  }
}

async function copy(button, pre) {
  const done = await toClipboard(pre) ? 'Copied' : 'Not copied';
  button.textContent = done;
  byId('copied').textContent = done;
  setTimeout(() => { button.textContent = 'Copy'; byId('copied').textContent = ''; }, 1600);
}

function showPicture(entry) {
  view.className = stateOf(entry);
  viewPicture.hidden = stateOf(entry) !== '';
  byId('view-note').hidden = stateOf(entry) === '';
  byId('view-note').textContent = note(entry);
  if (stateOf(entry) === '')
    viewPicture.src = pictureUrl(entry);
  else
    viewPicture.removeAttribute('src');
}

function open(place) {
  const entry = shown[place];
  current = place;
  byId('view-name').textContent = entry.name;
  byId('view-kind').textContent = kind(entry);
  byId('view-place').textContent = (place + 1).toLocaleString() + ' of ' + shown.length.toLocaleString();
  byId('previous').disabled = place === 0;
  byId('next').disabled = place === shown.length - 1;
  byId('view-texts').replaceChildren();
  entry.texts.forEach(addText);
  showPicture(entry);
  showFacts(entry);
  if (!view.open)
    view.showModal();
  view.scrollTop = 0;
  byId('view-name').focus();
}

function step(by) {
  if (shown[current + by] !== undefined)
    open(current + by);
}

// ---- Light and dark ----------------------------------------------------------------
// As the system has it, until the button says otherwise; browsers may forbid to keep that.

const systemDark = matchMedia('(prefers-color-scheme: dark)');
const root = document.documentElement;

function keptTheme() {
  try { return localStorage.getItem('thumbmake-theme'); } catch { return null; }
}

function keepTheme(theme) {
  try { localStorage.setItem('thumbmake-theme', theme); } catch { /* until the page closes */ }
}

const isDark = () => (root.dataset.theme || (systemDark.matches ? 'dark' : 'light')) === 'dark';

function tellTheme() {
  byId('theme').setAttribute('aria-pressed', String(isDark()));
}

function turnTheme() {
  root.dataset.theme = isDark() ? 'light' : 'dark';
  keepTheme(root.dataset.theme);
  tellTheme();
}

// ---- Start -------------------------------------------------------------------------

function listen() {
  let due = false, width = 0;
  const onScroll = () => { due = false; render(); };
  search.addEventListener('input', refresh);
  sort.addEventListener('change', refresh);
  byId('theme').addEventListener('click', turnTheme);
  systemDark.addEventListener('change', tellTheme);
  document.addEventListener('keydown', onKey);
  byId('nothing').querySelector('button').addEventListener('click', showAll);
  byId('clear').addEventListener('click', clearSearch);
  byId('previous').addEventListener('click', () => step(-1));
  byId('next').addEventListener('click', () => step(1));
  byId('close').addEventListener('click', () => view.close());
  view.addEventListener('close', () => go(current));
  viewPicture.addEventListener('load', () => // blown up to twice its size at most
    viewPicture.style.setProperty('--most', 2 * viewPicture.naturalWidth + 'px'));
  addEventListener('scroll', () => { if (!due) { due = true; requestAnimationFrame(onScroll); } },
    {passive: true});
  new ResizeObserver(() => {
    if (grid.clientWidth !== width) { width = grid.clientWidth; layOut(); }
  }).observe(grid);
}

function start() {
  const theme = keptTheme();
  if (theme === 'dark' || theme === 'light')
    root.dataset.theme = theme;
  document.title = data.title;
  byId('title').textContent = data.title;
  byId('written').textContent = data.entries.length.toLocaleString() + ' palettes, ' +
    dateText(Date.parse(document.lastModified) / 1000);
  filters.forEach(addFilter);
  const wrong = byId('filters').querySelector('.wrong');
  if (wrong !== null)
    wrong.classList.add('first-wrong');
  listen();
  tellTheme();
  refresh();
}

start();
})();
