// One connection to the server: made, used, watched over until it is lost. Another one is a new object.
import { join } from 'node:path';
import { describeOwn, describeValidity, explainRejection, isOutOfTime } from './certificates.js';
import { NAME, SESSION_TIMEOUT, closeClient, fetchEndpoints, forbidRepair, makeClient } from './client.js';
import { chooseEndpoint, describeOffers, firstOf, guardChannel, securityOf } from './endpoint.js';
import { checkLogin, makeIdentity } from './login.js';
import { NodeIds } from './nodes.js';
import { Refusal, badStatus, isSessionGone, reasonOf, shown } from './reasons.js';
import { Subscriptions } from './subscriptions.js';
import { typedOf, toVariant } from './values.js';
import { AttributeIds, DataType, MessageSecurityMode, coerceNodeId } from '../shared/opcua.js';
import { fingerprintOf, openPki, ownCertificate, pin, readCertificate } from '../shared/pki.js';
import { Pause, TimeUp, within } from '../shared/timing.js';

/** Why something is not even tried. */
export const NO_CONNECTION = 'there is no connection to the server';
const ENDED = 'the server ended the connection';

/** For each step of making a connection: in these both sides compute with keys, and nothing is lost by waiting. */
const OPENING_LIMIT = 20000;
const ANSWER_LIMIT = 5000;
const PING_INTERVAL = 2000;
/** Every server has these nodes. */
const SERVER_STATE = coerceNodeId('i=2259');
const NAMESPACES = coerceNodeId('i=2255');

const isNodeMissing = ({ name }) => name === 'BadNodeIdUnknown' || name === 'BadNodeIdInvalid';

const BUILT_IN_TYPES = new Set([...Array(DataType.String).keys()].map((index) => index + 1));

/** One connection to the server. */
export class Connection {
  #client;
  #session;
  #subscriptions;
  #nodes = new NodeIds(() => this.#readNamespaces());
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
   * @param {{onFact: (fact: object) => void}} [check] takes what is found on the way, and whoever only looks trusts
   *   nobody for good
   * @throws whatever prevents it; to be told with reasonOf()
   */
  async open(settings, log, check) {
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

    check?.onFact({ own: await describeOwn(own) });
    const { endpoints, fast } = await this.#orLost(fetchEndpoints(own, settings.server, OPENING_LIMIT));
    own.isOutOfTime = await isOutOfTime(own, fast);
    check?.onFact({ clock: { fast_s: Math.round(fast / 1000) } });
    check?.onFact({ offers: describeOffers(endpoints, settings, pinned) });
    const endpoint = chooseEndpoint(endpoints, settings, pinned);
    const serverCertificate = isSecure ? Buffer.from(firstOf(endpoint.serverCertificate)) : undefined;
    const client = makeClient(own, { securityMode: mode, securityPolicy: policy, serverCertificate });
    this.#client = client;
    if (isSecure) {
      guardChannel(client, policy, serverCertificate, () => this.#lose("an answer came that is not the server's own"));
    }
    client.on('connection_lost', () => this.#lose(ENDED));
    client.on('close', () => this.#lose('the connection was closed'));
    await this.#show(isSecure && own, client.connect(settings.server), true);

    // What the server offers came without security before. Now it has proved that the certificate is its own.
    const offered = chooseEndpoint(await this.#step(client.getEndpoints()), settings, serverCertificate ?? null);
    checkLogin(offered, identity);
    check?.onFact({ secured: { policy: settings.security } });
    if (isSecure && !check) {
      await this.#trust(pinFile, serverCertificate, log);
    }
    this.#session = await this.#show(isSecure && own, client.createSession(identity), false);
    forbidRepair(this.#session, (error) => this.#lose(reasonOf(error)));
    this.#subscriptions = new Subscriptions(
      this.#session,
      (promise) => this.#ask(promise),
      (nodeId) => this.#ask(this.#session.read({ nodeId, attributeId: AttributeIds.Value })),
      log,
    );
    this.#subscriptions.on('lost', (reason) => this.#lose(reason));
    this.#subscriptions.on('granted', (granted) => check?.onFact({ granted }));
    check?.onFact({ session: { timeout: this.#session.timeout, asked: SESSION_TIMEOUT } });
    this.#watch();
  }

  /** A step in which the server is shown our certificate, if there is security. */
  async #show(own, promise, isFirst) {
    try {
      return await this.#step(promise);
    } catch (error) {
      const isOther = error instanceof Refusal && error.message !== ENDED;
      throw isOther || !own ? error : await explainRejection(error, own, isFirst);
    }
  }

  async #trust(pinFile, certificate, log) {
    if ((await shown(pin(pinFile, certificate))) === 'first') {
      const fingerprint = fingerprintOf(certificate);
      log('warning', `The server's certificate is trusted from now on; its fingerprint is ${fingerprint}.`);
    }
    const outOfTime = describeValidity(certificate);
    if (outOfTime !== undefined) {
      log('warning', outOfTime);
    }
  }

  get isLost() {
    return this.#isOver;
  }

  /** Ends everything, properly if the server answers soon. */
  close() {
    this.#lose('the connection was closed');
    this.#closing ??= closeClient(this.#client, this.#session);
    return this.#closing;
  }

  /** Reports a node's value and its changes, as Subscriptions.monitor() does. */
  async monitor(node, rate, onValue, onError) {
    return await this.#subscriptions.monitor(await this.#nodes.find(node), rate, onValue, onError);
  }

  /**
   * @param {string} node
   * @returns {Promise<object>} typed value
   */
  async read(node) {
    return typedOf(await this.#readAttribute(await this.#nodes.find(node), AttributeIds.Value));
  }

  /**
   * What an attribute of a node holds.
   * @param {string} node
   * @param {string} attribute by its name
   * @returns {Promise<unknown>} undefined if the server doesn't tell
   * @throws {Refusal} if there is no such node
   */
  async look(node, attribute) {
    const { statusCode, value } = await this.#readAttribute(await this.#nodes.find(node), AttributeIds[attribute]);
    if (isNodeMissing(statusCode)) {
      throw badStatus(statusCode);
    }
    return statusCode.isGood() ? value?.value : undefined;
  }

  /** Name of the built-in type that write() would write; undefined if the server doesn't tell. */
  async typeOf(node) {
    return DataType[await this.#typeOf(await this.#nodes.find(node))];
  }

  /**
   * @param {string} node
   * @param {object} typed value; written as the type that the node has
   */
  async write(node, typed) {
    const nodeId = await this.#nodes.find(node);
    const variant = toVariant(typed, await this.#typeOf(nodeId));
    const status = await this.#ask(
      this.#session.write({ nodeId, attributeId: AttributeIds.Value, value: { value: variant } }),
    );
    if (status.isNotGood()) {
      throw badStatus(status);
    }
  }

  /** Throws if write() would not even send this. */
  async check(node, typed) {
    toVariant(typed, await this.#typeOf(await this.#nodes.find(node)));
  }

  /** One node a request: some servers take no more. */
  #readAttribute(nodeId, attributeId) {
    return this.#ask(this.#session.read({ nodeId, attributeId }));
  }

  async #readNamespaces() {
    const { statusCode, value } = await this.#readAttribute(NAMESPACES, AttributeIds.Value);
    if (statusCode.isNotGood()) {
      throw badStatus(statusCode);
    }
    return value.value;
  }

  /** The built-in type of a node. Asked before each write, since an NC may get other software while this runs. */
  async #typeOf(nodeId) {
    const declared = await this.#readAttribute(nodeId, AttributeIds.DataType);
    if (declared.statusCode.isNotGood()) {
      throw badStatus(declared.statusCode);
    }
    const id = declared.value.value;
    if (id.namespace === 0 && BUILT_IN_TYPES.has(id.value)) {
      return id.value;
    }
    // An enumeration, an abstract number or a type of the server's own: what the node holds now tells.
    const present = await this.#readAttribute(nodeId, AttributeIds.Value);
    const type = present.value?.dataType;
    return present.statusCode.isGood() && type !== DataType.Null ? type : undefined;
  }

  /** A server that hangs keeps its socket open, so it is asked something now and then, and often enough for it. */
  async #watch() {
    const interval = Math.min(PING_INTERVAL, this.#session.timeout / 3);
    try {
      for (;;) {
        await this.#pause.wait(interval);
        await this.#readAttribute(SERVER_STATE, AttributeIds.Value);
      }
    } catch (error) {
      this.#lose(reasonOf(error));
    }
  }

  #step(promise) {
    return within(this.#orLost(promise), OPENING_LIMIT);
  }

  /** An answer of the server. None in time, or one that there is no session any more, ends the connection. */
  async #ask(promise) {
    try {
      return await within(this.#orLost(promise), ANSWER_LIMIT);
    } catch (error) {
      if (error instanceof TimeUp || isSessionGone(error)) {
        this.#lose(reasonOf(error));
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
    this.#subscriptions?.end();
    for (const giveUp of this.#waiting) {
      giveUp(new Refusal(reason));
    }
    this.#pause.end();
    this.#tellLoss(reason);
  }
}
