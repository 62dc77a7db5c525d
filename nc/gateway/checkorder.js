// What is to be looked at: one line, since a password stands in it, which must not be seen among the arguments.
import { LINES, findWrong } from './lines.js';
import { readObjects } from '../shared/jsonlines.js';

const NODE = {
  key: (value) => typeof value === 'string',
  node: (value) => typeof value === 'string',
  rate: (value) => value === 0 || LINES.subscribe.rate(value),
  values: (value) => Array.isArray(value),
};

const isNodes = (value) => Array.isArray(value) && value.every((node) => findWrong(node, NODE) === undefined);

/**
 * Reads {"check": {"connect": {...}, "nodes": [{"key", "node", "rate", "values"}]}}.
 * @param {import('node:stream').Readable} stream
 * @returns {Promise<{settings: object, nodes: object[]}>}
 */
export function readOrder(stream) {
  return new Promise((resolve, reject) => {
    const refuse = (reason) => reject(new Error(`standard input holds ${reason}`));
    const take = ({ check }) => {
      const wrong =
        findWrong(check, { connect: () => true, nodes: isNodes }) ?? findWrong(check.connect, LINES.connect);
      if (wrong === undefined) {
        resolve({ settings: check.connect, nodes: check.nodes });
      } else {
        refuse(`a wrong ${wrong}`);
      }
    };
    readObjects(stream, take, refuse);
    stream.once('end', () => refuse('no order'));
  });
}
