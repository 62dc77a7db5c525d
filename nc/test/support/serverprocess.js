// A test server as a process of its own, which can be stopped and killed: serverprocess.js DIRECTORY PORT.
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import { argv } from 'node:process';
import { createInterface } from 'node:readline';
import { fileURLToPath } from 'node:url';
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
    server.process = spawn(process.execPath, [SELF, directory, String(port)], { stdio: ['ignore', 'pipe', 'ignore'] });
    server.exited = once(server.process, 'exit');
    for await (const line of createInterface({ input: server.process.stdout })) {
      if (line.startsWith('{')) {
        Object.assign(server, JSON.parse(line)); // url, port, and the node of a variable
        break;
      }
    }
    return server;
  }

  signal(name) {
    this.process.kill(name);
  }

  async stop() {
    this.process.kill('SIGKILL');
    await this.exited;
  }
}
