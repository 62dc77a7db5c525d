// The gateway process by itself: arguments, lines, its end.
import assert from 'node:assert/strict';
import { spawnSync } from 'node:child_process';
import { join } from 'node:path';
import { afterEach, beforeEach, test } from 'node:test';
import { fileURLToPath } from 'node:url';
import { provideCertificate } from './support/certificates.js';
import { GatewayProcess } from './support/gatewayprocess.js';
import { PATIENCE, finish } from './support/processes.js';
import { makeDirectory, removeDirectory } from './support/temporary.js';

let directory;
let gateway;

beforeEach(async () => {
  directory = await makeDirectory();
});

afterEach(async () => {
  await gateway?.stop();
  gateway = undefined;
  await removeDirectory(directory);
});

async function start() {
  gateway = new GatewayProcess(directory);
  await provideCertificate(gateway.pki, 'opc-gateway');
  await gateway.start();
}

const run = (...args) =>
  spawnSync(process.execPath, [fileURLToPath(new URL('../gateway/main.js', import.meta.url)), ...args], {
    encoding: 'utf8',
    timeout: PATIENCE,
  });

test('wrong arguments are refused in one line', () => {
  for (const args of [[], ['a', 'b'], ['--help'], ['']]) {
    const { status, stderr, stdout } = run(...args);
    assert.equal(status, 3);
    assert.equal(stderr, 'opc-gateway: usage: opc-gateway SOCKET | --check\n');
    assert.equal(stdout, '');
  }
});

test('a socket that nobody listens on is refused in one line', () => {
  const path = join(directory, 'nobody');
  const { status, stderr } = run(path);
  assert.equal(status, 3);
  assert.equal(stderr, `opc-gateway: nobody listens at ${path} (ENOENT)\n`);
});

test('a ping is answered, before there is a connection too', async () => {
  await start();
  gateway.send({ ping: { id: 4 } });
  assert.deepEqual(await gateway.next('pong'), { id: 4 });
  gateway.send({ ping: { id: 'x' } });
  assert.deepEqual(await gateway.next('pong'), { id: 'x' });
});

test('orders before the connect line are answered with an error', async () => {
  await start();
  assert.match((await gateway.write('ns=2;s=Request', { int32: 1 })).error, /no connection/);
  assert.match((await gateway.read('ns=2;s=Request')).error, /no connection/);
  gateway.send({ check: { id: 5, node: 'ns=2;s=Request', value: { int32: 1 } } });
  assert.match((await gateway.next('checked')).error, /no connection/);
});

test('lines that make no sense are complained about, and the next one is taken', async () => {
  await start();
  const complaint = async (line, expected) => {
    gateway.socket.write(`${line}\n`);
    const { level, text } = await gateway.next('log');
    assert.equal(level, 'error');
    assert.match(text, expected);
  };
  await complaint('nonsense', /no JSON/);
  await complaint('[1]', /no JSON object/);
  await complaint('{}', /does not know/);
  await complaint('{"fly": {}}', /does not know/);
  await complaint('{"constructor": {}}', /does not know/);
  await complaint('{"ping": {"id": 1}, "read": {"id": 2}}', /does not know/);
  await complaint('{"read": 5}', /a read line with a wrong content/);
  await complaint('{"ping": {}}', /a ping line with a wrong id/);
  await complaint('{"check": {"node": "i=1", "value": {"int32": 1}}}', /a check line with a wrong id/);
  await complaint('{"connect": {"server": "opc.tcp://127.0.0.1:1"}}', /a connect line with a wrong security/);
  await complaint(`{"ping": {"id": "${'x'.repeat(70000)}"}}`, /longer than 65536/);
  gateway.send({ ping: { id: 4 } });
  assert.deepEqual(await gateway.next('pong'), { id: 4 });
});

test('an order with a fault is answered, so that nobody waits for it', async () => {
  await start();
  gateway.send({ write: { id: 1, node: 7, value: { int32: 1 } } });
  assert.deepEqual(await gateway.next('written'), { id: 1, error: 'wrong node' });
  gateway.send({ read: { id: 2 } });
  assert.deepEqual(await gateway.next('value'), { id: 2, error: 'wrong node' });
  gateway.send({ subscribe: { id: 3, node: 'i=1', rate: 'often' } });
  assert.deepEqual(await gateway.next('changed'), { id: 3, error: 'wrong rate' });
  gateway.send({ check: { id: 4, node: 'i=1', value: 1 } });
  assert.deepEqual(await gateway.next('checked'), { id: 4, error: 'wrong value' });
});

test('a second connect line is not taken', async () => {
  await start();
  gateway.connect('opc.tcp://127.0.0.1:1');
  gateway.connect('opc.tcp://127.0.0.1:2');
  assert.match((await gateway.next('log')).text, /second connect line/);
});

test('settings that can not work are told as the reason', async () => {
  await start();
  gateway.connect('opc.tcp://127.0.0.1:1', { security: 'Basic128Rsa15' });
  assert.match((await gateway.next('state')).reason, /there is no security "Basic128Rsa15"/);
  await gateway.stop();
  await start();
  gateway.connect('http://127.0.0.1:1');
  assert.match((await gateway.next('state')).reason, /"server" must begin with opc\.tcp:/);
  await gateway.stop();
  await start();
  gateway.connect('opc.tcp://127.0.0.1:1', { pki: '/dev/null/pki' });
  assert.match((await gateway.next('state')).reason, /\/dev\/null\/pki.*ENOTDIR/);
});

test('the gateway ends on SIGTERM, and when its socket closes', async () => {
  await start();
  gateway.send({ ping: { id: 1 } });
  await gateway.next('pong');
  gateway.process.kill('SIGTERM');
  assert.equal(await finish(gateway.process), 0);
  await start();
  assert.equal(await gateway.stop(), 0);
});
