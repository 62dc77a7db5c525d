// Certificates on disk.
import assert from 'node:assert/strict';
import { X509Certificate, createPrivateKey } from 'node:crypto';
import { readFile, readdir, rm, stat, writeFile } from 'node:fs/promises';
import { createRequire } from 'node:module';
import { hostname } from 'node:os';
import { join } from 'node:path';
import { afterEach, beforeEach, test } from 'node:test';
import { fingerprintOf, openPki, ownCertificate, pin, readCertificate } from '../shared/pki.js';
import { makeDirectory, removeDirectory } from './support/temporary.js';

const { exploreCertificate } = createRequire(import.meta.url)('node-opcua-crypto');

let directory;

beforeEach(async () => {
  directory = join(await makeDirectory(), 'pki');
  await openPki(directory);
});

afterEach(async () => {
  await removeDirectory(join(directory, '..'));
});

test('the own certificate has what OPC UA asks of one, and belongs to its key', async () => {
  const { certificateFile, privateKeyFile, applicationUri } = await ownCertificate(directory, 'some-program');
  const certificate = new X509Certificate(await readFile(certificateFile));
  assert.equal(applicationUri, `urn:${hostname()}:some-program`);
  const names = certificate.subjectAltName.split(', ');
  assert.ok(names.includes(`URI:${applicationUri}`));
  assert.ok(names.includes('DNS:localhost'));
  assert.ok(names.includes('IP Address:127.0.0.1'));
  assert.equal(certificate.ca, false);
  assert.deepEqual([...certificate.keyUsage].sort(), ['1.3.6.1.5.5.7.3.1', '1.3.6.1.5.5.7.3.2']); // server and client
  const { keyUsage } = exploreCertificate(certificate.raw).tbsCertificate.extensions;
  for (const use of ['digitalSignature', 'nonRepudiation', 'keyEncipherment', 'dataEncipherment']) {
    assert.equal(keyUsage[use], true, use);
  }
  assert.ok(new Date(certificate.validFrom) < new Date());
  assert.ok(certificate.checkPrivateKey(createPrivateKey(await readFile(privateKeyFile))));
  assert.equal(fingerprintOf(await readCertificate(certificateFile)), plain(certificate.fingerprint256));
});

const plain = (fingerprint) => fingerprint.replaceAll(':', '').toLowerCase();

test('the own certificate is made once', async () => {
  const first = await ownCertificate(directory, 'a');
  const text = await readFile(first.certificateFile, 'utf8');
  const second = await ownCertificate(directory, 'a');
  assert.deepEqual(second, first);
  assert.equal(await readFile(second.certificateFile, 'utf8'), text);
  assert.deepEqual((await readdir(directory)).sort(), ['own-key.pem', 'own.pem']); // no parts left
  assert.equal((await stat(first.privateKeyFile)).mode & 0o777, 0o600);
  assert.equal((await stat(directory)).mode & 0o777, 0o700);
});

test('a key without certificate, as a broken start leaves it, is made anew', async () => {
  const { certificateFile, privateKeyFile } = await ownCertificate(directory, 'a');
  await rm(certificateFile);
  await ownCertificate(directory, 'a');
  const certificate = new X509Certificate(await readFile(certificateFile));
  assert.ok(certificate.checkPrivateKey(createPrivateKey(await readFile(privateKeyFile))));
});

test('a certificate without its key is told, not replaced: it may be trusted at the other end', async () => {
  const { privateKeyFile } = await ownCertificate(directory, 'a');
  await rm(privateKeyFile);
  await assert.rejects(ownCertificate(directory, 'a'), /own\.pem is there without its key .*own-key\.pem/);
});

test('a peer is pinned by its first certificate', async () => {
  const file = join(directory, 'peer.pem');
  const { certificateFile } = await ownCertificate(directory, 'a');
  const certificate = await readCertificate(certificateFile);
  assert.equal(await pin(file, certificate), 'first');
  assert.ok((await readCertificate(file)).equals(certificate));
  assert.equal(await pin(file, certificate), 'same');
  assert.equal(await pin(file, certificate.subarray(0, -1)), 'other');
  assert.ok((await readCertificate(file)).equals(certificate));
});

test('a file that holds no certificate is an error that names it; none is null', async () => {
  const file = join(directory, 'peer.pem');
  assert.equal(await readCertificate(file), null);
  await writeFile(file, 'nothing');
  await assert.rejects(readCertificate(file), /peer\.pem holds no certificate/);
  await assert.rejects(readCertificate(directory), /pki can't be read \(EISDIR\)/);
});
