// The lines of the local socket: which there are, what they hold, and who takes them.

const isId = (value) => typeof value === 'string' || Number.isFinite(value);
const isText = (value) => typeof value === 'string';
const isRate = (value) => Number.isFinite(value) && value >= 10 && value <= 5000;
const isObject = (value) => value !== null && typeof value === 'object' && !Array.isArray(value);

/** Fields of each line, and what is right for them. */
export const LINES = {
  connect: {
    server: isText,
    security: isText,
    fingerprint: isText,
    pki: isText,
    user: isText,
    password: isText,
    user_certificate: isText,
    user_key: isText,
  },
  subscribe: { id: isId, node: isText, rate: isRate },
  unsubscribe: { id: isId },
  write: { id: isId, node: isText, value: isObject },
  read: { id: isId, node: isText },
  check: { id: isId, node: isText, value: isObject },
  ping: { id: isId },
};

/** The first field that is missing or wrong; undefined if there is none. */
export function findWrong(body, fields) {
  if (!isObject(body)) {
    return 'content';
  }
  return Object.entries(fields).find(([field, isValid]) => !isValid(body[field]))?.[0];
}

/** Who waits for an answer to a line, gets one to a line with a fault too. */
const ANSWERS = { subscribe: 'changed', write: 'written', read: 'value', check: 'checked' };

/**
 * Takes the lines of the module.
 * @param {import('./session.js').Session} session
 * @param {(line: object) => void} tell takes the lines for the module
 * @returns {{take: (line: object) => void, refuse: (reason: string) => void}} refuse is for what isn't even an object
 */
export function makeReceiver(session, tell) {
  let isStarted = false;

  const refuse = (reason) => tell({ log: { level: 'error', text: `opc-gateway got ${reason}.` } });

  const actions = {
    connect(settings) {
      if (isStarted) {
        refuse('a second connect line');
        return;
      }
      isStarted = true;
      session.start(settings);
    },
    subscribe: (subscription) => session.subscribe(subscription),
    unsubscribe: ({ id }) => session.unsubscribe(id),
    write: (order) => session.write(order),
    read: (order) => session.read(order),
    check: (order) => session.check(order),
    ping: ({ id }) => tell({ pong: { id } }),
  };

  const take = (line) => {
    const [name, ...others] = Object.keys(line);
    if (others.length > 0 || !Object.hasOwn(LINES, name ?? '')) {
      refuse('a line that it does not know');
      return;
    }
    const body = line[name];
    const wrong = findWrong(body, LINES[name]);
    if (wrong === undefined) {
      actions[name](body);
      return;
    }
    refuse(`a ${name} line with a wrong ${wrong}`);
    if (ANSWERS[name] && isObject(body) && isId(body.id)) {
      tell({ [ANSWERS[name]]: { id: body.id, error: `wrong ${wrong}` } });
    }
  };

  return { take, refuse };
}
