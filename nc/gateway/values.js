// Values on the socket and values of the server's nodes.
import opcua from './opcua.js';
import { Refusal } from './reasons.js';

const { DataType, Variant, VariantArrayType } = opcua;

const INT32 = { lowest: -(2 ** 31), highest: 2 ** 31 - 1 };

// What an int32 may become. Its bounds are enough for the wider types.
const INTEGER_TYPES = new Map([
  [DataType.SByte, { lowest: -128, highest: 127 }],
  [DataType.Byte, { lowest: 0, highest: 255 }],
  [DataType.Int16, { lowest: -32768, highest: 32767 }],
  [DataType.UInt16, { lowest: 0, highest: 65535 }],
  [DataType.Int32, INT32],
  [DataType.UInt32, { lowest: 0, highest: INT32.highest }],
  [DataType.Int64, INT32],
  [DataType.UInt64, { lowest: 0, highest: INT32.highest }],
  [DataType.Boolean, { lowest: 0, highest: 1 }],
]);
const FLOATING_TYPES = new Map([
  [DataType.Float, 3.4028234663852886e38],
  [DataType.Double, Number.MAX_VALUE],
]);

const isInt32 = (value) => Number.isInteger(value) && value >= INT32.lowest && value <= INT32.highest;

const KINDS = {
  int32: { isValid: isInt32, usualType: DataType.Int32 },
  double: { isValid: Number.isFinite, usualType: DataType.Double },
  string: { isValid: (value) => typeof value === 'string', usualType: DataType.String },
  int32s: { isValid: (value) => Array.isArray(value) && value.every(isInt32), usualType: DataType.Int32 },
};

/** The kind of a typed value of the socket, and the bare value. Throws a Refusal if it isn't one. */
function unpack(typed) {
  const [kind, ...others] = Object.keys(typed ?? {});
  if (!Object.hasOwn(KINDS, kind ?? '') || others.length > 0 || !KINDS[kind].isValid(typed[kind])) {
    throw new Refusal('no typed value');
  }
  return { kind, value: typed[kind] };
}

function convertInteger(value, type) {
  const bounds = INTEGER_TYPES.get(type);
  if (bounds && value >= bounds.lowest && value <= bounds.highest) {
    return type === DataType.Boolean ? value === 1 : value;
  }
  // Each int32 is a Double exactly, and a Float if it survives the rounding.
  if (type === DataType.Double || (type === DataType.Float && Math.fround(value) === value)) {
    return value;
  }
  throw new Refusal(`${value} doesn't fit the node's type ${DataType[type]}`);
}

/**
 * @param {object} typed value of the socket
 * @param {number | undefined} type DataType of the node, undefined if the server doesn't tell
 * @returns {import('node-opcua-client').Variant} of the node's type
 * @throws {Refusal} if the value isn't one, or doesn't fit the type; tells value and type
 */
export function toVariant(typed, type) {
  const { kind, value } = unpack(typed);
  const dataType = type ?? KINDS[kind].usualType;
  switch (kind) {
    case 'int32':
      return new Variant({ dataType, value: convertInteger(value, dataType) });
    case 'int32s': {
      const values = value.map((element) => convertInteger(element, dataType));
      return new Variant({ dataType, arrayType: VariantArrayType.Array, value: values });
    }
    case 'double':
      if (Math.abs(value) <= FLOATING_TYPES.get(dataType)) {
        return new Variant({ dataType, value });
      }
      break;
    default:
      if (dataType === DataType.String) {
        return new Variant({ dataType, value });
      }
  }
  throw new Refusal(`${JSON.stringify(value).slice(0, 40)} doesn't fit the node's type ${DataType[dataType]}`);
}

/** The number of an Int64 or UInt64, which the library holds as two halves. Only small ones are needed exactly. */
const joinHalves = ([high, low], isSigned) => (isSigned ? high | 0 : high >>> 0) * 2 ** 32 + (low >>> 0);

/**
 * @param {import('node-opcua-client').Variant} variant a node's value
 * @returns {{int32: number} | {double: number}}
 * @throws {Refusal} if it is anything but one number
 */
export function toTyped(variant) {
  const { dataType, arrayType, value } = variant;
  const name = DataType[dataType];
  if (arrayType !== VariantArrayType.Scalar) {
    throw new Refusal(`the node holds an array of ${name}, not a number`);
  }
  if (dataType === DataType.Boolean) {
    return { int32: value ? 1 : 0 };
  }
  if (INTEGER_TYPES.has(dataType)) {
    const number = Array.isArray(value) ? joinHalves(value, dataType === DataType.Int64) : value;
    if (!isInt32(number)) {
      throw new Refusal(`the node's value ${number} of type ${name} doesn't fit an int32`);
    }
    return { int32: number };
  }
  if (FLOATING_TYPES.has(dataType)) {
    if (!Number.isFinite(value)) {
      throw new Refusal(`the node's value is ${value}`);
    }
    return { double: value };
  }
  throw new Refusal(dataType === DataType.Null ? 'the node holds no value' : `the node holds a ${name}, not a number`);
}
