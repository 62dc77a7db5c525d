// Servers of other makes: what they revise, limit and forget, and still are to be worked with.
import assert from 'node:assert/strict';
import { join } from 'node:path';
import { describe, test } from 'node:test';
import { setTimeout as sleep } from 'node:timers/promises';
import { provideCertificate } from './support/certificates.js';
import { GatewayProcess } from './support/gatewayprocess.js';
import { Stopwatch } from './support/processes.js';
import { makeDirectory, removeDirectory } from './support/temporary.js';
import { TestServer } from './support/testserver.js';

/** A server with these options and a gateway that is connected to it; they end with the test. */
async function connect(t, options) {
  const directory = await makeDirectory();
  t.after(() => removeDirectory(directory));
  const server = new TestServer(join(directory, 'server'), options);
  await provideCertificate(server.directory, 'test-nc');
  await server.start();
  t.after(() => server.stop());
  const gateway = await GatewayProcess.connect(directory, server.url);
  t.after(() => gateway.stop());
  assert.deepEqual(gateway.firstState, { connected: true });
  return { gateway, server };
}

const texts = (gateway, level) => gateway.all('log').filter((line) => line.level === level).map(({ text }) => text);
const warnings = (gateway) => texts(gateway, 'warning').filter((text) => !/trusted from now on/.test(text));

// One after the other: while a server is started the others of this process don't answer.
describe('servers of other makes', () => {
  for (const [what, requestedPublishingInterval, requestedMaxKeepAliveCount, sessionTimeout, warned, informed] of [
    ['updates slower than a second', 1500, 20, 20000, [/every 1500 ms, not every 100/], []],
    ['slow updates in a short session', 500, 20, 9000, [/every 500 ms, not every 100/], [/for 9000 ms, not 20000/]],
    ['rare signs of life', 100, 1000, 20000, [], [/after 1000 updates .*, not after 20/]],
    ['all of it', 2000, 12000, 4000, [/every 2000 ms/], [/for 4000 ms/, /after 12000 updates/]],
  ]) {
    test(`a server that grants ${what} is worked with, and it is told what it granted`, async (t) => {
      const revise = { requestedPublishingInterval, requestedMaxKeepAliveCount };
      const { gateway, server } = await connect(t, { revise, sessionTimeout });
      gateway.send({ subscribe: { id: 1, node: server.node('Request'), rate: 100 } });
      assert.deepEqual((await gateway.changed(1)).value, { int32: 0 });
      for (const request of [3, 1]) {
        server.set('Request', request);
        assert.deepEqual((await gateway.changed(1)).value, { int32: request });
      }
      const answers = [gateway.write(server.node('Request'), { int32: 0 }), gateway.changed(1)]; // in any order
      assert.deepEqual(await Promise.all(answers), [{ id: 1 }, { id: 1, value: { int32: 0 } }]);
      assert.deepEqual(gateway.all('changed').map(({ value }) => value.int32), [0, 3, 1, 0]); // each once
      assert.deepEqual(gateway.states, [{ connected: true }]);
      for (const [told, expected] of [[warnings(gateway), warned], [texts(gateway, 'information'), informed]]) {
        assert.equal(told.length, expected.length, told.join('\n'));
        expected.forEach((text, place) => assert.match(told[place], text));
      }
    });
  }

  test('a server that keeps sessions but shortly is asked often enough', async (t) => {
    const { gateway, server } = await connect(t, { sessionTimeout: 1500 });
    let questions = 0;
    const read = server.server._on_ReadRequest.bind(server.server);
    server.server._on_ReadRequest = (message, channel) => {
      ++questions;
      return read(message, channel);
    };
    const watch = new Stopwatch(gateway.process.pid);
    while (questions < 8) {
      await sleep(20);
    }
    assert.ok(watch.usable / questions < 1.5 / 2, `${watch.usable} s for ${questions} questions`);
  });

  test('what a slow server holds at first is told at once, before the connection', async (t) => {
    const { gateway, server } = await connect(t, { revise: { requestedPublishingInterval: 60000 } });
    gateway.send({ subscribe: { id: 1, node: server.node('Request'), rate: 100 } });
    assert.deepEqual((await gateway.changed(1)).value, { int32: 0 });
    server.set('Request', 3);
    server.endSessions();
    assert.equal((await gateway.next('state', ({ connected }) => !connected)).connected, false);
    await gateway.next('state', ({ connected }) => connected);
    assert.deepEqual(gateway.all('changed').at(-1), { id: 1, value: { int32: 3 } });
  });

  test('a session that the server ends is a lost connection, and its values are told once in a new one', async (t) => {
    const { gateway, server } = await connect(t);
    gateway.send({ subscribe: { id: 1, node: server.node('Request'), rate: 100 } });
    await gateway.changed(1);
    server.set('Request', 3);
    await gateway.changed(1);
    for (let round = 0; round < 3; ++round) {
      const told = gateway.lines.length;
      server.endSessions();
      // The answer to what was told comes too late for the session that it was told in.
      gateway.send({ write: { id: 10 + round, node: server.node('Request'), value: { int32: 0 } } });
      assert.match((await gateway.next('state', ({ connected }) => !connected)).reason, /BadSession/);
      await gateway.next('state', ({ connected }) => connected);
      const lines = gateway.lines.slice(told);
      const lost = lines.findIndex(({ state }) => state);
      assert.deepEqual(lines.slice(0, lost).filter(({ changed }) => changed), []);
      assert.deepEqual(lines.slice(lost).filter(({ changed }) => changed), [{ changed: { id: 1, value: { int32: 3 } } }]);
      assert.match(lines.find(({ written }) => written).written.error, /./);
      assert.equal(server.server.engine.currentSessionCount, 1);
    }
    assert.deepEqual(server.written, []);
  });

  test('a server that takes one operation a request is read and written', async (t) => {
    const operationLimits = { maxNodesPerRead: 1, maxNodesPerWrite: 1, maxMonitoredItemsPerCall: 1 };
    const { gateway, server } = await connect(t, { serverCapabilities: { operationLimits } });
    assert.deepEqual(await gateway.write(server.node('Request'), { int32: 3 }), { id: 1 });
    assert.deepEqual((await gateway.read(server.node('Request'))).value, { int32: 3 });
    server.add('Abstract', 'Int16', 1, { dataType: 'Number' });
    assert.deepEqual(await gateway.write(server.node('Abstract'), { int32: 7 }), { id: 1 });
  });

  test('it is told beforehand whether a node could take a value', async (t) => {
    const { gateway, server } = await connect(t);
    const check = async (node, value) => {
      gateway.send({ check: { id: 'c', node, value } });
      return (await gateway.next('checked')).error;
    };
    assert.equal(await check(server.node('Request'), { int32: -1 }), undefined);
    assert.match(await check(server.node('UInt16'), { int32: -1 }), /-1 does not fit the node's type UInt16/);
    assert.match(await check(server.node('Nobody'), { int32: -1 }), /no such node/);
    assert.deepEqual(server.written, []);
    await server.stop();
    await gateway.next('state', ({ connected }) => !connected);
    assert.match(await check(server.node('Request'), { int32: -1 }), /no connection/);
    await server.start(); // ends with the test
  });

  test('a namespace may be named by its URI, whatever index it has', async (t) => {
    const { gateway, server } = await connect(t);
    const node = 'nsu=urn:test-nc:items;s=Request';
    gateway.send({ subscribe: { id: 1, node, rate: 100 } });
    gateway.send({ subscribe: { id: 2, node: 'nsu=urn:nobody;s=Request', rate: 100 } });
    const [found, missing] = await Promise.all([gateway.changed(1), gateway.changed(2)]);
    assert.deepEqual(found.value, { int32: 0 });
    assert.match(missing.error, /the server has no namespace "urn:nobody"/);
    assert.deepEqual(await gateway.write(node, { int32: 2 }), { id: 1 });
    assert.deepEqual((await gateway.read(node)).value, { int32: 2 });
    assert.match((await gateway.read('nsu=;s=Request')).error, /is no node id/);
    const before = server.node('Request');
    await server.stop();
    server.options.namespaceBefore = 'urn:new;100%'; // new software on the NC
    await server.start();
    await gateway.next('state', ({ connected }) => connected);
    assert.notEqual(server.node('Request'), before);
    assert.deepEqual((await gateway.read(node)).value, { int32: 0 });
    server.set('Request', 4);
    await gateway.next('changed', ({ id, value }) => id === 1 && value.int32 === 4);
    assert.match((await gateway.read('nsu=urn:new%3B100%25;s=Nobody')).error, /no such node/); // the namespace is there
  });
});
