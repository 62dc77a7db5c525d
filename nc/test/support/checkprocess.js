// The gateway as it looks at a server once, and tells what it finds.
import { fileURLToPath } from 'node:url';
import { readObjects, writeObject } from '../../shared/jsonlines.js';
import { provideCertificate } from './certificates.js';
import { finish, start } from './processes.js';

const MAIN = fileURLToPath(new URL('../../gateway/main.js', import.meta.url));
const NOBODY = { fingerprint: '', user: '', password: '', user_certificate: '', user_key: '' };

/** Runs the check with an order; all that it tells, and its status. */
export async function runCheck(order) {
  const child = start(process.execPath, [MAIN, '--check']);
  const lines = [];
  let errors = '';
  readObjects(child.stdout, (line) => lines.push(line), (why) => lines.push({ broken: why }));
  child.stderr.on('data', (bytes) => (errors += bytes));
  child.stdin.on('error', () => {}); // it may have refused
  writeObject(child.stdin, order);
  child.stdin.end();
  return { status: await finish(child), lines, errors };
}

/**
 * What is found of a server.
 * @param {string} pki
 * @param {string} url
 * @param {object[]} nodes
 * @param {object} [settings] what differs from a connection of anybody with security
 * @returns {Promise<object>} the facts by their names; `nodes` by their keys, `granted` a list
 */
export async function checkServer(pki, url, nodes = [], settings = {}) {
  await provideCertificate(pki, 'opc-gateway');
  const connect = { server: url, security: 'Basic256Sha256', pki, ...NOBODY, ...settings };
  const { lines } = await runCheck({ check: { connect, nodes } });
  const facts = { nodes: {}, granted: [] };
  for (const [name, content] of lines.flatMap(Object.entries)) {
    if (name === 'node') {
      facts.nodes[content.key] = content;
    } else if (name === 'granted') {
      facts.granted.push(content);
    } else {
      facts[name] = content;
    }
  }
  return facts;
}
