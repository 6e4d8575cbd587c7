// Called by tools/test_editors: checks what a client that uses a library of Visual Studio Code receives from korv-ls
// for main.kor, which includes lib.kor.
const assert = require("assert");
const { spawn } = require("child_process");
const fs = require("fs");
const { pathToFileURL } = require("url");
const lsp = require("vscode-languageserver-protocol/node");

const uriOf = (name) => pathToFileURL(fs.realpathSync(name)).href;
const server = spawn(process.env.KORV_LS);
const connection = lsp.createProtocolConnection(
  new lsp.StreamMessageReader(server.stdout), new lsp.StreamMessageWriter(server.stdin));
const published = new Map();
let version = 0;

function seen(what, isSeen) {
  assert(isSeen, `Node: ${what}: not seen`);
  console.log(`Node: ${what}`);
}

async function main() {
  const uri = uriOf("main.kor");
  const textDocument = { uri };
  connection.onNotification(lsp.PublishDiagnosticsNotification.type,
    (params) => published.set(params.uri, params.diagnostics));
  connection.listen();
  const ask = (type, more) => connection.sendRequest(type, { textDocument, ...more });
  const change = (line, text) => connection.sendNotification(lsp.DidChangeTextDocumentNotification.type, {
    textDocument: { uri, version: ++version },
    contentChanges: [{ range: { start: { line, character: 0 }, end: { line, character: 99 } }, text }],
  });
  const initialized = await connection.sendRequest(lsp.InitializeRequest.type, {
    processId: process.pid, rootUri: uriOf("."), capabilities: {}, initializationOptions: { inlayHints: "address" },
  });
  const legend = initialized.capabilities.semanticTokensProvider.legend;
  connection.sendNotification(lsp.InitializedNotification.type, {});
  connection.sendNotification(lsp.DidOpenTextDocumentNotification.type, {
    textDocument: { uri, languageId: "korv", version, text: fs.readFileSync("main.kor", "utf8") },
  });
  const everything = { start: { line: 0, character: 0 }, end: { line: 99, character: 0 } };
  const onName = { position: { line: 0, character: 14 } };

  change(1, "        LD   A,0x10");
  const actions = await ask(lsp.CodeActionRequest.type, { range: everything, context: { diagnostics: [] } });
  seen("a message for an unsaved change", published.get(uri).length === 1);
  seen("a fix", actions[0].edit.changes[uri][0].newText === "$10");
  change(1, "        LD   A,LIMIT");
  const hover = await ask(lsp.HoverRequest.type, onName);
  seen("no message after it is mended", published.get(uri).length === 0);
  seen("hover", hover.contents.value.includes("prints a text"));
  const found = await ask(lsp.DefinitionRequest.type, onName);
  seen("definition", found[0].uri === uriOf("lib.kor") && found[0].range.start.line === 2);
  seen("references", (await ask(lsp.ReferencesRequest.type, { ...onName, context: {} })).length === 2);
  const items = await ask(lsp.CompletionRequest.type, onName);
  seen("completion", items.some((item) => item.label === "PRINT"));
  seen("signatures", (await ask(lsp.SignatureHelpRequest.type, onName)).signatures[0].label.startsWith("CALL"));
  const renamed = await ask(lsp.RenameRequest.type, { ...onName, newName: "SHOW" });
  seen("rename in both files", Object.keys(renamed.changes).length === 2);
  const refused = await ask(lsp.RenameRequest.type, { ...onName, newName: "BC" }).catch((error) => error.message);
  seen("a name that is refused", refused === "BC is a register or a condition");
  const { data } = await ask(lsp.SemanticTokensRequest.type);
  seen("colours", legend.tokenTypes[data[3]] === "keyword" && data.length % 5 === 0);
  const hints = await ask(lsp.InlayHintRequest.type, { range: everything });
  seen("inlay hints", hints[0].label === "0100");
  const edits = await ask(lsp.DocumentFormattingRequest.type, { options: { tabSize: 4, insertSpaces: true } });
  seen("formatting", edits.length > 0);
  seen("links", (await ask(lsp.DocumentLinkRequest.type))[0].target === uriOf("lib.kor"));
  await connection.sendRequest(lsp.ShutdownRequest.type);
  connection.sendNotification(lsp.ExitNotification.type);
  server.on("exit", (status) => {
    seen("the end", status === 0);
    process.exit(0);
  });
}

main().catch((error) => {
  console.error(error.message);
  process.exit(1);
});
