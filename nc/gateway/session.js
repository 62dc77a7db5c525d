// The connection to the OPC UA server, kept up: made again when it is lost, with its subscriptions.
import { readFile } from 'node:fs/promises';
import { join } from 'node:path';
import { setTimeout as pause } from 'node:timers/promises';
import { openPki, ownCertificate, readCertificate } from '../shared/pki.js';
import {
  AttributeIds,
  MessageSecurityMode,
  OPCUACertificateManager,
  OPCUAClient,
  SecurityPolicy,
  UserTokenType,
} from '../shared/opcua.js';
import { CONNECT_TIMEOUT, ONE_ATTEMPT, trustedCertificate } from './endpoint.js';
import { Subscriptions } from './subscriptions.js';
import { fromVariant, toVariant } from './values.js';

const APPLICATION = 'rotor-trim';
const FIRST_PAUSE = 500;
const LONGEST_PAUSE = 10000;
/** A server that says nothing for so long is taken for lost, ms. */
const KEEP_ALIVE = 2500;
const TRANSACTION_TIMEOUT = 5000;

/** One line of an error's text. The library puts whole explanations there, and what was sent may be part of them. */
function firstLine(error, secret) {
  const line = String(error?.message ?? error).split('\n').map((text) => text.trim()).find((text) => text !== '') ?? 'unknown';
  return secret ? line.replaceAll(secret, '***') : line;
}

export class Session {
  /**
   * @param {object} settings as in the connect line
   * @param {(object: object) => void} report takes the lines for the module
   */
  constructor(settings, report) {
    this.settings = settings;
    this.report = report;
    this.subscriptions = new Subscriptions(report);
    this.closing = new AbortController();
    this.client = null;
    this.session = null;
    this.types = new Map(); // DataType by node, of this connection
    this.writes = Promise.resolve(); // one after the other
    this.lose = () => {};
  }

  /** Connects, and connects again, until close. */
  async run() {
    if (this.settings.security === 'None') {
      this.log('warning', 'the connection to the NC is not secured: "security" is "None"');
    }
    let wait = FIRST_PAUSE;
    while (!this.closing.signal.aborted) {
      let reason;
      try {
        await this.#connect();
        wait = FIRST_PAUSE;
        this.report({ state: { connected: true } });
        reason = await this.#untilLost();
      } catch (error) {
        reason = firstLine(error, this.settings.password);
      }
      await this.#disconnect();
      if (this.closing.signal.aborted) {
        return;
      }
      this.report({ state: { connected: false, reason } });
      await pause(wait, undefined, { signal: this.closing.signal }).catch(() => {});
      wait = Math.min(2 * wait, LONGEST_PAUSE);
    }
  }

  /** Ends the connection for good. */
  async close() {
    this.closing.abort();
    this.lose('closed');
    await this.#disconnect();
  }

  subscribe({ id, node, rate }) {
    this.subscriptions.add(id, node, rate);
  }

  unsubscribe({ id }) {
    this.subscriptions.remove(id);
  }

  /** Writes are made in the order in which they came. */
  write({ id, node, value }) {
    const write = async () => {
      const type = await this.#typeOf(node);
      const variant = toVariant(value, type);
      const status = await this.session.write({ nodeId: node, attributeId: AttributeIds.Value, value: { value: variant } });
      if (status.isNotGood()) {
        throw new Error(status.name);
      }
    };
    this.writes = this.writes.then(() => this.#answer('written', id, write));
  }

  read({ id, node }) {
    return this.#answer('value', id, async () => {
      const dataValue = await this.session.read({ nodeId: node, attributeId: AttributeIds.Value });
      if (dataValue.statusCode.isNotGood()) {
        throw new Error(dataValue.statusCode.name);
      }
      return { value: fromVariant(dataValue.value) };
    });
  }

  log(level, text) {
    this.report({ log: { level, text } });
  }

  /** Does it, and answers with its result or with why it failed; a lost connection ends it. */
  async #answer(kind, id, operation) {
    try {
      if (this.session === null) {
        throw new Error('not connected');
      }
      const lost = this.lost.then((reason) => {
        throw new Error(reason);
      });
      this.report({ [kind]: { id, ...(await Promise.race([operation(), lost])) } });
    } catch (error) {
      this.report({ [kind]: { id, error: firstLine(error, this.settings.password) } });
    }
  }

  async #typeOf(node) {
    if (!this.types.has(node)) {
      const dataValue = await this.session.read({ nodeId: node, attributeId: AttributeIds.DataType });
      const type = dataValue.statusCode.isGood() ? dataValue.value.value : null;
      // Only types of the standard itself have their number as identifier.
      this.types.set(node, type?.namespace === 0 && typeof type.value === 'number' ? type.value : null);
    }
    return this.types.get(node);
  }

  async #connect() {
    const { settings } = this;
    await openPki(settings.pki);
    const { certificateFile, privateKeyFile, applicationUri } = await ownCertificate(settings.pki, APPLICATION);
    const options = {
      applicationName: APPLICATION,
      applicationUri,
      certificateFile,
      privateKeyFile,
      // For the library's own files; who is trusted is decided here.
      clientCertificateManager: new OPCUACertificateManager({ rootFolder: join(settings.pki, 'library') }),
      transportTimeout: CONNECT_TIMEOUT,
      defaultTransactionTimeout: TRANSACTION_TIMEOUT,
    };
    const bSecure = settings.security !== 'None';
    const serverCertificate = bSecure
      ? await trustedCertificate(settings, options, (level, text) => this.log(level, text))
      : undefined;
    this.client = OPCUAClient.create({
      ...options,
      serverCertificate,
      securityMode: bSecure ? MessageSecurityMode.SignAndEncrypt : MessageSecurityMode.None,
      securityPolicy: bSecure ? SecurityPolicy[settings.security] : SecurityPolicy.None,
      // An NC often names itself by a host name that nobody else knows: the address that is configured holds.
      endpointMustExist: false,
      connectionStrategy: ONE_ATTEMPT,
      keepSessionAlive: true,
      keepAliveInterval: KEEP_ALIVE,
      requestedSessionTimeout: 30000,
    });
    this.lost = new Promise((resolve) => {
      this.lose = resolve;
    });
    this.client.on('connection_lost', (why) => this.lose(why || 'the connection was lost'));
    this.client.on('close', (error) => this.lose(error ? firstLine(error) : 'the server closed the connection'));
    this.client.on('timed_out_request', () => this.lose('the server does not answer'));
    await this.client.connect(settings.server);
    const session = await this.client.createSession(await this.#identity());
    session.on('session_closed', () => this.lose('the server closed the session'));
    session.on('keepalive_failure', () => this.lose('the server does not answer'));
    this.types.clear();
    this.session = session;
    await this.subscriptions.attach(session);
  }

  #untilLost() {
    return this.lost;
  }

  async #identity() {
    const { user, password, user_certificate: certificateFile, user_key: keyFile } = this.settings;
    if (certificateFile) {
      const certificateData = await readCertificate(certificateFile);
      if (certificateData === null) {
        throw new Error(`there is no ${certificateFile}`);
      }
      return { type: UserTokenType.Certificate, certificateData, privateKey: await readFile(keyFile, 'utf8') };
    }
    return user ? { type: UserTokenType.UserName, userName: user, password } : { type: UserTokenType.Anonymous };
  }

  async #disconnect() {
    const { client, session } = this;
    this.client = null;
    this.session = null;
    this.lose('the connection was lost');
    this.subscriptions.detach();
    if (client === null) {
      return;
    }
    client.removeAllListeners();
    const close = async () => {
      await session?.close(true);
      await client.disconnect();
    };
    // A server that has gone doesn't answer: no reason to wait for it.
    await Promise.race([close().catch(() => {}), pause(1000, undefined, { ref: false })]);
  }
}
