// One number for the whole project, told by all its programs.
import assert from 'node:assert/strict';
import { spawnSync } from 'node:child_process';
import { readFileSync } from 'node:fs';
import { test } from 'node:test';
import { fileURLToPath } from 'node:url';
import { PATIENCE } from './support/processes.js';

const pathOf = (file) => fileURLToPath(new URL(`../${file}`, import.meta.url));
const [, version] = /^project\(\w+ VERSION (\d+\.\d+\.\d+) /m.exec(readFileSync(pathOf('../CMakeLists.txt'), 'utf8'));

for (const [program, name] of [
  ['gateway', 'opc-gateway'],
  ['simulator', 'nc-simulator'],
]) {
  test(`${name} tells the version of the project`, () => {
    const { status, stdout, stderr } = spawnSync(process.execPath, [pathOf(`${program}/main.js`), '--version'], {
      encoding: 'utf8',
      timeout: PATIENCE,
    });
    assert.deepEqual({ status, stdout, stderr }, { status: 0, stdout: `${name} ${version}\n`, stderr: '' });
  });
}

test('the lock file has the version of the project', () => {
  const lock = JSON.parse(readFileSync(pathOf('package-lock.json'), 'utf8'));
  assert.deepEqual([lock.version, lock.packages[''].version], [version, version]);
});
