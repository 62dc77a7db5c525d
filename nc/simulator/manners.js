// How servers of other makes behave, which is all within the rules of OPC UA. Each by an option of the program.

const DAY = 24 * 3600 * 1000;

/** The server's own certificate with each of the usual faults; manners of ownCertificate(). */
export const CERTIFICATES = Object.freeze({
  'no-host': { file: 'own-no-host', hosts: ['panel-of-another-machine.invalid'] },
  expired: { file: 'own-expired', notBefore: new Date('2020-01-01'), days: 366 },
  future: { file: 'own-future', notBefore: new Date(Date.now() + 3 * 365 * DAY) },
});

/** What nodes may be whose values usually are Int32. */
export const INTEGER_TYPES = Object.freeze(['Int16', 'UInt16', 'UInt32', 'Int64', 'Float', 'Double']);

/** What a server that takes one operation a request tells of itself, and keeps to. */
export const ONE_OPERATION = Object.freeze({
  maxNodesPerRead: 1,
  maxNodesPerWrite: 1,
  maxNodesPerBrowse: 1,
  maxMonitoredItemsPerCall: 1,
});

/**
 * The server grants other times than its clients ask for.
 * @param {import('node-opcua-server').OPCUAServer} server
 * @param {{publishing?: number, session?: number}} times ms; changes are told at most so often, sessions end so soon
 */
export function revise(server, { publishing, session }) {
  if (publishing !== undefined) {
    const subscribe = server._on_CreateSubscriptionRequest.bind(server);
    server._on_CreateSubscriptionRequest = (message, channel) => {
      const { request } = message;
      request.requestedPublishingInterval = Math.max(request.requestedPublishingInterval, publishing);
      return subscribe(message, channel);
    };
  }
  if (session !== undefined) {
    const create = server._on_CreateSessionRequest.bind(server);
    server._on_CreateSessionRequest = (message, channel) => {
      message.request.requestedSessionTimeout = session;
      return create(message, channel);
    };
  }
}

/** Ends the sessions of all clients, and leaves their connections. */
export function endSessions({ engine }) {
  for (const session of Object.values(engine._sessions)) {
    engine.closeSession(session.authenticationToken, true, 'Terminated');
  }
}
