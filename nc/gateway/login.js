// How the gateway logs in.
import { createPrivateKey } from 'node:crypto';
import { readFile } from 'node:fs/promises';
import { Refusal, shown } from './reasons.js';
import { UserTokenType } from '../shared/opcua.js';
import { readCertificate } from '../shared/pki.js';

/**
 * @param {{user: string, password: string, user_certificate: string, user_key: string}} settings
 * @returns {Promise<import('node-opcua-client').UserIdentityInfo>}
 */
export async function makeIdentity(settings) {
  const { user, password } = settings;
  if (settings.user_certificate !== '') {
    const certificate = await shown(readCertificate(settings.user_certificate));
    if (certificate === null) {
      throw new Refusal(`${settings.user_certificate} is missing`, 'UserCertificateMissing');
    }
    const privateKey = await readFile(settings.user_key, 'utf8');
    try {
      createPrivateKey(privateKey);
    } catch {
      throw new Refusal(
        `${settings.user_key} holds no private key in PEM form, or one with a password`,
        'UserKeyUnusable',
      );
    }
    return { type: UserTokenType.Certificate, certificateData: certificate, privateKey };
  }
  if (user !== '') {
    return { type: UserTokenType.UserName, userName: user, password };
  }
  return { type: UserTokenType.Anonymous };
}

const LOGINS = new Map([
  [UserTokenType.Anonymous, 'without a user'],
  [UserTokenType.UserName, 'by user name and password'],
  [UserTokenType.Certificate, 'by user certificate'],
]);

/** @throws {Refusal} if the endpoint takes no such login */
export function checkLogin(endpoint, identity) {
  if (!(endpoint.userIdentityTokens ?? []).some(({ tokenType }) => tokenType === identity.type)) {
    throw new Refusal(`the server takes no login ${LOGINS.get(identity.type)}`, 'LoginNotOffered');
  }
}
