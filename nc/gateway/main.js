// The OPC UA client of the module: opc-gateway SOCKET. Speaks JSON lines over the local socket; ends when that closes.
// opc-gateway --check takes one line on standard input, and tells what it finds in lines on standard output.
import './silence.js';
import { connect } from 'node:net';
import { readObjects, writeObject } from '../shared/jsonlines.js';
import { VERSION } from '../shared/version.js';

const BAD_ARGUMENTS = 3;
const FAILED = 1;
const CLOSING_LIMIT = 1000;

function refuse(text) {
  process.stderr.write(`opc-gateway: ${text}\n`);
  process.exit(BAD_ARGUMENTS);
}

if (process.argv.length === 3 && process.argv[2] === '--version') {
  process.stdout.write(`opc-gateway ${VERSION}\n`);
  process.exit(0);
}
if (process.argv.length === 3 && process.argv[2] === '--check') {
  const { readOrder } = await import('./checkorder.js');
  const order = await readOrder(process.stdin).catch((error) => refuse(error.message));
  const { check } = await import('./check.js');
  await check(order.settings, order.nodes, (fact) => writeObject(process.stdout, fact));
  process.exit(0);
}
if (process.argv.length !== 3 || process.argv[2] === '' || process.argv[2].startsWith('-')) {
  refuse('usage: opc-gateway SOCKET | --check');
}

const socket = connect(process.argv[2]);
const connected = new Promise((resolve) => {
  socket.once('connect', resolve);
  socket.once('error', (error) => refuse(`nobody listens at ${process.argv[2]} (${error.code})`));
});

// Loading takes longer than all else here.
const [{ Session }, { makeReceiver }, { reasonOf }] = await Promise.all([
  import('./session.js'),
  import('./lines.js'),
  import('./reasons.js'),
  connected,
]);

const tell = (line) => writeObject(socket, line);
const session = new Session(tell);

let isEnding = false;
async function end(status) {
  if (isEnding) {
    return;
  }
  isEnding = true;
  setTimeout(() => process.exit(status), CLOSING_LIMIT);
  try {
    await session.close();
  } finally {
    process.exit(status);
  }
}

// What the error says may have been sent; where it happened is enough. The module starts another gateway.
process.on('uncaughtException', (error) => {
  const places = String(error?.stack).split('\n').filter((line) => /^\s+at /.test(line));
  const text = `opc-gateway fails: ${reasonOf(error)}; ${places.slice(0, 3).map((line) => line.trim()).join(' ')}`;
  const leave = () => process.exit(FAILED);
  setTimeout(leave, CLOSING_LIMIT);
  if (socket.writable) {
    socket.end(JSON.stringify({ log: { level: 'error', text } }) + '\n', leave);
  } else {
    leave();
  }
});

socket.removeAllListeners('error');
socket.on('error', () => {}); // followed by 'close'
socket.on('close', () => end(0));
socket.on('end', () => end(0));
for (const name of ['SIGINT', 'SIGTERM']) {
  process.on(name, () => end(0));
}

const receiver = makeReceiver(session, tell);
readObjects(socket, receiver.take, receiver.refuse);
