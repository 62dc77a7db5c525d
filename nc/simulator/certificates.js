import { createHash } from 'node:crypto';
import { existsSync } from 'node:fs';
import { chmod, mkdir, readFile, rename, writeFile } from 'node:fs/promises';
import { hostname } from 'node:os';
import { join } from 'node:path';
import opcua from './opcua.js';

const { CertificatePurpose, createSelfSignedCertificate, generatePrivateKey, privateKeyToPEM } = opcua;

/** SHA-256 of a certificate (DER), hexadecimal. */
export const fingerprintOf = (der) => createHash('sha256').update(der).digest('hex');

const derOf = (pem) => Buffer.from(pem.replace(/-----[^-]+-----|\s/g, ''), 'base64');

const pemOf = (der) =>
  `-----BEGIN CERTIFICATE-----\n${der.toString('base64').replace(/.{64}(?=.)/g, '$&\n')}\n-----END CERTIFICATE-----\n`;

/** Written whole or not at all: a start that is broken off leaves no half key behind. */
async function writePrivate(path, text) {
  await writeFile(`${path}.new`, text, { mode: 0o600 });
  await rename(`${path}.new`, path);
}

/**
 * Makes this application's key and certificate if they aren't there.
 * @param {string} directory made with mode 0700
 * @param {string} name of the application
 */
export async function ensureOwnCertificate(directory, name) {
  await mkdir(directory, { recursive: true, mode: 0o700 });
  await chmod(directory, 0o700);
  const own = {
    certificateFile: join(directory, 'own.pem'),
    keyFile: join(directory, 'own.key'),
    applicationUri: `urn:${hostname()}:${name}`,
  };
  if (!existsSync(own.certificateFile) || !existsSync(own.keyFile)) {
    const privateKey = await generatePrivateKey(2048);
    const { cert } = await createSelfSignedCertificate({
      privateKey,
      subject: `/CN=${name}`,
      dns: [...new Set([hostname(), 'localhost'])],
      ip: ['127.0.0.1'],
      applicationUri: own.applicationUri,
      notBefore: new Date(Date.now() - 24 * 3600 * 1000), // clocks of the two sides differ
      validity: 3650,
      purpose: CertificatePurpose.ForApplication,
    });
    await writePrivate(own.keyFile, (await privateKeyToPEM(privateKey)).privPem);
    await writePrivate(own.certificateFile, cert);
  }
  own.fingerprint = fingerprintOf(derOf(await readFile(own.certificateFile, 'utf8')));
  return own;
}

/** The one peer that is trusted: the first that came, kept in a file. */
export class Pin {
  #file;
  #pinned;

  /** @param {string} file a certificate, PEM; made when the first peer comes */
  constructor(file) {
    this.#file = file;
  }

  async load() {
    this.#pinned = existsSync(this.#file) ? fingerprintOf(derOf(await readFile(this.#file, 'utf8'))) : undefined;
  }

  /**
   * @param {Buffer} der the peer's certificate
   * @returns {Promise<'first' | 'known' | 'other'>}
   */
  async check(der) {
    const fingerprint = fingerprintOf(der);
    if (this.#pinned === undefined) {
      this.#pinned = fingerprint;
      await writePrivate(this.#file, pemOf(der));
      return 'first';
    }
    return this.#pinned === fingerprint ? 'known' : 'other';
  }
}
