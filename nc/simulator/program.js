// What the NC simulator does once its arguments are read.
import { createInterface } from 'node:readline';
import { readObjects } from '../shared/jsonlines.js';
import { quietly } from '../shared/timing.js';
import { ArgumentError } from './arguments.js';
import { CommandError, carryJson, carryText } from './commands.js';
import { MachineLink } from './machinelink.js';
import { describeChange } from './notification.js';
import { Output } from './output.js';
import { ExitStatus, PartProgram } from './partprogram.js';
import { NcServer } from './server.js';

/** Clients are told that the server ends; one that doesn't listen holds nothing up. */
const CLOSING_LIMIT = 5000;

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
  const refuse = (reason) => output.tell({ refused: reason }, reason);
  const carry = (command) => {
    try {
      const words = options.json ? carryJson(server, command) : carryText(server, command);
      if (words !== undefined) {
        output.say(words);
      }
    } catch (error) {
      if (!(error instanceof CommandError)) {
        throw error;
      }
      refuse(error.message);
    }
  };
  if (options.json) {
    readObjects(process.stdin, carry, refuse);
  } else {
    createInterface({ input: process.stdin }).on('line', carry);
  }
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

async function reach(endpoint) {
  try {
    return await MachineLink.connect(endpoint);
  } catch (error) {
    throw new ArgumentError(`${error.message}; --machine takes the control link of a machine that runs`);
  }
}

function tellOf(server, options, output) {
  const listening = {
    url: server.url,
    port: server.address.port,
    fingerprint: server.fingerprint,
    items: server.nodeIds,
  };
  output.tell({ listening }, `listening at ${server.url}, certificate ${server.fingerprint}`);
  server.on('changed', (item, value) => output.tell({ changed: { item, value } }, describeChange(item, value)));
  if (options.json || options.machine === undefined) {
    readCommands(options, server, output);
  }
}

/**
 * @param {ReturnType<import('./arguments.js').readArguments>} options
 * @returns {Promise<number>} exit status
 * @throws {ArgumentError} if what the options name can't be used
 */
export async function run(options) {
  const output = new Output(options.json);
  const say = (text) => output.say(text);
  const machine = options.machine && (await reach(options.machine));
  const server = await startServer(options, output);
  const asked = untilAsked(options);
  tellOf(server, options, output);
  let status;
  if (machine) {
    const program = new PartProgram({ ...options, items: server, machine, say });
    status = await Promise.race([program.run(options.procedures), asked.then(() => ExitStatus.failed)]);
  } else {
    const wishes = {
      TestWeight: options.testWeight,
      TargetUnbalance: options.target,
      RotationDirection: options.rotation,
      RotorName: options.rotorName,
    };
    for (const [key, value] of Object.entries(wishes)) {
      if (value !== undefined) {
        server.write(key, value);
      }
    }
    await asked;
    status = ExitStatus.ended;
  }
  output.tell({ done: { exit: status } });
  machine?.close();
  await quietly(server.stop(), CLOSING_LIMIT);
  return status;
}
