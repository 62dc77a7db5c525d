// A small OPC UA server for tests: what an NC might be, with each of its faults.
import { createRequire } from 'node:module';
import { join } from 'node:path';
import { openPki, ownCertificate } from '../../shared/pki.js';
import { DataType, MessageSecurityMode, OPCUACertificateManager, SecurityPolicy, Variant, VariantArrayType } from '../../shared/opcua.js';

const { OPCUAServer } = createRequire(import.meta.url)('node-opcua-server');

/** Variables that every test server has: name, type, first value. */
const VARIABLES = [
  ['Request', 'Int32', 0],
  ['Short', 'Int16', 0],
  ['Byte', 'Byte', 0],
  ['Wide', 'Int64', [0, 7]],
  ['Flag', 'Boolean', true],
  ['Weight', 'Double', 2.5],
  ['Text', 'String', 'abc'],
  ['Notification', 'Int32', [0, 0, 0]],
  ['Shorts', 'Int16', [0, 0]],
  ['Moment', 'DateTime', new Date(0)],
];

export class TestServer {
  /**
   * @param {string} directory for its certificates
   * @param {object} options of the library's server, and `users`: {name: password}, `modes`, `port`
   */
  constructor(directory, options = {}) {
    this.directory = directory;
    this.options = options;
  }

  async start() {
    await openPki(this.directory);
    const { certificateFile, privateKeyFile, applicationUri } = await ownCertificate(this.directory, 'test-nc');
    const { users, port = 0, ...options } = this.options;
    this.server = new OPCUAServer({
      port,
      hostname: '127.0.0.1',
      host: '127.0.0.1',
      certificateFile,
      privateKeyFile,
      serverInfo: { applicationUri },
      serverCertificateManager: new OPCUACertificateManager({
        rootFolder: join(this.directory, 'library'),
        automaticallyAcceptUnknownCertificate: true,
      }),
      securityModes: [MessageSecurityMode.SignAndEncrypt],
      securityPolicies: [SecurityPolicy.Basic256Sha256],
      allowAnonymous: users === undefined,
      userManager: { isValidUser: (name, password) => users?.[name] === password },
      ...options,
    });
    await this.server.initialize();
    const { addressSpace } = this.server.engine;
    this.space = addressSpace.registerNamespace('urn:test-nc:items');
    this.folder = this.space.addObject({ organizedBy: addressSpace.rootFolder.objects, browseName: 'Items' });
    this.variables = new Map();
    VARIABLES.forEach((variable) => this.add(...variable));
    await this.server.start();
    const endpoint = this.server.endpoints[0];
    this.port = endpoint.port || new URL(this.server.getEndpointUrl()).port;
    this.options.port = Number(this.port); // the next start takes the same
    this.url = `opc.tcp://127.0.0.1:${this.port}`;
    this.certificateFile = certificateFile;
  }

  add(name, type, value) {
    const bArray = Array.isArray(value) && type !== 'Int64';
    const variable = this.space.addVariable({
      componentOf: this.folder,
      browseName: name,
      nodeId: `s=${name}`,
      dataType: type,
      valueRank: bArray ? 1 : -1,
    });
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
    const bArray = Array.isArray(value) && type !== 'Int64';
    variable.setValueFromSource(
      new Variant({ dataType: DataType[type], arrayType: bArray ? VariantArrayType.Array : VariantArrayType.Scalar, value }),
    );
  }

  get(name) {
    const { value } = this.variables.get(name).variable.readValue().value;
    return typeof value === 'object' && value.length !== undefined ? Array.from(value) : value;
  }

  async stop() {
    await this.server.shutdown(0);
  }
}
