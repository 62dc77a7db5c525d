// Values on the socket and values of the server's nodes.
import { Refusal, badStatus } from './reasons.js';
import { joinHalves } from '../shared/int64.js';
import { DataType, Variant, VariantArrayType } from '../shared/opcua.js';

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

/** Characters. Lines of the socket are limited, and each may take six of theirs there. */
const LONGEST_TEXT = 10000;

/** Numbers: as many as a line takes, whatever they are. */
const LONGEST_ARRAY = 5000;

const isInt32 = (value) => Number.isInteger(value) && value >= INT32.lowest && value <= INT32.highest;

const KINDS = {
  int32: { isValid: isInt32, usualType: DataType.Int32 },
  double: { isValid: Number.isFinite, usualType: DataType.Double },
  string: { isValid: (value) => typeof value === 'string', usualType: DataType.String },
  int32s: { isValid: (value) => Array.isArray(value) && value.every(isInt32), usualType: DataType.Int32 },
};

const brief = (value) => String(JSON.stringify(value)).slice(0, 40);

/** The kind of a typed value of the socket, and the bare value. Throws a Refusal if it isn't one. */
function unpack(typed) {
  const [kind, ...others] = Object.keys(typed ?? {});
  if (!Object.hasOwn(KINDS, kind ?? '') || others.length > 0) {
    throw new Refusal('a value must be typed: int32, double, string or int32s');
  }
  if (!KINDS[kind].isValid(typed[kind])) {
    throw new Refusal(`${brief(typed[kind])} is no ${kind}`);
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
  throw new Refusal(`${value} does not fit the node's type ${DataType[type]}`, 'DoesNotFit');
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
  throw new Refusal(`${brief(value)} does not fit the node's type ${DataType[dataType]}`, 'DoesNotFit');
}

function toInteger(value, type) {
  if (type === DataType.Boolean) {
    return value ? 1 : 0;
  }
  return Array.isArray(value) ? joinHalves(value, type === DataType.Int64) : value;
}

/**
 * @param {import('node-opcua-client').DataValue} dataValue what a node holds
 * @returns {object} typed value of the socket
 * @throws {Refusal} if there is none for it
 */
export function typedOf({ statusCode, value }) {
  if (statusCode.isBad()) {
    throw badStatus(statusCode);
  }
  return toTyped(value);
}

/**
 * @param {import('node-opcua-client').Variant} variant a node's value
 * @returns {object} typed value of the socket
 * @throws {Refusal} if there is none for it; tells the type
 */
export function toTyped(variant) {
  const { dataType, arrayType, value } = variant;
  const isScalar = arrayType === VariantArrayType.Scalar;
  const isInteger = INTEGER_TYPES.has(dataType);
  if (isScalar && isInteger) {
    const number = toInteger(value, dataType);
    return isInt32(number) ? { int32: number } : { double: number };
  }
  if (isScalar && FLOATING_TYPES.has(dataType)) {
    if (!Number.isFinite(value)) {
      throw new Refusal(`the node's value is ${value}`);
    }
    return { double: value };
  }
  if (isScalar && dataType === DataType.String && value !== null) {
    if (value.length > LONGEST_TEXT) {
      throw new Refusal(`a text of ${value.length} characters can't be used: ${LONGEST_TEXT} are the most`);
    }
    return { string: value };
  }
  if (arrayType === VariantArrayType.Array && isInteger) {
    if (value.length > LONGEST_ARRAY) {
      throw new Refusal(`an array of ${value.length} numbers can't be used: ${LONGEST_ARRAY} are the most`);
    }
    const numbers = Array.from(value, (element) => toInteger(element, dataType));
    if (numbers.every(isInt32)) {
      return { int32s: numbers };
    }
  }
  if (dataType === DataType.Null || value === null) {
    throw new Refusal('the node holds no value');
  }
  throw new Refusal(`a value of type ${DataType[dataType]}${isScalar ? '' : ' array'} can't be used`);
}
