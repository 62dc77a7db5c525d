// The look at a server that writes nothing: what is told for each that may be there.
import assert from 'node:assert/strict';
import { access } from 'node:fs/promises';
import { createServer } from 'node:net';
import { once } from 'node:events';
import { join } from 'node:path';
import { describe, test } from 'node:test';
import { provideCertificate } from './support/certificates.js';
import { checkServer, runCheck } from './support/checkprocess.js';
import { SimulatorProcess } from './support/simulatorprocess.js';
import { makeDirectory, removeDirectory } from './support/temporary.js';

const nodeOf = (item) => `nsu=urn:corvane:pre-balancing;s=PreBalancing.${item}`;
const REQUEST = { key: 'Request', node: nodeOf('Request'), rate: 100, values: [{ int32: 0 }, { int32: -1 }] };
const NOTIFICATION = { key: 'Notification', node: nodeOf('Notification'), rate: 0, values: [{ int32s: Array(14).fill(-1) }] };

async function startNc(t, ...args) {
  const directory = await makeDirectory();
  t.after(() => removeDirectory(directory));
  await provideCertificate(join(directory, 'nc'), 'nc-simulator');
  const nc = new SimulatorProcess(join(directory, 'nc'), ...args);
  t.after(() => nc.stop());
  nc.pki = join(directory, 'pki');
  nc.url = (await nc.next('listening')).url;
  return nc;
}

describe('a look at a server', () => {
  test('tells what it is, and leaves it as it was', async (t) => {
    const nc = await startNc(t);
    const missing = { key: 'None', node: nodeOf('Nobody'), rate: 0, values: [] };
    const facts = await checkServer(nc.pki, nc.url, [REQUEST, NOTIFICATION, missing]);
    assert.equal(facts.failed, undefined);
    assert.equal(facts.offers.certificate.is_named, true);
    assert.equal(facts.offers.certificate.is_pinned, false);
    assert.ok(Math.abs(facts.clock.fast_s) < 60);
    assert.ok(facts.server.namespaces.includes('urn:corvane:pre-balancing'));
    assert.deepEqual(facts.nodes.Request, {
      key: 'Request',
      node: REQUEST.node,
      type: 'Int32',
      rank: -1,
      size: null,
      can_read: true,
      can_write: true,
      misfits: [],
      present: { value: { int32: 0 } },
      subscribed: { value: { int32: 0 } },
    });
    assert.deepEqual([facts.nodes.Notification.rank, facts.nodes.Notification.size], [1, 14]);
    assert.equal(facts.nodes.None.error.kind, 'BadNodeIdUnknown');
    assert.deepEqual(facts.granted[0], { publishing: 100, asked: 100 });
    assert.deepEqual(facts.done, {});
    assert.deepEqual(nc.lines.filter(({ changed }) => changed), []);
    await assert.rejects(access(join(nc.pki, 'server.pem')), 'trusted by a look');
  });

  test('tells rights and values that do not fit', async (t) => {
    const nc = await startNc(t, '--integers', 'UInt16');
    nc.send({ restrict: { item: 'Request', rights: 'read' } });
    nc.send({ restrict: { item: 'Notification', rights: 'none' } });
    const { nodes } = await checkServer(nc.pki, nc.url, [REQUEST, NOTIFICATION]);
    assert.deepEqual([nodes.Request.can_read, nodes.Request.can_write], [true, false]);
    assert.deepEqual([nodes.Notification.can_read, nodes.Notification.can_write], [false, false]);
    assert.deepEqual(nodes.Request.misfits, ["-1 does not fit the node's type UInt16"]);
  });

  for (const [what, settings, kind] of [
    ['no such security', { security: 'None' }, 'SecurityNotOffered'],
    ['another certificate', { fingerprint: 'a'.repeat(64) }, 'FingerprintDiffers'],
    ['a wrong password', { user: 'nc', password: 'wrong' }, 'BadUserAccessDenied'],
  ]) {
    test(`tells ${what}, and what it had found until then`, async (t) => {
      const nc = await startNc(t);
      const facts = await checkServer(nc.pki, nc.url, [REQUEST], settings);
      assert.equal(facts.failed.kind, kind, facts.failed.reason);
      assert.ok(facts.offers.securities.length > 0);
      assert.deepEqual(facts.nodes, {});
    });
  }

  test('tells that nobody is there, or that nobody answers', async (t) => {
    const directory = await makeDirectory();
    t.after(() => removeDirectory(directory));
    const mute = createServer().listen(0, '127.0.0.1');
    await once(mute, 'listening');
    t.after(() => mute.close());
    const at = (place) => checkServer(join(directory, 'pki'), `opc.tcp://${place}`);
    assert.equal((await at(`127.0.0.1:${mute.address().port}`)).failed.kind, 'TimeUp');
    assert.match((await at('name-of-the-nc.invalid:4840')).failed.kind, /ENOTFOUND|EAI_AGAIN/);
  });

  test('is refused with an order that is none', async () => {
    for (const [order, reason] of [
      [{ check: {} }, /a wrong nodes/],
      [{ check: { connect: { server: 1 }, nodes: [] } }, /a wrong server/],
      [{ check: { connect: {}, nodes: [{}] } }, /a wrong nodes/],
      [{ look: {} }, /a wrong content/],
    ]) {
      const { status, lines, errors } = await runCheck(order);
      assert.equal(status, 3);
      assert.deepEqual(lines, []);
      assert.match(errors, reason);
    }
  });
});
