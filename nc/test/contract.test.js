// What module and NC agree on is written down once, in the headers of contract/; the NC simulator says it again in its own
// language. Here the two are held against each other.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { describe, it } from 'node:test';
import { moduleHole, rotorHole } from '../simulator/holering.js';
import { NOTIFICATION_SIZE } from '../simulator/items.js';
import { Request } from '../simulator/moduleinterface.js';
import { Action, Step, Warning } from '../simulator/notification.js';

const read = (path) => readFileSync(new URL(`../../${path}`, import.meta.url), 'utf8');

/** The enumerators of an enum of a header, by name. */
function enumOf(header, name) {
  const body = read(`contract/${header}`).match(new RegExp(`enum ${name} : [^{]*{([^}]*)}`))?.[1];
  assert.ok(body, `${header} has an enum ${name}`);
  const rows = [...body.matchAll(/\be(\w+) = (-?\d+)/g)].map(([, key, value]) => [key, Number(value)]);
  assert.ok(rows.length > 1);
  return Object.fromEntries(rows);
}

/** The same keys in this language's manner. */
const decapitalised = (table) =>
  Object.fromEntries(Object.entries(table).map(([key, value]) => [key[0].toLowerCase() + key.slice(1), value]));

describe('what the NC simulator knows of the module', () => {
  it('has the steps of a notification', () => assert.deepEqual({ ...Step }, decapitalised(enumOf('prebalcodes.h', 'Step'))));

  it('has the actions of a notification', () =>
    assert.deepEqual({ ...Action }, decapitalised(enumOf('prebalcodes.h', 'Action'))));

  it('has the size of a notification', () =>
    assert.equal(NOTIFICATION_SIZE, Number(read('contract/ncnotification.h').match(/SIZE = (\d+);/)[1])));

  it('has the requests', () => {
    const { PreBalance, ReBalance, Next, End } = enumOf('ncrequests.h', 'Request');
    assert.deepEqual({ ...Request }, { prebalance: PreBalance, rebalance: ReBalance, next: Next, end: End });
  });

  it('has the warnings that a part program looks at', () => {
    const warnings = enumOf('warnings.h', 'Mode');
    assert.deepEqual(
      { ...Warning },
      {
        none: warnings.None,
        wrongSpeed: warnings.WrongRPM,
        outOfLock: warnings.OutOfLock,
        wrongSpeedAndOutOfLock: warnings.WrongRPMAndOutOfLock,
        overTarget: warnings.OverTarget,
      },
    );
  });

  // The module's own ring is held by the same table.
  it('numbers the holes as the module does', () => {
    const cases = JSON.parse(read('tests/contract/holering.json'));
    assert.ok(cases.length > 50);
    for (const { holes, angle, module, clockwise, counterClockwise } of cases) {
      assert.equal(moduleHole({ holes, counterClockwise: false }, angle), module, `${angle}° of ${holes}`);
      assert.equal(rotorHole({ holes, counterClockwise: false }, angle), clockwise, `${angle}° of ${holes}`);
      assert.equal(rotorHole({ holes, counterClockwise: true }, angle), counterClockwise, `${angle}° of ${holes}`);
    }
  });
});
