// Certificates for servers and gateways of tests. Making a key takes long, so those of a name are the same in a file.
import { copyFile, mkdtemp } from 'node:fs/promises';
import { rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { basename, join } from 'node:path';
import { openPki, ownCertificate } from '../../shared/pki.js';

const made = new Map();

async function make(name) {
  const directory = await mkdtemp(join(tmpdir(), 'gateway-test-keys-'));
  process.on('exit', () => rmSync(directory, { recursive: true, force: true }));
  return await ownCertificate(directory, name);
}

/** Puts certificate and key where ownCertificate() will find them. */
export async function provideCertificate(directory, name) {
  if (!made.has(name)) {
    made.set(name, make(name));
  }
  const { certificateFile, privateKeyFile } = await made.get(name);
  await openPki(directory);
  for (const file of [privateKeyFile, certificateFile]) {
    await copyFile(file, join(directory, basename(file)));
  }
}
