// What a test program starts ends with it, however its tests end; or it would never end itself, and what it has found
// would never be told.
import assert from 'node:assert/strict';
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, before, it } from 'node:test';
import { setTimeout as sleep } from 'node:timers/promises';
import { Stopwatch, finish, start } from './support/processes.js';

let root;
before(() => (root = mkdtempSync(join(tmpdir(), 'nc-processes-'))));
after(() => rmSync(root, { recursive: true, force: true }));

/** Runs a test program of one test, which begins with starting a child that doesn't end by itself. */
async function runTest(...statements) {
  const file = join(root, 'fails.test.mjs');
  writeFileSync(
    file,
    [
      "import { test } from 'node:test';",
      `import { start } from '${new URL('./support/processes.js', import.meta.url)}';`,
      "test('starts a child', async (t) => {",
      "  const child = start('sleep', ['100000']);",
      '  process.stderr.write(`child ${child.pid}\\n`);',
      ...statements,
      '});',
    ].join('\n'),
  );
  const program = start(process.execPath, [file], { stdio: ['ignore', 'ignore', 'pipe'] });
  let said = '';
  program.stderr.on('data', (bytes) => (said += bytes));
  const status = await finish(program);
  return { status, child: Number(/child (\d+)/.exec(said)[1]) };
}

/** Whether a process is there and has not ended; one that nobody has buried yet has. */
function isAlive(pid) {
  try {
    return !/^\d+ \(.*\) Z/.test(readFileSync(`/proc/${pid}/stat`, 'utf8'));
  } catch {
    return false;
  }
}

/** Waits for the end of a process that has been killed a moment ago. */
async function assertEnds(pid) {
  for (const watch = new Stopwatch(); isAlive(pid); ) {
    assert.ok(watch.usable < 5);
    await sleep(10);
  }
}

it('a test that fails leaves nothing running, and its program ends', async () => {
  const { status, child } = await runTest("throw new Error('fails');");
  assert.equal(status, 1);
  await assertEnds(child);
});

it('a test that passes and has forgotten its child leaves nothing running either', async () => {
  const { status, child } = await runTest();
  assert.equal(status, 0);
  await assertEnds(child);
});

it('a program that gives up in the middle leaves nothing running', async () => {
  const { status, child } = await runTest('process.exit(7);');
  assert.equal(status, 7);
  await assertEnds(child);
});

it('usable time is what has passed but for the time in which others had the processor', async () => {
  // Each has the processor for a part of the time, if only one can be used.
  const work = 'const end = performance.now() + 2000; while (performance.now() < end);';
  const [command, ...args] = ['taskset', '-c', '0', process.execPath, '-e', work];
  const programs = [1, 2, 3, 4].map(() => start(command, args, { stdio: 'ignore' }));
  const watches = programs.map(({ pid }) => new Stopwatch(pid));
  await Promise.all(programs.map(finish));
  for (const { usable, passed } of watches) {
    assert.ok(usable > 0 && usable < 0.8 * passed, `${usable} s of ${passed} s`);
  }
});
