// The OPC UA client of the module: opc-gateway SOCKET. Connects to the local socket that the module's side listens
// on, takes orders there as JSON lines, and ends when it closes.
import { connect } from 'node:net';
import { readObjects, writeObject } from '../shared/jsonlines.js';

// The library explains itself at length there, and what was sent may be part of it.
for (const channel of ['log', 'info', 'warn', 'error']) {
  console[channel] = () => {};
}
const { Session } = await import('./session.js');

const CLOSE_TIMEOUT = 1000;

function refuse(text) {
  process.stderr.write(`${text}\n`);
  process.exit(3);
}

if (process.argv.length !== 3) {
  refuse('usage: opc-gateway SOCKET, the local socket to take orders from');
}
const socket = connect(process.argv[2]);
const report = (object) => writeObject(socket, object);
const complain = (text) => report({ log: { level: 'error', text } });
let session = null;

const orders = {
  connect(settings) {
    if (session === null) {
      session = new Session(settings, report);
      session.run();
    } else {
      complain('a second connect is not taken');
    }
  },
  ping: ({ id }) => report({ pong: { id } }),
};
for (const order of ['subscribe', 'unsubscribe', 'write', 'read']) {
  orders[order] = (parameters) => {
    if (session === null) {
      complain(`${order} comes before connect`);
    } else {
      session[order](parameters);
    }
  };
}

function take(object) {
  for (const [order, parameters] of Object.entries(object)) {
    if (Object.hasOwn(orders, order) && parameters !== null && typeof parameters === 'object') {
      orders[order](parameters);
    } else {
      complain(`${order.slice(0, 40)} is no order`);
    }
  }
}

async function end(status) {
  setTimeout(() => process.exit(status), CLOSE_TIMEOUT);
  await session?.close();
  process.exit(status);
}

socket.on('error', (error) => refuse(`${process.argv[2]}: ${error.code}; it must be a socket that somebody listens on`));
socket.on('close', () => end(0));
readObjects(socket, take, (reason) => complain(`${reason} was left out`));

// Whoever started this starts it again.
process.on('uncaughtException', (error) => {
  complain(`the gateway ends: ${String(error.message).split('\n')[0]}`);
  end(1);
});
process.on('SIGTERM', () => end(0));
