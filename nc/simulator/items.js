/**
 * The items of the interface between NC and module: key, kind of value, meaning. The keys are the names of the
 * variables; node ids are made of them.
 */

/** Values of a notification: step, action, and angle and weight of three corrections in each of two planes. */
export const NOTIFICATION_SIZE = 14;

/**
 * A wish of the NC has no value until somebody writes one: zero would be a test weight of nothing.
 * @typedef {{key: string, type: 'Int32' | 'Double' | 'String', size?: number, isWish?: boolean, description: string}} Item
 */

/** @type {readonly Item[]} */
export const ITEMS = Object.freeze([
  {
    key: 'Request',
    type: 'Int32',
    description:
      'NC to module: 1 start pre-balancing, 2 start re-balancing, 3 next step, 4 end. Answer: 0 done, -1 refused.',
  },
  {
    key: 'Notification',
    type: 'Int32',
    size: NOTIFICATION_SIZE,
    description: 'Module to NC: step, action, then angle and weight of three corrections in plane 1 and in plane 2.',
  },
  { key: 'Warning', type: 'Int32', description: 'Module to NC: number of the warning, 0 none.' },
  {
    key: 'TestWeight',
    type: 'Double',
    isWish: true,
    description: 'NC to module: the test screw is to weigh this, grams.',
  },
  {
    key: 'TargetUnbalance',
    type: 'Double',
    isWish: true,
    description: 'NC to module: target of the balancing, within the limits of the page.',
  },
  {
    key: 'RotationDirection',
    type: 'Int32',
    isWish: true,
    description: 'NC to module: 0 clockwise, 1 counter-clockwise.',
  },
  {
    key: 'RotorName',
    type: 'String',
    isWish: true,
    description: "NC to console: the rotor's name, under which the runs are kept. Written before the request.",
  },
]);

/** What an item holds before anybody has written it; undefined for nothing. */
export function initialValue(item) {
  if (item.isWish) {
    return undefined;
  }
  return item.size === undefined ? 0 : new Array(item.size).fill(0);
}

const MAX_INT32 = 2 ** 31 - 1;
const isInt32 = (value) => Number.isInteger(value) && value >= -MAX_INT32 - 1 && value <= MAX_INT32;

/** Whether an item can hold a value. */
export function fits(item, value) {
  if (item.size !== undefined) {
    return Array.isArray(value) && value.length === item.size && value.every(isInt32);
  }
  if (item.type === 'String') {
    return typeof value === 'string';
  }
  return item.type === 'Double' ? Number.isFinite(value) : isInt32(value);
}

/** What a value of an item looks like, for messages. */
export function describeKind(item) {
  if (item.size !== undefined) {
    return `an array of ${item.size} whole numbers`;
  }
  return { Double: 'a number', String: 'a text' }[item.type] ?? 'a whole number';
}

/** The item of a key; undefined if there is none. */
export const findItem = (key) => ITEMS.find((item) => item.key === key);
