'use strict';
(() => {
const data = JSON.parse(document.getElementById('document').textContent);
const maps = JSON.parse(document.getElementById('map-data').textContent);
const place = id => document.getElementById(id);

// An element with attributes and children, which are elements or texts.
function make(name, attributes, ...children) {
    const element = document.createElement(name);
    for (const [key, value] of Object.entries(attributes || {}))
        element.setAttribute(key, value);
    element.append(...children);
    return element;
}

// A table cell that shows the number at `path` of the document, which it names.
function cell(path, format) {
    const value = path.split('.').reduce((part, key) => part[key], data);
    return make('td', {'data-path': path}, format(value));
}
const minus = text => text.replace('-', '\u2212');
const percent = value => minus((100 * value).toFixed(2)) + ' %';
const signed = value => (value > 0 ? '+' : '') + percent(value);
const plain = value => String(value);
const list = values => values.join(', ');
const size = values => values.join(' × ');

function table(heads, rows) {
    const headed = rows.map(([first, ...cells]) => make('tr', {}, make('th', {scope: 'row'}, first), ...cells));
    const kind = i => i > 0 && rows[0][i].matches('.text, .word') ? {class: 'word'} : {};
    return make('table', {}, make('thead', {}, make('tr', {}, ...heads.map(
                    (head, i) => make('th', {scope: 'col', ...kind(i)}, head)))),
                make('tbody', {}, ...headed));
}

// One row for each channel; `cells(path)` makes what follows its name.
const channelRows = cells => data.channels.map((channel, i) => [channel.colour, ...cells(`channels.${i}`)]);

function showResult() {
    place('subject').textContent =
        `${data.frame}: ${size(data.size)}, ${data.bayer_pattern}, ${data.bit_depth} bits`;
    place('program').textContent = `Made by ${data.program}.`;
    place('result').append(table(
        ['Channel', 'Corner/centre before', 'after', 'Off flat before', 'after', 'Largest gain'],
        channelRows(path => [
            cell(`${path}.before.corner_to_centre`, percent), cell(`${path}.after.corner_to_centre`, percent),
            cell(`${path}.before.flatness`, percent), cell(`${path}.after.flatness`, percent),
            cell(`${path}.largest_gain`, value => value.toFixed(3))])));
    for (const warning of data.warnings)
        place('result').before(make('p', {class: 'warn'}, `Warning: ${warning}`));
}

// The word and its colour say the same.
function verdictCell(path) {
    const word = cell(path, plain);
    word.classList.add(word.textContent, 'word');
    return word;
}

function checkRow(i) {
    const check = data.checks[i];
    const limit = value => value === null ? '–' : minus(plain(value));
    return [check.name, verdictCell(`checks.${i}.verdict`),
            cell(`checks.${i}.value`, value => value === null ? '–' : minus(`${plain(value)} ${check.unit}`)),
            cell(`checks.${i}.limit_warn`, limit), cell(`checks.${i}.limit_refuse`, limit),
            make('td', {class: 'word'}, check.plane || 'all'), make('td', {class: 'text'}, check.advice)];
}

// What needs a look stands open; what passes is folded up, but for printing.
function showChecks() {
    if (data.checks.length === 0)
        return;
    place('checks').hidden = false;
    const heads = ['Check', 'Verdict', 'Value', 'Warn from', 'Refuse from', 'Channel', 'Advice'];
    const numbers = verdict => [...data.checks.keys()].filter(i => data.checks[i].verdict === verdict);
    const [refused, doubtful, passed] = ['refuse', 'warn', 'pass'].map(numbers);
    const count = (list, word) => `${list.length} ${word}`;
    place('check-count').textContent = `${count(data.checks, 'checks')}: ` +
        [count(passed, 'pass'), count(doubtful, 'warn'), count(refused, 'refuse')].join(', ') + '.';
    if (passed.length < data.checks.length)
        place('check-list').append(table(heads, [...refused, ...doubtful].map(checkRow)));
    const folded = make('details', {}, make('summary', {}, `The ${passed.length} that pass`),
                        make('div', {class: 'wide'}, table(heads.slice(0, -1),
                                                           passed.map(i => checkRow(i).slice(0, -1)))));
    place('check-list').after(folded);
    addEventListener('beforeprint', () => { folded.open = true; });
}

function showCorners() {
    const corners = ['top left', 'top right', 'bottom left', 'bottom right'];
    const rows = data.channels.flatMap((channel, i) => ['before', 'after'].map(when => {
        const path = `channels.${i}.${when}`;
        return [`${channel.colour} ${when}`, ...corners.map((_, k) => cell(`${path}.corners.${k}`, percent)),
                cell(`${path}.worst_block.deviation`, signed), cell(`${path}.worst_block.at`, list)];
    }));
    place('corners').append(table(['Channel', ...corners, 'Worst small block', 'at'], rows));
    const ratios = [['R/G', 'r_to_g'], ['B/G', 'b_to_g']];
    place('colours').append(table(['Colour shading', 'before', 'at', 'after', 'at'], ratios.map(([name, key]) => [
        name, ...['before', 'after'].flatMap(when => [
            cell(`colour_shading.${when}.${key}.deviation`, signed),
            cell(`colour_shading.${when}.${key}.at`, list)])])));
}

function showMaps() {
    for (const row of maps) {
        const title = row.title[0].toUpperCase() + row.title.slice(1);
        place('maps').append(make('h3', {}, title));
        place('maps').append(make('div', {class: 'panels'}, ...row.panels.map(panel => make('figure', {},
            make('img', {src: panel.image, width: panel.width, height: panel.height, alt: `${title}: ${panel.caption}`}),
            make('figcaption', {}, panel.caption)))));
        place('maps').append(make('div', {class: 'scale'},
            make('img', {src: row.scale, alt: `Scale from ${row.labels[0]} to ${row.labels[row.labels.length - 1]}`}),
            make('div', {}, ...row.labels.map(label => make('span', {}, minus(label))))));
    }
}

const charts = [];
const css = name => getComputedStyle(document.documentElement).getPropertyValue(name).trim();
const dashes = [[], [10, 4], [3, 3], [10, 4, 2, 4]];

function axis(options) {
    return {stroke: () => css('--faint'), grid: {stroke: () => css('--line'), width: 1},
            ticks: {stroke: () => css('--line'), width: 1}, font: '12px system-ui, sans-serif', ...options};
}

function chartOptions(width, digits) {
    const show = (_, value) => value == null ? '–' : `${minus(value.toFixed(digits))} %`;
    return {
        width, height: 260, pxAlign: false,
        scales: {x: {time: false, range: [-100, 100]}},
        axes: [axis({values: (_, ticks) => ticks.map(tick => minus(String(tick)))}),
               axis({size: 62, values: (_, ticks) => ticks.map(tick => `${minus(String(tick))} %`)})],
        cursor: {drag: {x: false, y: false}},
        series: [{label: 'Place', value: show},
                 ...data.channels.map((channel, i) => ({
                     label: channel.colour, stroke: () => css(`--${channel.colour.toLowerCase()}`), width: 2,
                     dash: dashes[i], points: {show: false}, value: show}))],
    };
}

// Arrow keys move the cursor; the entries of the legend are buttons.
function makeReachable(chart, holder, count) {
    let index = (count - 1) / 2;
    holder.addEventListener('keydown', event => {
        const steps = {ArrowLeft: -1, ArrowRight: 1, Home: -count, End: count};
        if (event.target !== holder || !(event.key in steps))
            return;
        event.preventDefault();
        index = Math.min(Math.max(index + steps[event.key], 0), count - 1);
        chart.setCursor({left: chart.valToPos(chart.data[0][index], 'x'), top: chart.over.clientHeight / 2});
    });
    for (const entry of chart.root.querySelectorAll('.u-series:not(:first-child) th')) {
        entry.tabIndex = 0;
        entry.setAttribute('role', 'button');
        entry.addEventListener('keydown', event => {
            if (event.key !== 'Enter' && event.key !== ' ')
                return;
            event.preventDefault();
            entry.click();
        });
    }
}

function showSections() {
    for (const [k, section] of data.sections.entries())
        for (const when of ['before', 'after']) {
            const title = `${section.name[0].toUpperCase()}${section.name.slice(1)}, ${when}`;
            const holder = make('div', {class: 'chart', tabindex: 0, role: 'group', 'data-section': `${k}.${when}`,
                'aria-label': `Chart: ${title}. Percent of the centre from one end of the line to the other.`},
                make('h3', {}, title));
            place('sections').append(holder);
            const values = section[when].map(line => line.map(value => 100 * value));
            const chart = new uPlot(chartOptions(holder.clientWidth - 20, 2), [section.place, ...values], holder);
            makeReachable(chart, holder, section.place.length);
            charts.push({chart, holder});
        }
}

// The tint of a block: blue below the mean, red above, as in the maps.
function tint(value, reach) {
    const share = Math.min(Math.abs(value) / reach, 1) * 45;
    return `background: color-mix(in srgb, ${value < 0 ? '#0161bd' : '#af2f09'} ${share.toFixed(1)}%, transparent)`;
}

function blockTable(i, when) {
    const rows = data.channels[i][when].blocks;
    const reach = Math.max(...rows.flat().map(Math.abs), 1e-4);
    const body = rows.map((row, y) => make('tr', {}, ...row.map((value, x) => {
        const shown = cell(`channels.${i}.${when}.blocks.${y}.${x}`, v => minus((100 * v).toFixed(2)));
        shown.style = tint(value, reach);
        if (Math.abs(value) === reach)
            shown.className = 'worst';
        return shown;
    })));
    const name = `${data.channels[i].colour} ${when}`;
    return make('div', {class: 'block'}, make('h3', {}, name),
                make('div', {class: 'wide'}, make('table', {'aria-label': `Blocks of ${name}`}, ...body)));
}

function showBlocks() {
    for (const i of data.channels.keys())
        place('blocks').append(make('div', {class: 'blocks'}, blockTable(i, 'before'), blockTable(i, 'after')));
}

function showOtp() {
    const heads = ['Stream', 'Bytes', 'Nodes not stored', ...data.channels.map(channel => channel.colour)];
    place('otp').append(table(heads, data.otp.map((stream, k) => [
        `mode ${stream.mode}`, cell(`otp.${k}.stream_size`, plain), cell(`otp.${k}.unstored_nodes`, plain),
        ...stream.channels.map((_, i) => cell(`otp.${k}.channels.${i}.largest_gain_error`, percent))])));
}

function showParameters() {
    place('parameters').append(table(['Parameter', 'Value'], [
        ['Frame', cell('size', size)], ['Bayer pattern', cell('bayer_pattern', plain)],
        ['Bits', cell('bit_depth', plain)], ['Black level of planes 0 to 3', cell('black_level', list)],
        ['White level', cell('white_level', plain)], ['ISP', cell('isp', plain)],
        ['Algorithm', cell('algorithm', plain)], ['Step', cell('step', plain)],
        ['Filter radius', cell('filter_radius', plain)], ['Shading corrected, percent', cell('shading_percent', plain)],
        ['Nodes of a table, border included', cell('table_size', size)]]));
    place('inputs').append(table(['Input', 'File', 'SHA-256'], data.inputs.map(input => [
        input.role, make('td', {class: 'text'}, input.name), make('td', {class: 'text hash'}, input.sha256 || '–')])));
}

function redraw() {
    for (const {chart, holder} of charts) {
        chart.setSize({width: holder.clientWidth - 20, height: 260});
        chart.redraw(false, true);
    }
}

showResult();
showChecks();
showCorners();
showMaps();
showSections();
showBlocks();
showOtp();
showParameters();
addEventListener('resize', redraw);
addEventListener('beforeprint', redraw);
addEventListener('afterprint', redraw);
for (const query of ['(prefers-color-scheme: dark)', 'print'])
    matchMedia(query).addEventListener('change', redraw);
})();
