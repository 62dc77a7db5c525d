// Node ids of the configuration.
import { Refusal } from './reasons.js';
import { coerceNodeId } from '../shared/opcua.js';

const FORM = /^(?:ns=\d{1,5};|nsu=(?<uri>[^;]+);)?(?<identifier>[isgb]=.+)$/;

/** In a node id ";" and "%" of a URI are written like this. */
const decode = (uri) => uri.replace(/%3B/gi, ';').replace(/%25/g, '%');

/** Finds nodes over one connection: the index of a namespace may be another one at the next. */
export class NodeIds {
  #readNamespaces;
  #namespaces;

  /** @param {() => Promise<string[]>} readNamespaces the server's array of namespaces */
  constructor(readNamespaces) {
    this.#readNamespaces = readNamespaces;
  }

  /**
   * @param {string} text "ns=2;s=Request", or with the namespace's URI "nsu=urn:nc;s=Request"
   * @returns {Promise<import('node-opcua-client').NodeId>}
   */
  async find(text) {
    const { uri, identifier } = FORM.exec(text)?.groups ?? {};
    const local = uri === undefined ? text : `ns=${await this.#indexOf(decode(uri))};${identifier}`;
    if (identifier !== undefined) {
      try {
        return coerceNodeId(local);
      } catch {
        // told below
      }
    }
    throw new Refusal(`"${text.slice(0, 80)}" is no node id`, 'NoNodeId');
  }

  async #indexOf(uri) {
    for (const look of [() => this.#namespaces, () => this.#readNamespaces()]) {
      this.#namespaces = await look();
      const index = this.#namespaces?.indexOf(uri) ?? -1;
      if (index >= 0) {
        return index;
      }
    }
    throw new Refusal(`the server has no namespace "${uri}"`, 'NoNamespace');
  }
}
