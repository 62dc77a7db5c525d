import { NOTIFICATION_SIZE } from './items.js';

/** Steps of a notification, by number. */
export const Step = Object.freeze({
  inactive: 0,
  parameter: 1,
  parameterWithReBal: 2,
  setup: 3,
  reBalActive: 4,
  failure: 5,
  setupAborted: 6,
  setupSuccess: 7,
  rebalSuccess: 8,
  setupOverTarget: 9,
  rebalOverTarget: 10,
});

/** Actions of a notification, by number. */
export const Action = Object.freeze({
  none: 0,
  setSpindleSpeed: 1,
  spindleStart: 2,
  spindleStop: 3,
  setWeights: 4,
  measure: 5,
  measurementValuesOK: 6,
});

/** Warnings that a part program looks at. */
export const Warning = Object.freeze({
  none: 0,
  wrongSpeed: 2,
  outOfLock: 3,
  wrongSpeedAndOutOfLock: 4,
  overTarget: 8,
});

const STEP_WORDS = [
  'inactive',
  'ready, not calibrated',
  'ready, calibrated',
  'pre-balancing',
  're-balancing',
  'failed',
  'aborted',
  'within the target',
  'within the target',
  'over the target',
  'over the target',
];

const ACTION_WORDS = [
  'wait',
  'set the spindle speed',
  'start the spindle',
  'stop the spindle',
  'set the weights',
  'measuring',
  'measurement complete',
];

const CORRECTIONS = 3;

/**
 * What a plane's columns of a notification ask for. A method with weights reports them all as -1, unused angles
 * too; one with screws reports an unused screw as angle -1, weight 0. Columns that nobody has filled hold zeros.
 * @typedef {{kind: 'none'}
 *   | {kind: 'weights', angles: number[]}
 *   | {kind: 'screws', screws: {angle: number, grams: number}[]}} Fitting
 */

/** @param {number[]} columns angle and weight in turn, @returns {Fitting} */
function fittingOf(columns) {
  if (columns.every((value) => value === 0)) {
    return { kind: 'none' };
  }
  const pairs = Array.from({ length: CORRECTIONS }, (_, place) => columns.slice(2 * place, 2 * place + 2));
  const used = pairs.filter(([angle]) => angle >= 0);
  if (pairs.every(([, weight]) => weight < 0)) {
    return { kind: 'weights', angles: used.map(([angle]) => angle) };
  }
  return { kind: 'screws', screws: used.map(([angle, weight]) => ({ angle, grams: weight / 100 })) };
}

/**
 * Takes a notification apart.
 * @param {number[]} values the 14 of the item
 */
export function decode(values) {
  const [step, action] = values;
  const half = (NOTIFICATION_SIZE - 2) / 2;
  return {
    step,
    action,
    planes: [fittingOf(values.slice(2, 2 + half)), fittingOf(values.slice(2 + half))],
    isReady: step === Step.parameter || step === Step.parameterWithReBal,
    isRunning: step === Step.setup || step === Step.reBalActive,
    isVerdict: step >= Step.setupSuccess && step <= Step.rebalOverTarget,
    isOverTarget: step === Step.setupOverTarget || step === Step.rebalOverTarget,
  };
}

function describeFitting(fitting, plane) {
  switch (fitting.kind) {
    case 'weights':
      return [`weights ${plane} at ${fitting.angles.map((angle) => `${angle}°`).join(', ')}`];
    case 'screws':
      return [
        `screws ${plane} ${fitting.screws.map(({ angle, grams }) => `${grams} g at ${angle}°`).join(', ') || 'none'}`,
      ];
    default:
      return [];
  }
}

/** A notification in words. */
export function describeNotification(values) {
  const { step, action, planes, isRunning } = decode(values);
  const words = [STEP_WORDS[step] ?? `step ${step}`];
  if (isRunning) {
    words.push(ACTION_WORDS[action] ?? `action ${action}`);
  }
  const details = action === Action.setWeights ? planes.flatMap((fitting, index) => describeFitting(fitting, index + 1)) : [];
  return `${words.join(': ')}${details.length > 0 ? ` (${details.join('; ')})` : ''}`;
}

/** What a client has written into an item, in words. */
export function describeChange(key, value) {
  switch (key) {
    case 'Notification':
      return describeNotification(value);
    case 'Warning':
      return value === Warning.none ? 'no warning' : `warning ${value}`;
    case 'Request':
      return value === 0 ? 'request answered: done' : value === -1 ? 'request answered: refused' : `request ${value}`;
    default:
      return `${key} ${value}`;
  }
}
