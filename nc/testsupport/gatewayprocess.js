// The gateway as the module sees it: a process at the other end of a local socket.
import { spawn } from 'node:child_process';
import { EventEmitter, once } from 'node:events';
import { createServer } from 'node:net';
import { join } from 'node:path';
import { fileURLToPath } from 'node:url';
import { readObjects, writeObject } from '../shared/jsonlines.js';

const MAIN = fileURLToPath(new URL('../gateway/main.js', import.meta.url));
const LIMIT = 20000;

/** What a connect line holds when only the server is given. */
export const settingsFor = (url, pki, others = {}) => ({
  server: url,
  security: 'Basic256Sha256',
  fingerprint: '',
  pki,
  user: '',
  password: '',
  user_certificate: '',
  user_key: '',
  ...others,
});

export class GatewayProcess {
  /** All lines from the gateway, in order. */
  lines = [];
  /** All that it printed. */
  output = '';
  #arrival = new EventEmitter();
  #taken = 0;

  /** @param {string} directory for the socket */
  static async start(directory, environment = {}) {
    const gateway = new GatewayProcess();
    const path = join(directory, 'gateway.sock');
    const listener = createServer();
    listener.listen(path);
    await once(listener, 'listening');
    gateway.process = spawn(process.execPath, [MAIN, path], { env: { ...process.env, ...environment } });
    for (const stream of [gateway.process.stdout, gateway.process.stderr]) {
      stream.setEncoding('utf8').on('data', (text) => (gateway.output += text));
    }
    gateway.exited = once(gateway.process, 'exit').then(([status, signal]) => signal ?? status);
    const died = gateway.exited.then((status) => {
      throw new Error(`the gateway ended with ${status}: ${gateway.output}`);
    });
    [gateway.socket] = await Promise.race([once(listener, 'connection'), died]);
    died.catch(() => {});
    listener.close();
    gateway.socket.on('error', () => {});
    const take = (line) => {
      gateway.lines.push(line);
      gateway.#arrival.emit('line');
    };
    readObjects(gateway.socket, take, (reason) => take({ broken: reason }));
    return gateway;
  }

  send(line) {
    writeObject(this.socket, line);
  }

  /** The next line that matches, after the one that was waited for before. Lines between are skipped. */
  async next(matches, limit = LIMIT) {
    const end = AbortSignal.timeout(limit);
    for (;;) {
      while (this.#taken < this.lines.length) {
        const line = this.lines[this.#taken++];
        if (matches(line)) {
          return line;
        }
      }
      try {
        await once(this.#arrival, 'line', { signal: end });
      } catch {
        const rest = JSON.stringify(this.lines.slice(-10));
        throw new Error(`no such line in ${limit} ms: ${matches}; last lines: ${rest}; output: ${this.output}`);
      }
    }
  }

  async connected() {
    return await this.next((line) => line.state?.connected === true);
  }

  /** Why there is no connection. */
  async refused() {
    return (await this.next((line) => line.state?.connected === false)).state.reason;
  }

  /** What is told about a subscription next. */
  async changed(id) {
    return (await this.next((line) => line.changed?.id === id)).changed;
  }

  async write(id, node, value) {
    this.send({ write: { id, node, value } });
    return (await this.next((line) => line.written?.id === id)).written;
  }

  async read(id, node) {
    this.send({ read: { id, node } });
    return (await this.next((line) => line.value?.id === id)).value;
  }

  /** Everything that came out of the gateway. */
  get everything() {
    return JSON.stringify(this.lines) + this.output;
  }

  async stop() {
    this.socket.destroy();
    return await this.exited;
  }
}
