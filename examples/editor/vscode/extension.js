// Starts the tool's language server for the documents.
'use strict';

const { workspace } = require('vscode');
const { LanguageClient } = require('vscode-languageclient/node');

let client;

exports.activate = () => {
    const settings = workspace.getConfiguration('kcodec2_spec');
    const server = {
        command: settings.get('command'),
        args: ['lsp', ...settings.get('arguments')],
    };
    client = new LanguageClient('kcodec2_spec', 'kcodec2_spec', server, {
        documentSelector: [
            { scheme: 'file', pattern: '**/{video_system_specs,video_private_configs}.json' },
        ],
    });
    return client.start();
};

exports.deactivate = () => client && client.stop();
