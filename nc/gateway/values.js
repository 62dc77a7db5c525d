// Values as they stand on the local socket, {"int32": 5} and the like, and as OPC UA carries them.
import { DataType, Variant, VariantArrayType } from '../shared/opcua.js';

/** Integer types of OPC UA that a number without fraction can be written as, with their limits. */
const INTEGERS = new Map([
  [DataType.SByte, [-128, 127]],
  [DataType.Byte, [0, 255]],
  [DataType.Int16, [-32768, 32767]],
  [DataType.UInt16, [0, 65535]],
  [DataType.Int32, [-2147483648, 2147483647]],
  [DataType.UInt32, [0, 4294967295]],
]);
const WIDE_INTEGERS = new Set([DataType.Int64, DataType.UInt64]);
const [LOWEST, HIGHEST] = INTEGERS.get(DataType.Int32);

function isInt32(value) {
  return Number.isInteger(value) && value >= LOWEST && value <= HIGHEST;
}

function checkInt32(value) {
  if (!isInt32(value)) {
    throw new Error(`${JSON.stringify(value)} is no 32-bit integer`);
  }
  return value;
}

/** An integer as that type; any type that isn't one for integers gets it as Int32, and the server judges. */
function toInteger(value, type) {
  const limits = INTEGERS.get(type);
  if (!limits) {
    return { dataType: DataType.Int32, value };
  }
  if (value < limits[0] || value > limits[1]) {
    throw new Error(`${value} does not fit the node's type ${DataType[type]}`);
  }
  return { dataType: type, value };
}

/**
 * A value of the socket as a Variant.
 * @param {object} typed {"int32": 5}, {"double": 2.5}, {"string": "x"} or {"int32s": [1, 2]}
 * @param {number | null} type DataType of the node, null if not known; integers take it
 * @throws if the value isn't typed as above, or doesn't fit the node's type
 */
export function toVariant(typed, type) {
  const [[kind, value]] = Object.entries(typed ?? {}).concat([[undefined, undefined]]);
  switch (kind) {
    case 'int32':
      return new Variant(toInteger(checkInt32(value), type));
    case 'int32s': {
      if (!Array.isArray(value)) {
        throw new Error('int32s must be an array');
      }
      const elements = value.map((element) => toInteger(checkInt32(element), type));
      return new Variant({
        arrayType: VariantArrayType.Array,
        dataType: elements[0]?.dataType ?? DataType.Int32,
        value: elements.map((element) => element.value),
      });
    }
    case 'double':
      return new Variant({ dataType: type === DataType.Float ? type : DataType.Double, value: Number(value) });
    case 'string':
      return new Variant({ dataType: DataType.String, value: String(value) });
    default:
      throw new Error('a value must be typed: int32, double, string or int32s');
  }
}

/** 64-bit integers come as a pair of words. */
function wideToNumber([high, low], type) {
  const number = BigInt(high) * 4294967296n + BigInt(low);
  return Number(type === DataType.Int64 ? BigInt.asIntN(64, number) : number);
}

function toNumber(value, type) {
  if (type === DataType.Boolean) {
    return value ? 1 : 0;
  }
  return WIDE_INTEGERS.has(type) && Array.isArray(value) ? wideToNumber(value, type) : Number(value);
}

function isIntegerType(type) {
  return type === DataType.Boolean || INTEGERS.has(type) || WIDE_INTEGERS.has(type);
}

/**
 * A Variant as a value of the socket.
 * @throws if it is of another type than numbers, Booleans, texts, and arrays of integers
 */
export function fromVariant(variant) {
  const { dataType, arrayType, value } = variant ?? {};
  if (value !== null && value !== undefined) {
    if (arrayType === VariantArrayType.Array && isIntegerType(dataType)) {
      const numbers = Array.from(value, (element) => toNumber(element, dataType));
      if (numbers.every(isInt32)) {
        return { int32s: numbers };
      }
    } else if (arrayType === VariantArrayType.Scalar) {
      if (isIntegerType(dataType)) {
        const number = toNumber(value, dataType);
        return isInt32(number) ? { int32: number } : { double: number };
      }
      if (dataType === DataType.Double || dataType === DataType.Float) {
        return { double: value };
      }
      if (dataType === DataType.String) {
        return { string: value };
      }
    }
  }
  const shape = arrayType === VariantArrayType.Scalar || arrayType === undefined ? '' : ' array';
  throw new Error(`a value of type ${DataType[dataType ?? DataType.Null]}${shape} can't be used`);
}
