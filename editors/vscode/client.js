// Starts korv-ls for files of the language "korv" and passes the settings on to it. `tools/build vscode` bundles this
// file with the client library. Without the library, the extension only provides highlighting and problem matchers.
const vscode = require("vscode");

let library;
try {
  library = require("vscode-languageclient/node");
} catch {
  library = undefined;
}

let client;

// The settings for the server: the section "korv" without the path of the server itself.
function options() {
  const settings = vscode.workspace.getConfiguration("korv");
  return {
    main: settings.get("main"),
    arguments: settings.get("arguments"),
    inlayHints: settings.get("inlayHints"),
  };
}

async function start() {
  if (!library) {
    return;
  }
  const command = vscode.workspace.getConfiguration("korv").get("serverPath");
  client = new library.LanguageClient(
    "korv",
    "Korv",
    { command, args: [] },
    {
      documentSelector: [{ scheme: "file", language: "korv" }],
      initializationOptions: options(),
      synchronize: {
        fileEvents: vscode.workspace.createFileSystemWatcher("**/{*.kor,korv-as.args}"),
      },
    }
  );
  try {
    await client.start();
  } catch (error) {
    client = undefined;
    vscode.window.showWarningMessage(`Korv: cannot start ${command}. Install korv-ls, or set korv.serverPath.`);
  }
}

async function stop() {
  const running = client;
  client = undefined;
  await running?.stop();
}

exports.activate = async (context) => {
  context.subscriptions.push(
    vscode.commands.registerCommand("korv.restart", async () => {
      await stop();
      await start();
    }),
    vscode.workspace.onDidChangeConfiguration(async (event) => {
      if (event.affectsConfiguration("korv.serverPath")) {
        await vscode.commands.executeCommand("korv.restart");
      } else if (event.affectsConfiguration("korv")) {
        await client?.sendNotification("workspace/didChangeConfiguration", { settings: { korv: options() } });
      }
    })
  );
  await start();
};

exports.deactivate = stop;
