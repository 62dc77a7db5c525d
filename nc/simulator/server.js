import { EventEmitter } from 'node:events';
import { fingerprintOf, openPki, ownCertificate, readCertificate } from '../shared/pki.js';
import { ITEMS, findItem, fits, initialValue } from './items.js';
import {
  DataType,
  MessageSecurityMode,
  OPCUAServer,
  SecurityPolicy,
  StatusCodes,
  Variant,
  VariantArrayType,
  makeAccessLevelFlag,
  nodesets,
} from './opcua.js';
import { NO_CERTIFICATES, PinnedCertificates } from './pinnedcertificates.js';

const APPLICATION = 'nc-simulator';
const NAMESPACE = 'urn:corvane:pre-balancing';
/** What the node ids of the configuration rely on. */
const NAMESPACE_INDEX = 2;
const SECURE_POLICIES = [
  SecurityPolicy.Basic256Sha256,
  SecurityPolicy.Aes128_Sha256_RsaOaep,
  SecurityPolicy.Aes256_Sha256_RsaPss,
];

const idOf = (item) => `s=PreBalancing.${item.key}`;

function toVariant(item, value) {
  return new Variant({
    dataType: DataType[item.type],
    arrayType: item.size === undefined ? VariantArrayType.Scalar : VariantArrayType.Array,
    value: item.size === undefined ? value : Int32Array.from(value),
  });
}

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
  #folder;

  /**
   * @param {object} options
   * @param {string} options.host address to listen at
   * @param {number} options.port 0 takes a free one
   * @param {string} options.pki directory of the certificates
   * @param {{name: string, password: string}} [options.user] without one, everybody may log in
   * @param {boolean} [options.unsecured] offers an endpoint without security besides
   * @param {(text: string) => void} options.say
   * @throws {Error} if it can't listen, or has no place for its certificates
   */
  static async start(options) {
    const server = new NcServer();
    await server.#start(options);
    return server;
  }

  async #start({ host, port, pki, user, unsecured = false, say }) {
    await openPki(pki);
    const own = await ownCertificate(pki, APPLICATION);
    this.#fingerprint = fingerprintOf(await readCertificate(own.certificateFile));
    this.#server = new OPCUAServer({
      host,
      hostname: host,
      port,
      serverInfo: { applicationUri: own.applicationUri, applicationName: { text: 'NC simulator', locale: 'en' } },
      nodeset_filename: [nodesets.standard],
      serverCertificateManager: new PinnedCertificates(own.privateKeyFile, 'client', say),
      userCertificateManager: user ? NO_CERTIFICATES : new PinnedCertificates(own.privateKeyFile, 'user', say),
      certificateFile: own.certificateFile,
      privateKeyFile: own.privateKeyFile,
      securityModes: [MessageSecurityMode.SignAndEncrypt, ...(unsecured ? [MessageSecurityMode.None] : [])],
      securityPolicies: [...SECURE_POLICIES, ...(unsecured ? [SecurityPolicy.None] : [])],
      allowAnonymous: user === undefined,
      userManager: { isValidUser: (name, password) => name === user?.name && password === user?.password },
    });
    await this.#server.initialize();
    this.#makeItems();
    await this.#server.start();
  }

  #makeItems() {
    const space = this.#server.engine.addressSpace;
    const namespace = space.registerNamespace(NAMESPACE);
    if (namespace.index !== NAMESPACE_INDEX) {
      throw new Error(`the items' namespace has index ${namespace.index} in place of ${NAMESPACE_INDEX}`);
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
    const readWrite = makeAccessLevelFlag('CurrentRead | CurrentWrite');
    const node = this.#folder.namespace.addVariable({
      componentOf: this.#folder,
      browseName: item.key,
      nodeId: idOf(item),
      description: item.description,
      dataType: item.type,
      valueRank: item.size === undefined ? -1 : 1,
      arrayDimensions: item.size === undefined ? null : [item.size],
      accessLevel: readWrite,
      userAccessLevel: readWrite,
      minimumSamplingInterval: 0,
    });
    this.#nodes.set(item.key, node);
    this.#show(item);
    this.#watchWrites(item, node);
  }

  /** What the item holds goes to its node. */
  #show(item) {
    const value = this.#values.get(item.key);
    const variant = toVariant(item, value ?? 0);
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
      const variant = dataValue.value;
      const isArray = variant.arrayType === VariantArrayType.Array;
      const type = this.#retyped.has(item.key) ? 'String' : item.type;
      const value = isArray ? Array.from(variant.value ?? []) : variant.value;
      if (
        variant.dataType !== DataType[type] ||
        variant.arrayType === VariantArrayType.Matrix ||
        isArray !== (type !== 'String' && item.size !== undefined) ||
        (type !== 'String' && !fits(item, value))
      ) {
        return done(null, StatusCodes.BadTypeMismatch);
      }
      return write(context, dataValue, range, (error, status) => {
        if (!error && status.isGood() && type === item.type) {
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
    return Object.fromEntries(ITEMS.map((item) => [item.key, `ns=${NAMESPACE_INDEX};${idOf(item)}`]));
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
      this.#setType(node, item.type, item.size);
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

  #setType(node, type, size) {
    node.dataType = this.#server.engine.addressSpace.findDataType(type).nodeId;
    node.valueRank = size === undefined ? -1 : 1;
    node.arrayDimensions = size === undefined ? null : [size];
    node._basicDataType = undefined;
  }

  /** Ends all sessions. */
  async stop() {
    await this.#server.shutdown(0);
  }
}
