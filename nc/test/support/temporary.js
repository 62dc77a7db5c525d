// Directories that go with the test.
import { mkdtemp, rm } from 'node:fs/promises';
import { tmpdir } from 'node:os';
import { join } from 'node:path';

export const makeDirectory = () => mkdtemp(join(tmpdir(), 'gateway-test-'));

export const removeDirectory = (directory) => rm(directory, { recursive: true, force: true });
