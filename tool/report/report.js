// The page of zerklsc report.
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

showResult();
showChecks();
showCorners();
showMaps();
showSections();
showBlocks();
showOtp();
showParameters();
