// The gateway process and servers that go, hang and come back.
import assert from 'node:assert/strict';
import { once } from 'node:events';
import { createServer } from 'node:net';
import { join } from 'node:path';
import { describe, test } from 'node:test';
import { provideCertificate } from './support/certificates.js';
import { GatewayProcess } from './support/gatewayprocess.js';
import { Stopwatch } from './support/processes.js';
import { ServerProcess } from './support/serverprocess.js';
import { makeDirectory, removeDirectory } from './support/temporary.js';
import { TestServer } from './support/testserver.js';

/** What a test has of its own, and leaves behind. */
class Context {
  static async make(t) {
    const context = new Context();
    context.directory = await makeDirectory();
    t.after(async () => {
      await context.gateway?.stop();
      await context.server?.stop();
      await removeDirectory(context.directory);
    });
    return context;
  }

  async startServer() {
    this.server = new TestServer(join(this.directory, 'server'));
    await provideCertificate(this.server.directory, 'test-nc');
    await this.server.start();
    return this.server;
  }

  /** Others: see GatewayProcess.connect(). */
  async startGateway(url = this.server.url, ...others) {
    this.gateway = await GatewayProcess.connect(this.directory, url, ...others);
    return this.gateway;
  }

  /** A server that can be stopped and killed, and the gateway connected to it. */
  async startProcesses() {
    this.server = await ServerProcess.start(join(this.directory, 'server'));
    await this.startGateway();
    assert.deepEqual(this.gateway.firstState, { connected: true });
    return this;
  }
}

const isConnected = (state) => state.connected;
const isAny = () => true;
const isLost = (state) => !state.connected;


// Mostly waiting: they run side by side.
describe('connection', { concurrency: 4 }, () => {
  test('a server that hangs is noticed within 10 s, and used again when it goes on', async (t) => {
    const { gateway, server } = await (await Context.make(t)).startProcesses();
    gateway.send({ subscribe: { id: 1, node: server.node, rate: 100 } });
    await gateway.changed(1);
    let watch = new Stopwatch(gateway.process.pid);
    server.signal('SIGSTOP');
    assert.match((await gateway.next('state', isLost)).reason, /doesn't answer/);
    assert.ok(watch.usable < 10);
    server.signal('SIGCONT');
    assert.deepEqual((await gateway.changed(1)).value, { int32: 0 });
    await gateway.next('state', isConnected); // only after the values
    // While it hangs again, the socket closes: the gateway ends all the same.
    server.signal('SIGSTOP');
    watch = new Stopwatch(gateway.process.pid);
    assert.equal(await gateway.stop(), 0);
    assert.ok(watch.usable < 4);
  });

  test('a write that a hanging server does not answer fails after 5 s', async (t) => {
    const { gateway, server } = await (await Context.make(t)).startProcesses();
    server.signal('SIGSTOP');
    const watch = new Stopwatch(gateway.process.pid);
    const answer = await gateway.write(server.node, { int32: 1 });
    assert.match(answer.error, /doesn't answer in time/);
    assert.ok(watch.passed > 4 && watch.usable < 8);
  });

  test('nobody listening: each attempt tells why, with growing pauses, and orders fail at once', async (t) => {
    const context = await Context.make(t);
    const listener = createServer().listen(0, '127.0.0.1');
    await once(listener, 'listening');
    const { port } = listener.address();
    listener.close();
    const gateway = await context.startGateway(`opc.tcp://127.0.0.1:${port}`);
    assert.match(gateway.firstState.reason, /nothing listens at this address \(ECONNREFUSED\)/);
    assert.match((await gateway.write('ns=2;s=Request', { int32: 1 })).error, /no connection/);
    assert.match((await gateway.read('ns=2;s=Request')).error, /no connection/);
    await gateway.next('state');
    let watch = new Stopwatch();
    const pauses = [];
    for (let i = 0; i < 2; ++i) {
      await gateway.next('state');
      pauses.push(watch.passed);
      watch = new Stopwatch();
    }
    assert.ok(pauses[0] > 0.9 && pauses[1] > 1.9, String(pauses)); // after the first one of 0.5 s
  });

  test('a server that takes the connection and says nothing is given up', async (t) => {
    const context = await Context.make(t);
    const silent = createServer((socket) => socket.on('error', () => {})).listen(0, '127.0.0.1');
    t.after(() => silent.close());
    await once(silent, 'listening');
    const gateway = await context.startGateway(`opc.tcp://127.0.0.1:${silent.address().port}`, {}, isAny);
    assert.equal(gateway.firstState.connected, false);
    assert.match(gateway.firstState.reason, /doesn't answer/);
  });

  test('a server that speaks something else is no connection, and tried again', async (t) => {
    const context = await Context.make(t);
    const answer = (socket) => socket.on('error', () => {}).end('HTTP/1.1 400 Bad Request\r\n\r\n');
    const other = createServer(answer).listen(0, '127.0.0.1');
    t.after(() => other.close());
    await once(other, 'listening');
    const gateway = await context.startGateway(`opc.tcp://127.0.0.1:${other.address().port}`, {}, isAny);
    assert.equal(gateway.firstState.connected, false);
    assert.equal((await gateway.next('state')).connected, false);
  });

  test('a server that is killed is noticed within 2 s; orders on the way are answered once each', async (t) => {
    const { gateway, server } = await (await Context.make(t)).startProcesses();
    assert.deepEqual(await gateway.write(server.node, { int32: 1 }), { id: 1 });
    server.signal('SIGSTOP'); // so that nothing is answered any more
    for (let id = 10; id < 20; ++id) {
      gateway.send({ write: { id, node: server.node, value: { int32: id } } });
    }
    gateway.send({ read: { id: 20, node: server.node } });
    gateway.send({ ping: { id: 21 } });
    await gateway.next('pong'); // all lines before were taken
    const watch = new Stopwatch(gateway.process.pid);
    server.signal('SIGKILL');
    await gateway.next('state', isLost);
    assert.ok(watch.usable < 2);
    gateway.send({ write: { id: 22, node: server.node, value: { int32: 1 } } });
    await gateway.next('written', ({ id }) => id === 22);
    const written = gateway.all('written').filter(({ id }) => id >= 10);
    assert.deepEqual(written.map(({ id }) => id), [10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 22]);
    assert.ok(written.every(({ error }) => error));
    assert.equal(gateway.all('value').filter(({ id, error }) => id === 20 && error).length, 1);
  });
});

test('a server that is restarted is connected again, with its subscriptions', async (t) => {
  const context = await Context.make(t);
  const server = await context.startServer();
  const gateway = await context.startGateway(); // though the server announces a name that nobody knows
  assert.deepEqual(gateway.firstState, { connected: true });
  gateway.send({ subscribe: { id: 1, node: server.node('Request'), rate: 100 } });
  gateway.send({ subscribe: { id: 2, node: server.node('Nobody'), rate: 100 } });
  await Promise.all([gateway.changed(1), gateway.changed(2)]);
  await server.stop();
  assert.match((await gateway.next('state', isLost)).reason, /\w/);
  assert.match((await gateway.write(server.node('Request'), { int32: 1 })).error, /no connection/);
  assert.match((await gateway.read(server.node('Request'))).error, /no connection/);
  // Subscriptions may change meanwhile.
  gateway.send({ subscribe: { id: 3, node: server.node('Weight'), rate: 200 } });
  const told = gateway.lines.length;
  await server.start();
  const [, missing, added] = await Promise.all([gateway.changed(1), gateway.changed(2), gateway.changed(3)]);
  await gateway.next('state', isConnected);
  const order = gateway.lines.slice(told).filter(({ changed, state }) => changed || state?.connected);
  assert.ok(order.findIndex(({ state }) => state) >= 3); // only after the values
  assert.match(missing.error, /no such node/);
  assert.deepEqual(added.value, { double: 2.5 });
  // A server may tell the change before it confirms the write.
  const [written] = await Promise.all([
    gateway.write(server.node('Request'), { int32: 4 }),
    gateway.next('changed', ({ id, value }) => id === 1 && value.int32 === 4),
  ]);
  assert.deepEqual(written, { id: 1 });
  server.set('Request', 5);
  await gateway.next('changed', ({ id, value }) => id === 1 && value.int32 === 5);
  const changes = gateway.lines.slice(told).filter(({ changed }) => changed?.id === 1);
  assert.deepEqual(changes.map(({ changed }) => changed.value.int32), [0, 4, 5]); // the present one once
});

test('when the socket closes, the session is closed at the server, and the gateway ends', async (t) => {
  const context = await Context.make(t);
  const { engine } = (await context.startServer()).server;
  const gateway = await context.startGateway();
  assert.equal(engine.currentSessionCount, 1);
  assert.equal(await gateway.stop(), 0);
  assert.equal(engine.currentSessionCount, 0);
});
