// One connection to the server: made, used, watched over until it is lost. Another one is a new object.
import { createPrivateKey } from 'node:crypto';
import { readFile } from 'node:fs/promises';
import { join } from 'node:path';
import { chooseEndpoint, firstOf, guardChannel, securityOf } from './endpoint.js';
import { Refusal, badStatus, reasonOf } from './reasons.js';
import { Pause, TimeUp, within } from './timing.js';
import { toTyped, toVariant } from './values.js';
import {
  AttributeIds,
  ClientMonitoredItem,
  DataType,
  MessageSecurityMode,
  OPCUAClient,
  SecurityPolicy,
  TimestampsToReturn,
  UserTokenType,
  coerceNodeId,
} from '../shared/opcua.js';
import { fingerprintOf, openPki, ownCertificate, pin, readCertificate } from '../shared/pki.js';

/** Why something is not even tried. */
export const NO_CONNECTION = 'there is no connection to the server';

const NAME = 'opc-gateway';

const OPENING_LIMIT = 15000;
const ANSWER_LIMIT = 5000;
const PING_INTERVAL = 2000;
/** For the library, which watches over its socket in its own way: later than the above find out. */
const SILENCE_LIMIT = 8000;
const CLOSING_LIMIT = 700;
/** A server counts sessions that were cut off until then, and may allow but a few. Longer than three updates. */
const SESSION_TIMEOUT = 20000;
/** How often the server tells that a subscription lives, when nothing changes. */
const KEEP_ALIVE = 2000;
/** How long the server keeps a subscription of a gateway that died. */
const LIFETIME = 20000;
/** Longer than the shortest time in which an NC answers itself; changes that wait to be published are kept in order. */
const QUEUE_SIZE = 100;
/** Every server has this node. */
const SERVER_STATE = coerceNodeId('i=2259');

/** What the library asks its certificate manager. Trust is settled before, by the pin; the library keeps no store. */
class NoCertificateStore {
  constructor({ privateKeyFile }) {
    this.privateKey = privateKeyFile;
    this.rootDir = '';
  }
  async initialize() {}
  dispose() {}
  async withLock2(action) {
    return await action();
  }
  async trustCertificate() {}
  async verifyCertificate() {
    return 'Good';
  }
}

/** Errors of reading our own files tell the file and nothing else: they may be shown. */
async function shown(promise) {
  try {
    return await promise;
  } catch (error) {
    throw error.code ? error : new Refusal(error.message);
  }
}

async function makeIdentity(settings) {
  const { user, password } = settings;
  if (settings.user_certificate !== '') {
    const certificate = await shown(readCertificate(settings.user_certificate));
    if (certificate === null) {
      throw new Refusal(`${settings.user_certificate} is missing`);
    }
    const privateKey = await readFile(settings.user_key, 'utf8');
    try {
      createPrivateKey(privateKey);
    } catch {
      throw new Refusal(`${settings.user_key} holds no private key in PEM form, or one with a password`);
    }
    return { type: UserTokenType.Certificate, certificateData: certificate, privateKey };
  }
  if (user !== '') {
    return { type: UserTokenType.UserName, userName: user, password };
  }
  return { type: UserTokenType.Anonymous };
}

const LOGINS = new Map([
  [UserTokenType.Anonymous, 'without a user'],
  [UserTokenType.UserName, 'by user name and password'],
  [UserTokenType.Certificate, 'by user certificate'],
]);

function checkLogin(endpoint, identity) {
  if (!(endpoint.userIdentityTokens ?? []).some(({ tokenType }) => tokenType === identity.type)) {
    throw new Refusal(`the server takes no login ${LOGINS.get(identity.type)}`);
  }
}

const makeClient = (own, options) =>
  OPCUAClient.create({
    applicationName: NAME,
    applicationUri: own.applicationUri,
    clientName: NAME,
    certificateFile: own.certificateFile,
    privateKeyFile: own.privateKeyFile,
    clientCertificateManager: new NoCertificateStore(own),
    connectionStrategy: { maxRetry: 0 },
    endpointMustExist: false, // servers announce names of theirs that mean nothing in the machine's network
    keepPendingSessionsOnDisconnect: true, // or a server that doesn't answer would hold up the end
    requestedSessionTimeout: SESSION_TIMEOUT,
    transportTimeout: SILENCE_LIMIT,
    ...options,
  });

const BUILT_IN_TYPES = new Set([...Array(DataType.String).keys()].map((index) => index + 1));

/** Answers of a server that has forgotten the session or the channel. */
const SESSION_GONE = /\bBad(Session|SecureChannel|Connection|Subscription|NoSubscription)/;

/** @returns {import('node-opcua-client').NodeId} */
function nodeIdOf(text) {
  if (/^(ns=\d+;)?[isgb]=.+$/.test(text)) {
    try {
      return coerceNodeId(text);
    } catch {
      // told below
    }
  }
  throw new Refusal(`"${text.slice(0, 80)}" is no node id`);
}

/** The typed value that a node holds. */
function typedOf({ statusCode, value }) {
  if (statusCode.isBad()) {
    throw badStatus(statusCode);
  }
  return toTyped(value);
}

const quietly = (promise, limit) => within(promise, limit).catch(() => {});

/** @returns {Promise<import('node-opcua-client').EndpointDescription[]>} all that the server offers */
async function fetchEndpoints(own, server) {
  const client = makeClient(own, { securityMode: MessageSecurityMode.None, securityPolicy: SecurityPolicy.None });
  try {
    await client.connect(server);
    return await client.getEndpoints();
  } finally {
    await quietly(client.disconnect(), CLOSING_LIMIT);
  }
}

/** One connection to the server. */
export class Connection {
  #client;
  #session;
  #subscriptions = new Map();
  #waiting = new Set();
  #pause = new Pause();
  #isOver = false;
  #closing;
  #tellLoss;

  /** Settles with the reason when the connection is lost or closed. @type {Promise<string>} */
  lost = new Promise((resolve) => {
    this.#tellLoss = resolve;
  });

  /**
   * Makes the connection. To be called once; close() gives up.
   * @param {{server: string, security: string, fingerprint: string, pki: string, user: string, password: string,
   *   user_certificate: string, user_key: string}} settings
   * @param {(level: string, text: string) => void} log
   * @throws whatever prevents it; to be told with reasonOf()
   */
  async open(settings, log) {
    await within(this.#open(settings, log), OPENING_LIMIT);
  }

  async #open(settings, log) {
    const { mode, policy } = securityOf(settings.security);
    const isSecure = mode !== MessageSecurityMode.None;
    if (!isSecure && settings.password !== '') {
      throw new Refusal('a password is not sent without security');
    }
    if (!settings.server.startsWith('opc.tcp://')) {
      throw new Refusal('"server" must begin with opc.tcp://');
    }
    const identity = await makeIdentity(settings);
    await openPki(settings.pki);
    const own = await shown(ownCertificate(settings.pki, NAME));
    const pinFile = join(settings.pki, 'server.pem');
    const pinned = isSecure ? await shown(readCertificate(pinFile)) : null;

    const endpoint = chooseEndpoint(await this.#orLost(fetchEndpoints(own, settings.server)), settings, pinned);
    const serverCertificate = isSecure ? Buffer.from(firstOf(endpoint.serverCertificate)) : undefined;
    const client = makeClient(own, { securityMode: mode, securityPolicy: policy, serverCertificate });
    this.#client = client;
    if (isSecure) {
      guardChannel(client, policy, serverCertificate, () => this.#lose("an answer came that is not the server's own"));
    }
    client.on('connection_lost', () => this.#lose('the server ended the connection'));
    client.on('close', () => this.#lose('the connection was closed'));
    await this.#orLost(client.connect(settings.server));

    // What the server offers came without security before. Now it has proved that the certificate is its own.
    const offered = chooseEndpoint(await this.#orLost(client.getEndpoints()), settings, serverCertificate ?? null);
    checkLogin(offered, identity);
    if (isSecure && (await shown(pin(pinFile, serverCertificate))) === 'first') {
      const fingerprint = fingerprintOf(serverCertificate);
      log('warning', `The server's certificate is trusted from now on; its fingerprint is ${fingerprint}.`);
    }
    this.#session = await this.#orLost(client.createSession(identity));
    this.#watch();
  }

  get isLost() {
    return this.#isOver;
  }

  /** Ends everything, properly if the server answers soon. */
  close() {
    this.#closing ??= this.#close();
    return this.#closing;
  }

  async #close() {
    this.#lose('the connection was closed');
    if (this.#session) {
      await quietly(this.#session.close(true), CLOSING_LIMIT);
    }
    if (this.#client) {
      await quietly(this.#client.disconnect(), CLOSING_LIMIT);
    }
  }

  /**
   * Reports a node's value and its changes.
   * @param {string} node
   * @param {number} rate at most every so many ms
   * @param {(value: object) => void} onValue
   * @param {(reason: string) => void} onError the value can't be read; if onValue doesn't follow, try anew
   * @returns {Promise<() => void>} ends it
   */
  async monitor(node, rate, onValue, onError) {
    const nodeId = nodeIdOf(node);
    const { subscription } = await this.#subscriptionOf(rate);
    const item = ClientMonitoredItem.create(
      subscription,
      { nodeId, attributeId: AttributeIds.Value },
      { samplingInterval: 0, queueSize: QUEUE_SIZE, discardOldest: true },
      TimestampsToReturn.Neither,
    );
    let isEnded = false;
    item.on('changed', (dataValue) => {
      if (isEnded || this.#isOver) {
        return;
      }
      try {
        onValue(typedOf(dataValue));
      } catch (error) {
        onError(reasonOf(error));
      }
    });
    item.on('err', (message) => {
      if (!isEnded && !this.#isOver) {
        onError(reasonOf(new Error(message)));
      }
    });
    return () => {
      isEnded = true;
      if (!this.#isOver && item.monitoredItemId !== undefined) {
        quietly(item.terminate(), ANSWER_LIMIT);
      }
    };
  }

  /**
   * @param {string} node
   * @returns {Promise<object>} typed value
   */
  async read(node) {
    const nodeId = nodeIdOf(node);
    return typedOf(await this.#ask(this.#session.read({ nodeId, attributeId: AttributeIds.Value })));
  }

  /**
   * @param {string} node
   * @param {object} typed value; written as the type that the node has
   */
  async write(node, typed) {
    const nodeId = nodeIdOf(node);
    const variant = toVariant(typed, await this.#typeOf(nodeId));
    const status = await this.#ask(
      this.#session.write({ nodeId, attributeId: AttributeIds.Value, value: { value: variant } }),
    );
    if (status.isNotGood()) {
      throw badStatus(status);
    }
  }

  /** The built-in type of a node. Asked before each write, since an NC may get other software while this runs. */
  async #typeOf(nodeId) {
    const [declared, present] = await this.#ask(
      this.#session.read([
        { nodeId, attributeId: AttributeIds.DataType },
        { nodeId, attributeId: AttributeIds.Value },
      ]),
    );
    if (declared.statusCode.isNotGood()) {
      throw badStatus(declared.statusCode);
    }
    const id = declared.value.value;
    if (id.namespace === 0 && BUILT_IN_TYPES.has(id.value)) {
      return id.value;
    }
    // An enumeration, an abstract number or a type of the server's own: what the node holds now tells.
    const type = present.value?.dataType;
    return present.statusCode.isGood() && type !== DataType.Null ? type : undefined;
  }

  /** The server's subscription of a rate; items of the same rate share it. */
  #subscriptionOf(rate) {
    let made = this.#subscriptions.get(rate);
    if (!made) {
      made = this.#makeSubscription(rate);
      this.#subscriptions.set(rate, made);
    }
    return made;
  }

  async #makeSubscription(rate) {
    const subscription = await this.#ask(
      this.#session.createSubscription2({
        publishingEnabled: true,
        requestedPublishingInterval: rate,
        requestedMaxKeepAliveCount: Math.max(1, Math.ceil(KEEP_ALIVE / rate)),
        requestedLifetimeCount: Math.max(10, Math.ceil(LIFETIME / rate)),
      }),
    );
    const end = () => this.#lose('the server ended a subscription');
    subscription.on('error', end);
    subscription.on('internal_error', end);
    subscription.on('terminated', end);
    subscription.on('status_changed', (status) => status.isNotGood() && end());
    const silence = subscription.publishingInterval * subscription.maxKeepAliveCount + ANSWER_LIMIT;
    const made = { subscription };
    made.watchdog = this.#watchdog(silence, 'the server reports no changes any more');
    subscription.on('raw_notification', () => made.watchdog.refresh());
    return made;
  }

  /** Loses the connection unless refreshed. */
  #watchdog(milliseconds, reason) {
    const timer = setTimeout(() => this.#lose(reason), milliseconds);
    this.lost.then(() => clearTimeout(timer));
    return timer;
  }

  /** A server that hangs keeps its socket open, so it is asked something now and then. */
  async #watch() {
    try {
      for (;;) {
        await this.#pause.wait(PING_INTERVAL);
        await this.#ask(this.#session.read({ nodeId: SERVER_STATE, attributeId: AttributeIds.Value }));
      }
    } catch (error) {
      this.#lose(reasonOf(error));
    }
  }

  /** An answer of the server. None in time, or one that there is no session any more, ends the connection. */
  async #ask(promise) {
    try {
      return await within(this.#orLost(promise), ANSWER_LIMIT);
    } catch (error) {
      const reason = reasonOf(error);
      if (error instanceof TimeUp || SESSION_GONE.test(reason)) {
        this.#lose(reason);
      }
      throw error;
    }
  }

  /** The promise's outcome; fails when the connection is lost before. */
  async #orLost(promise) {
    let giveUp;
    const loss = new Promise((_, reject) => {
      giveUp = reject;
    });
    this.#waiting.add(giveUp);
    if (this.#isOver) {
      giveUp(new Refusal(NO_CONNECTION));
    }
    try {
      return await Promise.race([promise, loss]);
    } finally {
      this.#waiting.delete(giveUp);
    }
  }

  #lose(reason) {
    if (this.#isOver) {
      return;
    }
    this.#isOver = true;
    for (const giveUp of this.#waiting) {
      giveUp(new Refusal(reason));
    }
    this.#pause.end();
    this.#tellLoss(reason);
  }
}
