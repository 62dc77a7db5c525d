import { dirname, join } from 'node:path';
import { fingerprintOf, pin } from '../shared/pki.js';
import { StatusCodes } from './opcua.js';

/** The first certificate of a chain: a DER sequence with a length of two bytes. */
const firstOf = (chain) => chain.subarray(0, 4 + chain.readUInt16BE(2));

/**
 * What the OPC UA server asks about certificates, answered by a pin: the first one is trusted, others are not. It
 * stands in place of the library's own manager, which would keep a store of its own.
 */
export class PinnedCertificates {
  referenceCounter = 0;
  automaticallyAcceptUnknownCertificate = false;
  #file;
  #who;
  #say;
  #last = Promise.resolve();

  /**
   * @param {string} privateKeyFile of the server, in the directory where pinned certificates go
   * @param {'client' | 'user'} who shows the certificates
   * @param {(text: string) => void} say
   */
  constructor(privateKeyFile, who, say) {
    this.privateKey = privateKeyFile;
    this.rootDir = dirname(privateKeyFile);
    this.#file = join(this.rootDir, `${who}.pem`);
    this.#who = who;
    this.#say = say;
  }

  async initialize() {}

  async dispose() {}

  /** Asked about this server's own certificate only. */
  async trustCertificate() {}

  async verifyCertificate() {
    return 'Good';
  }

  /**
   * Those that come at the same time are looked at one after the other: only one can be the first.
   * @param {Buffer} chain
   * @param {(error: Error | null, status?: object) => void} [callback] the library asks in both manners
   */
  checkCertificate(chain, callback) {
    const checked = this.#last.then(() => this.#check(firstOf(chain)));
    this.#last = checked.catch(() => {});
    if (callback) {
      checked.then((status) => callback(null, status), callback);
    }
    return checked;
  }

  async #check(certificate) {
    const fingerprint = fingerprintOf(certificate);
    switch (await pin(this.#file, certificate)) {
      case 'first':
        this.#say(`a ${this.#who} comes for the first time; the certificate ${fingerprint} is trusted from now on`);
        return StatusCodes.Good;
      case 'same':
        return StatusCodes.Good;
      default:
        this.#say(
          `a ${this.#who} with another certificate is rejected: ${fingerprint}; to trust it remove ${this.#file}`,
        );
        return StatusCodes.BadCertificateUntrusted;
    }
  }
}

/** In the same place: nobody is trusted. Where one user logs in by password, certificates are no way around it. */
export const NO_CERTIFICATES = {
  async initialize() {},
  async dispose() {},
  checkCertificate: (_chain, callback) => callback(null, StatusCodes.BadIdentityTokenRejected),
};
