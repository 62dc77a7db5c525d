// The gateway as a process, and the module's end of its local socket.
import { once } from 'node:events';
import { createServer } from 'node:net';
import { join } from 'node:path';
import { fileURLToPath } from 'node:url';
import { readObjects, writeObject } from '../../shared/jsonlines.js';
import { provideCertificate } from './certificates.js';
import { PATIENCE, finish, start } from './processes.js';

const MAIN = fileURLToPath(new URL('../../gateway/main.js', import.meta.url));

/** Connected, or not for good reason: a busy machine may need more than one attempt. */
export const isSettled = ({ reason }) => !/in time/.test(reason);

export class GatewayProcess {
  /** @param {string} directory for the socket and the certificates */
  constructor(directory) {
    this.path = join(directory, 'gateway.sock');
    this.pki = join(directory, 'pki');
    this.lines = []; // everything that came, in order
    this.output = ''; // what it printed
    this.waiting = [];
    this.taken = 0;
  }

  /**
   * A process that is connected to a server, or has told why not.
   * @param {string} directory
   * @param {string} url of the server
   * @param {object} [settings] what differs from a connection of anybody with security
   * @param {(state: object) => boolean} [accepts] which state to wait for
   */
  static async connect(directory, url, settings = {}, accepts = isSettled) {
    const gateway = new GatewayProcess(directory);
    await provideCertificate(gateway.pki, 'opc-gateway');
    await gateway.start();
    gateway.connect(url, settings);
    gateway.firstState = await gateway.next('state', accepts);
    return gateway;
  }

  /** @param {object} [environment] variables besides those of this process */
  async start(environment = {}) {
    const listener = createServer();
    listener.listen(this.path);
    await once(listener, 'listening');
    this.process = start(process.execPath, [MAIN, this.path], { env: { ...process.env, ...environment } });
    for (const stream of [this.process.stdout, this.process.stderr]) {
      stream.on('data', (bytes) => (this.output += bytes));
    }
    [this.socket] = await once(listener, 'connection', { signal: AbortSignal.timeout(PATIENCE) });
    listener.close();
    this.socket.on('error', () => {});
    readObjects(this.socket, (line) => this.#came(line), (why) => this.#came({ broken: why }));
  }

  send(line) {
    writeObject(this.socket, line);
  }

  connect(url, settings = {}) {
    const nothing = { fingerprint: '', user: '', password: '', user_certificate: '', user_key: '' };
    this.send({ connect: { server: url, security: 'Basic256Sha256', pki: this.pki, ...nothing, ...settings } });
  }

  #came(line) {
    this.lines.push(line);
    this.waiting.forEach((look) => look());
  }

  /**
   * The next line, after those waited for before, that the predicate accepts; its one member's content. Waits that are
   * begun together begin at the same line: what may come in any order is to be waited for so.
   */
  next(kind, accepts = () => true) {
    const first = this.taken;
    return new Promise((resolve, reject) => {
      const timer = setTimeout(() => {
        const last = JSON.stringify(this.lines.slice(-20));
        reject(new Error(`no "${kind}" came in ${PATIENCE} ms; the last lines were ${last} ${this.output}`));
      }, PATIENCE);
      const look = () => {
        for (let i = first; i < this.lines.length; ++i) {
          const content = this.lines[i][kind];
          if (content !== undefined && accepts(content)) {
            this.taken = Math.max(this.taken, i + 1);
            clearTimeout(timer);
            this.waiting = this.waiting.filter((other) => other !== look);
            resolve(content);
            return;
          }
        }
      };
      this.waiting.push(look);
      look();
    });
  }

  /** What is told next about a subscription. */
  changed(id) {
    return this.next('changed', (change) => change.id === id);
  }

  async write(node, value, id = 1) {
    this.send({ write: { id, node, value } });
    return await this.next('written', (answer) => answer.id === id);
  }

  async read(node, id = 1) {
    this.send({ read: { id, node } });
    return await this.next('value', (answer) => answer.id === id);
  }

  /** Lines of a kind that came so far. */
  all(kind) {
    return this.lines.filter((line) => line[kind] !== undefined).map((line) => line[kind]);
  }

  /** States since it was connected first. */
  get states() {
    const states = this.all('state');
    return states.slice(states.findIndex(({ connected }) => connected));
  }

  /** All that came out of it, to look for what must not be there. */
  get everything() {
    return JSON.stringify(this.lines) + this.output;
  }

  /** Closes the socket; the exit status. */
  async stop() {
    this.socket?.destroy();
    return this.process && (await finish(this.process));
  }
}
