import { EventEmitter } from 'node:events';
import { fingerprintOf, openPki, ownCertificate, readCertificate } from '../shared/pki.js';
import { ITEMS, findItem, fits, initialValue } from './items.js';
import { CERTIFICATES, ONE_OPERATION, endSessions, revise } from './manners.js';
import { NodeValues } from './nodevalues.js';
import {
  DataType,
  MessageSecurityMode,
  OPCUAServer,
  SecurityPolicy,
  StatusCodes,
  VariantArrayType,
  makeAccessLevelFlag,
  nodesets,
} from './opcua.js';
import { NO_CERTIFICATES, PinnedCertificates } from './pinnedcertificates.js';

const APPLICATION = 'nc-simulator';
const NAMESPACE = 'urn:corvane:pre-balancing';
/** What node ids that name it by number rely on. */
export const NAMESPACE_INDEX = 2;
const SECURE_POLICIES = [
  SecurityPolicy.Basic256Sha256,
  SecurityPolicy.Aes128_Sha256_RsaOaep,
  SecurityPolicy.Aes256_Sha256_RsaPss,
];

const idOf = (item) => `s=PreBalancing.${item.key}`;

/** What a client may do with an item, by the names of the access levels. */
export const RIGHTS = Object.freeze({
  all: 'CurrentRead | CurrentWrite',
  read: 'CurrentRead',
  write: 'CurrentWrite',
  none: '',
});

/**
 * The NC's OPC UA server with the items. It emits 'changed' (key, value) when a client has written an item, be it
 * with the value that it had.
 */
export class NcServer extends EventEmitter {
  #server;
  #fingerprint;
  #nodes = new Map();
  #values = new Map();
  #retyped = new Set();
  #manners;
  #nodeValues;
  #timer;
  #folder;

  /**
   * @param {object} options
   * @param {string} options.host address to listen at
   * @param {number} options.port 0 takes a free one
   * @param {string} options.pki directory of the certificates
   * @param {{name: string, password: string}} [options.user] without one, everybody may log in
   * @param {boolean} [options.unsecured] offers an endpoint without security besides
   * @param {object} [options.manners] of other makes: `advertise`, the host that its endpoints name,
   *   `namespaceIndex` of the items, `certificate`, a key of CERTIFICATES, `isTrustedByHand`, `publishing`, `sampling`
   *   and `session`, ms, `endSessions`, s, `oneOperation`, `integers`, the type of what usually is Int32
   * @param {(text: string) => void} options.say
   * @throws {Error} if it can't listen, or has no place for its certificates
   */
  static async start(options) {
    const server = new NcServer();
    await server.#start(options);
    return server;
  }

  async #start({ host, port, pki, user, unsecured = false, manners = {}, say }) {
    await openPki(pki);
    const own = await ownCertificate(pki, APPLICATION, CERTIFICATES[manners.certificate]);
    this.#manners = manners;
    this.#nodeValues = new NodeValues(manners.integers);
    const isByHand = manners.isTrustedByHand ?? false;
    this.#fingerprint = fingerprintOf(await readCertificate(own.certificateFile));
    this.#server = new OPCUAServer({
      host,
      hostname: manners.advertise ?? host,
      port,
      serverInfo: { applicationUri: own.applicationUri, applicationName: { text: 'NC simulator', locale: 'en' } },
      nodeset_filename: [nodesets.standard],
      serverCertificateManager: new PinnedCertificates(own.privateKeyFile, 'client', isByHand, say),
      userCertificateManager: user ? NO_CERTIFICATES : new PinnedCertificates(own.privateKeyFile, 'user', isByHand, say),
      certificateFile: own.certificateFile,
      privateKeyFile: own.privateKeyFile,
      securityModes: [MessageSecurityMode.SignAndEncrypt, ...(unsecured ? [MessageSecurityMode.None] : [])],
      securityPolicies: [...SECURE_POLICIES, ...(unsecured ? [SecurityPolicy.None] : [])],
      allowAnonymous: user === undefined,
      userManager: { isValidUser: (name, password) => name === user?.name && password === user?.password },
      serverCapabilities: manners.oneOperation ? { operationLimits: ONE_OPERATION } : {},
    });
    revise(this.#server, manners);
    await this.#server.initialize();
    this.#makeItems();
    await this.#server.start();
    if (manners.endSessions !== undefined) {
      this.#timer = setInterval(() => this.endSessions(), manners.endSessions * 1000);
    }
  }

  #makeItems() {
    const space = this.#server.engine.addressSpace;
    const index = this.#manners.namespaceIndex ?? NAMESPACE_INDEX;
    for (let before = NAMESPACE_INDEX; before < index; ++before) {
      space.registerNamespace(`urn:something-else:${before}`);
    }
    const namespace = space.registerNamespace(NAMESPACE);
    if (namespace.index !== index) {
      throw new Error(`the items' namespace has index ${namespace.index} in place of ${index}`);
    }
    this.#folder = namespace.addObject({
      organizedBy: space.rootFolder.objects,
      browseName: 'PreBalancing',
      nodeId: 's=PreBalancing',
      description: 'Interface between the NC and the pre-balancing module',
    });
    for (const item of ITEMS) {
      this.#values.set(item.key, initialValue(item));
      this.#makeNode(item);
    }
  }

  #makeNode(item) {
    const readWrite = makeAccessLevelFlag(RIGHTS.all);
    const node = this.#folder.namespace.addVariable({
      componentOf: this.#folder,
      browseName: item.key,
      nodeId: idOf(item),
      description: item.description,
      dataType: this.#nodeValues.typeOf(item),
      valueRank: item.size === undefined ? -1 : 1,
      arrayDimensions: item.size === undefined ? null : [item.size],
      accessLevel: readWrite,
      userAccessLevel: readWrite,
      minimumSamplingInterval: this.#manners.sampling ?? 0,
    });
    this.#nodes.set(item.key, node);
    this.#show(item);
    this.#watchWrites(item, node);
  }

  /** What the item holds goes to its node. */
  #show(item) {
    const value = this.#values.get(item.key);
    const variant = this.#nodeValues.toVariant(item, value ?? (item.type === 'String' ? '' : 0));
    const status = value === undefined ? StatusCodes.BadWaitingForInitialData : StatusCodes.Good;
    this.#nodes.get(item.key)?.setValueFromSource(variant, status);
  }

  /** A client's writes pass here: what an item can't hold is refused, what it takes is told. */
  #watchWrites(item, node) {
    const write = node.writeValue.bind(node);
    node.writeValue = (context, dataValue, ...rest) => {
      const done = rest.at(-1);
      const range = rest.length > 1 ? rest[0] : undefined;
      if (range && !range.isEmpty()) {
        return done(null, StatusCodes.BadWriteNotSupported);
      }
      const isText = this.#retyped.has(item.key);
      const { dataType, arrayType } = dataValue.value;
      const value = isText ? undefined : this.#nodeValues.fromVariant(item, dataValue.value);
      const isAnyText = dataType === DataType.String && arrayType === VariantArrayType.Scalar;
      if (isText ? !isAnyText : value === undefined) {
        return done(null, StatusCodes.BadTypeMismatch);
      }
      return write(context, dataValue, range, (error, status) => {
        if (!error && status.isGood() && !isText) {
          this.#values.set(item.key, value);
          this.emit('changed', item.key, value);
        }
        done(error, status);
      });
    };
  }

  /** Endpoint to connect to. */
  get url() {
    const { host, port } = this.address;
    return `opc.tcp://${host}:${port}`;
  }

  get address() {
    const { address, port } = this.#server.endpoints[0]._server.address();
    return { host: address.includes(':') ? `[${address}]` : address, port };
  }

  /** SHA-256 of the server's certificate. */
  get fingerprint() {
    return this.#fingerprint;
  }

  /** Node ids by key. */
  get nodeIds() {
    return Object.fromEntries(ITEMS.map((item) => [item.key, `ns=${this.#folder.namespace.index};${idOf(item)}`]));
  }

  /** Value of an item, whether clients can see the item or not; undefined if it has none. */
  read(key) {
    return this.#values.get(key);
  }

  /** The NC writes an item. The value must fit. */
  write(key, value) {
    const item = findItem(key);
    if (!fits(item, value)) {
      throw new TypeError(`${key} can't hold ${JSON.stringify(value)}`);
    }
    this.#values.set(key, value);
    if (!this.#retyped.has(key)) {
      this.#show(item);
    }
  }

  /** The item vanishes from the address space: subscriptions to it end. */
  remove(key) {
    const node = this.#nodes.get(key);
    if (node) {
      this.#nodes.delete(key);
      this.#retyped.delete(key);
      this.#server.engine.addressSpace.deleteNode(node);
    }
  }

  /** An item that has vanished, or has changed its type, is again as it was. */
  restore(key) {
    const item = findItem(key);
    const node = this.#nodes.get(key);
    if (!node) {
      this.#makeNode(item);
    } else if (this.#retyped.delete(key)) {
      this.#setType(node, this.#nodeValues.typeOf(item), item.size);
      this.#show(item);
    }
  }

  /** The item becomes a text. */
  retype(key) {
    const node = this.#nodes.get(key);
    if (node && !this.#retyped.has(key)) {
      this.#retyped.add(key);
      this.#setType(node, 'String');
      node.setValueFromSource({ dataType: DataType.String, value: JSON.stringify(this.#values.get(key) ?? null) });
    }
  }

  /** Clients may do less with an item, or as much as before; rights is a key of RIGHTS. */
  restrict(key, rights) {
    const node = this.#nodes.get(key);
    if (node) {
      node.accessLevel = node.userAccessLevel = makeAccessLevelFlag(RIGHTS[rights]);
    }
  }

  /** Ends the sessions of all clients, and leaves their connections. */
  endSessions() {
    endSessions(this.#server);
  }

  #setType(node, type, size) {
    node.dataType = this.#server.engine.addressSpace.findDataType(type).nodeId;
    node.valueRank = size === undefined ? -1 : 1;
    node.arrayDimensions = size === undefined ? null : [size];
    node._basicDataType = undefined;
  }

  /** Ends all sessions. */
  async stop() {
    clearInterval(this.#timer);
    await this.#server.shutdown(0);
  }
}
