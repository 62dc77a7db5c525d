// An OPC UA server with a few nodes, for tests.
import { createRequire } from 'node:module';
import { openPki, ownCertificate } from '../shared/pki.js';

process.env.NODEOPCUA_LOG_LEVEL ??= '0';
const require = createRequire(import.meta.url);
const { nodesets } = require('node-opcua-nodesets');
const { DataType, MessageSecurityMode, SecurityPolicy, StatusCodes, Variant, VariantArrayType } = require(
  'node-opcua-client',
);
const { OPCUAServer } = require('node-opcua-server');

export { DataType };

/** Trusts every client and keeps no store; what clients showed is kept for tests. */
class EveryCertificate {
  referenceCounter = 0;
  automaticallyAcceptUnknownCertificate = true;
  constructor({ privateKeyFile }, directory, userCertificate) {
    this.privateKey = privateKeyFile;
    this.rootDir = directory;
    this.userCertificate = userCertificate;
  }
  async initialize() {}
  async dispose() {}
  async trustCertificate() {}
  async verifyCertificate() {
    return 'Good';
  }
  async checkCertificate(certificate) {
    const isRefused = this.userCertificate && !this.userCertificate.equals(certificate);
    return isRefused ? StatusCodes.BadIdentityTokenRejected : StatusCodes.Good;
  }
  async getTrustStatus(certificate) {
    return await this.checkCertificate(certificate);
  }
}

/**
 * @param {string} directory of the server's certificate, made if it isn't there
 * @param {object} [options]
 * @param {number} [options.port]
 * @param {string[]} [options.policies]
 * @param {{name: string, password: string}} [options.user] who may log in; without one, everybody
 * @param {Buffer} [options.userCertificate] DER, the only one that may log in
 * @param {string} [options.hostname] announced in the endpoints
 */
export async function startServer(directory, options = {}) {
  const { port = 0, policies = ['Basic256Sha256'], user, userCertificate, hostname = 'the-nc.invalid' } = options;
  await openPki(directory);
  const own = await ownCertificate(directory, 'test-server');
  const isSecure = (policy) => policy !== 'None';
  const modes = [];
  if (policies.some(isSecure)) {
    modes.push(MessageSecurityMode.SignAndEncrypt);
  }
  if (!policies.every(isSecure)) {
    modes.push(MessageSecurityMode.None);
  }
  const server = new OPCUAServer({
    host: '127.0.0.1',
    hostname,
    port,
    serverInfo: { applicationUri: own.applicationUri, applicationName: { text: 'test', locale: 'en' } },
    nodeset_filename: [nodesets.standard],
    serverCertificateManager: new EveryCertificate(own, directory),
    userCertificateManager: new EveryCertificate(own, directory, userCertificate),
    certificateFile: own.certificateFile,
    privateKeyFile: own.privateKeyFile,
    securityModes: modes,
    securityPolicies: policies.map((policy) => SecurityPolicy[policy]),
    allowAnonymous: user === undefined && userCertificate === undefined,
    userManager: { isValidUser: (name, password) => name === user?.name && password === user?.password },
  });
  await server.initialize();
  const space = server.engine.addressSpace;
  const namespace = space.registerNamespace('urn:test:items');
  const folder = namespace.addObject({ organizedBy: space.rootFolder.objects, browseName: 'Items' });
  await server.start();

  const nodes = new Map();
  return {
    server,
    own,
    writes: [],
    get port() {
      return server.endpoints[0]._server.address().port;
    },
    get url() {
      return `opc.tcp://127.0.0.1:${this.port}`;
    },
    /** Adds a variable; the client's writes to it are kept in `writes`. */
    add(name, type, value, { isArray = false, isReadOnly = false, declaredType = type } = {}) {
      const access = isReadOnly ? 'CurrentRead' : 'CurrentRead | CurrentWrite';
      const node = namespace.addVariable({
        componentOf: folder,
        browseName: name,
        nodeId: `s=${name}`,
        dataType: declaredType,
        valueRank: isArray ? 1 : -1,
        accessLevel: access,
        userAccessLevel: access,
        minimumSamplingInterval: 0,
        value: variantOf(type, value, isArray),
      });
      const write = node.writeValue.bind(node);
      node.writeValue = (context, dataValue, ...others) => {
        this.writes.push({ name, type: DataType[dataValue.value.dataType], value: dataValue.value.value });
        return write(context, dataValue, ...others);
      };
      nodes.set(name, { node, type, isArray });
      return `ns=${namespace.index};s=${name}`;
    },
    set(name, value) {
      const { node, type, isArray } = nodes.get(name);
      node.setValueFromSource(variantOf(type, value, isArray));
    },
    setStatus(name, status) {
      const { node } = nodes.get(name);
      node.setValueFromSource(node.readValue().value, StatusCodes[status]);
    },
    remove(name) {
      space.deleteNode(nodes.get(name).node);
      nodes.delete(name);
    },
    async stop() {
      await server.shutdown(0);
    },
  };
}

function variantOf(type, value, isArray) {
  const arrayType = isArray ? VariantArrayType.Array : VariantArrayType.Scalar;
  return new Variant({ dataType: DataType[type], arrayType, value });
}
