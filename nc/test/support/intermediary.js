// Somebody between client and server: passes on what has no security, and answers in the server's place what has.
import { connect, createServer } from 'node:net';
import { once } from 'node:events';

const HEADER = 8; // type, "F", length

/** The policy that an OpenSecureChannel message names: the text after header and channel. */
function policyOf(message) {
  const length = message.readInt32LE(12);
  return message.toString('latin1', 16, 16 + length).split('#')[1];
}

/** An answer to the opening of a channel, with a nonce: it is the last field, and empty without security. */
function withNonce(message) {
  const forged = Buffer.concat([message.subarray(0, -4), Buffer.from([32, 0, 0, 0]), Buffer.alloc(32, 7)]);
  forged.writeUInt32LE(forged.length, 4);
  return forged;
}

/** Calls back for each whole message of a stream. */
function readMessages(stream, onMessage) {
  let bytes = Buffer.alloc(0);
  stream.on('data', (more) => {
    bytes = Buffer.concat([bytes, more]);
    while (bytes.length >= HEADER && bytes.length >= bytes.readUInt32LE(4)) {
      const length = bytes.readUInt32LE(4);
      onMessage(bytes.subarray(0, length), bytes.toString('latin1', 0, 3));
      bytes = bytes.subarray(length);
    }
  });
}

/** How a server of another make ends a channel: with a status, or without a word. */
function endWith(socket, status) {
  if (status === undefined) {
    socket.destroy();
    return;
  }
  const message = Buffer.alloc(HEADER + 8);
  message.write('ERRF', 0, 'latin1');
  message.writeUInt32LE(message.length, 4);
  message.writeUInt32LE(status, HEADER);
  message.writeInt32LE(-1, HEADER + 4); // no text
  socket.end(message);
}

/**
 * A server that tells what it offers, and takes nobody's certificate.
 * @param {number} port of the server that answers what goes without security
 * @param {number} [status] of the message with which it ends the connection; it just ends if there is none
 */
export async function startRejecting(port, status) {
  const listener = createServer((client) => {
    const server = connect(port, '127.0.0.1');
    for (const socket of [client, server]) {
      socket.on('error', () => {});
    }
    client.on('close', () => server.destroy());
    server.pipe(client);
    readMessages(client, (message, type) => {
      if (type === 'OPN' && policyOf(message) !== 'None') {
        server.unpipe(client);
        endWith(client, status);
      } else {
        server.write(message);
      }
    });
  });
  listener.listen(0, '127.0.0.1');
  await once(listener, 'listening');
  return { url: `opc.tcp://127.0.0.1:${listener.address().port}`, stop: () => listener.close() };
}

/**
 * Opens channels with security by an answer without: the server's own to a channel without security, said again, with
 * the nonce that it lacks.
 * @param {number} port of the server
 */
export async function startIntermediary(port) {
  const intermediary = { forged: 0, after: [] };
  let recorded;
  const listener = createServer((client) => {
    let isForging = false;
    const server = connect(port, '127.0.0.1');
    for (const socket of [client, server]) {
      socket.on('error', () => {});
    }
    client.on('close', () => server.destroy());
    server.on('close', () => client.destroy());
    readMessages(client, (message, type) => {
      if (isForging) {
        intermediary.after.push(type);
      } else if (type === 'OPN' && policyOf(message) !== 'None') {
        isForging = true;
        ++intermediary.forged;
        client.write(withNonce(recorded));
      } else {
        server.write(message);
      }
    });
    readMessages(server, (message, type) => {
      if (type === 'OPN') {
        recorded = Buffer.from(message);
      }
      client.write(message);
    });
  });
  listener.listen(0, '127.0.0.1');
  await once(listener, 'listening');
  intermediary.url = `opc.tcp://127.0.0.1:${listener.address().port}`;
  intermediary.stop = () => listener.close();
  return intermediary;
}
