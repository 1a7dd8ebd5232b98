'use strict';
// Every text of the page, in both languages.
const Texts = {
  en: {
    title: 'Recording', simulated: 'SIMULATED. These are not measurements: a simulated crate made them.',
    kadrs: n => `${n} kadrs`, rows: n => `${n} rows`, channelsOf: n => `${n} channels`, at: r => ` at ${r} Hz`,
    noDecoder: 'This browser is too old to unpack the curves (it has no DecompressionStream). The tables below are complete.',
    broken: 'The curves of this page can’t be unpacked: the file is damaged.', nothing: 'Nothing was recorded.',
    noMeasured: 'Nothing was measured.',
    samples: 'Each point is a sample.', rowPoint: what => `Each point is a row of the file: ${what}.`,
    bins: n => `Each bar goes from the lowest to the highest of ${n} kadrs.`,
    baseSamples: 'The page holds every sample: zoom in to see them.',
    baseBins: n => `The page holds no single samples, only the lowest and highest of each ${n} kadrs: the recording is too long for more.`,
    loading: 'Unpacking …', empty: 'not measured', gapOf: 'not measured', slot: n => `slot ${n}`, module: n => `module ${n}`,
    help: 'Drag or turn the wheel to zoom, with Shift drag to move; two fingers on a touch screen. Double click: the whole recording. Names switch channels on and off.',
    whole: 'Whole', zoomIn: 'Zoom in', zoomOut: 'Zoom out', earlier: 'Earlier', later: 'Later', clock: 'Time of day', relative: 'Time from start',
    allOn: 'All on', allOff: 'All off', chart: unit => `Curves in ${unit}`, noUnit: 'no unit', dark: 'Dark', light: 'Light', other: 'Русский',
    channels: 'Channels', number: 'No.', name: 'Name', unit: 'Unit', min: 'Minimum', max: 'Maximum', mean: 'Mean', deviation: 'Std. deviation',
    count: 'Measured', limits: 'At limits', none: '–', unfitted: 'no mezzanine',
    tableNote: 'Of all samples that were measured, in the whole recording. At limits: samples of the lowest or highest code.',
    tableNoteText: 'Of all values in the text. Channel numbers and codes at limits are not in a CSV file.',
    gaps: 'Not measured', from: 'From', to: 'To', duration: 'Duration, s', module_: 'Module', reason: 'Reason', show: 'Show', more: n => `and ${n} more`,
    about: 'Where it comes from', time: 'Time', second: 's', hours: 'h:min:s', ended: 'Ended', file: 'File',
    reasons: ['several gaps, too many to be listed one by one', 'a receive was cut short', 'nothing came', 'the library could not process what came'],
    late: 'After a gap the samples of its module can be late by as much as the gap is long.',
    filledIn: 'This CSV file has filled-in values where nothing was measured. The curves and the table include them; the shaded times say where.',
    cut: (n, all) => `The file is cut off: ${n} of the ${all} kadrs that it promises are there.`,
    notAll: 'all kadrs written, but not all measured',
    ends: { complete: 'complete', interrupted: 'interrupted by the user', stalled: 'ended because nothing came any more', stopped: 'incomplete',
      continued: 'continued in another file', unknown: 'still running, or ended by force' },
    keys: {}, phrases: [],
  },
  ru: {
    title: 'Запись', simulated: 'ИМИТАЦИЯ. Это не измерения: данные создал имитатор крейта.',
    kadrs: n => `кадров: ${n}`, rows: n => `строк: ${n}`, channelsOf: n => `каналов: ${n}`, at: r => `, частота ${r} Гц`,
    noDecoder: 'Этот браузер слишком старый и не может распаковать графики (нет DecompressionStream). Таблицы ниже полные.',
    broken: 'Графики этой страницы не распаковываются: файл повреждён.', nothing: 'Ничего не записано.',
    noMeasured: 'Ничего не измерено.',
    samples: 'Каждая точка – отсчёт.', rowPoint: what => `Каждая точка – строка файла: ${what}.`,
    bins: n => `Каждый столбик – от наименьшего до наибольшего из ${n} кадров.`,
    baseSamples: 'На странице есть каждый отсчёт: увеличьте, чтобы их увидеть.',
    baseBins: n => `Отдельных отсчётов на странице нет, только наименьшее и наибольшее из каждых ${n} кадров: для большего запись слишком длинная.`,
    loading: 'Распаковка …', empty: 'не измерено', gapOf: 'не измерено', slot: n => `слот ${n}`, module: n => `модуль ${n}`,
    help: 'Увеличение: выделите мышью или крутите колесо; сдвиг: мышь с Shift; на сенсорном экране – два пальца. Двойной щелчок: вся запись. Имена включают и выключают каналы.',
    whole: 'Вся запись', zoomIn: 'Увеличить', zoomOut: 'Уменьшить', earlier: 'Раньше', later: 'Позже', clock: 'Время суток', relative: 'Время от начала',
    allOn: 'Все', allOff: 'Ни одного', chart: unit => `Графики, ${unit}`, noUnit: 'без единицы', dark: 'Тёмная', light: 'Светлая', other: 'English',
    channels: 'Каналы', number: '№', name: 'Имя', unit: 'Ед.', min: 'Минимум', max: 'Максимум', mean: 'Среднее', deviation: 'Ст. отклонение',
    count: 'Измерено', limits: 'На пределах', none: '–', unfitted: 'нет мезонина',
    tableNote: 'По всем измеренным отсчётам всей записи. На пределах: отсчёты с наименьшим или наибольшим кодом.',
    tableNoteText: 'По всем значениям текста. Номеров каналов и кодов на пределах в файле CSV нет.',
    gaps: 'Не измерено', from: 'С', to: 'По', duration: 'Длительность, с', module_: 'Модуль', reason: 'Причина', show: 'Показать', more: n => `и ещё ${n}`,
    about: 'Происхождение', time: 'Время', second: 'с', hours: 'ч:мин:с', ended: 'Окончание', file: 'Файл',
    reasons: ['несколько пропусков: слишком много, чтобы перечислить', 'приём прервался', 'ничего не пришло', 'библиотека не смогла обработать принятое'],
    late: 'После пропуска отсчёты модуля могут запаздывать на столько, сколько он длился.',
    filledIn: 'В этом файле CSV там, где ничего не измерено, стоят подставленные значения. Графики и таблица их включают; заштрихованное время показывает, где они.',
    cut: (n, all) => `Файл обрезан: из обещанных кадров (${all}) в нём ${n}.`,
    notAll: 'записано полностью, но измерено не всё',
    ends: { complete: 'записано полностью', interrupted: 'прервано пользователем', stalled: 'закончено, потому что больше ничего не приходило', stopped: 'не полностью',
      continued: 'продолжение в другом файле', unknown: 'ещё идёт или прервана принудительно' },
    keys: { Device: 'Устройство', Server: 'Сервер', Crate: 'Крейт', Module: 'Модуль', 'START mark': 'Метка СТАРТ', Library: 'Библиотека', Start: 'Начало',
      Rate: 'Частота', Channels: 'Каналов', 'Kadrs wanted': 'Заказано кадров', Part: 'Часть', Note: 'Примечание', Recorder: 'Регистратор',
      Selected: 'Выбрано', Rows: 'Строки' },
    // Parts of what the recorder wrote, which writes English.
    phrases: [[/, slot (\d+)/, ', слот $1'], [/, serial /, ', зав. № '], [/, firmware /, ', прошивка '], [/^until interrupted$/, 'до прерывания'],
      [/^each the first of (\d+) kadrs/, 'первый из каждых $1 кадров'], [/^each the means of the measured ones of (\d+) kadrs/, 'средние измеренных из каждых $1 кадров'],
      [/^each the lowest and highest of the measured ones of (\d+) kadrs/, 'наименьшее и наибольшее измеренных из каждых $1 кадров'],
      [/^doubtful: the kadrs were up to ([\d.]+) s behind this computer's clock, .*/, 'сомнительно: кадры отставали от часов компьютера до $1 с; на столько могут ошибаться времена, или пропали кадры'],
      [/^doubtful: the kadrs were up to ([\d.]+) s ahead of this computer's clock, .*/, 'сомнительно: кадры опережали часы компьютера до $1 с; на столько могут ошибаться времена'],
      [/^doubtful: the driver's ring was full, .*/, 'сомнительно: кольцевой буфер драйвера был полон, компьютер не успевал; кадры могли пропасть'],
      [/^no data came for ([\d.]+) s/, 'данных не было $1 с'], [/^nothing was measured for ([\d.]+) s/, 'ничего не измерено $1 с']],
  },
};
let language = document.documentElement.lang;
function say(name, ...values) {
  const text = Texts[language][name];
  return typeof text === 'function' ? text(...values) : text;
}

// What the recorder wrote, as far as there are words for it.
function translated(text) {
  for (const [english, other] of Texts[language].phrases) text = text.replace(english, other);
  return text;
}

// Numbers and times as the language writes them.
function inLanguage(text) {
  return (language === 'ru' ? text.replace('.', ',') : text).replace('-', '\u2212');
}
function number(value, decimals) {
  const text = value.toFixed(decimals);
  return inLanguage(Number(text) === 0 ? text.replace('-', '') : text);
}
function count(value) {
  return value.toLocaleString(language);
}
// Seconds from the start: 5.250, 1:05.250, 2:01:05.250.
function duration(seconds, decimals) {
  const unit = 10 ** decimals, whole = Math.round(Math.abs(seconds) * unit);
  const rest = whole % (60 * unit), minutes = Math.floor(whole / (60 * unit));
  const two = value => String(value).padStart(2, '0');
  let text = (rest / unit).toFixed(decimals);
  if (minutes > 0) text = `${minutes < 60 ? minutes : Math.floor(minutes / 60) + ':' + two(minutes % 60)}:${rest < 10 * unit ? '0' : ''}${text}`;
  return inLanguage((seconds < 0 ? '-' : '') + text);
}
// Milliseconds since 1970 of the clock on the recorder's wall.
function timeOfDay(milliseconds, decimals) {
  const unit = 10 ** Math.max(3 - decimals, 0);
  const text = new Date(Math.round(milliseconds / unit) * unit).toISOString().slice(11, decimals > 0 ? 20 + Math.min(decimals, 3) : 19);
  return inLanguage(text);
}
function day(milliseconds) {
  const date = new Date(milliseconds).toISOString().slice(0, 10);
  return language === 'ru' ? date.split('-').reverse().join('.') : date;
}
