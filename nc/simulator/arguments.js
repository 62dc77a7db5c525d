import { readFileSync, statSync } from 'node:fs';
import { homedir } from 'node:os';
import { join } from 'node:path';
import { parseArgs } from 'node:util';
import { CERTIFICATES, INTEGER_TYPES } from './manners.js';
import { readRotorFile } from './rotorfile.js';

/** A bad argument, or something that an argument names can't be used. Ends the program with status 3. */
export class ArgumentError extends Error {}

export const PROCEDURES = Object.freeze({
  prebalance: ['prebalance'],
  rebalance: ['rebalance'],
  'prebalance+rebalance': ['prebalance', 'rebalance'],
});

/** ms, and for sessions that are ended, s. */
const LONGEST_TIME = 3600000;
/** Seconds. */
const LONGEST_CLOCK = 30 * 365 * 86400;

export const USAGE = `nc-simulator: an NC with an OPC UA server, and a part program that drives the balancing module

    --host ADDRESS        address to listen at, default 127.0.0.1
    --port N              default 4840; 0 takes a free one
    --pki DIR             certificates, default ~/.local/share/corvane-nc-simulator
    --user NAME           who may log in, with --password-file FILE; default everybody
    --security none       offers an endpoint without security besides the secure one
    --machine LINK        tcp:HOST:PORT, control link of the machine; with it the part program runs
    --rotor FILE          the rotor on the machine: working speed, holes and scales
    --procedure P         prebalance (default) | rebalance | prebalance+rebalance
    --plane N             plane of the rotor that a single-plane procedure balances, 1 (default) or 2
    --test-weight GRAMS   with screws: what the test screw is to weigh
    --target UNBALANCE    what the module is to balance to, in place of its configuration's target
    --rotation WAY        cw | ccw, in place of its configuration's direction
    --rotor-name TEXT     whose runs these are, for the archive
    --json                JSON lines on standard input and output; ends when the input closes
    --version             tells the version

As servers of other makes behave:

    --advertise HOST      the host that the endpoints name, whatever address was connected to
    --namespace-index N   of the items, 2 (default) to 50
    --certificate KIND    the server's own one: no-host, names another host | expired | future, valid in three years
    --trust by-hand       nobody is trusted until somebody moves the certificate from PKI/rejected to PKI/trusted
    --publishing MS       changes are told so often at most
    --sampling MS         the items are looked at so often only
    --session MS          a session without a request lasts so long
    --end-sessions S      every so many seconds all sessions end, while the connections stand
    --one-operation       one operation a request
    --integers TYPE       ${INTEGER_TYPES.join(' | ')} where usually there is Int32
    --clock SECONDS       the clock is fast by so much, or slow: --clock=-86400 is yesterday

Without --machine nothing is driven, and lines on standard input write items by hand: write Request 1
Exit status: 0 all procedures ended well, 1 over the target, 2 failed, 3 bad arguments.
`;

const OPTIONS = {
  host: 'string',
  port: 'string',
  pki: 'string',
  user: 'string',
  'password-file': 'string',
  security: 'string',
  machine: 'string',
  rotor: 'string',
  procedure: 'string',
  plane: 'string',
  'test-weight': 'string',
  target: 'string',
  rotation: 'string',
  'rotor-name': 'string',
  advertise: 'string',
  'namespace-index': 'string',
  certificate: 'string',
  trust: 'string',
  publishing: 'string',
  sampling: 'string',
  session: 'string',
  'end-sessions': 'string',
  'one-operation': 'boolean',
  integers: 'string',
  clock: 'string',
  json: 'boolean',
  help: 'boolean',
  version: 'boolean',
};

function split(argv) {
  const options = Object.fromEntries(Object.entries(OPTIONS).map(([name, type]) => [name, { type }]));
  try {
    const { values, tokens } = parseArgs({ args: argv, options, tokens: true });
    const names = tokens.map((token) => token.name);
    const twice = names.find((name, place) => names.indexOf(name) !== place);
    if (twice) {
      throw new ArgumentError(`--${twice} is given twice`);
    }
    return values;
  } catch (error) {
    if (error instanceof ArgumentError) {
      throw error;
    }
    // The library's messages go on with advice over several sentences.
    throw new ArgumentError(`${error.message.split(/[.\n]/)[0]}; --help lists the options`);
  }
}

function toWhole(name, text, least, most) {
  const value = Number(text);
  if (!/^\d+$/.test(text) || value < least || value > most) {
    throw new ArgumentError(`--${name} "${text}" must be a whole number from ${least} to ${most}`);
  }
  return value;
}

function toChoice(name, text, choices) {
  if (!choices.includes(text)) {
    throw new ArgumentError(`--${name} "${text}" must be ${choices.join(' or ')}`);
  }
  return text;
}

function toAmount(name, text, what) {
  if (text === undefined) {
    return undefined;
  }
  const value = Number(text);
  if (text.trim() === '' || !Number.isFinite(value) || value <= 0) {
    throw new ArgumentError(`--${name} "${text}" must be ${what} above 0`);
  }
  return value;
}

function toClock(text) {
  const seconds = Number(text);
  if (!/^[+-]?\d+$/.test(text) || Math.abs(seconds) > LONGEST_CLOCK) {
    throw new ArgumentError(`--clock "${text}" must be a number of seconds, at most 30 years`);
  }
  return seconds;
}

/** How the server differs from what it is without options; undefined where it doesn't. */
function readManners(values) {
  const ifGiven = (name, read) => (values[name] === undefined ? undefined : read(name, values[name]));
  const time = (name) => ifGiven(name, (_, text) => toWhole(name, text, 1, LONGEST_TIME));
  if (values.advertise === '') {
    throw new ArgumentError('--advertise "" must be the name or address of a host');
  }
  ifGiven('trust', (name, text) => toChoice(name, text, ['by-hand']));
  return {
    advertise: values.advertise,
    namespaceIndex: ifGiven('namespace-index', (name, text) => toWhole(name, text, 2, 50)),
    certificate: ifGiven('certificate', (name, text) => toChoice(name, text, Object.keys(CERTIFICATES))),
    isTrustedByHand: values.trust !== undefined,
    publishing: time('publishing'),
    sampling: time('sampling'),
    session: time('session'),
    endSessions: time('end-sessions'),
    oneOperation: values['one-operation'] ?? false,
    integers: ifGiven('integers', (name, text) => toChoice(name, text, INTEGER_TYPES)),
  };
}

/** The numbers of the directions are their places here. */
const ROTATIONS = ['cw', 'ccw'];

/** "tcp:HOST:PORT"; an IPv6 address stands in brackets. */
function toEndpoint(text) {
  const [, bracketed, plain, port] = /^tcp:(?:\[([^\]]+)\]|([^:[\]]+)):(\d+)$/.exec(text) ?? [];
  if (port === undefined || Number(port) < 1 || Number(port) > 65535) {
    throw new ArgumentError(`--machine "${text}" must be tcp:HOST:PORT, for example tcp:127.0.0.1:4002`);
  }
  return { host: bracketed ?? plain, port: Number(port), name: text };
}

function readPassword(path) {
  let text;
  try {
    const { mode } = statSync(path);
    if ((mode & 0o077) !== 0) {
      throw new ArgumentError(`--password-file ${path} can be read by others; chmod 600 ${path} keeps them out`);
    }
    text = readFileSync(path, 'utf8');
  } catch (error) {
    if (error instanceof ArgumentError) {
      throw error;
    }
    throw new ArgumentError(`--password-file ${path} can't be read: ${error.code ?? error.message}`);
  }
  const password = text.replace(/\r?\n$/, '');
  if (password === '') {
    throw new ArgumentError(`--password-file ${path} is empty`);
  }
  return password;
}

function readUser(values) {
  if ((values.user === undefined) !== (values['password-file'] === undefined)) {
    throw new ArgumentError('--user and --password-file go together');
  }
  if (values.user === undefined) {
    return undefined;
  }
  if (values.security !== undefined) {
    throw new ArgumentError('--user with --security none would let the password cross the network in the clear');
  }
  return { name: values.user, password: readPassword(values['password-file']) };
}

/**
 * Reads the command line and the files that it names.
 * @param {string[]} argv without the program
 * @throws {ArgumentError} in one line
 */
export function readArguments(argv) {
  const values = split(argv);
  if (values.help) {
    return { help: true };
  }
  if (values.version) {
    return { version: true };
  }
  if (values.security !== undefined) {
    toChoice('security', values.security, ['none']);
  }
  for (const name of ['procedure', 'plane']) {
    if (values[name] !== undefined && values.machine === undefined) {
      throw new ArgumentError(`--${name} needs --machine: without a machine nothing is driven`);
    }
  }
  const procedure = toChoice('procedure', values.procedure ?? 'prebalance', Object.keys(PROCEDURES));
  try {
    return {
      host: values.host ?? '127.0.0.1',
      port: toWhole('port', values.port ?? '4840', 0, 65535),
      pki: values.pki ?? join(homedir(), '.local', 'share', 'corvane-nc-simulator'),
      user: readUser(values),
      unsecured: values.security === 'none',
      machine: values.machine === undefined ? undefined : toEndpoint(values.machine),
      rotor: readRotorFile(values.rotor),
      procedures: PROCEDURES[procedure],
      plane: toWhole('plane', values.plane ?? '1', 1, 2),
      testWeight: toAmount('test-weight', values['test-weight'], 'a number of grams'),
      target: toAmount('target', values.target, 'a number'),
      rotation:
        values.rotation === undefined
          ? undefined
          : ROTATIONS.indexOf(toChoice('rotation', values.rotation, ROTATIONS)),
      rotorName: values['rotor-name'],
      manners: readManners(values),
      clock: toClock(values.clock ?? '0'),
      json: values.json ?? false,
    };
  } catch (error) {
    throw error instanceof ArgumentError ? error : new ArgumentError(error.message);
  }
}
