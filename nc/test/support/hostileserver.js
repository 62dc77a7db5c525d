// Servers that mean harm: what comes from them is no OPC UA, or one at the wrong time.
import { connect, createServer } from 'node:net';
import { once } from 'node:events';
import { readFileSync } from 'node:fs';

const HEADER = 8; // type, kind of chunk, length

/** A message of that type. */
export function message(type, body) {
  const header = Buffer.alloc(HEADER);
  header.write(type, 0, 'latin1');
  header.writeUInt32LE(HEADER + body.length, 4);
  return Buffer.concat([header, body]);
}

/** What a server answers to a greeting: any size of messages, any number of chunks. */
export function acknowledge() {
  const body = Buffer.alloc(20);
  [0, 65536, 65536, 0, 0].forEach((value, place) => body.writeUInt32LE(value, 4 * place));
  return message('ACKF', body);
}

/**
 * Does the same to everybody who connects.
 * @param {(socket: import('node:net').Socket) => void} harm
 */
export async function startHostile(harm) {
  const hostile = { connections: 0 };
  const sockets = new Set();
  const listener = createServer((socket) => {
    ++hostile.connections;
    sockets.add(socket);
    socket.on('error', () => {});
    socket.on('close', () => sockets.delete(socket));
    harm(socket);
  });
  listener.listen(0, '127.0.0.1');
  await once(listener, 'listening');
  hostile.url = `opc.tcp://127.0.0.1:${listener.address().port}`;
  hostile.stop = () => {
    listener.close();
    sockets.forEach((socket) => socket.destroy());
  };
  return hostile;
}

/** Passes everything on, and says again on demand what the server has said last: replay() tells how much that was. */
export async function startReplaying(port) {
  let last;
  let client;
  const replaying = await startHostile((socket) => {
    client = socket;
    const server = connect(port, '127.0.0.1');
    server.on('error', () => {});
    socket.on('data', (bytes) => server.write(bytes));
    server.on('data', (bytes) => {
      last = bytes;
      socket.write(bytes);
    });
    socket.on('close', () => server.destroy());
    server.on('close', () => socket.destroy());
  });
  replaying.replay = () => {
    client.write(last);
    return last.length;
  };
  return replaying;
}

/** What a process has in memory, bytes. */
export function residentOf(pid) {
  return Number(/VmRSS:\s+(\d+)/.exec(readFileSync(`/proc/${pid}/status`, 'utf8'))[1]) * 1024;
}
