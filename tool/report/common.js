// What the pages have in common: numbers from the document, tables, maps and charts.
'use strict';
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

// The word and its colour say the same.
function verdictCell(path) {
    const word = cell(path, plain);
    word.classList.add(word.textContent, 'word');
    return word;
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

// Arrow keys move the cursor; the entries of the legend are buttons.
function makeReachable(chart, holder, count) {
    let index = Math.floor((count - 1) / 2);
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

function redraw() {
    for (const {chart, holder} of charts) {
        chart.setSize({width: holder.clientWidth - 20, height: 260});
        chart.redraw(false, true);
    }
}

addEventListener('resize', redraw);
addEventListener('beforeprint', redraw);
addEventListener('afterprint', redraw);
for (const query of ['(prefers-color-scheme: dark)', 'print'])
    matchMedia(query).addEventListener('change', redraw);
