// The lines of the local socket: which there are, what they hold, and who takes them.

const isId = (value) => typeof value === 'string' || Number.isFinite(value);
const isText = (value) => typeof value === 'string';
const isRate = (value) => Number.isFinite(value) && value >= 10 && value <= 5000;
const isObject = (value) => value !== null && typeof value === 'object' && !Array.isArray(value);

const LINES = {
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
    const fields = Object.entries(LINES[name]);
    const wrong = isObject(body) ? fields.find(([field, isValid]) => !isValid(body[field])) : ['content'];
    if (!wrong) {
      actions[name](body);
      return;
    }
    refuse(`a ${name} line with a wrong ${wrong[0]}`);
    if (ANSWERS[name] && isObject(body) && isId(body.id)) {
      tell({ [ANSWERS[name]]: { id: body.id, error: `wrong ${wrong[0]}` } });
    }
  };

  return { take, refuse };
}
