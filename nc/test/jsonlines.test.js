// Objects out of a stream of lines.
import assert from 'node:assert/strict';
import { PassThrough } from 'node:stream';
import { beforeEach, test } from 'node:test';
import { LONGEST_LINE, readObjects, writeObject } from '../shared/jsonlines.js';

let stream;
let objects;
let broken;

beforeEach(() => {
  stream = new PassThrough();
  objects = [];
  broken = [];
  readObjects(
    stream,
    (object) => objects.push(object),
    (reason) => broken.push(reason),
  );
});

/** Sends bytes, in as many pieces as there are arguments. */
const send = (...pieces) => pieces.forEach((piece) => stream.emit('data', Buffer.from(piece)));

test('each line is an object, however the bytes come', () => {
  send('{"a": 1}\n{"b"', ': 2}', '\n', '{"c": 3}\r\n{"d": 4}');
  assert.deepEqual(objects, [{ a: 1 }, { b: 2 }, { c: 3 }]); // the last line has no end yet
  send('\n');
  assert.deepEqual(objects.at(-1), { d: 4 });
  assert.deepEqual(broken, []);
});

test('a letter of several bytes may come in two pieces', () => {
  const bytes = Buffer.from('{"a": "ä€"}\n');
  for (const byte of bytes) {
    send([byte]);
  }
  assert.deepEqual(objects, [{ a: 'ä€' }]);
});

test('empty lines are left out', () => {
  send('\n  \n\r\n{"a": 1}\n\n');
  assert.deepEqual(objects, [{ a: 1 }]);
  assert.deepEqual(broken, []);
});

test('a line that is no object is told without its text, and the next one is read', () => {
  send('secret\n', '[1]\n', 'null\n', '5\n', '{"a": 1}\n');
  assert.deepEqual(objects, [{ a: 1 }]);
  assert.equal(broken.length, 4);
  assert.ok(!broken.join().includes('secret'));
});

test('a line of the greatest length is read, a longer one is told once', () => {
  const fits = JSON.stringify({ a: 'x'.repeat(LONGEST_LINE - 8) });
  assert.equal(fits.length, LONGEST_LINE);
  send(`${fits}\n`, `${fits} \n`, '{"b": 2}\n');
  assert.equal(objects.length, 2);
  assert.equal(broken.length, 1);
  assert.match(broken[0], /longer than 65536/);
});

test('a line without end is dropped as it comes, up to its end', () => {
  for (let i = 0; i < 10; ++i) {
    send('x'.repeat(LONGEST_LINE));
  }
  assert.deepEqual(broken, []);
  send('{"a": 1}\n{"b": 2}\n');
  assert.deepEqual(objects, [{ b: 2 }]);
  assert.equal(broken.length, 1);
});

test('objects are written as lines, and nothing to a stream that has ended', () => {
  const out = new PassThrough();
  writeObject(out, { a: 'x\ny' });
  assert.equal(String(out.read()), '{"a":"x\\ny"}\n');
  out.end();
  writeObject(out, { b: 1 });
  assert.equal(out.read(), null);
});
