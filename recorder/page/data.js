'use strict';
// The recording's numbers, unpacked when they are first asked for.
const recording = JSON.parse(document.getElementById('recording').textContent);
const period = 1 / recording.rate;
const exact = recording.binRows === 1;  // single samples are there
const binKadrs = recording.binRows * recording.step;
const lastKadr = recording.first + (recording.rows - 1) * recording.step;
const startClock = (() => {  // ms since 1970 of the local clock at the start, or NaN
  const match = /^(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d(\.\d{1,3})?)/.exec(recording.start);
  return match ? Date.parse(match[1] + 'Z') : NaN;
})();

function bytesOf(base64) {
  if (Uint8Array.fromBase64) return Uint8Array.fromBase64(base64);  // newer browsers, and many times as fast
  const text = atob(base64), bytes = new Uint8Array(text.length);
  for (let i = 0; i < text.length; i++) bytes[i] = text.charCodeAt(i);
  return bytes;
}

async function unpackedBytes(id) {
  const packed = bytesOf(document.getElementById(id).textContent);
  const stream = new Blob([packed]).stream().pipeThrough(new DecompressionStream('deflate-raw'));
  return new Uint8Array(await new Response(stream).arrayBuffer());
}

// Differences, whose bytes are sorted by rank in blocks, to numbers of two or four bytes.
function numbersOf(bytes, from, length, size) {
  const numbers = size === 4 ? new Int32Array(length) : new Int16Array(length);
  let last = 0;
  for (let first = 0; first < length; first += recording.blockNumbers) {
    const block = Math.min(recording.blockNumbers, length - first);
    let place = from + first * size;
    if (size === 2) {
      for (let i = first; i < first + block; i++, place++) {
        const folded = bytes[place] | bytes[place + block] << 8;
        last = last + ((folded >>> 1) ^ -(folded & 1)) | 0;
        numbers[i] = last;  // keeps the lower two bytes
      }
      continue;
    }
    for (let i = 0; i < block; i++, place++) {
      let folded = bytes[place];
      for (let byte = 1; byte < size; byte++) folded |= bytes[place + byte * block] << 8 * byte;
      last = last + ((folded >>> 1) ^ -(folded & 1)) | 0;
      numbers[first + i] = last;
    }
  }
  return numbers;
}

const Fold = 4;  // bins of a level that are one in the next
function foldedLevel(level) {
  const length = Math.ceil(level.low.length / Fold);
  const low = new level.low.constructor(length), high = new level.low.constructor(length);
  let some = false;
  const empty = new Uint8Array(length);
  for (let bin = 0, from = 0; bin < length; bin++) {
    let least = 0x7fffffff, most = -0x80000000;
    for (const end = Math.min(from + Fold, level.low.length); from < end; from++) {
      if (level.empty && level.empty[from]) continue;
      if (level.low[from] < least) least = level.low[from];
      if (level.high[from] > most) most = level.high[from];
    }
    if (least > most) empty[bin] = 1, some = true;
    low[bin] = least, high[bin] = most;
  }
  return { low, high, empty: some ? empty : null };
}

const masks = new Map();
function maskOf(channel) {
  if (channel.mask === null) return null;
  if (!masks.has(channel.mask)) masks.set(channel.mask, unpackedBytes('m' + channel.mask).then(bytes => {
    const mask = new Uint8Array(recording.bins);
    for (let first = 0, last = 0; first < recording.bins; first++) mask[first] = last ^= bytes[first] !== 0 ? 1 : 0;
    return mask;
  }));
  return masks.get(channel.mask);
}

// From single bins to a few: { low, high, empty } of each bin.
const levels = new Map();
function levelsOf(index) {
  if (!levels.has(index)) levels.set(index, (async () => {
    const channel = recording.channels[index];
    const size = recording.sampleBytes, length = recording.bins;
    const [bytes, empty] = await Promise.all([unpackedBytes('c' + index), maskOf(channel)]);
    if (bytes.length !== (exact ? 1 : 2) * length * size) throw new Error('length of ' + index);
    const low = numbersOf(bytes, 0, length, size);
    let high = low;
    if (!exact) {
      high = numbersOf(bytes, length * size, length, size);
      for (let bin = 0; bin < length; bin++) high[bin] += low[bin];  // wraps as the distance did
    }
    const found = [{ low, high, empty }];
    while (found.at(-1).low.length > 256) found.push(foldedLevel(found.at(-1)));
    return found;
  })());
  return levels.get(index);
}

// Groups of 2^power bins from one on: the values that they go from and to, null where nothing was measured.
function extremes(channel, levelsOfChannel, power, first, length) {
  const depth = Math.min(Math.floor(power / 2), levelsOfChannel.length - 1);
  const level = levelsOfChannel[depth], each = 2 ** (power - 2 * depth);
  const low = new Array(length), high = new Array(length);
  for (let group = 0; group < length; group++) {
    let least = Infinity, most = -Infinity;
    const from = (first + group) * each;
    for (let bin = Math.max(from, 0); bin < Math.min(from + each, level.low.length); bin++) {
      if (level.empty && level.empty[bin]) continue;
      if (level.low[bin] < least) least = level.low[bin];
      if (level.high[bin] > most) most = level.high[bin];
    }
    const falls = channel.scale < 0;
    const value = sample => sample / channel.scale + channel.offset;
    low[group] = least > most ? null : value(falls ? most : least);
    high[group] = least > most ? null : value(falls ? least : most);
  }
  return { low, high };
}
