// The NC simulator's OPC UA server, seen by generic clients and by the program that started it.
import assert from 'node:assert/strict';
import { cpSync, writeFileSync } from 'node:fs';
import { mkdtemp, rm, stat } from 'node:fs/promises';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, before, describe, it } from 'node:test';
import { within } from '../shared/timing.js';
import { openPki, ownCertificate } from '../shared/pki.js';
import { OpcClient } from './support/opcclient.js';
import { PATIENCE } from './support/processes.js';
import { SimulatorProcess } from './support/simulatorprocess.js';

let root;
before(async () => {
  root = await mkdtemp(join(tmpdir(), 'nc-simulator-'));
  await openPki(join(root, 'seed'));
  await ownCertificate(join(root, 'seed'), 'nc-simulator');
});
after(() => rm(root, { recursive: true, force: true }));

/** The NC simulator, which ends with the test. */
function startSimulator(t, pki, ...args) {
  const simulator = new SimulatorProcess(pki, ...args);
  t.after(() => simulator.stop());
  return simulator;
}

/** A client whose connection ends with the test. */
async function connect(t, name, url, options) {
  const client = await OpcClient.connect(join(root, name), url, options);
  t.after(() => client.disconnect());
  return client;
}

/** Directory of a server that has its key and has met nobody: making keys takes long. */
function pkiFor(name) {
  cpSync(join(root, 'seed'), join(root, name), { recursive: true });
  return join(root, name);
}

const ITEMS = [
  ...['Request', 'Notification', 'Warning', 'TestWeight', 'TargetUnbalance', 'RotationDirection', 'RotorName'],
];
const TYPES = { TestWeight: 'Double', TargetUnbalance: 'Double', RotorName: 'String' };
const SAMPLE = [3, 4, 30, -1, 210, -1, -1, -1, 0, 0, 0, 0, 0, 0];

describe('a generic client', () => {
  let simulator;
  let client;
  let items;
  before(async () => {
    simulator = new SimulatorProcess(pkiFor('server'));
    const listening = await simulator.next('listening');
    items = listening.items;
    client = await OpcClient.connect(join(root, 'client'), listening.url);
  });
  after(async () => {
    await client?.disconnect();
    assert.equal(await simulator.stop(), 0);
  });

  it('finds the items under Objects, by the node ids of the configuration', async () => {
    const folder = (await client.browse('RootFolder')).find(({ name }) => name === 'Objects');
    const object = (await client.browse(folder.nodeId)).find(({ name }) => name === 'PreBalancing');
    assert.deepEqual((await client.browse(object.nodeId)).map(({ name }) => name), ITEMS);
    assert.deepEqual(Object.values(items), ITEMS.map((name) => `ns=2;s=PreBalancing.${name}`));
    for (const nodeId of Object.values(items)) {
      assert.match((await client.read(nodeId, 'Description')).value.text, /\w{3}/);
      assert.equal((await client.read(nodeId, 'UserAccessLevel')).value, 3); // read and write
    }
  });

  it('reads zeros of the interface, and nothing where the NC has no wish', async () => {
    const states = await Promise.all(ITEMS.map((name) => client.read(items[name])));
    assert.deepEqual(states.slice(0, 3).map(({ value }) => value), [0, new Array(14).fill(0), 0]);
    assert.deepEqual(states.map(({ status }) => status), [...Array(3).fill('Good'), ...Array(4).fill('BadWaitingForInitialData')]);
  });

  it('writes and reads every item, and the program hears of it', async () => {
    const values = [3, SAMPLE, 8, 2.5, 7.25, -1, 'Spindel "Ä 7"'];
    for (const [place, value] of values.entries()) {
      assert.equal(await client.write(items[ITEMS[place]], TYPES[ITEMS[place]] ?? 'Int32', value), 'Good');
      assert.deepEqual(await simulator.next('changed'), { item: ITEMS[place], value });
      assert.deepEqual(await client.read(items[ITEMS[place]]), { status: 'Good', value });
    }
  });

  it('is told a write of the value that the item had', async () => {
    for (let time = 0; time < 2; ++time) {
      await client.write(items.Warning, 'Int32', 5);
      assert.deepEqual(await simulator.next('changed'), { item: 'Warning', value: 5 });
    }
  });

  for (const [what, item, type, value] of [
    ['a Double for an Int32', 'Request', 'Double', 1],
    ['an Int16 for an Int32', 'Request', 'Int16', 1],
    ['a text', 'Warning', 'String', '1'],
    ['an Int32 for a Double', 'TestWeight', 'Int32', 1],
    ['a number for a text', 'RotorName', 'Int32', 7],
    ['a number for an array', 'Notification', 'Int32', 1],
    ['an array for a number', 'Request', 'Int32', [1]],
    ['an array of 13', 'Notification', 'Int32', SAMPLE.slice(1)],
  ]) {
    it(`is refused ${what}`, async () => {
      const held = await client.read(items[item]);
      assert.equal(await client.write(items[item], type, value), 'BadTypeMismatch');
      assert.deepEqual(await client.read(items[item]), held);
    });
  }

  it('sees what the NC writes', async () => {
    const seen = [];
    const came = new Promise((resolve) => {
      client.subscribe(items.Request, (value) => {
        seen.push(value);
        if (value === 4) {
          resolve();
        }
      });
    });
    simulator.send({ write: { item: 'Request', value: 4 } });
    await within(came, PATIENCE);
    assert.equal(seen.at(-1), 4);
  });

  it('finds no item that has vanished, and finds it again with its value', async () => {
    await client.write(items.TargetUnbalance, 'Double', 12.5);
    simulator.send({ remove: { item: 'TargetUnbalance' } });
    simulator.send({ write: { item: 'Nothing', value: 1 } });
    assert.match(await simulator.next('refused'), /unknown item "Nothing"/); // the line before has been read too
    assert.equal((await client.read(items.TargetUnbalance)).status, 'BadNodeIdUnknown');
    assert.equal(await client.write(items.TargetUnbalance, 'Double', 1), 'BadNodeIdUnknown');
    simulator.send({ restore: { item: 'TargetUnbalance' } });
    simulator.send({});
    await simulator.next('refused');
    assert.deepEqual(await client.read(items.TargetUnbalance), { status: 'Good', value: 12.5 });
  });

  it('reads text where an item has changed its type', async () => {
    await client.write(items.Notification, 'Int32', SAMPLE);
    simulator.send({ retype: { item: 'Notification', type: 'String' } });
    simulator.send({ retype: { item: 'Notification', type: 'Double' } });
    assert.match(await simulator.next('refused'), /String/);
    assert.deepEqual(await client.read(items.Notification), { status: 'Good', value: JSON.stringify(SAMPLE) });
    assert.equal(await client.write(items.Notification, 'Int32', SAMPLE), 'BadTypeMismatch');
    simulator.send({ restore: { item: 'Notification' } });
    simulator.send({ write: { item: 'Notification', value: [1] } });
    assert.match(await simulator.next('refused'), /array of 14/);
    assert.deepEqual(await client.read(items.Notification), { status: 'Good', value: SAMPLE });
    assert.equal(await client.write(items.Notification, 'Int32', SAMPLE), 'Good');
  });
});

describe('security', () => {
  it('trusts the first client for good, and rejects others with a word about it', async (t) => {
    const pki = join(root, 'pinning'); // makes its own key
    for (const round of ['first', 'after a new start']) {
      const simulator = startSimulator(t, pki);
      const { url } = await simulator.next('listening');
      const client = await connect(t, 'first', url);
      if (round === 'first') {
        assert.match(await simulator.next('said'), /trusted from now on/);
      }
      await client.disconnect();
      await assert.rejects(OpcClient.connect(join(root, 'second'), url));
      assert.match(await simulator.next('said'), /rejected/);
      await simulator.stop();
    }
    assert.equal((await stat(pki)).mode & 0o777, 0o700);
    assert.equal((await stat(join(pki, 'own-key.pem'))).mode & 0o777, 0o600);
  });

  it('offers three secure policies, and none without security', async (t) => {
    const simulator = startSimulator(t, pkiFor('policies'));
    const { url, items } = await simulator.next('listening');
    for (const policy of ['Basic256Sha256', 'Aes128_Sha256_RsaOaep', 'Aes256_Sha256_RsaPss']) {
      const client = await connect(t, 'client', url, { policy });
      assert.equal((await client.read(items.Request)).value, 0);
      await client.disconnect();
    }
    await assert.rejects(OpcClient.connect(join(root, 'client'), url, { policy: 'None', mode: 'None' }));
    await assert.rejects(OpcClient.connect(join(root, 'client'), url, { mode: 'Sign' }));
    await simulator.stop();
  });

  it('takes clients without security if told so', async (t) => {
    const simulator = startSimulator(t, pkiFor('unsecured'), '--security', 'none');
    const { url, items } = await simulator.next('listening');
    const client = await connect(t, 'client', url, { policy: 'None', mode: 'None' });
    assert.equal(await client.write(items.Request, 'Int32', 1), 'Good');
    await client.disconnect();
    await simulator.stop();
  });

  it('lets in the one user with the password only', async (t) => {
    const file = join(root, 'password');
    writeFileSync(file, 'open sesame\n', { mode: 0o600 });
    const simulator = startSimulator(t, pkiFor('users'), '--user', 'balancing', '--password-file', file);
    const { url, items } = await simulator.next('listening');
    const logIn = (user) => connect(t, 'client', url, { user });
    await assert.rejects(logIn(undefined));
    await assert.rejects(logIn({ name: 'balancing', password: 'open barley' }));
    await assert.rejects(logIn({ name: 'somebody', password: 'open sesame' }));
    const client = await logIn({ name: 'balancing', password: 'open sesame' });
    assert.equal((await client.read(items.Request)).value, 0);
    await client.disconnect();
    await simulator.stop();
  });
});

describe('the end', () => {
  it('comes at SIGTERM with a client connected, at once', async (t) => {
    const simulator = startSimulator(t, pkiFor('sigterm'));
    const { url } = await simulator.next('listening');
    const client = await connect(t, 'client', url);
    simulator.process.kill('SIGTERM');
    assert.deepEqual(await simulator.next('done'), { exit: 0 });
    assert.equal(await simulator.finish(), 0);
    await client.disconnect();
  });
});
