// The NC simulator as a process, spoken to in JSON lines.
import { fileURLToPath } from 'node:url';
import { readObjects, writeObject } from '../../shared/jsonlines.js';
import { PATIENCE, finish, start } from './processes.js';

const MAIN = fileURLToPath(new URL('../../simulator/main.js', import.meta.url));

/** Runs it to its end, for arguments that it refuses. */
export async function runSimulator(...args) {
  const child = start(process.execPath, [MAIN, ...args], { stdio: ['ignore', 'pipe', 'pipe'] });
  let stdout = '';
  let stderr = '';
  child.stdout.on('data', (bytes) => (stdout += bytes));
  child.stderr.on('data', (bytes) => (stderr += bytes));
  const status = await finish(child);
  return { status, stdout, stderr };
}

export class SimulatorProcess {
  lines = [];
  errors = '';
  #taken = 0;
  #look = () => {};

  /** @param {string} pki directory @param {...string} args beyond --json, --port, --pki */
  constructor(pki, ...args) {
    this.process = start(process.execPath, [MAIN, '--json', '--port', '0', '--pki', pki, ...args]);
    this.process.stdin.on('error', () => {}); // it may have ended before it was told to
    this.process.stderr.on('data', (bytes) => (this.errors += bytes));
    const came = (line) => {
      this.lines.push(line);
      this.#look();
    };
    readObjects(this.process.stdout, came, (why) => came({ broken: why }));
  }

  /** Content of the next line of a kind that the predicate accepts; those before it are passed over. */
  next(kind, accepts = () => true) {
    return new Promise((resolve, reject) => {
      const passed = this.#taken;
      const timer = setTimeout(
        () => reject(new Error(`no ${kind} came, but ${JSON.stringify(this.lines.slice(passed))} ${this.errors}`)),
        PATIENCE,
      );
      this.#look = () => {
        while (this.#taken < this.lines.length) {
          const content = this.lines[this.#taken++][kind];
          if (content !== undefined && accepts(content)) {
            this.#look = () => {};
            clearTimeout(timer);
            resolve(content);
            return;
          }
        }
      };
      this.#look();
    });
  }

  send(line) {
    writeObject(this.process.stdin, line);
  }

  /** Waits for its end; its status. */
  finish() {
    return finish(this.process);
  }

  /** Closes its input and waits for its end; its status. */
  async stop() {
    this.process.stdin.end();
    return await this.finish();
  }
}
