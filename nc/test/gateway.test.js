// The gateway over a real local socket and a real OPC UA connection on loopback.
import assert from 'node:assert/strict';
import { mkdtemp, readFile, rm, stat } from 'node:fs/promises';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, afterEach, before, beforeEach, describe, test } from 'node:test';
import { fingerprintOf, readCertificate } from '../shared/pki.js';
import { MessageSecurityMode, SecurityPolicy } from '../shared/opcua.js';
import { GatewayProcess } from './support/gatewayprocess.js';
import { TestServer } from './support/testserver.js';

let directory;
let gateway;
let server;

const temporary = () => mkdtemp(join(tmpdir(), 'gateway-test-'));
const settings = (more = {}) => ({
  server: server.url, security: 'Basic256Sha256', fingerprint: '', pki: join(directory, 'pki'),
  user: '', password: '', user_certificate: '', user_key: '', ...more,
});

async function startGateway(more) {
  gateway = new GatewayProcess(directory);
  await gateway.start();
  gateway.send({ connect: settings(more) });
  return gateway.next('state');
}

async function write(name, value, id = 1) {
  gateway.send({ write: { id, node: server.node(name), value } });
  return gateway.next('written', (answer) => answer.id === id);
}

async function read(name, id = 1) {
  gateway.send({ read: { id, node: server.node(name) } });
  return gateway.next('value', (answer) => answer.id === id);
}

const changed = (id) => gateway.next('changed', (change) => change.id === id);

beforeEach(async () => {
  directory = await temporary();
});

afterEach(async () => {
  await gateway?.stop();
  gateway = undefined;
  await rm(directory, { recursive: true, force: true });
});

describe('values', () => {
  let home;
  before(async () => {
    home = await temporary();
    server = new TestServer(join(home, 'server'));
    await server.start();
  });
  after(async () => {
    await server.stop();
    await rm(home, { recursive: true, force: true });
  });
  beforeEach(async () => {
    assert.deepEqual(await startGateway(), { connected: true });
  });

  test('a number is written as the type of the node', async () => {
    assert.deepEqual(await write('Request', { int32: -5 }), { id: 1 });
    assert.equal(server.get('Request'), -5);
    assert.deepEqual(await write('Short', { int32: 300 }), { id: 1 });
    assert.equal(server.get('Short'), 300);
    assert.deepEqual(await write('Weight', { double: 1.25 }), { id: 1 });
    assert.equal(server.get('Weight'), 1.25);
    assert.deepEqual(await write('Text', { string: 'x' }), { id: 1 });
    assert.equal(server.get('Text'), 'x');
  });

  test('all numbers of an array are written at once', async () => {
    assert.deepEqual(await write('Notification', { int32s: [3, 4, -1] }), { id: 1 });
    assert.deepEqual(server.get('Notification'), [3, 4, -1]);
    assert.deepEqual(await write('Shorts', { int32s: [3, 4] }), { id: 1 });
    assert.deepEqual(server.get('Shorts'), [3, 4]);
  });

  test('a number that does not fit, or the wrong type, is an error that says so, and changes nothing', async () => {
    assert.match((await write('Byte', { int32: 256 })).error, /256 does not fit the node's type Byte/);
    assert.match((await write('Byte', { int32: -1 })).error, /does not fit/);
    assert.match((await write('Text', { int32: 1 })).error, /BadTypeMismatch/);
    assert.match((await write('Request', { string: 'x' })).error, /BadTypeMismatch/);
    assert.match((await write('Request', { int32: 1.5 })).error, /1.5 is no 32-bit integer/);
    assert.match((await write('Request', { colour: 1 })).error, /must be typed/);
    assert.match((await write('Request', null)).error, /must be typed/);
    assert.equal(server.get('Byte'), 0);
  });

  test('values are read as integers, numbers and texts; other types are an error', async () => {
    server.set('Short', -3);
    server.set('Weight', 2.5);
    server.set('Text', 'abc');
    server.set('Notification', [1, 2, 3]);
    assert.deepEqual((await read('Short')).value, { int32: -3 });
    assert.deepEqual((await read('Weight')).value, { double: 2.5 });
    assert.deepEqual((await read('Text')).value, { string: 'abc' });
    assert.deepEqual((await read('Flag')).value, { int32: 1 });
    assert.deepEqual((await read('Wide')).value, { int32: 7 });
    assert.deepEqual((await read('Notification')).value, { int32s: [1, 2, 3] });
    assert.match((await read('Moment')).error, /DateTime can't be used/);
    assert.match((await read('Nobody')).error, /BadNodeIdUnknown/);
  });

  test('a subscription tells the present value, then each change once and in order', async () => {
    server.set('Request', 0);
    gateway.send({ subscribe: { id: 7, node: server.node('Request'), rate: 100 } });
    assert.deepEqual((await changed(7)).value, { int32: 0 });
    // Faster than the update rate: none may be lost.
    for (let request = 1; request <= 20; ++request) {
      server.set('Request', request);
    }
    for (let request = 1; request <= 20; ++request) {
      assert.deepEqual((await changed(7)).value, { int32: request });
    }
    gateway.send({ unsubscribe: { id: 7 } });
    gateway.send({ subscribe: { id: 8, node: server.node('Short'), rate: 100 } });
    await changed(8);
    server.set('Request', 99);
    server.set('Short', 5);
    assert.deepEqual(await changed(8), { id: 8, value: { int32: 5 } });
    assert.ok(!gateway.lines.some((line) => line.changed?.value?.int32 === 99));
  });

  test('writes keep their order', async () => {
    gateway.send({ subscribe: { id: 1, node: server.node('Request'), rate: 50 } });
    await changed(1);
    for (let value = 1000; value < 1030; ++value) {
      gateway.send({ write: { id: value, node: server.node('Request'), value: { int32: value } } });
    }
    for (let value = 1000; value < 1030; ++value) {
      assert.equal((await gateway.next('written')).id, value);
    }
    assert.equal(server.get('Request'), 1029);
  });

  test('an item that vanishes is told, and found again when it is back', async () => {
    server.add('Fleeting', 'Int32', 1);
    gateway.send({ subscribe: { id: 3, node: server.node('Fleeting'), rate: 50 } });
    assert.deepEqual((await changed(3)).value, { int32: 1 });
    server.remove('Fleeting');
    assert.match((await changed(3)).error, /Bad/);
    assert.match((await write('Fleeting', { int32: 1 })).error, /BadNodeIdUnknown/);
    server.add('Fleeting', 'Int32', 2);
    assert.deepEqual((await changed(3)).value, { int32: 2 });
    server.remove('Fleeting');
  });

  test('orders that make no sense are complained about, and the next one is taken', async () => {
    gateway.socket.write('nonsense\n[1]\n{"fly": {}}\n{"read": 5}\n');
    for (const what of [/no JSON was/, /no JSON object was/, /fly is no order/, /read is no order/]) {
      await gateway.next('log', ({ level, text }) => level === 'error' && what.test(text));
    }
    gateway.send({ ping: { id: 4 } });
    assert.deepEqual(await gateway.next('pong'), { id: 4 });
  });

  test('the gateway ends when its socket closes', async () => {
    gateway.socket.destroy();
    const [status] = await gateway.exited;
    assert.equal(status, 0);
  });
});

describe('connection', () => {
  afterEach(async () => {
    await server?.stop().catch(() => {});
  });
  const startServer = async (options) => {
    server = new TestServer(join(directory, 'server'), options);
    await server.start();
  };

  test('a server that is restarted is connected again, with its subscriptions', async () => {
    await startServer();
    await startGateway();
    gateway.send({ subscribe: { id: 1, node: server.node('Request'), rate: 100 } });
    await changed(1);
    await server.stop();
    assert.equal((await gateway.next('state')).connected, false);
    assert.match((await write('Request', { int32: 1 })).error, /\w/);
    assert.match((await read('Request')).error, /\w/);
    await server.start();
    server.set('Request', 3);
    assert.equal((await gateway.next('state', (state) => state.connected)).connected, true);
    let value;
    while (value !== 3) {
      value = (await changed(1)).value.int32; // the first look may come before the test's value
    }
    assert.deepEqual(await write('Request', { int32: 4 }), { id: 1 });
  });

  test('nobody listening: each attempt tells why, and orders fail at once', async () => {
    await startServer();
    await server.stop();
    const state = await startGateway();
    assert.equal(state.connected, false);
    assert.match(state.reason, /refused|ECONNREFUSED|connect/i);
    assert.match((await write('Request', { int32: 1 })).error, /not connected/);
    assert.match((await gateway.next('state')).reason, /\w/);
  });

  test('the first certificate is trusted with a warning, another one later is refused', async () => {
    await startServer();
    const fingerprint = fingerprintOf(await readCertificate(server.certificateFile));
    await startGateway();
    const { text } = await gatewayLog('warning');
    assert.match(text, new RegExp(`trusted from now on, fingerprint ${fingerprint}`));
    await server.stop();
    await rm(server.directory, { recursive: true });
    await server.start(); // makes itself a new certificate
    const state = await gateway.next('state', ({ reason }) => /another certificate/.test(reason ?? ''));
    assert.match(state.reason, /remove .*server\.pem/);
    await rm(join(directory, 'pki', 'server.pem'));
    assert.equal((await gateway.next('state', ({ connected }) => connected)).connected, true);
  });

  test('a fingerprint that is configured decides', async () => {
    await startServer();
    const fingerprint = fingerprintOf(await readCertificate(server.certificateFile));
    assert.match((await startGateway({ fingerprint: '00'.repeat(32) })).reason, /not the one that is configured/);
    await assert.rejects(stat(join(directory, 'pki', 'server.pem')));
    await gateway.stop();
    const colons = fingerprint.toUpperCase().replace(/..(?=.)/g, '$&:');
    assert.equal((await startGateway({ fingerprint: colons })).connected, true);
  });

  test('only the user with the password gets in, and the password is nowhere to be read', async () => {
    const password = 'correct horse battery';
    await startServer({ users: { balancing: password } });
    assert.match((await startGateway({ user: 'balancing', password: `${password}!` })).reason, /Bad|denied/);
    const refused = JSON.stringify(gateway.lines) + gateway.output;
    await gateway.stop();
    assert.equal((await startGateway({ user: 'balancing', password })).connected, true);
    assert.ok(!(refused + JSON.stringify(gateway.lines) + gateway.output).includes(password));
    await gateway.stop();
    assert.equal((await startGateway()).connected, false); // anonymous
  });

  test('a weaker policy than asked for is not taken', async () => {
    await startServer({ securityModes: [MessageSecurityMode.None, MessageSecurityMode.Sign], securityPolicies: [SecurityPolicy.None, SecurityPolicy.Basic256Sha256] });
    const { reason } = await startGateway();
    assert.match(reason, /offers no SignAndEncrypt with Basic256Sha256, but .*None/);
  });

  test('no security is taken only when asked for, with a warning', async () => {
    await startServer({ securityModes: [MessageSecurityMode.None], securityPolicies: [SecurityPolicy.None] });
    assert.equal((await startGateway({ security: 'None' })).connected, true);
    assert.match((await gatewayLog('warning')).text, /not secured/);
    assert.deepEqual(await write('Request', { int32: 1 }), { id: 1 });
  });

  test('certificate and key are for this user only', async () => {
    await startServer();
    await startGateway();
    const mode = async (name) => (await stat(join(directory, 'pki', name))).mode & 0o777;
    assert.equal(await mode('.'), 0o700);
    assert.equal(await mode('own-key.pem'), 0o600);
    assert.match(await readFile(join(directory, 'pki', 'own.pem'), 'utf8'), /BEGIN CERTIFICATE/);
  });

  function gatewayLog(level) {
    const line = gateway.lines.find(({ log }) => log?.level === level);
    return line ? line.log : gateway.next('log', (log) => log.level === level);
  }
});

test('an argument that is no socket is refused in one line', async () => {
  gateway = undefined;
  const { spawnSync } = await import('node:child_process');
  const main = new URL('../gateway/main.js', import.meta.url).pathname;
  const result = spawnSync(process.execPath, [main, join(directory, 'nobody')], { encoding: 'utf8' });
  assert.equal(result.status, 3);
  assert.match(result.stderr, /^.*nobody: ENOENT; it must be a socket.*\n$/);
});
