// The page of zerklsc lot.
const verdicts = ['pass', 'warn', 'refuse', 'fail', 'error'];
const capital = text => text[0].toUpperCase() + text.slice(1);
const orDash = format => value => value === null ? '–' : format(value);
const four = value => minus(value.toFixed(4));
const yesNo = value => value ? 'drifts' : 'no drift';

function showYield() {
    const kind = data.kind;
    place('subject').textContent = kind === null ? 'Modules without tables' :
        `${size(kind.size)}, ${kind.bayer_pattern}, ${kind.bit_depth} bits; ${kind.algorithm}, step ${kind.step}, radius ` +
        `${kind.filter_radius}, shading ${kind.shading_percent} %, tables of ${size(kind.table_size)}`;
    place('program').textContent = `Made by ${data.program}.`;
    place('verdicts').append(table(['Modules', 'Yield', ...verdicts.map(capital)], [
        [make('span', {'data-path': 'modules'}, plain(data.modules)), cell('yield', percent),
         ...verdicts.map(verdict => cell(`verdicts.${verdict}`, plain))]]));
    const lines = Object.entries(data.left_out).filter(([, count]) => count > 0);
    if (lines.length > 0)
        place('left-out').append(make('span', {class: 'warn'}, 'Lines that count for nothing: ' +
            lines.map(([why, count]) => `${count} ${why.replace('_', ' ')}`).join(', ') + '.'));
    if (data.costs.length > 0)
        place('costs').append(table(['Lost by', 'Modules', 'Of all', 'By it alone'], data.costs.map((cost, k) => [
            cost.cause, cell(`costs.${k}.lost`, plain), make('td', {}, percent(cost.lost / data.modules)),
            cell(`costs.${k}.lost_alone`, plain)])));
}

function showOutliers() {
    if (data.nearest !== null)
        place('nearest').append('Nearest to the golden tables is ',
            make('strong', {'data-path': 'nearest.serial'}, data.nearest.serial), ', ',
            make('span', {'data-path': 'nearest.distance'}, four(data.nearest.distance)), ' deviations from them.');
    if (data.outliers === null) {
        place('outliers').append(make('p', {}, 'Made from summaries alone, which do not tell outliers.'));
        return;
    }
    const listed = data.outliers.listed;
    place('outliers').append(make('p', {}, make('span', {'data-path': 'outliers.count'}, plain(data.outliers.count)),
        data.outliers.count === 1 ? ' outlier' : ' outliers',
        listed.length < data.outliers.count ? `, the ${listed.length} most severe are` : listed.length ? ':' : '.'));
    if (listed.length > 0)
        place('outliers').append(table(['Serial', 'Verdict', 'Severity', 'Distance', 'What is out of place'],
            listed.map((outlier, k) => [outlier.serial, verdictCell(`outliers.listed.${k}.verdict`),
                cell(`outliers.listed.${k}.severity`, four), cell(`outliers.listed.${k}.distance`, four),
                make('td', {class: 'text'}, minus(outlier.reason))])));
}

function showChannels() {
    if (data.channels.length === 0) {
        place('channels').append(make('p', {}, 'No module has gains.'));
        return;
    }
    place('channels').append(table([`Gains of ${data.with_gains}`, 'Largest median', 'Usual spread', 'Widest spread', 'at node'],
        data.channels.map((channel, c) => [channel.colour, cell(`channels.${c}.largest_gain`, four),
            cell(`channels.${c}.usual_spread`, percent), cell(`channels.${c}.widest_spread`, percent),
            cell(`channels.${c}.widest_at`, list)])));
}

function showCentres() {
    const {channels, correlation} = data.optical_centre;
    if (channels.length === 0)
        return;
    const words = ['x', 'y'].flatMap(axis => ['median', 'mean', 'deviation'].map(word => [axis, word]));
    place('centres').append(table(['Channel', ...words.map(([axis, word]) => `${axis} ${word}`)],
        channels.map((channel, c) => [channel.colour, ...words.map(([axis, word]) =>
            cell(`optical_centre.channels.${c}.${axis}.${word}`, four))])));
    place('correlation').append(table(['Correlation of', 'x', 'y'], correlation.map((pair, k) => [
        pair.colours.join(' and '), cell(`optical_centre.correlation.${k}.x`, orDash(four)),
        cell(`optical_centre.correlation.${k}.y`, orDash(four))])));
}

// A chart under its title, which the focus reaches.
function addChart(where, title, label, options, values) {
    const holder = make('div', {class: 'chart', tabindex: 0, role: 'group', 'aria-label': `Chart: ${label}`},
                        make('h3', {}, title));
    place(where).append(holder);
    const chart = new uPlot({height: 260, pxAlign: false, cursor: {drag: {x: false, y: false}}, ...options,
                             width: holder.clientWidth - 20}, values, holder);
    makeReachable(chart, holder, values[0].length);
    charts.push({chart, holder});
    return holder;
}

function showSequence() {
    const {first_serials: places, series} = data.sequence;
    place('drifts').append(table(['Median of', 'Channel', 'Change', 'Significance', 'Verdict'], series.map((drift, k) => {
        const verdict = cell(`sequence.series.${k}.drifts`, yesNo);
        verdict.classList.add('word', drift.drifts ? 'warn' : 'pass');
        return [capital(drift.name), make('td', {class: 'word'}, drift.plane || 'all'),
                cell(`sequence.series.${k}.change`, four), cell(`sequence.series.${k}.significance`, four), verdict];
    })));
    const colours = ['r', 'gr', 'gb', 'b'];
    for (const name of [...new Set(series.map(drift => drift.name.replace(/ [xy]$/, '')))]) {
        const lines = series.filter(drift => drift.name.startsWith(name));
        const title = capital(name);
        const shown = (_, value) => value == null ? '–' : four(value);
        addChart('sequence', title, `${title} from the first serial to the last.`, {
            scales: {x: {time: false}, y: {range: (_, low, high) => [low - 0.1 * (high - low || 0.01), high + 0.1 * (high - low || 0.01)]}},
            axes: [axis({values: (_, ticks) => ticks.map(plain)}), axis({size: 62, values: (_, ticks) => ticks.map(t => minus(String(+t.toFixed(6))))})],
            series: [{label: 'From serial', value: (_, value) => value == null ? '–' : plain(value)}, ...lines.map((drift, k) => ({
                label: drift.plane || drift.name, stroke: () => css(`--${colours[k]}`), width: 2, dash: dashes[k],
                points: {size: 6}, value: shown}))],
        }, [places, ...lines.map(drift => drift.blocks)]);
    }
}

// Bars on top of each other: what passes below, what is refused above.
function addHistogram(entry) {
    const kinds = [['refuse', '--bad'], ['warn', '--doubt'], ['pass', '--good']];
    const places = entry.pass.map((_, k) => entry.from + (k + 0.5) * entry.width);
    const heights = {pass: entry.pass, warn: entry.pass.map((n, k) => n + entry.warn[k]),
                     refuse: entry.pass.map((n, k) => n + entry.warn[k] + entry.refuse[k])};
    const ends = [entry.from, entry.from + entry.pass.length * entry.width];
    const total = kinds.map(([kind]) => entry[kind].reduce((sum, n) => sum + n, 0));
    const holder = addChart('histograms', `${entry.name}${entry.unit ? ', ' + entry.unit : ''}`,
        `${entry.name}: ${kinds.map(([kind], i) => `${total[i]} ${kind}`).join(', ')}.`, {
            scales: {x: {time: false, range: () => ends}, y: {range: (_, low, high) => [0, 1.05 * high]}},
            axes: [axis({values: (_, ticks) => ticks.map(t => minus(String(+t.toPrecision(6))))}), axis({size: 62})],
            series: [{label: 'Around', value: (_, value) => value == null ? '–' : minus(String(+value.toPrecision(6)))},
                     ...kinds.map(([kind, colour]) => ({
                         label: kind, stroke: () => css(colour), fill: () => css(colour), width: 0, points: {show: false},
                         paths: uPlot.paths.bars({size: [0.92, 64]}),
                         value: (_, value, s, k) => k == null ? '–' : plain(entry[kind][k])}))],
        }, [places, ...kinds.map(([kind]) => heights[kind])]);
    holder.classList.add('bars');
}

function showChecks() {
    data.histograms.filter(entry => entry.pass.length > 1).forEach(addHistogram);
    const words = ['smallest', 'percent_5', 'median', 'percent_95', 'largest'];
    const number = orDash(value => minus(plain(value)));
    place('checks').append(table(
        ['Check', 'Channel', 'Unit', 'Smallest', '5 %', 'Median', '95 %', 'Largest', 'Pass', 'Warn', 'Refuse'],
        data.checks.map((check, k) => [
            check.name, make('td', {class: 'word'}, check.plane || 'all'), make('td', {class: 'word'}, check.unit),
            ...words.map(word => cell(`checks.${k}.${word}`, number)),
            ...['pass', 'warn', 'refuse'].map(verdict => cell(`checks.${k}.${verdict}`, plain))])));
}

showYield();
showOutliers();
showChannels();
showMaps();
showSequence();
showCentres();
showChecks();
