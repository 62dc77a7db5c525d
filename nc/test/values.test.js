// Typed values of the socket and values of nodes: the limits of each type.
import assert from 'node:assert/strict';
import { test } from 'node:test';
import { toTyped, toVariant } from '../gateway/values.js';
import { DataType, Variant, VariantArrayType } from '../shared/opcua.js';

const node = (type, value, arrayType = VariantArrayType.Scalar) =>
  new Variant({ dataType: DataType[type], arrayType, value });

test('an int32 becomes each integer type up to its limits, and nothing beyond', () => {
  const limits = {
    SByte: [-128, 127],
    Byte: [0, 255],
    Int16: [-32768, 32767],
    UInt16: [0, 65535],
    Int32: [-2147483648, 2147483647],
  };
  for (const [type, [lowest, highest]] of Object.entries(limits)) {
    for (const value of [lowest, highest]) {
      const variant = toVariant({ int32: value }, DataType[type]);
      assert.equal(variant.dataType, DataType[type]);
      assert.equal(variant.value, value);
    }
    for (const value of [lowest - 1, highest + 1]) {
      assert.throws(() => toVariant({ int32: value }, DataType[type]), { message: new RegExp(`^${value} `) });
    }
  }
  for (const type of ['UInt32', 'UInt64']) {
    const refused = new RegExp(`-1 does not fit the node's type ${type}`);
    assert.throws(() => toVariant({ int32: -1 }, DataType[type]), refused);
    assert.deepEqual(toTyped(toVariant({ int32: 2147483647 }, DataType[type])), { int32: 2147483647 });
  }
  for (const value of [-2147483648, -1, 0, 2147483647]) {
    assert.deepEqual(toTyped(toVariant({ int32: value }, DataType.Int64)), { int32: value });
  }
});

test('an int32 becomes a truth value if it is one, and a floating one if that holds it', () => {
  assert.equal(toVariant({ int32: 0 }, DataType.Boolean).value, false);
  assert.equal(toVariant({ int32: 1 }, DataType.Boolean).value, true);
  assert.throws(() => toVariant({ int32: 2 }, DataType.Boolean), /2 does not fit the node's type Boolean/);
  assert.equal(toVariant({ int32: -7 }, DataType.Double).value, -7);
  assert.equal(toVariant({ int32: 16777216 }, DataType.Float).value, 16777216);
  assert.throws(() => toVariant({ int32: 16777217 }, DataType.Float), /does not fit/); // would be rounded
  assert.throws(() => toVariant({ int32: 1 }, DataType.DateTime), /does not fit the node's type DateTime/);
});

test('without a type of the node the usual one is taken', () => {
  assert.equal(toVariant({ int32: 1 }).dataType, DataType.Int32);
  assert.equal(toVariant({ double: 1 }).dataType, DataType.Double);
  assert.equal(toVariant({ string: '1' }).dataType, DataType.String);
  const array = toVariant({ int32s: [] });
  assert.equal(array.dataType, DataType.Int32);
  assert.equal(array.arrayType, VariantArrayType.Array);
});

test('a double becomes a floating type that holds it', () => {
  assert.equal(toVariant({ double: 1e300 }, DataType.Double).value, 1e300);
  assert.equal(toVariant({ double: 0.5 }, DataType.Float).value, 0.5);
  assert.throws(() => toVariant({ double: 1e300 }, DataType.Float), /1e\+300 does not fit the node's type Float/);
  assert.throws(() => toVariant({ double: 1 }, DataType.Int32), /does not fit/);
  assert.throws(() => toVariant({ double: '1' }, DataType.Double), /"1" is no double/);
  assert.throws(() => toVariant({ double: null }, DataType.Double), /null is no double/);
});

test('a text becomes a text only, and is cut short in an error', () => {
  assert.equal(toVariant({ string: '' }, DataType.String).value, '');
  assert.throws(() => toVariant({ string: 'x'.repeat(1000) }, DataType.Int32), { message: /^"x{39} does not fit/ });
});

test('what is no typed value is refused', () => {
  for (const typed of [null, undefined, {}, { int32: 1, double: 1 }, { toString: 1 }, { int64: 1 }]) {
    assert.throws(() => toVariant(typed, DataType.Int32), /must be typed/);
  }
  for (const typed of [{ int32: '1' }, { int32: 1.5 }, { int32: true }, { int32s: 1 }, { int32s: [1, '2'] }]) {
    assert.throws(() => toVariant(typed, DataType.Int32), /is no int32/);
  }
});

test('values of nodes become typed values', () => {
  assert.deepEqual(toTyped(node('Boolean', true)), { int32: 1 });
  assert.deepEqual(toTyped(node('Byte', 255)), { int32: 255 });
  assert.deepEqual(toTyped(node('UInt32', 2147483648)), { double: 2147483648 });
  assert.deepEqual(toTyped(node('Int64', [-1, 4294967295])), { int32: -1 });
  assert.deepEqual(toTyped(node('Int64', [1, 0])), { double: 4294967296 });
  assert.deepEqual(toTyped(node('Int64', [0x80000000, 0])), { double: -(2 ** 63) });
  assert.deepEqual(toTyped(node('UInt64', [0, 5])), { int32: 5 });
  assert.deepEqual(toTyped(node('UInt64', [4294967295, 4294967295])), { double: 2 ** 64 });
  assert.deepEqual(toTyped(node('Float', 0.5)), { double: 0.5 });
  assert.deepEqual(toTyped(node('String', 'x')), { string: 'x' });
  assert.deepEqual(toTyped(node('Int16', [1, -2], VariantArrayType.Array)), { int32s: [1, -2] });
});

test('values of nodes that can not be used are an error that tells the type', () => {
  assert.throws(() => toTyped(node('Double', NaN)), /value is NaN/);
  assert.throws(() => toTyped(node('Double', Infinity)), /value is Infinity/);
  assert.throws(() => toTyped(new Variant()), /holds no value/);
  assert.throws(() => toTyped(node('String', null)), /holds no value/);
  assert.throws(() => toTyped(node('DateTime', new Date(0))), /DateTime can't be used/);
  assert.throws(() => toTyped(node('Double', [1, 2], VariantArrayType.Array)), /Double array can't be used/);
  assert.throws(() => toTyped(node('UInt32', [2147483648], VariantArrayType.Array)), /UInt32 array can't be used/);
});
