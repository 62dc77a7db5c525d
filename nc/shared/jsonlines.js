// JSON lines: one object a line, both ways over one stream.
import { StringDecoder } from 'node:string_decoder';

/** A peer that sends no line end must not fill the memory. */
export const LONGEST_LINE = 65536;

/**
 * Reads objects from a stream.
 * @param {import('node:stream').Readable} stream
 * @param {(object: object) => void} onObject called for each line that holds an object
 * @param {(reason: string) => void} onBroken called for each line that doesn't; it is left out
 */
export function readObjects(stream, onObject, onBroken) {
  const decoder = new StringDecoder('utf8');
  let text = '';
  let overlong = false;

  const takeLine = (line) => {
    if (line.trim() === '') {
      return;
    }
    let object;
    try {
      object = JSON.parse(line);
    } catch {
      onBroken('a line that is no JSON'); // not shown: it may hold a password
      return;
    }
    if (object === null || typeof object !== 'object' || Array.isArray(object)) {
      onBroken('a line that is no JSON object');
      return;
    }
    onObject(object);
  };

  stream.on('data', (bytes) => {
    text += decoder.write(bytes);
    let end;
    while ((end = text.indexOf('\n')) >= 0) {
      const line = text.slice(0, end);
      text = text.slice(end + 1);
      if (overlong || line.length > LONGEST_LINE) {
        overlong = false;
        onBroken(`a line longer than ${LONGEST_LINE} characters`);
      } else {
        takeLine(line);
      }
    }
    if (text.length > LONGEST_LINE) {
      overlong = true;
      text = '';
    }
  });
}

/**
 * Writes an object as a line. Quietly does nothing when the stream has been closed.
 * @param {import('node:stream').Writable} stream
 * @param {object} object
 */
export function writeObject(stream, object) {
  if (stream.writable) {
    stream.write(JSON.stringify(object) + '\n');
  }
}
