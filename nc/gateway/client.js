// The library's client, as this gateway uses it: what it would do by itself behind our back is switched off here.
import { EventEmitter } from 'node:events';
import { isSessionGone } from './reasons.js';
import { ClientSubscription, MessageSecurityMode, OPCUAClient, PacketAssembler, SecurityPolicy } from '../shared/opcua.js';
import { quietly, within } from '../shared/timing.js';

export const NAME = 'opc-gateway';

/** For the library, which watches over its socket in its own way: later than our own limits. */
const SILENCE_LIMIT = 25000;
const CLOSING_LIMIT = 700;
/** A server counts sessions that were cut off until then, and may allow but a few. Longer than three updates. */
export const SESSION_TIMEOUT = 20000;

// Where subscriptions are slower than the session lasts, the library throws in a callback of its own, and the promise
// of the subscription never settles. It means clients that are silent in between; this one asks something all the time.
Object.defineProperty(ClientSubscription, 'ignoreNextWarning', { get: () => true, set: () => {} });

// With the server's acknowledgement the library takes another one of these, and lets go of the first, which still has
// what came in the same piece: damage there would be an error that nobody hears, and the end of this process.
PacketAssembler.prototype.removeAllListeners = function removeAllListeners(...names) {
  return EventEmitter.prototype.removeAllListeners.apply(this, names).on('error', () => {});
};

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

/**
 * @param {{certificateFile: string, privateKeyFile: string, applicationUri: string}} own
 * @param {object} options of the library that differ
 */
export const makeClient = (own, options) =>
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

/** Ends what there is, properly if the server answers soon. */
export async function closeClient(client, session) {
  if (session) {
    await quietly(session.close(true), CLOSING_LIMIT);
  }
  if (client) {
    await quietly(client.disconnect(), CLOSING_LIMIT);
  }
}

/**
 * @param {object} own certificate of this application
 * @param {string} server
 * @param {number} limit for each of the server's answers, ms
 * @returns {Promise<{endpoints: import('node-opcua-client').EndpointDescription[], fast: number}>} all that the server
 *   offers, and by how many ms its clock is fast
 */
export async function fetchEndpoints(own, server, limit) {
  const client = makeClient(own, { securityMode: MessageSecurityMode.None, securityPolicy: SecurityPolicy.None });
  let fast = 0;
  client.on('receive_response', ({ responseHeader }) => {
    fast = responseHeader.timestamp ? responseHeader.timestamp.getTime() - Date.now() : 0;
  });
  try {
    await within(client.connect(server), limit);
    return { endpoints: await within(client.getEndpoints(), limit), fast };
  } finally {
    await closeClient(client);
  }
}

/**
 * A session that the server has ended is over. The library would make another one in silence, and do in it what was
 * under way: write twice, and tell the values of its subscriptions again as if they were changes.
 * @param {import('node-opcua-client').ClientSession} session
 * @param {(error: Error) => void} onGone
 */
export function forbidRepair(session, onGone) {
  session.performMessageTransaction = (request, callback) =>
    session._performMessageTransaction(request, (error, response) => {
      if (error && isSessionGone(error)) {
        onGone(error);
      }
      callback(error, response);
    });
}
