'use strict';
// The page around the panels.
const at = id => document.getElementById(id);
function element(name, attributes = {}, ...content) {
  const made = document.createElement(name);
  for (const [key, value] of Object.entries(attributes)) if (value !== false) made.setAttribute(key, value);
  made.append(...content);
  return made;
}
function kept(name, value) {  // between visits, where the browser allows it
  try {
    if (value !== undefined) localStorage.setItem(name, value);
    return localStorage.getItem(name);
  } catch { return null; }
}

const timeDecimals = Math.abs(period * 1000 - Math.round(period * 1000)) < 1e-9 ? 3 : 6;
const kadrTime = kadr => duration(kadr * period, timeDecimals);
const withUnit = text => text.includes(':') ? text : `${text} ${say('second')}`;
function kadrClock(kadr) {
  if (Number.isNaN(startClock)) return '';
  const time = startClock + kadr * period * 1000;
  return `${day(time)} ${timeOfDay(time, 3)}`;
}

// Values under the cursor: those of the sample or group there.
function showCursor(time) {
  view.cursor = time;
  let text = '';
  for (const panel of panels) {
    let k = -1;
    if (time !== null && panel.times?.length) {
      const place = (time / period - panel.first) / panel.groupKadrs;
      k = Math.min(Math.max(panel.samples ? Math.round(place) : Math.floor(place + recording.step / 2 / panel.groupKadrs), 0), panel.times.length - 1);
      const kadr = panel.first + k * panel.groupKadrs;
      const last = Math.min(kadr + panel.groupKadrs - recording.step, lastKadr);
      text = withUnit(panel.samples || last <= kadr ? kadrTime(kadr) : `${kadrTime(kadr)} … ${kadrTime(last)}`);
      if (kadrClock(kadr)) text += ` · ${kadrClock(kadr)}`;
      const gap = recording.gaps.find(each => each[1] <= last && each[1] + each[2] > kadr);
      if (gap) text += ` · ${gapText(gap)}`;
    }
    for (const [i, place] of panel.values ?? []) {
      const channel = recording.channels[i], data = panel.data.get(i);
      if (k < 0 || !data) place.textContent = '';
      else if (data.low[k] === null) place.textContent = say('none');
      else if (panel.samples || data.low[k] === data.high[k]) place.textContent = number(data.low[k], channel.decimals);
      else place.textContent = `${number(data.low[k], channel.decimals)} … ${number(data.high[k], channel.decimals)}`;
    }
  }
  at('readout').textContent = text || '\u00a0';
}

function showResolution() {
  const panel = panels.find(each => each.groupKadrs);
  if (!panel) return;
  const rows = recording.lines.find(line => line.startsWith('Rows: '));
  const point = rows ? say('rowPoint', translated(rows.slice(6))) : say('samples');
  const drawn = panel.samples ? point : say('bins', count(panel.groupKadrs));
  at('resolution').textContent = `${drawn} ${exact ? rows ? '' : say('baseSamples') : say('baseBins', count(binKadrs))}`;
}

async function show(panel, channels, on) {
  for (const i of channels) if (on && recording.channels[i].count > 0) panel.shown.add(i); else panel.shown.delete(i);
  await unpackShown(panel);
  redraw(panel);
  legend(panel);
  showCursor(view.cursor);
}

async function unpackShown(panel) {
  panel.levels ??= [];
  for (const i of panel.shown) panel.levels[i] ??= await levelsOf(i);
}

function legend(panel) {
  panel.values = new Map();
  const rows = panel.channels.map(i => {
    const channel = recording.channels[i], value = element('output');
    panel.values.set(i, value);
    const dash = Dashes[Math.floor(panel.channels.indexOf(i) / 8) % 4].length > 0;
    const swatch = element('span', { class: dash ? 'swatch dashed' : 'swatch', style: `color:${channelColour(panel, i)}` });
    const button = element('button', { type: 'button', 'aria-pressed': panel.shown.has(i), disabled: channel.count > 0 ? false : '' }, swatch,
      element('span', { class: 'name' }, channel.number === null ? channel.name : `${channel.number} ${channel.name}`), value);
    if (channel.count === 0) value.textContent = say(channel.fitted ? 'empty' : 'unfitted');
    button.onclick = () => show(panel, [i], !panel.shown.has(i));
    return button;
  });
  const all = panel.channels.length > 4 ? ['allOn', 'allOff'].map(name => {
    const button = element('button', { type: 'button', class: 'all screen' }, say(name));
    button.onclick = () => show(panel, panel.channels, name === 'allOn');
    return button;
  }) : [];
  for (const i of panel.channels) if (recording.channels[i].count === 0) panel.values.delete(i);
  panel.legend.replaceChildren(...rows, ...all);
}

function makePanels() {
  at('panels').replaceChildren();
  for (const panel of panels) {
    panel.chart?.destroy();
    panel.chart = null;
    const unit = panel.unit || say('noUnit');
    panel.place = element('div', { class: 'chart', role: 'img', tabindex: 0, 'aria-label': say('chart', unit) });
    panel.place.onkeydown = event => {
      const act = { ArrowLeft: () => move(-0.2), ArrowRight: () => move(0.2), '+': () => zoom(0.5), '=': () => zoom(0.5), '-': () => zoom(2), Home: () => setView(...Whole) }[event.key];
      if (act) act(), event.preventDefault();
    };
    panel.legend = element('div', { class: 'legend' });
    at('panels').append(element('section', { class: 'panel' }, element('h3', {}, unit), panel.place, panel.legend));
    prepare(panel, Math.max(panel.place.clientWidth - 60, 100));
    makeChart(panel);
    redraw(panel);
    legend(panel);
  }
  showResolution();
  showCursor(null);
}

function tools() {
  const button = (text, act) => Object.assign(element('button', { type: 'button' }, text), { onclick: act });
  const clock = button(say(view.clock ? 'relative' : 'clock'), () => { view.clock = !view.clock; tools(); makePanels(); });
  clock.hidden = Number.isNaN(startClock);
  at('tools').replaceChildren(button(say('whole'), () => setView(...Whole)), button(say('zoomIn'), () => zoom(0.5)), button(say('zoomOut'), () => zoom(2)),
    button(say('earlier'), () => move(-0.5)), button(say('later'), () => move(0.5)), clock);
}

function table(place, heads, rows) {
  at(place).replaceChildren(element('thead', {}, element('tr', {}, ...heads.map(head => element('th', { scope: 'col' }, head)))),
    element('tbody', {}, ...rows.map(cells => element('tr', {}, ...cells.map((cell, k) => element('td', { class: /^[\d\s\u00a0\u2212.,:]+$/.test(cell) ? 'number' : '' }, cell))))));
}

function channelTable() {
  const none = say('none');
  table('channels', ['number', 'name', 'unit', 'min', 'max', 'mean', 'deviation', 'count', 'limits'].map(name => say(name)), recording.channels.map(c => {
    const value = (v, more) => v === null ? none : number(v, Math.min(c.decimals + more, 12));
    return [c.number === null ? none : String(c.number), c.fitted ? c.name : say('unfitted'), c.unit, value(c.min, 0), value(c.max, 0), value(c.mean, 1), value(c.deviation, 1),
      count(c.count), c.limits === null ? none : count(c.limits)];
  }));
  at('tableNote').textContent = say(recording.fromText ? 'tableNoteText' : 'tableNote');
}

function gapTable() {
  const RowsMax = 200, gaps = recording.gaps.slice(0, RowsMax);
  at('gapsSection').hidden = gaps.length === 0;
  const rows = gaps.map(gap => {
    const owner = recording.owners[gap[0]], span = gap[2] * period;
    const show = element('button', { type: 'button', class: 'screen' }, say('show'));
    show.onclick = () => { setView(gap[1] * period - span, gap[1] * period + 2 * span); at('view').scrollIntoView(); };
    return [kadrTime(gap[1]), kadrTime(gap[1] + gap[2] - 1), number(span, timeDecimals), owner.slot > 0 ? say('slot', owner.slot) : owner.module >= 0 ? String(owner.module) : say('none'),
      owner.module >= 0 ? say('reasons')[gap[3]] : '', show];
  });
  if (recording.gaps.length > RowsMax) rows.push([say('more', count(recording.gaps.length - RowsMax))]);
  table('gaps', ['from', 'to', 'duration', 'module_', 'reason'].map(name => say(name)).concat(''), rows);
}

function remarks() {
  const all = recording.doubts.map(translated);
  if (recording.promised > recording.rows) all.push(say('cut', count(recording.rows), count(recording.promised)));
  if (recording.filledIn) all.push(say('filledIn'));
  else if (recording.gaps.length > 0) all.push(say('late'));
  if (recording.rows === 0) all.push(say('nothing'));
  else if (recording.channels.every(channel => channel.count === 0)) all.push(say('noMeasured'));
  at('remarks').replaceChildren(...all.map(text => element('li', {}, text)));
}

function about() {
  const part = recording.ended === 'complete' && (recording.gaps.length > 0 || recording.channels.some(channel => channel.count === 0));
  const ended = (part ? say('notAll') : say('ends')[recording.ended]) + (recording.reason ? `: ${translated(recording.reason)}` : '');
  const rows = [[say('file'), recording.file], [say('ended'), ended]];
  for (const line of recording.lines) {
    const colon = line.indexOf(': ');
    rows.push([say('keys')[line.slice(0, colon)] ?? line.slice(0, colon), translated(line.slice(colon + 2))]);
  }
  at('about').replaceChildren(...rows.flatMap(([key, text]) => [element('dt', {}, key), element('dd', {}, text)]));
  const rate = inLanguage(String(+recording.rate.toPrecision(6)));
  at('subtitle').textContent = [recording.start.replace('T', ' '), `${say(recording.step > 1 ? 'rows' : 'kadrs', count(recording.rows))}${say('at', rate)}`,
    say('channelsOf', recording.channels.length), withUnit(kadrTime(recording.rows * recording.step)), ended].filter(text => text).join(' · ');
}

function words() {
  document.documentElement.lang = language;
  document.querySelector('h1').textContent = recording.file.split(/[/\\]/).at(-1);
  for (const [place, name] of [['language', 'other'], ['help', 'help'], ['channelsTitle', 'channels'], ['gapsTitle', 'gaps'], ['aboutTitle', 'about']]) at(place).textContent = say(name);
  at('theme').textContent = say(document.documentElement.dataset.theme === 'dark' ? 'light' : 'dark');
  at('alarm').hidden = !recording.simulated;
  at('alarm').textContent = say('simulated');
  channelTable(), gapTable(), remarks(), about(), tools();
}

function setTheme(theme) {
  document.documentElement.dataset.theme = theme;
  at('theme').textContent = say(theme === 'dark' ? 'light' : 'dark');
  if (!at('view').hidden) makePanels();
}

async function start() {
  const dark = matchMedia('(prefers-color-scheme: dark)');
  document.documentElement.dataset.theme = kept('theme') ?? (dark.matches ? 'dark' : 'light');
  words();
  at('language').onclick = () => { language = language === 'ru' ? 'en' : 'ru'; words(); if (!at('view').hidden) makePanels(); };
  at('theme').onclick = () => setTheme(kept('theme', document.documentElement.dataset.theme === 'dark' ? 'light' : 'dark') ?? (document.documentElement.dataset.theme === 'dark' ? 'light' : 'dark'));
  dark.onchange = () => { if (!kept('theme')) setTheme(dark.matches ? 'dark' : 'light'); };
  if (!recording.channels.some(channel => channel.count > 0)) return;
  const trouble = text => at('remarks').prepend(element('li', { class: 'trouble' }, text));
  if (typeof DecompressionStream !== 'function') return trouble(say('noDecoder'));
  try {
    await Promise.all(panels.map(unpackShown));
  } catch {
    return trouble(say('broken'));
  }
  at('view').hidden = false;
  makePanels();
  let width = innerWidth, before = null;
  addEventListener('resize', () => { if (innerWidth !== width) width = innerWidth, makePanels(); });
  addEventListener('beforeprint', () => { before = document.documentElement.dataset.theme; document.body.classList.add('paper'); setTheme('light'); });
  addEventListener('afterprint', () => { document.body.classList.remove('paper'); setTheme(before); });
}
const started = start();
