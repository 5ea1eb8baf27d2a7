// Sends each request to the language server, with a client library of others, and compares what it
// reports with the schema: check-editors.js TOOL DEVICE, from the tree's directory. check-editors.sh
// fetches the libraries.
'use strict';

const assert = require('assert');
const fs = require('fs');
const path = require('path');
const { spawn } = require('child_process');
const { pathToFileURL } = require('url');
const p = require('vscode-languageserver-protocol/node');

const [TOOL, DEVICE] = process.argv.slice(2);
const DOCUMENT = path.join(DEVICE, 'odm/etc/media_orvelle/video_system_specs.json');

// A position in the text, in units of the encoding.
function positionAt(text, offset, encoding) {
    const before = text.slice(0, offset).split('\n');
    const last = before.at(-1);
    return {
        line: before.length - 1,
        character: encoding === 'utf-8' ? Buffer.byteLength(last) : last.length,
    };
}

class Client {
    constructor(encoding) {
        this.encoding = encoding;
        this.process = spawn(TOOL, ['lsp'], { stdio: ['pipe', 'pipe', 'inherit'] });
        this.exit = new Promise((resolve) => this.process.on('exit', resolve));
        this.connection = p.createProtocolConnection(
            new p.StreamMessageReader(this.process.stdout),
            new p.StreamMessageWriter(this.process.stdin));
        this.waiting = new Map();
        this.connection.onNotification(p.PublishDiagnosticsNotification.type, (params) => {
            const resolve = this.waiting.get(`${params.uri} ${params.version}`);
            if (resolve) resolve(params.diagnostics);
        });
        this.connection.listen();
    }

    request(type, params) {
        return this.connection.sendRequest(type, params);
    }

    async start() {
        const general = { positionEncodings: [this.encoding, 'utf-16'] };
        const textDocument = { documentSymbol: { hierarchicalDocumentSymbolSupport: true } };
        await assert.rejects(this.request(p.HoverRequest.type, this.at('file:///x', '|')),
            { code: p.ErrorCodes.ServerNotInitialized });
        const answer = await this.request(p.InitializeRequest.type, {
            processId: process.pid, rootUri: null, capabilities: { general, textDocument },
        });
        assert.strictEqual(answer.capabilities.positionEncoding, this.encoding);
        await this.connection.sendNotification(p.InitializedNotification.type, {});
    }

    // What is found in a version of a document.
    findings(uri, version) {
        return new Promise((resolve) => this.waiting.set(`${uri} ${version}`, resolve));
    }

    async open(uri, text) {
        const found = this.findings(uri, 1);
        await this.connection.sendNotification(p.DidOpenTextDocumentNotification.type, {
            textDocument: { uri, languageId: 'jsonc', version: 1, text },
        });
        return found;
    }

    async change(uri, version, change) {
        const found = this.findings(uri, version);
        await this.connection.sendNotification(p.DidChangeTextDocumentNotification.type, {
            textDocument: { uri, version }, contentChanges: [change],
        });
        return found;
    }

    // The place of the "|".
    at(uri, marked) {
        return {
            textDocument: { uri },
            position: positionAt(marked, marked.indexOf('|'), this.encoding),
        };
    }

    async end() {
        await this.request(p.ShutdownRequest.type);
        await assert.rejects(this.request(p.HoverRequest.type, this.at('file:///x', '|')),
            { code: p.ErrorCodes.InvalidRequest });
        await this.connection.sendNotification(p.ExitNotification.type);
        assert.strictEqual(await this.exit, 0);
    }
}

// Every request and notification, on a document of the example whose text is not ASCII alone.
async function checkRequests(encoding) {
    const client = new Client(encoding);
    await client.start();
    const uri = pathToFileURL(DOCUMENT).href;
    const text = fs.readFileSync(DOCUMENT, 'utf8').replace('"vendor_max_instances"',
        '/* \u{1F3AC} ä */ "vendor_max_instances"');
    const before = await client.open(uri, text);
    assert(before.every((one) => one.severity === p.DiagnosticSeverity.Information), before);

    // An incremental change after characters that each encoding counts otherwise.
    const start = text.indexOf('"vendor_max_instances"');
    const [found] = (await client.change(uri, 2, {
        range: {
            start: positionAt(text, start, encoding),
            end: positionAt(text, start + '"vendor_max_instances"'.length, encoding),
        },
        text: '"private_complexty"',
    })).filter((one) => one.code === 'name-misspelt');
    const changed = text.replace('"vendor_max_instances"', '"private_complexty"');
    assert.deepStrictEqual(found.range.start, positionAt(text, start, encoding));

    const actions = await client.request(p.CodeActionRequest.type, {
        textDocument: { uri }, range: found.range, context: { diagnostics: [found] },
    });
    assert.deepStrictEqual(actions.map((one) => one.kind), ['quickfix', 'quickfix', 'source.fixAll']);
    assert.strictEqual(actions[0].edit.changes[uri][0].newText, '"private_complexity"');
    assert.strictEqual(actions[1].title, '// kcodec2_spec: allow name-misspelt');

    const hover = await client.request(p.HoverRequest.type,
        client.at(uri, changed.replace('"private_vt', '"|private_vt')));
    assert(p.MarkupContent.is(hover.contents) && hover.contents.value.includes('set by the system spec'));
    const items = await client.request(p.CompletionRequest.type,
        client.at(uri, changed.replace('"vendor_display', '|"vendor_display')));
    assert(items.some((one) => one.label === 'private_complexity'));
    const places = await client.request(p.DefinitionRequest.type,
        client.at(uri, changed.replace('"private_vt', '"|private_vt')));
    assert.strictEqual(places[0].uri, uri);
    const symbols = await client.request(p.DocumentSymbolRequest.type, { textDocument: { uri } });
    assert.deepStrictEqual(symbols.map((one) => one.name), ['Video']);
    assert(symbols[0].children.some((one) => one.name === 'Presets'));

    await assert.rejects(client.connection.sendRequest('textDocument/rename', {}),
        { code: p.ErrorCodes.MethodNotFound });
    await checkCancel(client, uri);
    await client.connection.sendNotification(p.DidSaveTextDocumentNotification.type,
        { textDocument: { uri } });
    await client.connection.sendNotification(p.DidCloseTextDocumentNotification.type,
        { textDocument: { uri } });
    await client.end();
}

// A request that is cancelled is answered, with its result if it was too late.
async function checkCancel(client, uri) {
    const source = new p.CancellationTokenSource();
    const answer = client.connection.sendRequest(p.DocumentSymbolRequest.type,
        { textDocument: { uri } }, source.token);
    source.cancel();
    await answer.then(() => {}, (error) =>
        assert.strictEqual(error.code, p.LSPErrorCodes.RequestCancelled));
}

// What the schema underlines, the server reports, on the same lines.
async function checkSchema() {
    const { texts, editor, ENGINES_OWN } = require('./check-schema.js');
    const client = new Client('utf-16');
    await client.start();
    let underlined = 0;
    let version = 0;
    for (const [, whole] of texts) {
        // A document that names a schema would be compared with that one.
        const text = whole.replace(/("\$schema": *)"[^"]*"/, '$11');
        const uri = `untitled:${++version}`;
        const reported = await client.open(uri, text);
        for (const one of await editor.problems(text)) {
            const isReported = reported.some((finding) =>
                (finding.severity !== p.DiagnosticSeverity.Information ||
                    ENGINES_OWN.includes(finding.code)) &&
                finding.range.start.line + 1 <= one.to && finding.range.end.line + 1 >= one.from);
            assert(isReported, `not reported: ${one.message}\n${text}`);
            ++underlined;
        }
        await client.connection.sendNotification(p.DidCloseTextDocumentNotification.type,
            { textDocument: { uri } });
    }
    await client.end();
    assert(underlined > 100, 'the schema underlines too little');
    return underlined;
}

(async () => {
    for (const encoding of ['utf-16', 'utf-8']) {
        await checkRequests(encoding);
    }
    console.log('check-editors: vscode-languageserver-protocol: every request, in UTF-16 and UTF-8');
    console.log(`check-editors: the server reports what the schema underlines: ${await checkSchema()} places`);
})().catch((error) => {
    console.error('check-editors:', error);
    process.exit(1);
});
