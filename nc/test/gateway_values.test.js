// Reading, writing and subscribing through the gateway process, at a server that stays.
import assert from 'node:assert/strict';
import { join } from 'node:path';
import { after, afterEach, before, beforeEach, test } from 'node:test';
import { GatewayProcess } from './support/gatewayprocess.js';
import { makeDirectory, removeDirectory } from './support/temporary.js';
import { TestServer } from './support/testserver.js';

// One process for all: each test has ids of its own where they matter, and looks at lines that came since it began.
let directory;
let gateway;
let server;

before(async () => {
  directory = await makeDirectory();
  server = new TestServer(join(directory, 'server'));
  await server.start();
  gateway = await GatewayProcess.connect(directory, server.url);
  assert.deepEqual(gateway.firstState, { connected: true });
});

after(async () => {
  await gateway?.stop();
  await server?.stop();
  await removeDirectory(directory);
});

beforeEach(() => {
  server.written.length = 0;
  gateway.lines.length = 0;
  gateway.taken = 0;
});

afterEach(() => {
  for (const id of subscribed.splice(0)) {
    gateway.send({ unsubscribe: { id } });
  }
});

const subscribed = [];

const write = (name, value, id) => gateway.write(server.node(name), value, id);
const read = (name, id) => gateway.read(server.node(name), id);

function subscribe(id, name, rate = 50) {
  subscribed.push(id);
  gateway.send({ subscribe: { id, node: server.node(name), rate } });
}

test('an integer is written as the integer type that the node has', async () => {
  for (const name of ['Request', 'SByte', 'Byte', 'Short', 'UInt16', 'UInt32', 'Wide', 'UInt64']) {
    assert.deepEqual(await write(name, { int32: 100 }), { id: 1 }, name);
    assert.deepEqual((await read(name)).value, { int32: 100 }, name);
  }
  const types = ['Int32', 'SByte', 'Byte', 'Int16', 'UInt16', 'UInt32', 'Int64', 'UInt64'];
  assert.deepEqual(server.written.map(({ type }) => type), types);
  assert.deepEqual(await write('Wide', { int32: -3 }), { id: 1 });
  assert.deepEqual((await read('Wide')).value, { int32: -3 });
});

test('numbers, texts and truth values are written', async () => {
  assert.deepEqual(await write('Weight', { double: 1.25 }), { id: 1 });
  assert.deepEqual(await write('Float', { double: 0.5 }), { id: 1 });
  assert.deepEqual(await write('Text', { string: 'ä x' }), { id: 1 });
  assert.deepEqual(await write('Flag', { int32: 0 }), { id: 1 });
  assert.deepEqual(server.written.map(({ type, value }) => [type, value]), [
    ['Double', 1.25],
    ['Float', 0.5],
    ['String', 'ä x'],
    ['Boolean', false],
  ]);
  await write('Flag', { int32: 1 });
});

test('the integers of a notification are written as one array, of the type that the node has', async () => {
  const values = [1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, -13, 14];
  assert.deepEqual(await write('Notification', { int32s: values }), { id: 1 });
  assert.deepEqual(server.get('Notification'), values);
  assert.deepEqual(await write('Shorts', { int32s: [3, -4] }), { id: 1 });
  assert.deepEqual(server.get('Shorts'), [3, -4]);
  assert.deepEqual(server.written.map(({ type }) => type), ['Int32', 'Int16']);
});

test('a type of which the server tells only that it is a number is taken from the present value', async () => {
  server.add('Abstract', 'Int16', 1, { dataType: 'Number' });
  assert.deepEqual(await write('Abstract', { int32: 7 }), { id: 1 });
  assert.deepEqual(server.written.map(({ type, value }) => [type, value]), [['Int16', 7]]);
  server.remove('Abstract');
});

test('what does not fit is an error that tells value and type, and is not sent', async () => {
  assert.match((await write('Byte', { int32: 256 })).error, /256 does not fit the node's type Byte/);
  assert.match((await write('UInt32', { int32: -1 })).error, /-1 does not fit the node's type UInt32/);
  assert.match((await write('Text', { int32: 1 })).error, /1 does not fit the node's type String/);
  assert.match((await write('Request', { string: 'x' })).error, /"x" does not fit the node's type Int32/);
  assert.match((await write('Request', { double: 2 })).error, /2 does not fit the node's type Int32/);
  assert.match((await write('Shorts', { int32s: [1, 40000] })).error, /40000 does not fit the node's type Int16/);
  assert.match((await write('Request', { int32: 1.5 })).error, /1.5 is no int32/);
  assert.match((await write('Request', { int32: 2 ** 31 })).error, /2147483648 is no int32/);
  assert.match((await write('Request', { colour: 1 })).error, /must be typed/);
  assert.match((await write('Request', { int32: 1, double: 1 })).error, /must be typed/);
  assert.match((await write('Request', null)).error, /wrong value/);
  assert.deepEqual(server.written, []);
});

test('a write that the server refuses is an error with its words', async () => {
  server.add('Fixed', 'Int32', 1, { accessLevel: 'CurrentRead', userAccessLevel: 'CurrentRead' });
  assert.match((await write('Fixed', { int32: 2 })).error, /BadNotWritable|BadUserAccessDenied/);
  assert.match((await write('Nobody', { int32: 2 })).error, /no such node \(BadNodeIdUnknown\)/);
  assert.match((await gateway.write('colour', { int32: 2 })).error, /"colour" is no node id/);
  server.remove('Fixed');
});

test('values are read as integers, numbers and texts; other types are an error', async () => {
  server.set('Short', -3);
  server.set('Weight', 2.5);
  server.set('Text', 'abc');
  server.set('Notification', [1, 2, 3]);
  server.set('UInt32', 4294967295);
  assert.deepEqual((await read('Short')).value, { int32: -3 });
  assert.deepEqual((await read('Weight')).value, { double: 2.5 });
  assert.deepEqual((await read('Text')).value, { string: 'abc' });
  assert.deepEqual((await read('Flag')).value, { int32: 1 });
  assert.deepEqual((await read('Notification')).value, { int32s: [1, 2, 3] });
  assert.deepEqual((await read('UInt32')).value, { double: 4294967295 });
  assert.match((await read('Moment')).error, /DateTime can't be used/);
  assert.match((await read('Nobody')).error, /BadNodeIdUnknown/);
  assert.match((await gateway.read('ns=2;x=3')).error, /is no node id/);
  server.setStatus('Short', 'BadOutOfService');
  assert.match((await read('Short')).error, /BadOutOfService/);
  server.set('Short', 0);
});

test('a subscription tells the present value, then each change once and in order', async () => {
  server.set('Request', 0);
  subscribe(7, 'Request', 100);
  assert.deepEqual((await gateway.changed(7)).value, { int32: 0 });
  // Faster than the update rate: none may be lost.
  for (let request = 1; request <= 50; ++request) {
    server.set('Request', request);
  }
  for (let request = 1; request <= 50; ++request) {
    assert.deepEqual((await gateway.changed(7)).value, { int32: request });
  }
  assert.equal(gateway.all('changed').length, 51);
});

test('a subscription that was ended tells nothing more, others go on', async () => {
  subscribe('request', 'Request');
  await gateway.changed('request');
  gateway.send({ unsubscribe: { id: 'request' } });
  subscribe('short', 'Short');
  await gateway.changed('short');
  server.set('Request', 99);
  server.set('Short', 5);
  assert.deepEqual(await gateway.changed('short'), { id: 'short', value: { int32: 5 } });
  assert.ok(!gateway.all('changed').some(({ value }) => value?.int32 === 99));
  server.set('Short', 0);
});

test('subscribing anew under the same id leaves one subscription', async () => {
  server.set('Request', 1);
  subscribe(1, 'Short');
  await gateway.changed(1);
  subscribe(1, 'Request');
  assert.deepEqual((await gateway.changed(1)).value, { int32: 1 });
  server.set('Short', 5);
  server.set('Request', 2);
  assert.deepEqual((await gateway.changed(1)).value, { int32: 2 });
  server.set('Short', 0);
});

test("the gateway's own writes are changes too", async () => {
  server.set('Request', 1);
  subscribe(1, 'Request');
  await gateway.changed(1);
  assert.deepEqual(await write('Request', { int32: 0 }), { id: 1 });
  assert.ok(gateway.all('changed').length <= 2);
  while (!gateway.all('changed').some(({ value }) => value.int32 === 0)) {
    await gateway.changed(1);
  }
  assert.deepEqual(gateway.all('changed').map(({ value }) => value.int32), [1, 0]);
});

test('writes keep their order, over all nodes', async () => {
  const names = ['Request', 'Short', 'Notification'];
  // In bursts: each write has to be answered within seconds, those waiting before it included.
  for (let id = 0; id < 60; ) {
    const burst = [0, 1, 2, 3, 4, 5].map(() => id++);
    for (const each of burst) {
      const name = names[each % 3];
      const value = name === 'Notification' ? { int32s: [each] } : { int32: each };
      gateway.send({ write: { id: each, node: server.node(name), value } });
    }
    for (const each of burst) {
      assert.deepEqual(await gateway.next('written'), { id: each });
    }
  }
  const order = server.written.map(({ name, value }) => (name === 'Notification' ? value[0] : value));
  assert.deepEqual(order, [...Array(60).keys()]);
});

test('items that vanish or are missing are told once, found when they come, and disturb no others', async () => {
  server.add('Fleeting', 'Int32', 1);
  server.set('Request', 1);
  subscribe('fleeting', 'Fleeting');
  assert.deepEqual((await gateway.changed('fleeting')).value, { int32: 1 });
  server.remove('Fleeting');
  assert.match((await gateway.changed('fleeting')).error, /no such node/);
  assert.match((await write('Fleeting', { int32: 1 })).error, /BadNodeIdUnknown/);
  subscribe('late', 'Late');
  assert.match((await gateway.changed('late')).error, /no such node \(BadNodeIdUnknown\)/);
  subscribe('request', 'Request');
  assert.deepEqual((await gateway.changed('request')).value, { int32: 1 });
  server.add('Late', 'Int32', 6);
  server.add('Fleeting', 'Int32', 2);
  await Promise.all([gateway.changed('late'), gateway.changed('fleeting')]);
  server.set('Fleeting', 3);
  assert.deepEqual((await gateway.changed('fleeting')).value, { int32: 3 });
  server.set('Request', 2);
  assert.deepEqual((await gateway.changed('request')).value, { int32: 2 });
  const told = (id) => gateway.all('changed').filter((change) => change.id === id);
  assert.deepEqual(told('late').map(({ value }) => value), [undefined, { int32: 6 }]);
  const values = told('fleeting').map(({ value }) => value).filter((value) => value !== undefined);
  assert.deepEqual(values, [{ int32: 1 }, { int32: 2 }, { int32: 3 }]);
  assert.deepEqual(told('request').map(({ value }) => value), [{ int32: 1 }, { int32: 2 }]);
  server.remove('Fleeting');
  server.remove('Late');
});

test('a value that the server can not tell is an error until it can', async () => {
  server.set('Short', 1);
  subscribe(1, 'Short');
  assert.deepEqual((await gateway.changed(1)).value, { int32: 1 });
  server.setStatus('Short', 'BadOutOfService');
  assert.match((await gateway.changed(1)).error, /BadOutOfService/);
  server.set('Short', 2);
  assert.deepEqual((await gateway.changed(1)).value, { int32: 2 });
});

test('an item of a type that is no use is an error', async () => {
  subscribe(1, 'Moment');
  assert.match((await gateway.changed(1)).error, /DateTime can't be used/);
  subscribed.push(2);
  gateway.send({ subscribe: { id: 2, node: 'nonsense', rate: 100 } });
  assert.match((await gateway.changed(2)).error, /"nonsense" is no node id/);
  gateway.send({ subscribe: { id: 3, node: server.node('Request'), rate: 0 } });
  assert.match((await gateway.changed(3)).error, /wrong rate/);
});
