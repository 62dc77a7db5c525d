// The whole program with its part program: a module that comes over OPC UA, and a machine.
import assert from 'node:assert/strict';
import { mkdtemp, rm } from 'node:fs/promises';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, before, it } from 'node:test';
import { FakeMachine } from './support/fakemachine.js';
import { notification } from './support/fakemodule.js';
import { OpcClient } from './support/opcclient.js';
import { PATIENCE } from './support/processes.js';
import { SimulatorProcess } from './support/simulatorprocess.js';

let root;
let machine;
const open = []; // what is to be ended, however a test ends
before(async () => {
  root = await mkdtemp(join(tmpdir(), 'nc-program-'));
  machine = await new FakeMachine().start();
});
after(async () => {
  await Promise.all(open.map((end) => end()));
  machine.stop();
  await rm(root, { recursive: true, force: true });
});

/** The module's side of the items, over the wire. */
class WireModule {
  #waiting;

  static async connect(directory, { url, items }) {
    const module = new WireModule();
    module.client = await OpcClient.connect(directory, url);
    open.push(() => module.client.disconnect());
    module.items = items;
    await module.client.subscribe(items.Request, (value) => module.#waiting?.(value));
    return module;
  }

  async notify(...values) {
    assert.equal(await this.client.write(this.items.Notification, 'Int32', notification(...values)), 'Good');
  }

  /** Resolves when the NC writes this request. The one before it may still be reported. */
  request(wanted) {
    return new Promise((resolve) => {
      this.#waiting = (value) => value === wanted && resolve();
    });
  }

  answer(value) {
    return this.client.write(this.items.Request, 'Int32', value);
  }
}

function startSimulator() {
  const simulator = new SimulatorProcess(join(root, 'nc'), '--machine', machine.endpoint.name);
  open.push(() => simulator.stop());
  return simulator;
}

it('starts, fails and ends a procedure over the wire, over a connection that was lost', { timeout: 2 * PATIENCE }, async () => {
  const simulator = startSimulator();
  const listening = await simulator.next('listening');
  let module = await WireModule.connect(join(root, 'module'), listening);

  let asked = module.request(1);
  await module.notify(1);
  await asked;
  await module.notify(3, 4, [0, -1, 180, -1, -1, -1]);
  asked = module.request(3);
  await module.answer(0);
  await asked;
  assert.deepEqual(machine.told('weights'), [{ plane: 1, angles: [0, 180] }]);

  // The connection goes before the answer; the same notification comes with the next one, then the answer.
  await module.client.disconnect();
  module = await WireModule.connect(join(root, 'module'), listening);
  await module.notify(3, 4, [0, -1, 180, -1, -1, -1]);
  asked = module.request(4);
  await module.notify(5);
  await module.answer(0);
  await asked;
  await module.answer(0);

  assert.deepEqual(await simulator.next('done'), { exit: 2 });
  assert.equal(await simulator.finish(), 2);
  assert.equal(machine.told('weights').length, 1);
});

it('ends with 2 when it is told to in the middle of a procedure', { timeout: 2 * PATIENCE }, async () => {
  const simulator = startSimulator();
  await simulator.next('listening');
  assert.match(await simulator.next('said'), /waiting for the module/);
  assert.equal(await simulator.stop(), 2);
  assert.deepEqual(simulator.lines.at(-1), { done: { exit: 2 } });
});
