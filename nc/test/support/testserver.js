// A small OPC UA server for tests: what an NC might be, with each of its faults.
import { createRequire } from 'node:module';
import { openPki, ownCertificate } from '../../shared/pki.js';
import {
  DataType,
  MessageSecurityMode,
  SecurityPolicy,
  StatusCodes,
  Variant,
  VariantArrayType,
} from '../../shared/opcua.js';

const require = createRequire(import.meta.url);
const { OPCUAServer } = require('node-opcua-server');
const { nodesets } = require('node-opcua-nodesets');

/** Variables that every test server has: name, type, first value. */
const VARIABLES = [
  ['Request', 'Int32', 0],
  ['SByte', 'SByte', 0],
  ['Byte', 'Byte', 0],
  ['Short', 'Int16', 0],
  ['UInt16', 'UInt16', 0],
  ['UInt32', 'UInt32', 0],
  ['Wide', 'Int64', [0, 7]],
  ['UInt64', 'UInt64', [0, 0]],
  ['Flag', 'Boolean', true],
  ['Float', 'Float', 0],
  ['Weight', 'Double', 2.5],
  ['Text', 'String', 'abc'],
  ['Notification', 'Int32', [0, 0, 0]],
  ['Shorts', 'Int16', [0, 0]],
  ['Moment', 'DateTime', new Date(0)],
];

const bPair = (type) => type === 'Int64' || type === 'UInt64';

function variantOf(type, value) {
  const bArray = Array.isArray(value) && !bPair(type);
  return new Variant({
    dataType: DataType[type],
    arrayType: bArray ? VariantArrayType.Array : VariantArrayType.Scalar,
    value,
  });
}

/** In place of the library's store of certificates: trusts all, or one. */
class Certificates {
  referenceCounter = 0;
  automaticallyAcceptUnknownCertificate = true;

  constructor(privateKeyFile, directory, only = null) {
    this.privateKey = privateKeyFile;
    this.rootDir = directory;
    this.only = only;
  }

  async initialize() {}
  async dispose() {}
  async trustCertificate() {}

  async verifyCertificate() {
    return 'Good';
  }

  // The library asks in both ways of the language.
  async checkCertificate(certificate, done = () => {}) {
    const isTrusted = this.only === null || this.only.equals(certificate);
    const status = isTrusted ? StatusCodes.Good : StatusCodes.BadCertificateUntrusted;
    done(null, status);
    return status;
  }
}

export class TestServer {
  /** What clients wrote, in order: name, type, value. */
  written = [];

  /**
   * @param {string} directory for its certificates
   * @param {object} options of the library's server, `users`: {name: password}, `userCertificate` (DER), the only
   *   one that may log in, `clientCertificate` (DER), the only application that is trusted, `revise`: fields of
   *   the requests for subscriptions that this server sets as it likes, `sessionTimeout`, which it tells its clients,
   *   and `namespaceBefore`, a URI
   */
  constructor(directory, options = {}) {
    this.directory = directory;
    this.options = options;
  }

  async start() {
    await openPki(this.directory);
    const { certificateFile, privateKeyFile, applicationUri } = await ownCertificate(this.directory, 'test-nc');
    const { users, userCertificate, clientCertificate, revise, sessionTimeout, namespaceBefore, port = 0, ...options } = this.options;
    this.server = new OPCUAServer({
      port,
      host: '127.0.0.1',
      hostname: 'name-of-the-nc.invalid', // as an NC announces names that its clients can't resolve
      certificateFile,
      privateKeyFile,
      nodeset_filename: [nodesets.standard],
      serverInfo: { applicationUri },
      serverCertificateManager: new Certificates(privateKeyFile, this.directory, clientCertificate),
      userCertificateManager: new Certificates(privateKeyFile, this.directory, userCertificate),
      securityModes: [MessageSecurityMode.SignAndEncrypt],
      securityPolicies: [SecurityPolicy.Basic256Sha256],
      allowAnonymous: users === undefined && userCertificate === undefined,
      userManager: { isValidUser: (name, password) => users?.[name] === password },
      ...options,
    });
    this.#revise({ ...revise }, sessionTimeout);
    await this.server.initialize();
    const { addressSpace } = this.server.engine;
    if (namespaceBefore !== undefined) {
      addressSpace.registerNamespace(namespaceBefore);
    }
    this.space = addressSpace.registerNamespace('urn:test-nc:items');
    this.folder = this.space.addObject({ organizedBy: addressSpace.rootFolder.objects, browseName: 'Items' });
    this.variables = new Map();
    VARIABLES.forEach((variable) => this.add(...variable));
    await this.server.start();
    this.options.port = this.server.endpoints[0]._server.address().port; // the next start takes the same
    this.url = `opc.tcp://127.0.0.1:${this.options.port}`;
    this.certificateFile = certificateFile;
  }

  /** Subscriptions are made as if other values had been asked for; how long a session lasts is only told. */
  #revise(values, sessionTimeout) {
    const subscribe = this.server._on_CreateSubscriptionRequest.bind(this.server);
    this.server._on_CreateSubscriptionRequest = (message, channel) => {
      Object.assign(message.request, values);
      return subscribe(message, channel);
    };
    const create = this.server._on_CreateSessionRequest.bind(this.server);
    this.server._on_CreateSessionRequest = (message, channel) => {
      const send = channel.send_response.bind(channel);
      channel.send_response = (type, response, ...others) => {
        channel.send_response = send;
        response.revisedSessionTimeout = sessionTimeout ?? response.revisedSessionTimeout;
        return send(type, response, ...others);
      };
      return create(message, channel);
    };
  }

  /** Ends the sessions of all clients, and leaves their connections. */
  endSessions() {
    const { engine } = this.server;
    for (const session of Object.values(engine._sessions)) {
      engine.closeSession(session.authenticationToken, true, 'Terminated');
    }
  }

  /** Adds a variable; others: more options of the library. */
  add(name, type, value, others = {}) {
    const variable = this.space.addVariable({
      componentOf: this.folder,
      browseName: name,
      nodeId: `s=${name}`,
      dataType: type,
      valueRank: Array.isArray(value) && !bPair(type) ? 1 : -1,
      minimumSamplingInterval: 0,
      ...others,
    });
    const writeValue = variable.writeValue.bind(variable);
    variable.writeValue = (context, dataValue, ...rest) => {
      this.written.push({ name, type: DataType[dataValue.value.dataType], value: dataValue.value.value });
      return writeValue(context, dataValue, ...rest);
    };
    this.variables.set(name, { variable, type });
    this.set(name, value);
  }

  remove(name) {
    this.variables.get(name).variable.namespace.deleteNode(this.variables.get(name).variable);
    this.variables.delete(name);
  }

  node(name) {
    return `ns=${this.space.index};s=${name}`;
  }

  set(name, value) {
    const { variable, type } = this.variables.get(name);
    variable.setValueFromSource(variantOf(type, value));
  }

  /** The NC can't tell the value: a status in its place. */
  setStatus(name, status) {
    const { variable, type } = this.variables.get(name);
    variable.setValueFromSource(variantOf(type, 0), StatusCodes[status]);
  }

  get(name) {
    const { value } = this.variables.get(name).variable.readValue().value;
    return typeof value === 'object' && value.length !== undefined ? Array.from(value) : value;
  }

  async stop() {
    await this.server.shutdown(0);
  }
}
