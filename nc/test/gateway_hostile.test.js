// The gateway and servers that mean harm: a connection that is refused and told, and nothing else.
import assert from 'node:assert/strict';
import { randomBytes } from 'node:crypto';
import { join } from 'node:path';
import { describe, test } from 'node:test';
import { provideCertificate } from './support/certificates.js';
import { GatewayProcess } from './support/gatewayprocess.js';
import { acknowledge, message, residentOf, startHostile, startReplaying } from './support/hostileserver.js';
import { makeDirectory, removeDirectory } from './support/temporary.js';
import { TestServer } from './support/testserver.js';

/** A server may make the gateway hold no more than this for its sake, bytes. */
const MOST = 150e6;

async function startGateway(t, url, settings, accepts) {
  const directory = await makeDirectory();
  const gateway = await GatewayProcess.connect(directory, url, settings, accepts);
  t.after(async () => {
    await gateway.stop();
    await removeDirectory(directory);
  });
  return gateway;
}

async function startServer(t) {
  const directory = await makeDirectory();
  const server = new TestServer(join(directory, 'server'));
  await provideCertificate(server.directory, 'test-nc');
  await server.start();
  t.after(async () => {
    await server.stop();
    await removeDirectory(directory);
  });
  return server;
}

/** The beginning of a message that says how long it will be. */
function claim(type, length) {
  const header = message(type, Buffer.alloc(0));
  header.writeUInt32LE(length, 4);
  return header;
}

/** More than anybody could keep for later, as fast as it is read. */
const FLOOD = 300e6;

function flood(socket, portion) {
  let left = FLOOD;
  const more = () => {
    while (!socket.destroyed && left > 0) {
      left -= portion.length;
      if (!socket.write(portion)) {
        return;
      }
    }
  };
  socket.on('drain', more);
  more();
}

const HARMS = {
  'answers before it is asked': (socket) => {
    socket.write(acknowledge());
    socket.write(message('OPNF', Buffer.alloc(130, 1)));
    socket.write(message('MSGF', Buffer.alloc(200, 2)));
  },
  'says anything at all': (socket) => socket.write(randomBytes(100000)),
  'acknowledges without end': (socket) => socket.once('data', () => flood(socket, acknowledge())),
  'announces 4 GB in its first message': (socket) => {
    socket.write(claim('ACKF', 0xfffffff0));
    flood(socket, Buffer.alloc(65536, 3));
  },
  'announces 4 GB behind its acknowledgement, at once': (socket) => {
    socket.write(Buffer.concat([acknowledge(), claim('MSGF', 0xfffffff0)]));
    flood(socket, Buffer.alloc(65536, 3));
  },
  'sends pieces of a message without end': (socket) => {
    socket.once('data', () => {
      socket.write(acknowledge());
      flood(socket, message('MSGC', Buffer.alloc(60000, 1)));
    });
  },
  'sends a message that is shorter than its own head': (socket) => socket.write(claim('ACKF', 4)),
  'sends a message of no length behind its acknowledgement': (socket) => {
    socket.write(Buffer.concat([acknowledge(), claim('MSGF', 0)]));
  },
};

describe('a server that', { concurrency: 8 }, () => {
  for (const [what, harm] of Object.entries(HARMS)) {
    test(`${what} is no connection, costs no memory, and is told`, async (t) => {
      const hostile = await startHostile(harm);
      t.after(hostile.stop);
      const gateway = await startGateway(t, hostile.url, {}, () => true);
      const before = residentOf(gateway.process.pid);
      assert.equal(gateway.firstState.connected, false);
      assert.match(gateway.firstState.reason, /\w/);
      assert.equal((await gateway.next('state')).connected, false);
      assert.ok(hostile.connections >= 2);
      assert.ok(residentOf(gateway.process.pid) < before + MOST);
      gateway.send({ ping: { id: 1 } });
      await gateway.next('pong'); // it lives, and hears
    });
  }
});

test('giant and strange values are errors, and the next one is taken', async (t) => {
  const server = await startServer(t);
  const NUMBERS = 500000;
  server.add('Giant', 'Int32', Array.from({ length: NUMBERS }, (_, place) => place));
  server.add('Long', 'String', 'x'.repeat(NUMBERS));
  server.add('Empty', 'Int32', []);
  server.add('Doubles', 'Double', [1, 2]);
  server.add('Bytes', 'ByteString', Buffer.alloc(NUMBERS));
  server.add('Nothing', 'Double', Number.NaN);
  const gateway = await startGateway(t, server.url);
  for (const [place, name] of ['Giant', 'Long', 'Doubles', 'Bytes', 'Nothing'].entries()) {
    gateway.send({ subscribe: { id: 10 + place, node: server.node(name), rate: 100 } });
    const change = await gateway.changed(10 + place);
    assert.match(change.error ?? '', /\w/, `${name}: ${JSON.stringify(change).slice(0, 100)}`);
  }
  gateway.send({ subscribe: { id: 1, node: server.node('Request'), rate: 100 } });
  await gateway.changed(1);
  server.set('Request', 3);
  assert.deepEqual((await gateway.changed(1)).value, { int32: 3 });
  assert.ok(gateway.lines.every((line) => JSON.stringify(line).length < 100000));
  assert.deepEqual(gateway.states, [{ connected: true }]);
});

test('a message that is said again is not obeyed again', async (t) => {
  const server = await startServer(t);
  const replaying = await startReplaying(server.options.port);
  t.after(replaying.stop);
  const gateway = await startGateway(t, replaying.url);
  gateway.send({ subscribe: { id: 1, node: server.node('Request'), rate: 100 } });
  await gateway.changed(1);
  server.set('Request', 3);
  await gateway.next('changed', ({ id, value }) => id === 1 && value.int32 === 3);
  for (let time = 0; time < 20; ++time) {
    assert.ok(replaying.replay() > 0);
  }
  server.set('Request', 4);
  await gateway.next('changed', ({ id, value }) => id === 1 && value?.int32 === 4);
  const values = gateway.all('changed').map(({ value }) => value?.int32);
  assert.equal(values.filter((value) => value === 3).length, 1, String(values));
  assert.deepEqual(await gateway.write(server.node('Short'), { int32: 7 }), { id: 1 });
  assert.equal(server.written.filter(({ name }) => name === 'Short').length, 1);
});
