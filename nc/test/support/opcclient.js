// A generic OPC UA client, as a tool for browsing has it: nothing in it knows of balancing.
import { join } from 'node:path';
import { openPki, ownCertificate } from '../../shared/pki.js';
import {
  AttributeIds,
  DataType,
  MessageSecurityMode,
  OPCUACertificateManager,
  OPCUAClient,
  SecurityPolicy,
  TimestampsToReturn,
  UserTokenType,
  VariantArrayType,
} from '../../shared/opcua.js';
import { quietly } from '../../shared/timing.js';

const CLOSING_LIMIT = 10000;

export class OpcClient {
  /**
   * Connects and logs in.
   * @param {string} directory for its certificates
   * @param {string} url
   * @param {{policy?: string, mode?: string, user?: {name: string, password: string}}} [options]
   */
  static async connect(directory, url, { policy = 'Basic256Sha256', mode = 'SignAndEncrypt', user } = {}) {
    await openPki(directory);
    const own = await ownCertificate(directory, 'generic-client');
    const client = new OpcClient();
    client.client = OPCUAClient.create({
      ...own,
      clientCertificateManager: new OPCUACertificateManager({
        rootFolder: join(directory, 'library'),
        automaticallyAcceptUnknownCertificate: true,
      }),
      securityMode: MessageSecurityMode[mode],
      securityPolicy: SecurityPolicy[policy],
      endpointMustExist: false,
      connectionStrategy: { maxRetry: 0, initialDelay: 100, maxDelay: 100 },
    });
    try {
      await client.client.connect(url);
      client.session = await client.client.createSession(
        user
          ? { type: UserTokenType.UserName, userName: user.name, password: user.password }
          : { type: UserTokenType.Anonymous },
      );
    } catch (error) {
      await client.client.disconnect();
      throw error;
    }
    return client;
  }

  /** Writes as a type that may be the wrong one. @returns {Promise<string>} name of the status */
  async write(nodeId, type, value) {
    const isArray = Array.isArray(value);
    const status = await this.session.write({
      nodeId,
      attributeId: AttributeIds.Value,
      value: {
        value: {
          dataType: DataType[type],
          arrayType: isArray ? VariantArrayType.Array : VariantArrayType.Scalar,
          value: isArray && type === 'Int32' ? Int32Array.from(value) : value,
        },
      },
    });
    return status.name;
  }

  /** @returns {Promise<{status: string, value: unknown}>} */
  async read(nodeId, attribute = 'Value') {
    const { statusCode, value } = await this.session.read({ nodeId, attributeId: AttributeIds[attribute] });
    return { status: statusCode.name, value: ArrayBuffer.isView(value.value) ? Array.from(value.value) : value.value };
  }

  /** Browse names below a node. */
  async browse(nodeId) {
    const { references } = await this.session.browse({
      nodeId,
      browseDirection: 0,
      referenceTypeId: 'HierarchicalReferences',
      includeSubtypes: true,
      resultMask: 63,
    });
    return references.map((reference) => ({ name: reference.browseName.name, nodeId: reference.nodeId.toString() }));
  }

  /** Reports values that change; the first one too. */
  async subscribe(nodeId, onValue) {
    this.subscription ??= await this.session.createSubscription2({
      requestedPublishingInterval: 50,
      requestedLifetimeCount: 1000,
      requestedMaxKeepAliveCount: 20,
      publishingEnabled: true,
    });
    const item = await this.subscription.monitor(
      { nodeId, attributeId: AttributeIds.Value },
      { samplingInterval: 50, queueSize: 10, discardOldest: true },
      TimestampsToReturn.Neither,
    );
    item.on('changed', ({ value, statusCode }) => onValue(value?.value, statusCode.name));
  }

  /** May be called again; the server may have gone. */
  async disconnect() {
    if (!this.isEnding) {
      this.isEnding = true;
      await quietly(this.session.close(true), CLOSING_LIMIT);
      await quietly(this.client.disconnect(), CLOSING_LIMIT);
    }
  }
}
