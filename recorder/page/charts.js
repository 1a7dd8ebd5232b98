'use strict';
// The panels: one for each unit, all over one time.
const Palettes = {
  light: ['#0072b2', '#d55e00', '#00875f', '#b3538f', '#b87f00', '#2f8fc4', '#882255', '#444444'],
  dark: ['#56b4e9', '#ff9a52', '#2cd3a0', '#e59ac6', '#f0c04a', '#9fd3f5', '#e8779f', '#c8c8c8'],
};
const Dashes = [[], [7, 3], [2, 2], [9, 3, 2, 3]];  // of eight channels each
const units = new Set(recording.channels.map(channel => channel.unit)).size;
// Of a unit: as many as can be told apart, fewer where unpacking them would take long.
const ShownAtFirst = Math.min(8, Math.max(1, Math.floor(8e6 / recording.bins / units)));
const Whole = [(recording.first - 0.5) * period, (lastKadr + recording.step - 0.5) * period];
const LeastSpan = 4 * binKadrs * period;

const view = { from: Whole[0], to: Whole[1], clock: false, cursor: null };
const panels = [];
const colour = name => getComputedStyle(document.documentElement).getPropertyValue('--' + name).trim();
const channelColour = (panel, i) => Palettes[document.documentElement.dataset.theme][panel.channels.indexOf(i) % 8];

for (const [i, channel] of recording.channels.entries()) {
  let panel = panels.find(each => each.unit === channel.unit);
  if (!panel) panels.push(panel = { unit: channel.unit, channels: [], shown: new Set(), data: new Map() });
  panel.channels.push(i);
  if (channel.count > 0 && panel.shown.size < ShownAtFirst) panel.shown.add(i);
}

// What a chart draws of the present view: the kadr in the middle of each group, or of each sample.
function prepare(panel, width) {
  const rowOf = seconds => (seconds / period - recording.first) / recording.step / recording.binRows;
  let power = 0;
  const bins = rowOf(view.to) - rowOf(view.from);
  while (bins / 2 ** power > width) power++;
  const group = 2 ** power;
  panel.samples = exact && power === 0;
  panel.groupKadrs = group * binKadrs;
  const first = Math.max(Math.floor(rowOf(view.from) / group) - 1, 0);
  const end = Math.min(Math.ceil(rowOf(view.to) / group) + 2, Math.ceil(recording.bins / group));
  const length = Math.max(end - first, 0);
  panel.first = recording.first + first * panel.groupKadrs;
  const middle = panel.samples ? 0 : (panel.groupKadrs - recording.step) / 2;
  panel.times = Array.from({ length }, (_, i) => (panel.first + i * panel.groupKadrs + middle) * period);
  panel.data.clear();
  for (const i of panel.shown) {
    if (panel.levels?.[i]) panel.data.set(i, extremes(recording.channels[i], panel.levels[i], power, first, length));
  }
}

function valueRange(panel) {
  let low = Infinity, high = -Infinity, least = 0;
  for (const [i, { low: lows, high: highs }] of panel.data) {
    least = Math.max(least, 8 / Math.abs(recording.channels[i].scale));
    for (let k = 0; k < lows.length; k++) {
      if (lows[k] === null || panel.times[k] < view.from || panel.times[k] > view.to) continue;
      low = Math.min(low, lows[k]), high = Math.max(high, highs[k]);
    }
  }
  if (low > high) return [0, 1];
  const margin = Math.max((high - low) * 0.06, (least - (high - low)) / 2, Math.abs(low) * 1e-9);
  return [low - margin, high + margin];
}

// Samples as a line that is broken where nothing was measured; groups as bars, joined where they follow each other.
function paths(panel, i) {
  return (u, series, from, to) => {
    const data = panel.data.get(i), stroke = new Path2D(), fill = new Path2D();
    if (!data) return null;
    const x = time => u.valToPos(time, 'x', true), y = value => u.valToPos(value, 'y', true);
    const half = panel.groupKadrs * period / 2, ratio = devicePixelRatio;
    for (let k = from; k <= to; k++) {
      if (data.low[k] === null) continue;
      const after = k > from && data.low[k - 1] !== null;
      if (panel.samples) {
        const place = [x(panel.times[k]), y(data.low[k])];
        if (after) stroke.lineTo(...place); else stroke.moveTo(...place);
        if (!after && (k + 1 >= data.low.length || data.low[k + 1] === null)) {
          stroke.arc(...place, ratio, 0, 7);
        }
        continue;
      }
      const left = x(panel.times[k] - half), right = x(panel.times[k] + half);
      const top = y(data.high[k]), bottom = y(data.low[k]);
      fill.rect(left, top - ratio / 2, Math.max(right - left, ratio), bottom - top + ratio);
      if (!after) continue;
      const upper = Math.min(bottom, y(data.low[k - 1])), lower = Math.max(top, y(data.high[k - 1]));
      if (lower > upper) fill.rect(left - ratio / 2, upper, ratio, lower - upper);
    }
    return { stroke, fill, clip: null, band: null, gaps: null, flags: 0 };
  };
}

// What a gap says of itself.
function gapText(gap) {
  const owner = recording.owners[gap[0]];
  const place = owner.slot > 0 ? say('slot', owner.slot) : owner.module >= 0 ? say('module', owner.module) : '';
  const reason = owner.module >= 0 ? say('reasons')[gap[3]] : '';
  return [say('gapOf'), place, reason].filter(text => text).join(', ');
}

// Where the panel's channels were not measured: a ground below the curves, and above the panel the reasons that have room.
function shade(panel) {
  return u => {
    const { left, top, width, height } = u.bbox, { ctx } = u, ratio = devicePixelRatio, right = left + width;
    const x = kadr => u.valToPos((kadr - 0.5) * period, 'x', true);
    ctx.save();
    ctx.font = `${11 * ratio}px system-ui, sans-serif`;
    ctx.textAlign = 'left';
    ctx.textBaseline = 'bottom';
    let drawn = left, named = left;
    for (const gap of recording.gaps) {
      if (!recording.owners[gap[0]].channels.some(i => panel.shown.has(i))) continue;
      const start = Math.max(x(gap[1]), left), from = Math.max(start, drawn), to = Math.min(Math.max(x(gap[1] + gap[2]), start + ratio), right);
      if (to <= from || start >= right) continue;
      ctx.fillStyle = colour('gap');
      ctx.fillRect(from, top, to - from, height);
      drawn = to;
      const text = gapText(gap), place = Math.max(Math.min(start, right - ctx.measureText(text).width), left);
      if (place < named) continue;
      ctx.fillStyle = colour('faint');
      ctx.fillText(text, place, top - 2 * ratio);
      named = place + ctx.measureText(text).width + 10 * ratio;
    }
    ctx.restore();
  };
}

const Steps = [1e-6, 2e-6, 5e-6, 1e-5, 2e-5, 5e-5, 1e-4, 2e-4, 5e-4, 1e-3, 2e-3, 5e-3, 0.01, 0.02, 0.05, 0.1, 0.2, 0.5, 1, 2, 5, 10,
  15, 30, 60, 120, 300, 600, 900, 1800, 3600, 7200, 10800, 21600, 43200, 86400, 172800, 432000, 864000, 2592000, 8640000];
function decimalsOf(step) {  // 0.25 has two
  let decimals = Math.max(0, Math.floor(-Math.log10(step) + 1e-9));
  while (decimals < 12 && Math.abs(step * 10 ** decimals - Math.round(step * 10 ** decimals)) > 1e-6) decimals++;
  return decimals;
}

// Round times of the clock on the wall lie elsewhere than round times from the start.
function timeTicks(u, axis, from, to, step) {
  const shift = view.clock ? startClock / 1000 % 86400 : 0;
  const ticks = [];
  for (let k = Math.ceil((from + shift) / step - 1e-9); k * step - shift <= to; k++) ticks.push(k * step - shift);
  return ticks;
}

function timeLabels(u, ticks, axis, space, step) {
  let lastDay = '';
  return ticks.map(tick => {
    if (!view.clock) return duration(tick, decimalsOf(step));
    const now = startClock + tick * 1000, today = day(now);
    const text = timeOfDay(now, decimalsOf(step)) + (today === lastDay ? '' : '\n' + today);
    lastDay = today;
    return text;
  });
}

function timeTitle() {
  return view.clock ? say('time') : `${say('time')}, ${Whole[1] < 60 ? say('second') : say('hours')}`;
}

function valueLabels(u, ticks, axis, space, step) {
  return ticks.map(tick => Math.abs(step) >= 1e7 || Math.abs(step) < 1e-7 ? inLanguage(tick.toPrecision(4)) : number(tick, decimalsOf(step)));
}

function makeChart(panel) {
  const axis = { stroke: colour('faint'), grid: { stroke: colour('grid'), width: 1 }, ticks: { stroke: colour('grid'), width: 1, size: 4 },
    font: '12px system-ui, sans-serif' };
  const narrow = panel.place.clientWidth < 600;
  panel.chart = new uPlot({
    width: panel.place.clientWidth, height: narrow ? 210 : panels.length === 1 ? 380 : 260,
    legend: { show: false }, padding: [recording.gaps.length > 0 ? 18 : 8, 10, 0, 0],
    cursor: { sync: { key: 'time', setSeries: false }, drag: { x: true, y: false, setScale: false, dist: 5 }, y: false,
      points: { size: 7 }, bind: { dblclick: () => () => setView(...Whole) } },
    scales: { x: { time: false, range: () => [view.from, view.to] }, y: { range: () => valueRange(panel) } },
    axes: [{ ...axis, incrs: Steps, splits: timeTicks, values: timeLabels, space: narrow ? 70 : 90, size: view.clock ? 46 : 30,
      ...(panel === panels.at(-1) ? { label: timeTitle(), labelSize: 20, labelFont: axis.font } : {}) },
      { ...axis, values: valueLabels, size: (u, labels) => Math.max(44, 7.2 * Math.max(...(labels ?? ['']).map(text => text.length)) + 16) }],
    series: [{}, ...panel.channels.map(i => ({
      show: panel.shown.has(i), stroke: channelColour(panel, i), width: 1.3, alpha: 0.8, dash: Dashes[Math.floor(panel.channels.indexOf(i) / 8) % 4],
      fill: () => panel.samples ? null : channelColour(panel, i), paths: paths(panel, i),
      points: { show: () => panel.samples && panel.chart && panel.chart.bbox.width / devicePixelRatio / panel.times.length > 7,
        size: 5, fill: channelColour(panel, i) },
    }))],
    hooks: {
      drawClear: [shade(panel)],
      setSelect: [u => {
        if (u.select.width < 5) return;
        const from = u.posToVal(u.select.left, 'x'), to = u.posToVal(u.select.left + u.select.width, 'x');
        u.setSelect({ left: 0, width: 0, top: 0, height: 0 }, false);
        setView(from, to);
      }],
      setCursor: [u => { if (u.cursor.event) showCursor(u.cursor.left < 0 ? null : u.posToVal(u.cursor.left, 'x')); }],
    },
  }, chartData(panel), panel.place);
  watchPointers(panel.chart);
}

function chartData(panel) {
  return [panel.times, ...panel.channels.map(i => panel.data.get(i)?.high ?? new Array(panel.times.length).fill(null))];
}

function redraw(panel) {
  if (!panel.chart) return;
  prepare(panel, Math.max(panel.chart.bbox.width / devicePixelRatio, 100));
  const { chart } = panel;
  chart.batch(() => {
    for (const [k, i] of panel.channels.entries()) if (chart.series[k + 1].show !== panel.shown.has(i)) chart.setSeries(k + 1, { show: panel.shown.has(i) }, false);
    chart.setData(chartData(panel), false);
    chart.setScale('x', { min: view.from, max: view.to });
  });
}

function setView(from, to) {
  const whole = Whole[1] - Whole[0], span = Math.min(Math.max(to - from, LeastSpan), whole);
  view.from = span === whole ? Whole[0] : Math.max(Math.min((from + to - span) / 2, Whole[1] - span), Whole[0]);
  view.to = span === whole ? Whole[1] : view.from + span;
  for (const panel of panels) redraw(panel);
  showResolution();
  showCursor(view.cursor);
}
function zoom(factor, at = (view.from + view.to) / 2) {
  setView(at - (at - view.from) * factor, at + (view.to - at) * factor);
}
function move(share) {
  const by = Math.min(Math.max(share * (view.to - view.from), Whole[0] - view.from), Whole[1] - view.to);
  setView(view.from + by, view.to + by);
}

// The wheel, a mouse that drags with Shift, and fingers.
function watchPointers(u) {
  const { over } = u, fingers = new Map();
  const timeAt = x => u.posToVal(x - over.getBoundingClientRect().left, 'x');
  over.addEventListener('wheel', event => {
    const factor = Math.exp(Math.max(Math.min(event.deltaY * (event.deltaMode ? 30 : 1), 300), -300) * 0.002);
    if (factor > 1 && view.to - view.from >= Whole[1] - Whole[0]) return;  // the page scrolls
    event.preventDefault();
    zoom(factor, timeAt(event.clientX));
  }, { passive: false });
  over.addEventListener('mousedown', event => { if (event.shiftKey) event.stopImmediatePropagation(); }, { capture: true });
  over.addEventListener('pointerdown', event => {
    if (event.pointerType === 'mouse' && !event.shiftKey) return;
    over.setPointerCapture(event.pointerId);
    fingers.set(event.pointerId, event.clientX);
  });
  over.addEventListener('pointermove', event => {
    if (!fingers.has(event.pointerId)) return;
    const others = [...fingers].filter(([id]) => id !== event.pointerId).map(([, x]) => x);
    const before = timeAt(fingers.get(event.pointerId)), now = timeAt(event.clientX);
    fingers.set(event.pointerId, event.clientX);
    if (others.length > 0) {
      const other = timeAt(others[0]);
      if (now !== other && (before - other) / (now - other) > 0) zoom(Math.min(Math.max((before - other) / (now - other), 0.2), 5), other);
    } else {
      setView(view.from + before - now, view.to + before - now);
    }
  });
  for (const end of ['pointerup', 'pointercancel']) over.addEventListener(end, event => fingers.delete(event.pointerId));
}
