// A test server as a process of its own, which can be stopped and killed: serverprocess.js DIRECTORY PORT.
import { argv } from 'node:process';
import { fileURLToPath } from 'node:url';
import { within } from '../../shared/timing.js';
import { readObjects } from '../../shared/jsonlines.js';
import { provideCertificate } from './certificates.js';

const SELF = fileURLToPath(import.meta.url);

if (argv[1] === SELF && argv.length === 4) {
  const { TestServer } = await import('./testserver.js');
  const server = new TestServer(argv[2], { port: Number(argv[3]) });
  await server.start();
  const facts = { url: server.url, port: server.options.port, node: server.node('Request') };
  process.stdout.write(`${JSON.stringify(facts)}\n`);
}

export class ServerProcess {
  static async start(directory, port = 0) {
    const server = new ServerProcess();
    await provideCertificate(directory, 'test-nc');
    const { PATIENCE, start } = await import('./processes.js'); // of tests, which the server itself is not
    server.process = start(process.execPath, [SELF, directory, String(port)], { stdio: ['ignore', 'pipe', 'ignore'] });
    const facts = new Promise((resolve, reject) => {
      readObjects(server.process.stdout, resolve, () => {}); // the library speaks too
      server.process.ended.then((how) => reject(new Error(`the server ended with ${how}`)));
    });
    Object.assign(server, await within(facts, PATIENCE)); // url, port, and the node of a variable
    return server;
  }

  signal(name) {
    this.process.kill(name);
  }

  async stop() {
    this.process.kill('SIGKILL');
    await this.process.ended;
  }
}
