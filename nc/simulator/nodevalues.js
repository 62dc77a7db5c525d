// Values of the items and values of their nodes, whose types other makes choose otherwise.
import { joinHalves } from '../shared/int64.js';
import { fits } from './items.js';
import { DataType, Variant, VariantArrayType } from './opcua.js';

const BOUNDS = { Int16: [-(2 ** 15), 2 ** 15 - 1], UInt16: [0, 2 ** 16 - 1], UInt32: [0, 2 ** 32 - 1] };

/** The items' nodes: type by item. */
export class NodeValues {
  #integers;

  /** @param {string} [integers] the type of the nodes that usually are Int32 */
  constructor(integers = 'Int32') {
    this.#integers = integers;
  }

  /** Type of an item's node, by name. */
  typeOf(item) {
    return item.type === 'Int32' ? this.#integers : item.type;
  }

  /** A node's value for a value of its item; one that the node's type can't hold becomes 0. */
  toVariant(item, value) {
    const [least, most] = BOUNDS[this.typeOf(item)] ?? [-Infinity, Infinity];
    const held = [value].flat().map((each) => (each < least || each > most ? 0 : each));
    return new Variant({
      dataType: DataType[this.typeOf(item)],
      arrayType: item.size === undefined ? VariantArrayType.Scalar : VariantArrayType.Array,
      value: item.size === undefined ? held[0] : held,
    });
  }

  /** The item's value of what a client wrote; undefined if the item doesn't take it. */
  fromVariant(item, { dataType, arrayType, value }) {
    const isArray = arrayType === VariantArrayType.Array;
    const isOfKind = isArray === (item.size !== undefined) && arrayType !== VariantArrayType.Matrix;
    if (dataType !== DataType[this.typeOf(item)] || !isOfKind) {
      return undefined;
    }
    const plain = (each) => (Array.isArray(each) ? joinHalves(each, true) : each);
    const found = isArray ? Array.from(value ?? [], plain) : plain(value);
    return fits(item, found) ? found : undefined;
  }
}
