import { RIGHTS } from './server.js';
import { ITEMS, describeKind, findItem, fits } from './items.js';

/** A command that can't be carried out. */
export class CommandError extends Error {}

function itemOf(key) {
  const item = findItem(key);
  if (!item) {
    const known = ITEMS.map((each) => each.key).join(', ');
    throw new CommandError(`unknown item ${JSON.stringify(key)}, known: ${known}`);
  }
  return item;
}

function write(server, key, value) {
  const item = itemOf(key);
  if (!fits(item, value)) {
    throw new CommandError(`${key} takes ${describeKind(item)}`);
  }
  server.write(key, value);
}

const JSON_COMMANDS = {
  write: (server, { item, value }) => write(server, item, value),
  remove: (server, { item }) => server.remove(itemOf(item).key),
  restore: (server, { item }) => server.restore(itemOf(item).key),
  retype: (server, { item, type }) => {
    if (type !== 'String') {
      throw new CommandError('an item can become a String only');
    }
    server.retype(itemOf(item).key);
  },
  restrict: (server, { item, rights }) => {
    if (!Object.hasOwn(RIGHTS, rights ?? '')) {
      throw new CommandError(`rights are one of ${Object.keys(RIGHTS).join(', ')}`);
    }
    server.restrict(itemOf(item).key, rights);
  },
  end_sessions: (server) => server.endSessions(),
};

/**
 * Carries out a line of a program.
 * @param {import('./server.js').NcServer} server
 * @param {object} command
 * @throws {CommandError}
 */
export function carryJson(server, command) {
  const [name, ...more] = Object.keys(command);
  const known = Object.hasOwn(JSON_COMMANDS, name ?? '') && typeof command[name] === 'object' && command[name] !== null;
  if (!known || more.length > 0) {
    throw new CommandError(`a line is an object with one of ${Object.keys(JSON_COMMANDS).join(', ')}`);
  }
  JSON_COMMANDS[name](server, command[name]);
}

export const HELP = `write ITEM VALUE...  writes an item: write Request 1
show                 what the items hold
help                 this; end of input leaves the server running, Ctrl+C ends it
items: ${ITEMS.map(({ key }) => key).join(', ')}`;

/**
 * Carries out a line of a person.
 * @returns {string | undefined} what to say
 * @throws {CommandError}
 */
export function carryText(server, line) {
  const [name, key, ...rest] = line.trim().split(/[\s,]+/);
  switch (name) {
    case '':
      return undefined;
    case 'help':
      return HELP;
    case 'show':
      return ITEMS.map((item) => `${item.key} ${[server.read(item.key) ?? 'nothing'].flat().join(' ')}`).join('\n');
    case 'write': {
      if (itemOf(key).type === 'String') {
        write(server, key, line.trim().split(/\s+/).slice(2).join(' '));
        return undefined;
      }
      const values = rest.map((text) => (text === '' ? NaN : Number(text)));
      write(server, key, itemOf(key).size === undefined && values.length === 1 ? values[0] : values);
      return undefined;
    }
    default:
      throw new CommandError(`unknown command "${name}"; help lists the commands`);
  }
}
