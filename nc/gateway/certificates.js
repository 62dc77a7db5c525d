// Trouble with certificates, in words that say what is to be done.
import { Refusal, codeOf } from './reasons.js';
import { fingerprintOf, readCertificate, thumbprintOf, validityOf } from '../shared/pki.js';
import { TimeUp } from '../shared/timing.js';

/** What servers answer to a certificate that they don't take; many say no more than the last one. */
const REJECTED = /^Bad(Certificate|SecurityChecksFailed)/;
/** Others say nothing, and end the connection while it is being made secure. */
const ENDED = new Set(['ECONNRESET', 'EPIPE', undefined]);

/**
 * Why a secure connection couldn't be opened at a server that had just answered without security.
 * @param {unknown} error
 * @param {{certificateFile: string, isOutOfTime: boolean}} own by the server's clock
 * @param {boolean} isFirst whether the server was shown the certificate for the first time
 * @returns {Promise<unknown>} the error, or what it most likely means
 */
export async function explainRejection(error, own, isFirst) {
  const code = codeOf(error);
  const isRejected = REJECTED.test(code ?? '');
  const isEnded = isFirst && ENDED.has(code) && !(error instanceof TimeUp);
  if (!isRejected && !isEnded) {
    return error;
  }
  const certificate = await readCertificate(own.certificateFile);
  if (code === 'BadCertificateTimeInvalid' || own.isOutOfTime) {
    return new Refusal(
      `this application's certificate ${own.certificateFile} is out of its time by the server's clock: ` +
        "set the NC's clock right",
      'OwnCertificateOutOfTime',
    );
  }
  const what = isRejected
    ? `the server doesn't trust this application's certificate yet (${code})`
    : "the server ended the connection when it was shown this application's certificate: most likely it doesn't trust it yet";
  return new Refusal(
    `${what}. It is to be trusted on the NC, once: the file ${own.certificateFile}, fingerprint ` +
      `${fingerprintOf(certificate)} (SHA-256), ${thumbprintOf(certificate)} (SHA-1). Servers keep the certificates that ` +
      'they have refused in a list or directory named "rejected", from where this one is moved to the "trusted" ones',
    'OwnCertificateUntrusted',
  );
}

/** Whether this application's certificate is out of its time by a clock that is fast by so many ms. */
export async function isOutOfTime({ certificateFile }, fast) {
  const { notBefore, notAfter } = validityOf(await readCertificate(certificateFile));
  const now = Date.now() + fast;
  return now < notBefore.getTime() || now > notAfter.getTime();
}

/** How an administrator finds this application's certificate on the server. */
export async function describeOwn({ certificateFile }) {
  const certificate = await readCertificate(certificateFile);
  const now = new Date().toISOString();
  return { file: certificateFile, sha256: fingerprintOf(certificate), sha1: thumbprintOf(certificate), now };
}

/**
 * @param {Buffer} certificate of the server, DER
 * @param {Date} now
 * @returns {string | undefined} that it is out of its time
 */
export function describeValidity(certificate, now = new Date()) {
  const { notBefore, notAfter } = validityOf(certificate);
  const day = (date) => date.toISOString().slice(0, 10);
  if (now < notBefore) {
    return `The server's certificate is valid only from ${day(notBefore)}; it is used all the same. Check the clocks.`;
  }
  if (now > notAfter) {
    return `The server's certificate has been out of date since ${day(notAfter)}; it is used all the same.`;
  }
  return undefined;
}
