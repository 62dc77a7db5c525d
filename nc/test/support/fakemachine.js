// A machine with a control link whose spindle has no inertia. It remembers what it was told.
import { EventEmitter, once } from 'node:events';
import { createServer } from 'node:net';
import { readObjects, writeObject } from '../../shared/jsonlines.js';

/** Emits 'speed' when a speed is commanded. */
export class FakeMachine extends EventEmitter {
  requests = [];
  speed = 0;
  unbalance = [{ amount: 1, angle_deg: 90 }];
  refusals = {};
  #sockets = new Set();

  async start() {
    this.server = createServer((socket) => {
      this.#sockets.add(socket);
      socket.on('close', () => this.#sockets.delete(socket)).on('error', () => {});
      readObjects(socket, (request) => writeObject(socket, this.#answer(request)), assertNever);
    });
    this.server.listen(0, '127.0.0.1');
    await once(this.server, 'listening');
    const { port } = this.server.address();
    this.endpoint = { host: '127.0.0.1', port, name: `tcp:127.0.0.1:${port}` };
    return this;
  }

  #answer(request) {
    const [kind] = Object.keys(request);
    if (kind === 'state') {
      return { ok: true, speed: this.speed, lock: true, unbalance: this.unbalance };
    }
    this.requests.push(request);
    if (this.refusals[kind]) {
      return { error: this.refusals[kind] };
    }
    if (kind === 'speed') {
      this.speed = request.speed;
      setImmediate(() => this.emit('speed', request.speed));
    }
    return { ok: true };
  }

  /** Contents of the requests of a kind. */
  told(kind) {
    return this.requests.filter((request) => kind in request).map((request) => request[kind]);
  }

  hangUp() {
    this.#sockets.forEach((socket) => socket.destroy());
  }

  stop() {
    this.server.close();
    this.hangUp();
  }
}

function assertNever(reason) {
  throw new Error(`the program sends ${reason}`);
}
