'use strict';
// Search and sorting. Without this script the page is complete, only not interactive.
(() => {
  const query = document.getElementById('query');
  const found = document.getElementById('found');
  const kSettled = 120;  // milliseconds without a key before the search begins

  // What the search shows or hides: rows of tables, facts of lists; and what holds them.
  const kRows = 'main tbody, main .facts dl > div';
  const kHolders = 'main section, main .class, main .card, main .links, main .facts > details';

  // The texts of a row begin with its heading: a search for a class finds its instances.
  const makeRow = (element) => {
    const title = element.closest('.class, .card').querySelector('h3').textContent;
    const textOf = (part) => `${title}\n${part.textContent}`.toLowerCase();
    return {element, text: textOf(element), shown: element.rows && textOf(element.rows[0])};
  };

  let rows;  // made when they are first needed

  const search = () => {
    rows ??= Array.from(document.querySelectorAll(kRows), makeRow);
    const words = query.value.toLowerCase().split(/\s+/).filter(Boolean);
    const matches = (text) => words.every((word) => text.includes(word));
    const isSearch = words.length > 0;
    const full = new Set();
    let left = 0;
    for (const {element, shown, text} of rows) {
      const isLeft = matches(text);
      element.hidden = !isLeft;
      // What matches is folded away in the row.
      if (shown) element.classList.toggle('deep', isLeft && !matches(shown));
      if (!isLeft) continue;
      ++left;
      for (let up = element.parentElement; up && !full.has(up); up = up.parentElement) full.add(up);
    }
    for (const holder of document.querySelectorAll(kHolders)) {
      holder.hidden = !full.has(holder) && isSearch;
      if (holder.tagName === 'DETAILS') holder.open = isSearch;
    }
    for (const note of document.querySelectorAll('.empty')) note.hidden = isSearch;
    for (const [id, link] of links) {
      link.parentElement.hidden = document.getElementById(id).hidden;
    }
    found.textContent = isSearch ? `${left} of ${rows.length} match` : '';
  };

  let timer;
  query.addEventListener('input', () => {
    clearTimeout(timer);
    timer = setTimeout(search, kSettled);
  });

  const clear = () => {
    clearTimeout(timer);
    query.value = '';
    search();
  };

  document.addEventListener('keydown', (event) => {
    if (event.ctrlKey || event.altKey || event.metaKey) return;
    if (event.key === '/' && event.target !== query) {
      event.preventDefault();
      query.focus();
      query.select();
    } else if (event.key === 'Escape' && event.target === query) {
      event.preventDefault();
      clear();
    }
  });

  // A link may lead to what is folded away, or not among what was found.
  const reveal = () => {
    const target = document.getElementById(location.hash.slice(1));
    if (!target) return;
    if (target.closest('[hidden]')) clear();
    for (let at = target; at; at = at.parentElement) {
      if (at.tagName === 'DETAILS') at.open = true;
    }
    target.scrollIntoView();
  };
  window.addEventListener('hashchange', reveal);

  // Numbers are compared as numbers of any size, texts as people order them.
  const collator = new Intl.Collator('en', {numeric: true});
  const keyOf = (cell) => {
    const value = cell.dataset.value;
    if (value === undefined) return cell.textContent;
    return /^-?\d+$/.test(value) ? BigInt(value) : Number(value);
  };
  const compare = (a, b) =>
      typeof a === 'string' ? collator.compare(a, b) : a < b ? -1 : a > b ? 1 : 0;

  // What has no value comes last in either direction.
  const sort = (head) => {
    const table = head.closest('table');
    const isUp = head.getAttribute('aria-sort') !== 'ascending';
    const missing = [];
    const entries = [];
    for (const body of table.tBodies) {
      const cell = body.rows[0].cells[head.cellIndex];
      if (cell.classList.contains('missing')) {
        missing.push(body);
      } else {
        entries.push({body, key: keyOf(cell)});
      }
    }
    entries.sort((a, b) => isUp ? compare(a.key, b.key) : compare(b.key, a.key));
    for (const other of head.parentElement.cells) other.removeAttribute('aria-sort');
    head.setAttribute('aria-sort', isUp ? 'ascending' : 'descending');
    const sorted = document.createDocumentFragment();
    for (const {body} of entries) sorted.append(body);
    for (const body of missing) sorted.append(body);
    table.append(sorted);
  };

  for (const head of document.querySelectorAll('table:not(.changes) thead th')) {
    const button = document.createElement('button');
    button.type = 'button';
    button.append(...head.childNodes);
    button.addEventListener('click', () => sort(head));
    head.append(button);
  }

  // Only what scrolls needs a place among the tab stops.
  const sizes = new ResizeObserver((changes) => {
    for (const {target} of changes) {
      target.tabIndex = target.scrollWidth > target.clientWidth ? 0 : -1;
    }
  });
  for (const area of document.querySelectorAll('.scroll')) sizes.observe(area);

  // The contents tell which section is being read.
  const links = new Map(
      Array.from(document.querySelectorAll('nav a'), (link) => [link.hash.slice(1), link]));
  const sections = new IntersectionObserver((changes) => {
    for (const {target, isIntersecting} of changes) {
      if (!isIntersecting) continue;
      for (const link of links.values()) link.removeAttribute('aria-current');
      links.get(target.id).setAttribute('aria-current', 'true');
    }
  }, {rootMargin: '-20% 0px -75% 0px'});
  for (const section of document.querySelectorAll('main > section')) sections.observe(section);

  document.getElementById('search').hidden = false;
  if (location.hash) reveal();
})();
