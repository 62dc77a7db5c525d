import { mkdir } from 'node:fs/promises';
import { dirname, join } from 'node:path';
import { fingerprintOf, pin, readCertificate, thumbprintOf, validityOf } from '../shared/pki.js';
import { StatusCodes } from './opcua.js';

/** The first certificate of a chain: a DER sequence with a length of two bytes. */
const firstOf = (chain) => chain.subarray(0, 4 + chain.readUInt16BE(2));

/** By this program's clock. */
function isOutOfTime(certificate) {
  const { notBefore, notAfter } = validityOf(certificate);
  const now = new Date();
  return now < notBefore || now > notAfter;
}

/**
 * What the OPC UA server asks about certificates, answered by a pin: the first one is trusted, others are not. It
 * stands in place of the library's own manager, which would keep a store of its own.
 */
export class PinnedCertificates {
  referenceCounter = 0;
  automaticallyAcceptUnknownCertificate = false;
  #file;
  #who;
  #isByHand;
  #say;
  #last = Promise.resolve();

  /**
   * @param {string} privateKeyFile of the server, in the directory where pinned certificates go
   * @param {'client' | 'user'} who shows the certificates
   * @param {boolean} isByHand none is trusted by itself: a person moves it from "rejected" to "trusted"
   * @param {(text: string) => void} say
   */
  constructor(privateKeyFile, who, isByHand, say) {
    this.privateKey = privateKeyFile;
    this.rootDir = dirname(privateKeyFile);
    this.#file = join(this.rootDir, `${who}.pem`);
    this.#who = who;
    this.#isByHand = isByHand;
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
    if (isOutOfTime(certificate)) {
      this.#say(`a ${this.#who} is rejected: its certificate ${fingerprint} is out of its time`);
      return StatusCodes.BadCertificateTimeInvalid;
    }
    if (this.#isByHand) {
      return await this.#findTrusted(certificate);
    }
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

  /** By the names that servers usually have for files and directories. */
  async #findTrusted(certificate) {
    const name = `${thumbprintOf(certificate)}.pem`;
    const trusted = join(this.rootDir, 'trusted', name);
    if ((await readCertificate(trusted))?.equals(certificate)) {
      return StatusCodes.Good;
    }
    const rejected = join(this.rootDir, 'rejected', name);
    await mkdir(dirname(rejected), { recursive: true });
    await pin(rejected, certificate);
    this.#say(`a ${this.#who} isn't trusted yet; to trust it move ${rejected} to ${trusted}`);
    return StatusCodes.BadCertificateUntrusted;
  }
}

/** In the same place: nobody is trusted. Where one user logs in by password, certificates are no way around it. */
export const NO_CERTIFICATES = {
  async initialize() {},
  async dispose() {},
  checkCertificate: (_chain, callback) => callback(null, StatusCodes.BadIdentityTokenRejected),
};
