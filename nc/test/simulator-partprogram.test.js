// The part program against a module that is played from the tables of its notifications, and a machine that
// remembers what it was told.
import assert from 'node:assert/strict';
import { afterEach, beforeEach, describe, it } from 'node:test';
import { MachineLink } from '../simulator/machinelink.js';
import { PartProgram } from '../simulator/partprogram.js';
import { parseRotor } from '../simulator/rotorfile.js';
import { FakeMachine } from './support/fakemachine.js';
import { FakeItems, FakeModule, notification } from './support/fakemodule.js';

const TIMES = {
  answer: 200,
  valueStands: 5,
  again: 100,
  silence: 60000,
  settling: 40,
  shortestAverage: 20,
  longestAverage: 200,
  slack: 20,
};

// Steps and actions, as the module numbers them.
const [READY, CALIBRATED, SETUP, REBALANCE, FAILURE, , SETUP_OK, REBAL_OK, SETUP_OVER, REBAL_OVER] = [
  1, 2, 3, 4, 5, 6, 7, 8, 9, 10,
];
const [WAIT, AT_SPEED, START, STOP, FIT, MEASURE, COMPLETE] = [0, 1, 2, 3, 4, 5, 6];

const weights = (first, second) => [first, -1, second, -1, -1, -1];
const NO_SCREWS = [-1, 0, -1, 0, -1, 0];

const ready = { on: 'soon', notify: notification(READY) };
const calibrated = { on: 'soon', notify: notification(CALIBRATED) };
const end = { on: 4, notify: notification(CALIBRATED) };

/** From the neutral position to the verdict; the columns that each fitting asks for. */
const prebalance = (neutral, tests, correction) => [
  { on: 1, notify: notification(SETUP, FIT, neutral) },
  { on: 3, notify: notification(SETUP, WAIT, neutral) },
  { on: 'turns', notify: notification(SETUP, AT_SPEED, neutral) },
  { on: 3, notify: notification(SETUP, MEASURE, neutral) },
  { on: 'soon', notify: notification(SETUP, COMPLETE, neutral) },
  ...tests.flatMap((test) => [
    { on: 3, notify: notification(SETUP, STOP, test) },
    { on: 'stands', notify: notification(SETUP, FIT, test) },
    { on: 3, notify: notification(SETUP, START, test) },
    { on: 'turns', notify: notification(SETUP, MEASURE, test) },
    { on: 'soon', notify: notification(SETUP, COMPLETE, test) },
  ]),
  { on: 3, notify: notification(SETUP, STOP, correction) },
  { on: 'stands', notify: notification(SETUP, FIT, correction) },
  { on: 3, notify: notification(SETUP, START, correction) },
  { on: 'turns' },
];

const rebalance = (old, correction) => [
  { on: 2, notify: notification(REBALANCE, MEASURE, old) },
  { on: 'soon', notify: notification(REBALANCE, COMPLETE, old) },
  { on: 3, notify: notification(REBALANCE, STOP, correction) },
  { on: 'stands', notify: notification(REBALANCE, FIT, correction) },
  { on: 3, notify: notification(REBALANCE, START, correction) },
  { on: 'turns' },
];

let machine;
let link;
let said;
beforeEach(async () => {
  machine = await new FakeMachine().start();
  link = await MachineLink.connect(machine.endpoint);
  said = [];
});
afterEach(() => {
  link.close();
  machine.stop();
});

/** Runs procedures against a script; the script must have been played to its end, with no request beyond it. */
async function run(script, { procedures = ['prebalance'], rotor = {}, times = {}, items = new FakeItems(), ...more } = {}) {
  const program = new PartProgram({
    items,
    machine: link,
    rotor: parseRotor(JSON.stringify(rotor)),
    say: (text) => said.push(text),
    times: { ...TIMES, ...times },
    ...more,
  });
  const module = new FakeModule(items, machine, script);
  const status = await program.run(procedures);
  assert.deepEqual(module.unexpected, [], said.join('\n'));
  assert.ok(module.isOver, said.join('\n'));
  return { status, requests: module.requests, items };
}

const single = prebalance(weights(0, 180), [weights(30, 210)], weights(77, 134));

describe('a pre-balancing', () => {
  it('of one plane with weights goes from step to step', async () => {
    const { status, requests } = await run([ready, ...single, { on: 'soon', warning: 0, notify: notification(SETUP_OK, MEASURE) }, end]);
    assert.equal(status, 0);
    assert.deepEqual(requests, [1, 3, 3, 3, 3, 3, 3, 4]);
    assert.deepEqual(machine.requests, [
      { weights: { plane: 1, angles: [0, 180] } },
      { speed: 3000 },
      { speed: 0 },
      { weights: { plane: 1, angles: [30, 210] } },
      { speed: 3000 },
      { speed: 0 },
      { weights: { plane: 1, angles: [77, 134] } },
      { speed: 3000 },
      { speed: 0 },
    ]);
  });

  it('begins with stopping a spindle that turns, and runs at the speed of the rotor file', async () => {
    machine.speed = 1200;
    const script = single.slice(1);
    await run(
      [
        ready,
        { on: 1, notify: notification(SETUP, STOP, weights(0, 180)) },
        { on: 'stands', notify: notification(SETUP, FIT, weights(0, 180)) },
        ...script,
        { on: 'soon', notify: notification(SETUP_OK, MEASURE) },
        end,
      ],
      { rotor: { speed_rpm: 2400 } },
    );
    assert.deepEqual(machine.told('speed'), [0, 2400, 0, 2400, 0, 2400, 0]);
  });

  it('over the target ends with 1', async () => {
    const { status } = await run([ready, ...single, { on: 'soon', warning: 8, notify: notification(SETUP_OVER, MEASURE) }, end]);
    assert.equal(status, 1);
  });

  // Numbers engraved clockwise are the module's own; 24 holes lie 15 degrees apart.
  // 45 degrees: hole 4; 345: hole 24; 0: hole 1. Engraved counter-clockwise: 24 - 3 + 1 = 22; 2; 1.
  for (const [scale, holes] of [
    ['cw', [4, 24, 1]],
    ['ccw', [22, 2, 1]],
  ]) {
    it(`with screws in holes engraved ${scale} fits the module's screws`, async () => {
      const script = prebalance(NO_SCREWS, [[0, 250, -1, 0, -1, 0]], [45, 125, 345, 5, 0, 1000]);
      await run([ready, ...script, { on: 'soon', notify: notification(SETUP_OK, MEASURE) }, end], {
        rotor: { holes: [24], scale: [scale] },
      });
      assert.deepEqual(machine.told('screws'), [
        { plane: 1, fitted: [] },
        { plane: 1, fitted: [{ hole: 1, grams: 2.5 }] },
        {
          plane: 1,
          fitted: [
            { hole: holes[0], grams: 1.25 },
            { hole: holes[1], grams: 0.05 },
            { hole: holes[2], grams: 10 },
          ],
        },
      ]);
    });
  }

  it('of two planes, weights in one and screws in the other, has a test run for each', async () => {
    const script = prebalance(
      [...weights(0, 180), ...NO_SCREWS],
      [
        [...weights(30, 210), ...NO_SCREWS],
        [...weights(30, 210), 0, 300, -1, 0, -1, 0],
      ],
      [...weights(10, 20), 60, 200, 90, 100, -1, 0],
    );
    await run([ready, ...script, { on: 'soon', notify: notification(SETUP_OK, MEASURE) }, end], {
      rotor: { holes: [24, 12], scale: ['cw', 'ccw'] },
    });
    assert.deepEqual(
      machine.told('weights'),
      [[0, 180], [30, 210], [30, 210], [10, 20]].map((angles) => ({ plane: 1, angles })),
    );
    // 12 holes, 30 degrees apart: 60 is hole 3, engraved 11; 90 is hole 4, engraved 10.
    assert.deepEqual(machine.told('screws').at(-1), {
      plane: 2,
      fitted: [
        { hole: 11, grams: 2 },
        { hole: 10, grams: 1 },
      ],
    });
  });

  it("of the rotor's second plane alone finds it in the first columns", async () => {
    const script = prebalance(NO_SCREWS, [[30, 250, -1, 0, -1, 0]], [30, 100, -1, 0, -1, 0]);
    await run([ready, ...script, { on: 'soon', notify: notification(SETUP_OK, MEASURE) }, end], {
      plane: 2,
      rotor: { holes: [24, 12], scale: ['cw', 'ccw'] },
    });
    // 30 degrees is hole 2 of 12, engraved counter-clockwise 12.
    assert.deepEqual(machine.told('screws').at(-1), { plane: 2, fitted: [{ hole: 12, grams: 1 }] });
  });

  it('writes the test weight before it asks for the start', async () => {
    const items = new FakeItems();
    const written = [];
    items.on('written', (key, value) => written.push([key, value]));
    await run([ready, ...single, { on: 'soon', notify: notification(SETUP_OK, MEASURE) }, end], { items, testWeight: 2.5 });
    assert.deepEqual(written.slice(0, 2), [
      ['TestWeight', 2.5],
      ['Request', 1],
    ]);
  });

  it('writes target, rotation and the name of the rotor, and asks for the start when they have stood', async () => {
    const items = new FakeItems();
    const written = [];
    items.on('written', (key, value) => written.push([key, value, performance.now()]));
    await run([ready, ...single, { on: 'soon', notify: notification(SETUP_OK, MEASURE) }, end], {
      items,
      target: 33,
      rotation: 1,
      rotorName: 'S 7',
      times: { valueStands: 40 },
    });
    const first = written.slice(0, 4);
    assert.deepEqual(first.map(([key, value]) => [key, value]), [
      ['TargetUnbalance', 33],
      ['RotationDirection', 1],
      ['RotorName', 'S 7'],
      ['Request', 1],
    ]);
    assert.ok(first[3][2] - first[2][2] >= 39);
  });
});

describe('a re-balancing', () => {
  it('measures, corrects and measures', async () => {
    machine.speed = 3000;
    const script = [...rebalance(weights(77, 134), weights(80, 130)), { on: 'soon', notify: notification(REBAL_OK, MEASURE) }];
    const { status, requests } = await run([calibrated, ...script, end], { procedures: ['rebalance'] });
    assert.equal(status, 0);
    assert.deepEqual(requests, [2, 3, 3, 4]);
    assert.deepEqual(machine.told('weights'), [{ plane: 1, angles: [80, 130] }]);
  });

  it('with the spindle at rest begins with the weights of the last run', async () => {
    const script = [
      { on: 2, notify: notification(REBALANCE, FIT, weights(77, 134)) },
      { on: 3, notify: notification(REBALANCE, START, weights(77, 134)) },
      { on: 'turns', notify: notification(REBALANCE, MEASURE, weights(77, 134)) },
      ...rebalance(weights(77, 134), weights(80, 130)).slice(1),
      { on: 'soon', warning: 8, notify: notification(REBAL_OVER, MEASURE) },
    ];
    const { status } = await run([calibrated, ...script, end], { procedures: ['rebalance'] });
    assert.equal(status, 1);
    assert.deepEqual(machine.told('weights')[0], { plane: 1, angles: [77, 134] });
  });

  it('after a pre-balancing meets a wheel that has worn', async () => {
    machine.unbalance = [
      { amount: 0.1, angle_deg: 330 },
      { amount: 0, angle_deg: 300 },
    ];
    const { status } = await run(
      [
        ready,
        ...single,
        { on: 'soon', notify: notification(SETUP_OK, MEASURE) },
        end,
        ...rebalance(weights(77, 134), weights(80, 130)),
        { on: 'soon', notify: notification(REBAL_OK, MEASURE) },
        end,
      ],
      { procedures: ['prebalance', 'rebalance'] },
    );
    assert.equal(status, 0);
    assert.ok(said.includes('the wheel wears'));
    // A tenth at right angles to a tenth makes 0.141 at 45 degrees more; at nothing, a tenth at 90 degrees more.
    const [first, second] = machine.told('unbalance');
    assert.equal(first.plane, 1);
    assert.ok(Math.abs(first.amount - 0.1414) < 1e-4 && Math.abs(first.angle_deg - 15) < 1e-6);
    assert.equal(second.plane, 2);
    assert.ok(Math.abs(second.amount - 0.1) < 1e-9 && Math.abs(second.angle_deg - 30) < 1e-6);
  });
});

describe('a failure', () => {
  it('of the procedure is ended, exit 2', async () => {
    const script = [
      ready,
      ...single.slice(0, 10),
      { on: 3, warning: 5, notify: notification(FAILURE) },
      { on: 4, notify: notification(READY) },
    ];
    const { status } = await run(script);
    assert.equal(status, 2);
    assert.match(said.join('\n'), /failed, warning 5/);
  });

  it('of the start is told', async () => {
    const { status, requests } = await run([ready, { on: 2, answer: -1 }], { procedures: ['rebalance'] });
    assert.equal(status, 2);
    assert.deepEqual(requests, [2]);
    assert.match(said.join('\n'), /refuses to rebalance: the configuration isn't calibrated/);
  });

  it('of the machine ends the procedure', async () => {
    machine.refusals.weights = 'weights.plane must be 1';
    const { status } = await run([ready, single[0], end]);
    assert.equal(status, 2);
    assert.match(said.join('\n'), /the machine refuses: weights.plane must be 1/);
  });

  it('of a module that falls silent is found', async () => {
    const { status } = await run([ready, ...single.slice(0, 4)], { times: { silence: 3000 } });
    assert.equal(status, 2);
    assert.match(said.join('\n'), /the module has said nothing/);
  });

  it('of a start that is answered and comes to nothing is tried three times', async () => {
    const nothing = { on: 1 };
    const { status, requests } = await run([ready, nothing, nothing, nothing]);
    assert.equal(status, 2);
    assert.deepEqual(requests, [1, 1, 1]);
  });
});

describe('a connection that is lost', () => {
  it('brings a notification twice, and it is carried out once', async () => {
    const items = new FakeItems();
    const again = (move) => ({ ...move, then: () => move.notify && items.client('Notification', move.notify) });
    const script = [ready, ...single, { on: 'soon', notify: notification(SETUP_OK, MEASURE) }, end];
    const { status, requests } = await run(script.map(again), { items });
    assert.equal(status, 0);
    assert.deepEqual(requests, [1, 3, 3, 3, 3, 3, 3, 4]);
  });

  it('leaves a request standing until the answer comes', async () => {
    const items = new FakeItems();
    const late = { ...single[1], answer: null, then: () => setTimeout(() => items.client('Request', 0), 120) };
    const { status, requests } = await run(
      [ready, single[0], late, ...single.slice(2), { on: 'soon', notify: notification(SETUP_OK, MEASURE) }, end],
      { items },
    );
    assert.equal(status, 0);
    assert.deepEqual(requests, [1, 3, 3, 3, 3, 3, 3, 4]);
  });

  it('tells when no answer comes, and goes on when the module has', async () => {
    const lost = { ...single[5], answer: null };
    const { status, requests } = await run([
      ready,
      ...single.slice(0, 5),
      lost,
      ...single.slice(6),
      { on: 'soon', notify: notification(SETUP_OK, MEASURE) },
      end,
    ]);
    assert.equal(status, 0);
    assert.deepEqual(requests, [1, 3, 3, 3, 3, 3, 3, 4]);
    assert.match(said.join('\n'), /no answer to request 3 .* but the module has gone on/);
  });

  it('gives up a module that never answers', async () => {
    const { status, requests } = await run([ready, { on: 1, answer: null }], { times: { silence: 3000 } });
    assert.equal(status, 2);
    assert.deepEqual(requests, [1]);
    assert.match(said.join('\n'), /it stands/);
  });

  it('to the machine is made again, and the request repeated', async () => {
    const items = new FakeItems();
    items.on('changed', (key, value) => key === 'Notification' && value[1] === FIT && machine.hangUp());
    const { status } = await run([ready, ...single, { on: 'soon', notify: notification(SETUP_OK, MEASURE) }, end], { items });
    assert.equal(status, 0);
    assert.deepEqual(
      machine.told('weights').map(({ angles }) => angles),
      [[0, 180], [30, 210], [77, 134]],
    );
  });
});

describe('keys pressed at the panel', () => {
  it('that move the weights are followed before the confirmation', async () => {
    const items = new FakeItems();
    // The operator turns a weight while the NC sets them.
    const first = { ...single[0], then: () => items.client('Notification', notification(SETUP, FIT, weights(5, 180))) };
    const { requests } = await run(
      [ready, first, ...single.slice(1), { on: 'soon', notify: notification(SETUP_OK, MEASURE) }, end],
      { items },
    );
    assert.deepEqual(machine.told('weights').map(({ angles }) => angles).slice(0, 1), [[5, 180]]);
    assert.deepEqual(requests, [1, 3, 3, 3, 3, 3, 3, 4]);
  });

  it('that have confirmed already leave nothing to confirm', async () => {
    const items = new FakeItems();
    // As soon as the measurement is complete the operator goes on: the spindle is to stop.
    const complete = { ...single[4], then: () => items.client('Notification', single[5].notify) };
    const { requests } = await run(
      [ready, ...single.slice(0, 4), complete, ...single.slice(6), { on: 'soon', notify: notification(SETUP_OK, MEASURE) }, end],
      { items },
    );
    assert.deepEqual(requests, [1, 3, 3, 3, 3, 3, 4]); // one confirmation less
  });

  it('that end the procedure end the program with 2', async () => {
    const { status } = await run([ready, ...single.slice(0, 4), { on: 'soon', notify: notification(READY) }]);
    assert.equal(status, 2);
    assert.match(said.join('\n'), /ended without the NC/);
  });

  it('that end it at the verdict keep the verdict', async () => {
    const { status } = await run([
      ready,
      ...single,
      { on: 'soon', warning: 8, notify: notification(SETUP_OVER, MEASURE) },
      { on: 'soon', notify: notification(CALIBRATED) },
    ]);
    assert.equal(status, 1);
  });

  it('that look at the weights make the confirmation lead back, and it is given again', async () => {
    // The confirmation leads from looking at the weights back to setting them: the same notification.
    machine.speed = 3000;
    const script = rebalance(weights(77, 134), weights(80, 130));
    const back = { on: 3, notify: script[3].notify };
    const { status, requests } = await run(
      [calibrated, ...script.slice(0, 4), back, ...script.slice(4), { on: 'soon', notify: notification(REBAL_OK, MEASURE) }, end],
      { procedures: ['rebalance'] },
    );
    assert.equal(status, 0);
    assert.deepEqual(requests, [2, 3, 3, 3, 4]);
  });
});

describe('the verdict', () => {
  const verdict = (step, warning) => ({ on: 'soon', warning, notify: notification(step, MEASURE) });

  it('counts when it has stood, not when it comes', async () => {
    const flips = [verdict(SETUP_OK, 0), verdict(SETUP_OVER, 8), verdict(SETUP_OK, 0), verdict(SETUP_OVER, 8)];
    const { status, requests } = await run([ready, ...single, ...flips, end]);
    assert.equal(status, 1);
    assert.equal(requests.filter((request) => request === 4).length, 1);
  });

  it('of a measurement that was lost waits for the spindle and a new measurement', async () => {
    const { status } = await run([
      ready,
      ...single,
      verdict(SETUP_OVER, 8),
      { on: 'soon', warning: 2, then: () => (machine.speed = 2000) },
      { on: 'turns', warning: 0 }, // within the window again: settling, no verdict meanwhile
      { on: 'soon', warning: 8 },
      verdict(SETUP_OK, 0),
      end,
    ]);
    assert.equal(status, 0);
    assert.deepEqual(machine.told('speed').slice(-2), [3000, 0]); // brought back to its speed
  });

  it('that turns over and over is taken in the end', async () => {
    const flips = Array.from({ length: 200 }, (_, i) => (i % 2 ? verdict(SETUP_OVER, 8) : verdict(SETUP_OK, 0)));
    const items = new FakeItems();
    const program = new PartProgram({ items, machine: link, rotor: parseRotor('{}'), say: () => {}, times: TIMES });
    const module = new FakeModule(items, machine, [ready, ...single, ...flips]);
    const ended = new Promise((resolve) => {
      items.on('written', (key, value) => key === 'Request' && value === 4 && resolve());
    });
    const status = program.run(['prebalance']);
    await ended;
    assert.ok(!module.isOver); // the flips were still going on
    module.stop();
    items.client('Notification', notification(CALIBRATED));
    items.client('Request', 0);
    assert.ok([0, 1].includes(await status));
  });
});
