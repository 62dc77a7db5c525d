// Which endpoint of the server is used, and whether its certificate is the one to trust.
import { Refusal } from './reasons.js';
import { MessageSecurityMode, SecurityPolicy } from '../shared/opcua.js';
import { fingerprintOf, hostsOf, validityOf } from '../shared/pki.js';

const BINARY_TRANSPORT = 'http://opcfoundation.org/UA-Profile/Transport/uatcp-uasc-uabinary';

/** Values of `security` in the configuration, and what they ask for. Nothing weaker is ever used instead. */
const SECURITIES = new Map([
  ['Basic256Sha256', { mode: MessageSecurityMode.SignAndEncrypt, policy: SecurityPolicy.Basic256Sha256 }],
  ['Aes128_Sha256_RsaOaep', { mode: MessageSecurityMode.SignAndEncrypt, policy: SecurityPolicy.Aes128_Sha256_RsaOaep }],
  ['Aes256_Sha256_RsaPss', { mode: MessageSecurityMode.SignAndEncrypt, policy: SecurityPolicy.Aes256_Sha256_RsaPss }],
  ['None', { mode: MessageSecurityMode.None, policy: SecurityPolicy.None }],
]);

/**
 * @param {string} name of the configuration
 * @returns {{mode: number, policy: string}}
 * @throws {Refusal} if there is no such security
 */
export function securityOf(name) {
  const security = SECURITIES.get(name);
  if (!security) {
    throw new Refusal(`there is no security "${name}"`);
  }
  return security;
}

/** The first certificate of a chain (both DER): the server's own one. Empty if there is none. */
export function firstOf(chain) {
  const bytes = chain ?? Buffer.alloc(0);
  // A sequence with a length of two bytes; any other length is no certificate.
  const isCertificate = bytes.length > 4 && bytes[0] === 0x30 && bytes[1] === 0x82;
  return isCertificate ? bytes.subarray(0, 4 + bytes.readUInt16BE(2)) : Buffer.alloc(0);
}

function describe({ securityMode, securityPolicyUri }) {
  const policy = String(securityPolicyUri).split('#')[1] ?? 'an unknown policy';
  return securityMode === MessageSecurityMode.None ? policy : `${policy} with ${MessageSecurityMode[securityMode]}`;
}

/** The host of an endpoint's URL. */
const hostOf = (url) => /^opc\.tcp:\/\/(?:\[([^\]]+)\]|([^:/]+))/.exec(url)?.slice(1).find(Boolean) ?? '';

/** Facts on a server's certificate; null if it shows none. */
function describeCertificate(certificate, server, pinned) {
  if (certificate.length === 0) {
    return null;
  }
  const { notBefore, notAfter } = validityOf(certificate);
  return {
    sha256: fingerprintOf(certificate),
    not_before: notBefore.toISOString(),
    not_after: notAfter.toISOString(),
    ...hostsOf(certificate, hostOf(server)),
    is_pinned: pinned?.equals(certificate) ?? false,
  };
}

/** Facts on what a server offers to somebody with these settings. */
export function describeOffers(endpoints, { security, server }, pinned) {
  const { mode, policy } = securityOf(security);
  const fitting = endpoints.find((each) => each.securityMode === mode && each.securityPolicyUri === policy);
  const certificate = mode === MessageSecurityMode.None ? null : firstOf(fitting?.serverCertificate);
  return {
    urls: [...new Set(endpoints.map(({ endpointUrl }) => endpointUrl))],
    securities: [...new Set(endpoints.map(describe))],
    application: endpoints[0]?.server?.applicationName?.text ?? '',
    certificate: certificate && describeCertificate(certificate, server, pinned),
  };
}

/** The fingerprint of the configuration in the form that fingerprintOf has; empty if none is configured. */
function normalize(fingerprint) {
  const digits = fingerprint.replace(/[\s:]/g, '').toLowerCase();
  if (digits !== '' && !/^[0-9a-f]{64}$/.test(digits)) {
    throw new Refusal('the configured fingerprint is not a SHA-256 in hexadecimal digits');
  }
  return digits;
}

/**
 * Chooses the endpoint that offers the security, with a certificate that is trusted.
 * @param {import('node-opcua-client').EndpointDescription[]} endpoints what the server offers
 * @param {{security: string, fingerprint: string}} settings
 * @param {Buffer | null} pinned the certificate trusted at first, null if there is none yet
 * @returns {import('node-opcua-client').EndpointDescription}
 * @throws {Refusal} if there is none
 */
export function chooseEndpoint(endpoints, { security, fingerprint }, pinned) {
  const { mode, policy } = securityOf(security);
  const offered = endpoints.filter(
    (endpoint) =>
      endpoint.securityMode === mode &&
      endpoint.securityPolicyUri === policy &&
      (endpoint.transportProfileUri ?? BINARY_TRANSPORT) === BINARY_TRANSPORT,
  );
  if (offered.length === 0) {
    const what = mode === MessageSecurityMode.None ? 'connections without security' : `${security} with SignAndEncrypt`;
    const others = [...new Set(endpoints.map(describe))].join(', ') || 'nothing';
    throw new Refusal(`the server does not offer ${what}, but ${others}`, 'SecurityNotOffered');
  }
  if (mode === MessageSecurityMode.None) {
    return offered[0];
  }
  const withCertificate = offered.filter((endpoint) => firstOf(endpoint.serverCertificate).length > 0);
  if (withCertificate.length === 0) {
    throw new Refusal('the server shows no certificate', 'NoServerCertificate');
  }
  const shown = fingerprintOf(firstOf(withCertificate[0].serverCertificate));
  const expected = normalize(fingerprint);
  const named = withCertificate.filter(
    (endpoint) => expected === '' || fingerprintOf(firstOf(endpoint.serverCertificate)) === expected,
  );
  if (named.length === 0) {
    throw new Refusal(
      `the server's certificate is refused: its fingerprint is ${shown}, not the configured one`,
      'FingerprintDiffers',
    );
  }
  const trusted = named.find((endpoint) => !pinned || firstOf(endpoint.serverCertificate).equals(pinned));
  if (!trusted) {
    throw new Refusal(
      `the server's certificate is refused: its fingerprint is ${shown}, but ${fingerprintOf(pinned)} was trusted ` +
        'at the first connection; remove server.pem if the change is intended',
      'ServerCertificateChanged',
    );
  }
  return trusted;
}

/**
 * Watches over the opening of secure channels. The library takes security policy and certificate of an answer from the
 * answer itself: without this, somebody in between could answer in the server's place without security.
 * @param {import('node-opcua-client').OPCUAClient} client not yet connected
 * @param {string} policy that was asked for
 * @param {Buffer} certificate of the server, DER
 * @param {() => void} onForged an answer came that isn't the server's
 */
export function guardChannel(client, policy, certificate, onForged) {
  client.on('secure_channel_created', (channel) => {
    channel.on('message', (response, messageType, header) => {
      if (messageType !== 'OPN') {
        return;
      }
      if (header.securityPolicyUri !== policy || !firstOf(header.senderCertificate).equals(certificate)) {
        onForged();
      }
    });
  });
}
