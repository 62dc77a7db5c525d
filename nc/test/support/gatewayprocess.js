// The gateway as a process, and the module's end of its local socket.
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import { createServer } from 'node:net';
import { join } from 'node:path';
import { fileURLToPath } from 'node:url';
import { readObjects, writeObject } from '../../shared/jsonlines.js';

const MAIN = fileURLToPath(new URL('../../gateway/main.js', import.meta.url));
const PATIENCE = 15000;

export class GatewayProcess {
  /** @param {string} directory for the socket */
  constructor(directory) {
    this.path = join(directory, 'gateway.sock');
    this.lines = []; // everything that came, in order
    this.output = ''; // what it printed
    this.waiting = [];
    this.taken = 0;
  }

  async start() {
    this.listener = createServer();
    this.listener.listen(this.path);
    await once(this.listener, 'listening');
    this.process = spawn(process.execPath, [MAIN, this.path]);
    this.exited = once(this.process, 'exit');
    for (const stream of [this.process.stdout, this.process.stderr]) {
      stream.on('data', (bytes) => (this.output += bytes));
    }
    [this.socket] = await once(this.listener, 'connection');
    this.socket.on('error', () => {});
    readObjects(this.socket, (line) => this.#came(line), (why) => this.#came({ broken: why }));
  }

  send(line) {
    writeObject(this.socket, line);
  }

  #came(line) {
    this.lines.push(line);
    this.waiting.forEach((look) => look());
  }

  /** The next line, after those waited for before, that the predicate accepts; its one member's content. */
  next(kind, accepts = () => true) {
    return new Promise((resolve, reject) => {
      const timer = setTimeout(
        () => reject(new Error(`no "${kind}" came; there were ${JSON.stringify(this.lines.slice(this.taken))}`)),
        PATIENCE,
      );
      const look = () => {
        for (let i = this.taken; i < this.lines.length; ++i) {
          const content = this.lines[i][kind];
          if (content !== undefined && accepts(content)) {
            this.taken = i + 1;
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

  async stop() {
    this.socket?.destroy();
    this.listener?.close();
    await this.exited;
  }
}
