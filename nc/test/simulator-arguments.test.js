// What the NC simulator makes of its command line and of rotor files, and the pure pieces beside them.
import assert from 'node:assert/strict';
import { readdirSync, mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { createServer } from 'node:net';
import { once } from 'node:events';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { fileURLToPath } from 'node:url';
import { after, before, describe, it } from 'node:test';
import { ArgumentError, readArguments } from '../simulator/arguments.js';
import { rotorHole } from '../simulator/holering.js';
import { decode, describeNotification } from '../simulator/notification.js';
import { parseRotor, readRotorFile } from '../simulator/rotorfile.js';
import { runSimulator } from './support/simulatorprocess.js';

let root;
before(() => (root = mkdtempSync(join(tmpdir(), 'nc-arguments-'))));
after(() => rmSync(root, { recursive: true, force: true }));

function file(name, text, mode = 0o600) {
  const path = join(root, name);
  writeFileSync(path, text, { mode });
  return path;
}

describe('arguments', () => {
  it('have the defaults of the document', () => {
    const { host, port, pki, user, unsecured, machine, procedures, plane, testWeight, json } = readArguments([]);
    assert.deepEqual(
      { host, port, user, unsecured, machine, procedures, plane, testWeight, json },
      {
        host: '127.0.0.1',
        port: 4840,
        user: undefined,
        unsecured: false,
        machine: undefined,
        procedures: ['prebalance'],
        plane: 1,
        testWeight: undefined,
        json: false,
      },
    );
    assert.match(pki, /\/\.local\/share\/corvane-nc-simulator$/);
  });

  it('are taken, all of them', () => {
    const options = readArguments([
      ...['--host', '::1', '--port', '0', '--pki', '/p', '--machine', 'tcp:[::1]:4002', '--plane', '2', '--json'],
      ...['--rotor', file('rotor.json', '{"speed_rpm": 2400}'), '--procedure', 'prebalance+rebalance'],
      ...['--target', '7', '--rotation', 'ccw'],
      ...['--test-weight', '2.5', '--user', 'nc', '--password-file', file('password', 'secret\r\n')],
    ]);
    assert.deepEqual(options.machine, { host: '::1', port: 4002, name: 'tcp:[::1]:4002' });
    assert.deepEqual(options.user, { name: 'nc', password: 'secret' });
    assert.deepEqual(options.procedures, ['prebalance', 'rebalance']);
    assert.equal(options.rotor.speed, 2400);
    assert.equal(options.testWeight, 2.5);
    assert.equal(options.target, 7);
    assert.equal(options.rotation, 1);
    assert.equal(options.plane, 2);
  });

  it('say how a server of another make behaves', () => {
    assert.deepEqual(readArguments([]).clock, 0);
    assert.deepEqual(
      Object.values(readArguments([]).manners).filter((value) => value !== undefined && value !== false),
      [],
    );
    const options = readArguments([
      ...['--advertise', 'nc.invalid', '--namespace-index', '7', '--certificate', 'expired', '--trust', 'by-hand'],
      ...['--publishing', '1000', '--sampling', '500', '--session', '5000', '--end-sessions', '3', '--one-operation'],
      ...['--integers', 'Double', '--clock=-86400', '--rotor-name', 'Spindel Ä'],
    ]);
    assert.deepEqual(options.manners, {
      advertise: 'nc.invalid',
      namespaceIndex: 7,
      certificate: 'expired',
      isTrustedByHand: true,
      publishing: 1000,
      sampling: 500,
      session: 5000,
      endSessions: 3,
      oneOperation: true,
      integers: 'Double',
    });
    assert.equal(options.clock, -86400);
    assert.equal(options.rotorName, 'Spindel Ä');
  });

  const machine = ['--machine', 'tcp:localhost:1'];
  for (const [argv, reason] of [
    [['--speed', '3000'], /Unknown option '--speed'/],
    [['start'], /Unexpected argument 'start'/],
    [['--port'], /--port/],
    [['--port', '65536'], /--port "65536" must be a whole number from 0 to 65535/],
    [['--port', '4840x'], /--port "4840x"/],
    [['--port=-1'], /--port "-1"/],
    [['--port', '1', '--port', '2'], /--port is given twice/],
    [['--security', 'all'], /--security "all" must be none/],
    [['--machine', '127.0.0.1:4002'], /must be tcp:HOST:PORT/],
    [['--machine', 'tcp:127.0.0.1:0'], /must be tcp:HOST:PORT/],
    [['--machine', 'tcp:127.0.0.1:65536'], /must be tcp:HOST:PORT/],
    [['--procedure', 'rebalance'], /--procedure needs --machine/],
    [[...machine, '--procedure', 'balance'], /must be prebalance or rebalance or prebalance\+rebalance/],
    [[...machine, '--plane', '3'], /--plane "3"/],
    [['--test-weight', '0'], /--test-weight "0"/],
    [['--test-weight', 'heavy'], /--test-weight "heavy"/],
    [['--test-weight', 'Infinity'], /--test-weight "Infinity"/],
    [['--target', '0'], /--target "0"/],
    [['--target', ''], /--target ""/],
    [['--rotation', 'left'], /--rotation "left" must be cw or ccw/],
    [['--user', 'nc'], /--user and --password-file go together/],
    [['--password-file', '/p'], /--user and --password-file go together/],
    [['--user', 'nc', '--password-file', '/nowhere/p'], /can't be read: ENOENT/],
    [['--user', 'nc', '--password-file', '/nowhere/p', '--security', 'none'], /in the clear/],
    [['--advertise', ''], /--advertise "" must be the name/],
    [['--namespace-index', '1'], /--namespace-index "1" must be a whole number from 2 to 50/],
    [['--certificate', 'old'], /--certificate "old" must be no-host or expired or future/],
    [['--trust', 'all'], /--trust "all" must be by-hand/],
    [['--publishing', '0'], /--publishing "0"/],
    [['--integers', 'Int32'], /--integers "Int32" must be Int16 or/],
    [['--clock', 'tomorrow'], /--clock "tomorrow" must be a number of seconds/],
    [['--clock', '1000000000000'], /--clock "1000000000000"/],
    [['--rotor', '/nowhere/rotor.json'], /rotor.json: can't be read/],
  ]) {
    it(`${argv.join(' ')} is refused in one line`, () => {
      assert.throws(
        () => readArguments(argv),
        (error) => error instanceof ArgumentError && reason.test(error.message) && !error.message.includes('\n'),
      );
    });
  }

  it('that name a password file which others can read, or an empty one, are refused', () => {
    for (const [path, reason] of [
      [file('open', 'secret', 0o644), /can be read by others; chmod 600/],
      [file('empty', '\n'), /is empty/],
    ]) {
      assert.throws(() => readArguments(['--user', 'nc', '--password-file', path]), reason);
    }
  });
});

describe('the program', () => {
  const refused = async (args, reason) => {
    const { status, stdout, stderr } = await runSimulator('--pki', join(root, 'pki'), ...args);
    assert.equal(status, 3);
    assert.equal(stdout, '');
    assert.match(stderr, reason);
    assert.equal(stderr.trim().split('\n').length, 1);
  };

  it('ends with 3 and a line for an unknown option', () => refused(['--speed', '3000'], /--speed/));

  it('ends with 3 and a line for a port that is taken', async () => {
    const other = createServer().listen(0, '127.0.0.1');
    await once(other, 'listening');
    await refused(['--port', String(other.address().port)], /port \d+ at 127.0.0.1 is taken/);
    other.close();
  });

  it("ends with 3 and a line for a machine that can't be reached", async () => {
    const other = createServer().listen(0, '127.0.0.1');
    await once(other, 'listening');
    const { port } = other.address();
    other.close();
    await once(other, 'close');
    await refused(['--port', '0', '--machine', `tcp:127.0.0.1:${port}`], /can't be reached: ECONNREFUSED/);
  });

  it('ends with 3 and a line where it has no place for certificates', async () => {
    const { status, stderr } = await runSimulator('--port', '0', '--pki', '/dev/null/pki');
    assert.equal(status, 3);
    assert.match(stderr, /^nc-simulator: .*certificates in \/dev\/null\/pki.*\n$/);
  });

  it('ends with 3 and a line for an address that is not of this computer', () =>
    refused(['--port', '0', '--host', '192.0.2.1'], /--host 192.0.2.1 is no address of this computer/));

  it('tells its options', async () => {
    const { status, stdout } = await runSimulator('--help');
    assert.equal(status, 0);
    assert.match(stdout, /--test-weight GRAMS/);
  });
});

describe('a rotor file', () => {
  it('may hold comments, and slashes in texts', () => {
    const text = '// a rotor\n{ "speed_rpm": 1800, /* rpm */ "scale": ["ccw"], "holes": [24] }';
    assert.deepEqual(parseRotor(text), {
      speed: 1800,
      rings: [
        { holes: 24, counterClockwise: true },
        { holes: 12, counterClockwise: false },
      ],
    });
    assert.throws(() => parseRotor('{ "a//b": 1 }'), /unknown field "a\/\/b"/);
  });

  it('of the rotor simulator is understood', () => {
    const rotors = fileURLToPath(new URL('../../simulator/rotors', import.meta.url));
    const files = readdirSync(rotors);
    assert.ok(files.length > 3);
    files.forEach((name) => readRotorFile(join(rotors, name)));
  });

  for (const [text, reason] of [
    ['{', /not valid JSON/],
    ['[]', /must be an object/],
    ['{ "sped_rpm": 3000 }', /unknown field "sped_rpm", known here: modules/],
    ['{ "speed_rpm": "3000" }', /speed_rpm must be a number/],
    ['{ "speed_rpm": 30 }', /speed_rpm must be a number from 60/],
    ['{ "scale": "cw" }', /scale must be an array/],
    ['{ "scale": [] }', /scale must be an array of 1 to 2/],
    ['{ "scale": ["cw", "left"] }', /scale\[1\] must be cw or ccw/],
    ['{ "holes": [0] }', /holes\[0\] must be a whole number from 1 to 360/],
    ['{ "holes": [12, 12, 12] }', /holes must be an array of 1 to 2/],
  ]) {
    it(`${text} is refused with the name of the field`, () => {
      const path = file('bad.json', text);
      assert.throws(() => readRotorFile(path), reason);
      assert.throws(() => readRotorFile(path), /bad\.json: /);
    });
  }
});

describe('holes', () => {
  // The angles that a module sends for holes 1 to 7: trunc((hole - 1) * 360 / 7 + 0.5), by hand.
  const ANGLES = [0, 51, 103, 154, 206, 257, 309];

  it('engraved clockwise are numbered as the module does', () => {
    const ring = { holes: 7, counterClockwise: false };
    assert.deepEqual(ANGLES.map((angle) => rotorHole(ring, angle)), [1, 2, 3, 4, 5, 6, 7]);
  });

  it('engraved counter-clockwise are numbered the other way from the same first one', () => {
    const ring = { holes: 7, counterClockwise: true };
    assert.deepEqual(ANGLES.map((angle) => rotorHole(ring, angle)), [1, 7, 6, 5, 4, 3, 2]);
  });

  it('are found from rounded angles whatever their number', () => {
    for (let holes = 1; holes <= 360; ++holes) {
      for (let hole = 1; hole <= holes; ++hole) {
        const angle = Math.trunc(((hole - 1) * 360) / holes + 0.5);
        assert.equal(rotorHole({ holes, counterClockwise: false }, angle), hole);
      }
    }
  });
});

describe('a notification', () => {
  it('with weights of -1 asks for balance weights', () => {
    const { planes } = decode([3, 4, 0, -1, 180, -1, -1, -1, 0, 0, 0, 0, 0, 0]);
    assert.deepEqual(planes, [{ kind: 'weights', angles: [0, 180] }, { kind: 'none' }]);
  });

  it('with unused weights of 0 asks for screws, be it for none', () => {
    const { planes } = decode([3, 4, 0, 250, 90, 125, -1, 0, -1, 0, -1, 0, -1, 0]);
    assert.deepEqual(planes, [
      {
        kind: 'screws',
        screws: [
          { angle: 0, grams: 2.5 },
          { angle: 90, grams: 1.25 },
        ],
      },
      { kind: 'screws', screws: [] },
    ]);
  });

  it('is told in words', () => {
    const columns = [0, -1, 180, -1, -1, -1, 90, 125, -1, 0, -1, 0];
    assert.equal(
      describeNotification([3, 4, ...columns]),
      'pre-balancing: set the weights (weights 1 at 0°, 180°; screws 2 1.25 g at 90°)',
    );
    assert.equal(describeNotification([4, 6, ...columns]), 're-balancing: measurement complete');
    assert.equal(describeNotification([9, 5, ...columns]), 'over the target');
    assert.equal(describeNotification([3, 77, ...columns]), 'pre-balancing: action 77');
    assert.equal(describeNotification([99, 0, ...columns]), 'step 99');
  });
});
