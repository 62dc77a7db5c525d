// Certificates on disk: an application's own one, made at first start, and the pinned one of its peer.
import { X509Certificate, createHash } from 'node:crypto';
import { chmod, mkdir, open, readFile, rename, rm } from 'node:fs/promises';
import { createRequire } from 'node:module';
import { isIP } from 'node:net';
import { hostname } from 'node:os';
import { join } from 'node:path';

// Its form for import doesn't load on Node.js 18.
const crypto = createRequire(import.meta.url)('node-opcua-crypto');

const DAY = 24 * 3600 * 1000;
const VALID_DAYS = 20 * 365; // a machine's lifetime: nobody renews certificates on a shop floor
/** Clocks of machines are wrong, by years where a battery is empty. */
const EARLIER_DAYS = 10 * 365;
const KEY_BITS = 2048;

/** SHA-256 of a certificate (DER) in hexadecimal digits. */
export function fingerprintOf(certificate) {
  return createHash('sha256').update(certificate).digest('hex');
}

/** SHA-1 of a certificate (DER), by which many OPC UA servers name the certificates that they keep. */
export function thumbprintOf(certificate) {
  return createHash('sha1').update(certificate).digest('hex');
}

/**
 * When a certificate is valid.
 * @param {Buffer} certificate DER
 * @returns {{notBefore: Date, notAfter: Date}}
 */
export function validityOf(certificate) {
  return crypto.exploreCertificate(certificate).tbsCertificate.validity;
}

/**
 * The hosts that a certificate names, and whether a host is one of them.
 * @param {Buffer} certificate DER
 * @param {string} host name or address
 * @returns {{hosts: string[], is_named: boolean}}
 */
export function hostsOf(certificate, host) {
  const x509 = new X509Certificate(certificate);
  const names = (x509.subjectAltName ?? '').split(', ').map((each) => /^(?:DNS|IP Address):(.+)$/.exec(each)?.[1]);
  const isNamed = isIP(host) ? x509.checkIP(host) !== undefined : x509.checkHost(host) !== undefined;
  return { hosts: names.filter((name) => name !== undefined), is_named: isNamed };
}

/** The certificate (DER) of a PEM file, null if there is no such file. Throws if it holds no certificate. */
export async function readCertificate(file) {
  let text;
  try {
    text = await readFile(file, 'utf8');
  } catch (error) {
    if (error.code === 'ENOENT') {
      return null;
    }
    throw new Error(`${file} can't be read (${error.code})`);
  }
  const match = /-----BEGIN CERTIFICATE-----([^-]+)-----END CERTIFICATE-----/.exec(text);
  if (!match) {
    throw new Error(`${file} holds no certificate in PEM form`);
  }
  return Buffer.from(match[1], 'base64');
}

/** Writes a file so that it is there whole or not at all: machines are switched off without warning. */
async function writeWhole(file, text, mode) {
  const part = `${file}.part`;
  await rm(part, { force: true }); // its mode might be another one
  const handle = await open(part, 'wx', mode);
  try {
    await handle.writeFile(text);
    await handle.sync();
  } finally {
    await handle.close();
  }
  await rename(part, file);
}

/**
 * Makes the directory, for this user only.
 * @param {string} directory
 */
export async function openPki(directory) {
  await mkdir(directory, { recursive: true, mode: 0o700 });
  await chmod(directory, 0o700);
}

/**
 * The application's own certificate and key, made when they are not there.
 * @param {string} directory made by openPki
 * @param {string} name of the application; part of its URI
 * @param {{file?: string, hosts?: string[], notBefore?: Date, days?: number}} [manner] how it differs from what a
 *   certificate should be; one of each kind has a file name of its own
 * @returns {Promise<{certificateFile: string, privateKeyFile: string, applicationUri: string}>}
 */
export async function ownCertificate(directory, name, manner = {}) {
  const { file = 'own', hosts, notBefore, days } = manner;
  const certificateFile = join(directory, `${file}.pem`);
  const privateKeyFile = join(directory, `${file}-key.pem`);
  let certificate = await readCertificate(certificateFile);
  if (certificate === null) {
    const key = await crypto.generatePrivateKey(KEY_BITS);
    const { privPem } = await crypto.privateKeyToPEM(key);
    const { cert } = await crypto.createSelfSignedCertificate({
      privateKey: key,
      notBefore: notBefore ?? new Date(Date.now() - EARLIER_DAYS * DAY),
      validity: days ?? EARLIER_DAYS + VALID_DAYS,
      subject: `CN=${name}`,
      dns: hosts ?? [...new Set(['localhost', hostname()])],
      ip: hosts ? [] : ['127.0.0.1'],
      applicationUri: `urn:${hostname()}:${name}`,
      purpose: crypto.CertificatePurpose.ForApplication,
    });
    // The key first: a certificate without its key would be taken for a finished pair at the next start.
    await writeWhole(privateKeyFile, privPem, 0o600);
    await writeWhole(certificateFile, cert, 0o644);
    certificate = await readCertificate(certificateFile);
  }
  try {
    await chmod(privateKeyFile, 0o600);
  } catch (error) {
    throw new Error(`${certificateFile} is there without its key ${privateKeyFile} (${error.code})`);
  }
  // As it stands in the certificate: the host may have got another name since.
  const { uniformResourceIdentifier } = crypto.exploreCertificate(certificate).tbsCertificate.extensions.subjectAltName;
  return { certificateFile, privateKeyFile, applicationUri: uniformResourceIdentifier[0] };
}

/**
 * Trusts a peer's certificate once, and only that one from then on.
 * @param {string} file where the pinned certificate is kept
 * @param {Buffer} certificate DER, the one the peer shows now
 * @returns {Promise<'first' | 'same' | 'other'>} 'first' if it was pinned by this call
 */
export async function pin(file, certificate) {
  const pinned = await readCertificate(file);
  if (pinned !== null) {
    return pinned.equals(certificate) ? 'same' : 'other';
  }
  await writeWhole(file, crypto.toPem(certificate, 'CERTIFICATE') + '\n', 0o600);
  return 'first';
}
