// The NC simulator: an OPC UA server with the items of the balancing interface, and a part program that drives the
// module through them.
import { createInterface } from 'node:readline';
import { ArgumentError, USAGE, readArguments } from './arguments.js';
import { CommandError, carryJson, carryText } from './commands.js';
import { describeChange } from './notification.js';
import { Output } from './output.js';
import { NcServer } from './server.js';

const EXIT_FAILED = 2;
const EXIT_BAD_ARGUMENTS = 3;

/** Resolves when the program is asked to end. */
function untilAsked(options) {
  return new Promise((resolve) => {
    process.once('SIGTERM', resolve);
    process.once('SIGINT', resolve);
    if (options.json) {
      process.stdin.once('close', resolve);
    }
  });
}

function readCommands(options, server, output) {
  createInterface({ input: process.stdin }).on('line', (line) => {
    try {
      const words = options.json ? carryJson(server, line) : carryText(server, line);
      if (words !== undefined) {
        output.say(words);
      }
    } catch (error) {
      if (!(error instanceof CommandError)) {
        throw error;
      }
      output.tell({ refused: error.message }, error.message);
    }
  });
}

async function startServer(options, output) {
  try {
    return await NcServer.start({ ...options, say: (text) => output.say(text) });
  } catch (error) {
    const where = `${options.host}:${options.port}`;
    switch (error.code) {
      case 'EADDRINUSE':
        throw new ArgumentError(`port ${options.port} at ${options.host} is taken; --port 0 takes a free one`);
      case 'EADDRNOTAVAIL':
      case 'ENOTFOUND':
      case 'EAI_AGAIN':
        throw new ArgumentError(`--host ${options.host} is no address of this computer`);
      case 'EACCES':
      case 'ENOTDIR':
      case 'EROFS':
        throw new ArgumentError(`can't start at ${where} with certificates in ${options.pki}: ${error.message}`);
      default:
        throw error;
    }
  }
}

async function run(options) {
  const output = new Output(options.json);
  const server = await startServer(options, output);
  const asked = untilAsked(options);
  server.on('changed', (item, value) => output.tell({ changed: { item, value } }, describeChange(item, value)));
  output.tell(
    {
      listening: {
        url: server.url,
        port: server.address.port,
        fingerprint: server.fingerprint,
        items: server.nodeIds,
      },
    },
    `listening at ${server.url}, certificate ${server.fingerprint}`,
  );
  if (options.testWeight !== undefined) {
    server.write('TestWeight', options.testWeight);
  }
  if (options.json || options.machine === undefined) {
    readCommands(options, server, output);
  }
  await asked;
  const status = 0;
  output.tell({ done: { exit: status } });
  await server.stop();
  return status;
}

try {
  const options = readArguments(process.argv.slice(2));
  if (options.help) {
    process.stdout.write(USAGE);
    process.exit(0);
  }
  process.exit(await run(options));
} catch (error) {
  if (error instanceof ArgumentError) {
    process.stderr.write(`nc-simulator: ${error.message}\n`);
    process.exit(EXIT_BAD_ARGUMENTS);
  }
  process.stderr.write(`nc-simulator: ${error.stack}\n`);
  process.exit(EXIT_FAILED);
}
