// The gateway with the NC simulator as servers of other makes behave: it works, or says what is to be done.
import assert from 'node:assert/strict';
import { mkdir, readdir, rename } from 'node:fs/promises';
import { join } from 'node:path';
import { describe, test } from 'node:test';
import { provideCertificate } from './support/certificates.js';
import { GatewayProcess } from './support/gatewayprocess.js';
import { SimulatorProcess } from './support/simulatorprocess.js';
import { makeDirectory, removeDirectory } from './support/temporary.js';

const REQUEST = 'nsu=urn:corvane:pre-balancing;s=PreBalancing.Request';
const NOTIFICATION = 'nsu=urn:corvane:pre-balancing;s=PreBalancing.Notification';
const NAME = 'nsu=urn:corvane:pre-balancing;s=PreBalancing.RotorName';
const SAMPLE = [3, 4, 30, -1, 210, -1, -1, -1, 0, 0, 0, 0, 0, 0];

/** An NC with these options, which ends with the test. */
async function startNc(t, ...args) {
  const directory = await makeDirectory();
  t.after(() => removeDirectory(directory));
  await provideCertificate(join(directory, 'nc'), 'nc-simulator');
  const nc = new SimulatorProcess(join(directory, 'nc'), ...args);
  t.after(() => nc.stop());
  nc.directory = directory;
  nc.url = (await nc.next('listening')).url;
  return nc;
}

async function startGateway(t, nc, settings) {
  const gateway = await GatewayProcess.connect(nc.directory, nc.url, settings);
  t.after(() => gateway.stop());
  return gateway;
}

const warnings = (gateway) =>
  gateway
    .all('log')
    .filter(({ level, text }) => level === 'warning' && !/trusted from now on/.test(text))
    .map(({ text }) => text);

/** A request and its answer, a notification with -1 in it, and a name. */
async function exchange(nc, gateway, toRequest = (value) => ({ int32: value })) {
  gateway.send({ subscribe: { id: 1, node: REQUEST, rate: 100 } });
  gateway.send({ subscribe: { id: 2, node: NAME, rate: 100 } });
  await gateway.next('changed', ({ id, value }) => id === 1 && value !== undefined);
  nc.send({ write: { item: 'RotorName', value: 'Spindel "Ä 7"' } });
  nc.send({ write: { item: 'Request', value: 3 } });
  const [request, name] = await Promise.all([
    gateway.next('changed', ({ id, value }) => id === 1 && Object.values(value)[0] === 3),
    gateway.next('changed', ({ id, value }) => id === 2 && value !== undefined),
  ]);
  assert.deepEqual(request.value, toRequest(3));
  assert.deepEqual(name.value, { string: 'Spindel "Ä 7"' });
  assert.deepEqual(await gateway.write(REQUEST, { int32: 0 }), { id: 1 });
  assert.deepEqual(await nc.next('changed'), { item: 'Request', value: 0 });
  assert.deepEqual(await gateway.write(NOTIFICATION, { int32s: SAMPLE }), { id: 1 });
  assert.deepEqual(await nc.next('changed'), { item: 'Notification', value: SAMPLE });
}

describe('an NC of another make', () => {
  for (const [what, args, warned] of [
    ['that names an endpoint which nobody can resolve', ['--advertise', 'name-of-the-nc.invalid'], []],
    ['with other namespaces before its own', ['--namespace-index', '7'], []],
    ['whose certificate names another host', ['--certificate', 'no-host'], []],
    ['whose certificate is out of date', ['--certificate', 'expired'], [/out of date since 2021-01-01; .* all the same/]],
    ['whose certificate is of the future', ['--certificate', 'future'], [/valid only from .* Check the clocks/]],
    ['that tells changes slowly', ['--publishing', '700'], [/tells changes every 700 ms, not every 100 ms/]],
    ['that looks at its items slowly', ['--sampling', '600'], [/looks at .*Request every 600 ms/, /RotorName every 600 ms/]],
    ['that keeps sessions for two seconds', ['--session', '2000'], []],
    ['that takes one operation a request', ['--one-operation'], []],
    ['whose clock is a day slow', ['--clock=-86400'], []],
    ['whose clock is a day fast', ['--clock=86400'], []],
    ['with all of it', ['--advertise', 'x.invalid', '--namespace-index', '3', '--certificate', 'no-host', '--one-operation', '--clock=-90000', '--session', '3000'], []],
  ]) {
    test(`${what} is worked with`, async (t) => {
      const nc = await startNc(t, ...args);
      const gateway = await startGateway(t, nc);
      assert.deepEqual(gateway.firstState, { connected: true });
      await exchange(nc, gateway);
      const told = warnings(gateway);
      assert.equal(told.length, warned.length, told.join('\n'));
      warned.forEach((text, place) => assert.match(told[place], text));
    });
  }

  for (const [type, toRequest] of [
    ['Int16', undefined],
    ['Int64', undefined],
    ['Float', (value) => ({ double: value })],
    ['Double', (value) => ({ double: value })],
  ]) {
    test(`whose whole numbers are ${type} is worked with`, async (t) => {
      const nc = await startNc(t, '--integers', type);
      await exchange(nc, await startGateway(t, nc), toRequest);
    });
  }

  test('whose whole numbers have no sign is told which answers it can never get', async (t) => {
    const nc = await startNc(t, '--integers', 'UInt16');
    const gateway = await startGateway(t, nc);
    assert.deepEqual(await gateway.write(REQUEST, { int32: 5 }), { id: 1 });
    assert.match((await gateway.write(REQUEST, { int32: -1 })).error, /-1 does not fit the node's type UInt16/);
  });

  test('that ends sessions again and again gets each request once, and each answer', async (t) => {
    const nc = await startNc(t);
    const gateway = await startGateway(t, nc);
    gateway.send({ subscribe: { id: 1, node: REQUEST, rate: 100 } });
    await gateway.changed(1);
    for (const request of [3, 1, 4]) {
      nc.send({ end_sessions: {} });
      assert.match((await gateway.next('state', ({ connected }) => !connected)).reason, /BadSession/);
      await gateway.next('state', ({ connected }) => connected);
      nc.send({ write: { item: 'Request', value: request } });
      await gateway.next('changed', ({ value }) => value.int32 === request);
      // In either order: the change may be told before the answer.
      const [written] = await Promise.all([
        gateway.write(REQUEST, { int32: 0 }),
        gateway.next('changed', ({ value }) => value.int32 === 0),
      ]);
      assert.deepEqual(written, { id: 1 });
    }
  });

  test('that ends sessions by itself is connected to again', async (t) => {
    const nc = await startNc(t, '--end-sessions', '4');
    const gateway = await startGateway(t, nc);
    await gateway.next('state', ({ connected }) => !connected);
    await gateway.next('state', ({ connected }) => connected);
  });

  test('that trusts nobody by itself is told of, and trusts when somebody has moved the file', async (t) => {
    const nc = await startNc(t, '--trust', 'by-hand');
    const gateway = await startGateway(t, nc);
    assert.match(gateway.firstState.reason, /trust it yet\. It is to be trusted on the NC, once: the file .*own\.pem/);
    const [file] = await readdir(join(nc.directory, 'nc', 'rejected'));
    assert.ok(gateway.firstState.reason.includes(file.replace('.pem', ''))); // its name is the fingerprint that is told
    await mkdir(join(nc.directory, 'nc', 'trusted'));
    await rename(join(nc.directory, 'nc', 'rejected', file), join(nc.directory, 'nc', 'trusted', file));
    await gateway.next('state', ({ connected }) => connected);
  });

  test('whose clock is so slow that our certificate is of the future is told of', async (t) => {
    const nc = await startNc(t, `--clock=${-12 * 365 * 86400}`);
    const { reason } = (await startGateway(t, nc)).firstState;
    assert.match(reason, /own\.pem is out of its time by the server's clock: set the NC's clock right/);
  });
});
