// Whom the gateway speaks to: the server's endpoint with the security that the configuration asks for.
import { join } from 'node:path';
import * as pki from '../shared/pki.js';
import { MessageSecurityMode, OPCUAClient, SecurityPolicy } from '../shared/opcua.js';

/** Longest wait for a step of setting up a connection, ms. */
export const CONNECT_TIMEOUT = 5000;
/** The library is not to try again by itself: the session above does, and tells about it. */
export const ONE_ATTEMPT = { maxRetry: 0, initialDelay: 100, maxDelay: 100 };

function describe(endpoint) {
  return `${MessageSecurityMode[endpoint.securityMode]} ${endpoint.securityPolicyUri?.split('#')[1] ?? 'None'}`;
}

/** The endpoints that the server names, asked without security: they hold nothing secret, and are judged after. */
async function askEndpoints(url, options) {
  const client = OPCUAClient.create({ ...options, endpointMustExist: false, connectionStrategy: ONE_ATTEMPT });
  try {
    await client.connect(url);
    return await client.getEndpoints();
  } finally {
    await client.disconnect();
  }
}

/**
 * The server's certificate, for a connection with SignAndEncrypt under a policy. It is trusted the first time and
 * only that one afterwards; a fingerprint known beforehand decides instead of the first time.
 * @param {object} settings as in the connect line
 * @param {object} options of the library's client
 * @param {(level: string, text: string) => void} log
 * @returns {Promise<Buffer>} DER
 * @throws with a reason for a person
 */
export async function trustedCertificate(settings, options, log) {
  const endpoints = await askEndpoints(settings.server, options);
  const wanted = endpoints.find(
    (endpoint) =>
      endpoint.securityMode === MessageSecurityMode.SignAndEncrypt &&
      endpoint.securityPolicyUri === SecurityPolicy[settings.security],
  );
  if (!wanted) {
    const offered = [...new Set(endpoints.map(describe))].join(', ') || 'nothing';
    throw new Error(`the server offers no SignAndEncrypt with ${settings.security}, but ${offered}`);
  }
  const certificate = wanted.serverCertificate;
  const fingerprint = pki.fingerprintOf(certificate);
  const expected = (settings.fingerprint ?? '').replace(/[^0-9a-f]/gi, '').toLowerCase();
  if (expected !== '' && expected !== fingerprint) {
    throw new Error(`the server's certificate has the fingerprint ${fingerprint}, not the one that is configured`);
  }
  const file = join(settings.pki, 'server.pem');
  switch (await pki.pin(file, certificate)) {
    case 'other':
      throw new Error(
        `the server shows another certificate (fingerprint ${fingerprint}) than the one trusted; ` +
          `if the NC got a new one, remove ${file}`,
      );
    case 'first':
      log('warning', `the server's certificate is trusted from now on, fingerprint ${fingerprint}`);
      break;
    default:
      break;
  }
  return certificate;
}
