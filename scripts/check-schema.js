// What an editor's engine shows of documents with the tool's schema: problems, hover, completion.
// check-schema.js TOOL, from the tree's directory; check-schema.sh fetches the engine.
'use strict';

const fs = require('fs');
const os = require('os');
const path = require('path');
const { execFileSync, spawnSync } = require('child_process');
const { getLanguageService, TextDocument } = require('vscode-json-languageservice');

const TOOL = process.argv[2];
const SNIPPET = 'examples/editor/settings.json';
const CASES = 'tests/unit/check';
const SCRATCH = fs.mkdtempSync(path.join(os.tmpdir(), 'check-schema-'));
process.on('exit', () => fs.rmSync(SCRATCH, { recursive: true }));

// A line comment in the snippet, which the plain parser does not accept.
const withoutComments = (text) => text.replace(/^\s*\/\/.*$/gm, '');
const settings = JSON.parse(withoutComments(fs.readFileSync(SNIPPET, 'utf8')));
const association = settings['json.schemas'][0];

// How the editor has the engine treat each of its two languages.
const LANGUAGES = {
    json: { comments: 'error', trailingCommas: 'error' },
    jsonc: { comments: 'ignore', trailingCommas: 'warning' },
};

// The engine as the editor sets it up, with schema and file names from the snippet.
class Editor {
    constructor(schema) {
        this.service = getLanguageService({});
        this.service.configure({
            validate: true,
            schemas: [{ uri: association.url, fileMatch: association.fileMatch, schema }],
        });
    }

    open(text, name = 'video_system_specs.json') {
        const document = TextDocument.create(`file:///odm/etc/media_x/${name}`,
            settings['files.associations'][name], 1, text);
        return { document, json: this.service.parseJSONDocument(document) };
    }

    // [{from, to, text}], with lines from 1.
    async problems(text, name) {
        const { document, json } = this.open(text, name);
        const found = await this.service.doValidation(document, json, LANGUAGES[document.languageId]);
        return found.map((one) => ({
            from: one.range.start.line + 1,
            to: one.range.end.line + 1,
            text: document.getText(one.range),
            message: one.message,
            isError: one.severity === 1,
        }));
    }

    // What is shown when the pointer is at the "|" in `text`.
    async hover(text) {
        const { document, json } = this.open(text.replace('|', ''));
        const shown = await this.service.doHover(document, document.positionAt(text.indexOf('|')), json);
        return shown ? [].concat(shown.contents).map((one) => one.value || one).join('\n') : '';
    }

    // What is offered at the "|" in `text`, as "label: description".
    async completions(text) {
        const { document, json } = this.open(text.replace('|', ''));
        const offered = await this.service.doComplete(document, document.positionAt(text.indexOf('|')), json);
        return offered.items.map((one) => {
            const about = one.documentation || '';
            return `${one.label}: ${one.detail || ''} ${about.value || about}`;
        });
    }
}

function run(...args) {
    return execFileSync(TOOL, args, { encoding: 'utf8', maxBuffer: 1 << 26 });
}

function documentsUnder(directory) {
    return fs.readdirSync(directory, { recursive: true })
        .filter((name) => /video_(system_specs|private_configs)\.json$/.test(name))
        .map((name) => path.join(directory, name));
}

// What the checker reports about a text.
const known = new Map();
function reports(text) {
    if (!known.has(text)) {
        const file = path.join(SCRATCH, 'document.json');
        fs.writeFileSync(file, text);
        const checked = spawnSync(TOOL, ['check', '--format', 'json', file], { encoding: 'utf8' });
        known.set(text, JSON.parse(checked.stdout).findings);
    }
    return known.get(text);
}

// The checks of the reader: the editor must underline all their findings.
function readerChecks() {
    const group = /^reader: .*\n((?: .*\n)*)/m.exec(run('check', '--list'));
    return new Set(group[1].trim().split('\n').map((line) => line.trim().split(' ')[0]));
}

// What is underlined: exactly these pieces of text.
const UNDERLINED = [
    ['a misspelt section', '{"Video": {"Feature": {}}}', ['"Feature"']],
    ['a misspelt root', '{"video": {}}', ['"video"', '{']],
    ['a comment', '{ // one\n "Video": {} /* two */ }', []],
    ['a trailing comma', '{"Video": {"Features": {},}}', [',']],
    ['a feature that is a number', '{"Video": {"Features": {"private_enc_cvp_enable": 1}}}', ['1']],
    ['a preset that is a text', '{"Video": {"Presets": {"private_complexity": "5"}}}', ['"5"']],
    ['a preset that is cut', '{"Video": {"Presets": {"vendor_x": 1.5}}}', ['1.5']],
    ['a preset that is whole', '{"Video": {"Presets": {"vendor_x": 1.0}}}', []],
    ['a preset above 32 bits', '{"Video": {"Presets": {"vendor_x": 2147483648}}}', ['2147483648']],
    ['a preset above its range',
        '{"Video": {"Presets": {"private_enc_hier_p_max_temporal_layer_count": 7}}}', ['7']],
    ['a bit that a mask does not have',
        '{"Video": {"Presets": {"private_dec_linear_color_format": 4}}}', ['4']],
    ['a value that is not in the list', '{"Video": {"Presets": {"private_outbuf_fence": 4}}}', ['4']],
    ['a row of two', '{"Video": {"NimbraModeBitrateTable": [[1, 2]]}}', ['[1, 2]']],
    ['a row without an upper bound', '{"Video": {"NimbraModeBitrateTable": [[0, -1, 5]]}}', []],
    ['levels that are missing', '{"Video": {"DolbyVision": {"profiles": [8, -1]}}}',
        ['"DolbyVision"', '"DolbyVision"', '-1']],
    ['perf words',
        '{"Video": {"perf-resource-values": {"x": ["0x40C00000", "1", " +7fffffff", "0x0080000000",' +
        ' "80000000", "1g", 1, "-0", "-1", ""]}}}',
        ['"0x0080000000"', '"80000000"', '"1g"', '1', '"-1"', '""']],
    ['components of a vendor',
        '{"Video": {"codecs-available": {"decoders": ["c2.x.y.decoder", 1], "other": []}}}',
        ['1', '"other"']],
    ['sections that are null', '{"Video": {"Features": null, "OptionalCodecs": null}}', []],
];

// Findings that need the catalogue: compared with a checker that has it.
const BY_CATALOGUE = ['a preset above its range', 'a value that is not in the list',
    'a bit that a mask does not have'];
const KNOWS_CATALOGUE = run('check', '--list').includes('value-range');

// What is shown, and a text that must be part of it.
const SHOWN = [
    ['hover', '{"Video": {"Presets": {"private_out|buf_fence": 1}}}', [/fences/, /transmit/, /Built\\-in value\W* 1/]],
    ['hover', '{"Video": {"Presets": {"private_max_supported_render_rate": 1|20}}}', [/frames\/s/]],
    ['hover', '{"Video": {"Nimbra|ModeBitrateTable": []}}', [/not including, high/]],
    ['completions', '{"Video": {|}}', [/^Presets:/m, /^KC2CodecPlugins:/m]],
    ['completions', '{"Video": {"Presets": {|}}}',
        [/^private_max_supported_render_rate:.*highest decoder output rate/m]],
    ['completions', '{"Video": {"Presets": {"private_outbuf_fence": |}}}',
        [/^1:.*transmit fence/m, /^2:.*not supported/m, /^3:/m]],
    ['completions', '{"Video": {"perf-resource-values": {"x": [|]}}}',
        [/^0x40C00000:.*all cores/m]],
    ['completions', '{"Video": {"NimbraModeBitrateTable": [|]}}', [/^\[low, high, bit rate\]:/m]],
    ['completions', '{"Video": {"Presets": {"private_transcode_metadata_stat": |}}}',
        [/^3:.*decoder, encoder/m]],
    ['completions', '{"Video": {"codecs-available": {"encoders": [|]}}}', [/c2\.kvx\.hevc\.encoder/]],
];

// The engine accepts no leading zeros, whatever the schema says; the checker reports a note.
const ENGINES_OWN = ['leading-zero'];
// An upper bound of -1 is in use, so the schema allows it; the checker says what it becomes.
const isUpperBound = (one) => one.id === 'row-without-bound';

// Line by line, the editor underlines what the checker reports, and nothing else.
function compare(what, text, problems, expect) {
    // Where "Video" is missing, the engine marks the root; the checker, what is there in its place.
    const isOfRoot = (one, other) => other.id === 'no-video' && /Missing property/.test(one.message);
    const isAt = (one, other) => isOfRoot(one, other) ||
        (other.line <= one.to && (other.endLine || other.line) >= one.from);
    const found = reports(text);
    for (const one of problems) {
        const isReported = found.some((other) => isAt(one, other) &&
            (other.severity !== 'note' || ENGINES_OWN.includes(other.id)));
        expect(isReported, `only the editor objects in ${what}: ${JSON.stringify(one)}`);
    }
    for (const other of found) {
        const isUnderlined = !READER.has(other.id) || isUpperBound(other) ||
            problems.some((one) => isAt(one, other));
        expect(isUnderlined, `the editor lets pass in ${what}: ${JSON.stringify(other)}`);
    }
}

const READER = readerChecks();
const TEXTS = fs.readdirSync(CASES).filter((name) => name.endsWith('.json'))
    .map((name) => [name, fs.readFileSync(path.join(CASES, name), 'utf8')])
    .concat(UNDERLINED.filter(([what]) => KNOWS_CATALOGUE || !BY_CATALOGUE.includes(what)));

async function failuresOf(schema) {
    const editor = new Editor(schema);
    const failures = [];
    const expect = (isTrue, what) => isTrue || failures.push(what);

    for (const [what, text, pieces] of UNDERLINED) {
        const found = (await editor.problems(text)).map((one) => one.text);
        expect(JSON.stringify(found.sort()) === JSON.stringify([...pieces].sort()),
            `${what}: underlined is ${JSON.stringify(found)}, not ${JSON.stringify(pieces)}`);
    }
    const [comma] = await editor.problems('{"Video": {"Features": {},}}');
    expect(comma && comma.isError, 'a trailing comma is not an error');
    for (const [how, text, patterns] of SHOWN) {
        const shown = [].concat(await editor[how](text)).join('\n');
        for (const pattern of patterns) {
            expect(pattern.test(shown), `${how} in ${text} shows no ${pattern}:\n${shown}`);
        }
    }
    for (const file of documentsUnder('examples')) {
        const found = await editor.problems(fs.readFileSync(file, 'utf8'), path.basename(file));
        expect(found.length === 0, `${file}: ${JSON.stringify(found)}`);
    }
    for (const number of ['1', '2', '3']) {
        // The engine accepts no leading zeros, whatever the schema says.
        const text = run('defaults', number).replace(/: 0101,/, ': 101,');
        const found = await editor.problems(text);
        expect(found.length === 0, `built-in document ${number}: ${JSON.stringify(found)}`);
    }
    for (const [what, whole] of TEXTS) {
        // A document that names a schema would be checked with that one.
        const text = whole.replace(/("\$schema": *)"[^"]*"/, '$11');
        compare(what, text, await editor.problems(text), expect);
    }
    return failures;
}

// Faults in the schema: something above must notice each.
const FAULTS = {
    'any section passes': (schema) => delete schema.properties.Video.additionalProperties,
    'any root passes': (schema) => delete schema.required,
    'comments are mistakes': (schema) => { schema.allowComments = false; },
    'trailing commas pass': (schema) => { schema.allowTrailingCommas = true; },
    'no snippet is offered': (schema) => deepen(schema, (one) => delete one.defaultSnippets),
    'no meaning is shown': (schema) => deepen(schema, (one) => delete one.description),
    'any number passes': (schema) => deepen(schema, (one) => delete one.maximum),
    'any perf word passes': (schema) => deepen(schema, (one) => delete one.pattern),
    'no row is complete': (schema) => deepen(schema, (one) => { one.minItems = one.minItems && 4; }),
    'a feature is a number': (schema) => { schema.properties.Video.properties.Features.additionalProperties.type = 'number'; },
};

function deepen(value, change) {
    if (value && typeof value === 'object') {
        change(value);
        Object.values(value).forEach((one) => deepen(one, change));
    }
}

async function main() {
    const text = run('schema');
    const failures = await failuresOf(JSON.parse(text));
    for (const [fault, plant] of Object.entries(FAULTS)) {
        const schema = JSON.parse(text);
        plant(schema);
        if ((await failuresOf(schema)).length === 0) {
            failures.push(`planted, and not noticed: ${fault}`);
        }
    }
    failures.forEach((failure) => console.error(`check-schema: ${failure}`));
    if (failures.length === 0) {
        console.log(`check-schema: the editor and the checker agree on ${TEXTS.length} documents; ` +
            `${Object.keys(FAULTS).length} planted faults are noticed`);
    }
    process.exitCode = failures.length === 0 ? 0 : 1;
}

if (require.main === module) {
    main();
} else {
    // The documents, and the editor with the tool's schema.
    module.exports = { texts: TEXTS, editor: new Editor(JSON.parse(run('schema'))), ENGINES_OWN };
}
