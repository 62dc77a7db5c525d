import { dirname } from 'node:path';
import opcua from './opcua.js';
import { fingerprintOf } from './certificates.js';

const { StatusCodes } = opcua;

/** Length of the first certificate of a chain: a DER sequence with a length of two bytes. */
const firstOf = (chain) => chain.subarray(0, 4 + chain.readUInt16BE(2));

/**
 * What the OPC UA server asks about certificates, answered by a pin: the first client is trusted, others are not.
 * It stands in place of the library's own manager, which would keep a store of its own.
 */
export class ClientCertificates {
  referenceCounter = 0;
  automaticallyAcceptUnknownCertificate = false;
  #pin;
  #say;

  /**
   * @param {{keyFile: string}} own
   * @param {import('./certificates.js').Pin} pin
   * @param {(text: string) => void} say
   */
  constructor(own, pin, say) {
    this.privateKey = own.keyFile;
    this.rootDir = dirname(own.keyFile);
    this.#pin = pin;
    this.#say = say;
  }

  async initialize() {}

  async dispose() {}

  /** Asked about this server's own certificate only. */
  async trustCertificate() {}

  async verifyCertificate() {
    return 'Good';
  }

  async checkCertificate(chain) {
    const certificate = firstOf(chain);
    const fingerprint = fingerprintOf(certificate);
    switch (await this.#pin.check(certificate)) {
      case 'first':
        this.#say(`a client comes for the first time; its certificate ${fingerprint} is trusted from now on`);
        return StatusCodes.Good;
      case 'known':
        return StatusCodes.Good;
      default:
        this.#say(`a client with another certificate is rejected: ${fingerprint}`);
        return StatusCodes.BadCertificateUntrusted;
    }
  }
}
