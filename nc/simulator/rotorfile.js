import { readFileSync } from 'node:fs';

const FIELDS = [
  'modules',
  'rotation',
  'speed_rpm',
  'ramp_rpm_per_s',
  'planes',
  'influence',
  'noise_counts',
  'scale',
  'holes',
  'seed',
  'swap',
  'report_period_ms',
];
const PLANES = 2;
const DEFAULT_HOLES = 12;
const MAX_HOLES = 360;
const DEFAULT_SPEED = 3000;

/** Takes comments out; texts stay as they are, slashes in them included. */
const stripComments = (text) =>
  text.replace(/"(?:[^"\\]|\\.)*"|\/\/[^\n]*|\/\*[\s\S]*?\*\//g, (match) => (match[0] === '"' ? match : ' '));

const isWhole = (value, least, most) => Number.isInteger(value) && value >= least && value <= most;

function listOf(rotor, name, isGood, kind) {
  const list = rotor[name] ?? [];
  if (!Array.isArray(list) || list.length > PLANES || (name in rotor && list.length === 0)) {
    throw new Error(`${name} must be an array of 1 to ${PLANES}`);
  }
  list.forEach((value, place) => {
    if (!isGood(value)) {
      throw new Error(`${name}[${place}] must be ${kind}`);
    }
  });
  return list;
}

/**
 * What a part program has to know of the rotor.
 * @typedef {object} Rotor
 * @property {number} speed working speed, rpm
 * @property {{holes: number, counterClockwise: boolean}[]} rings per plane: number of holes, sense of the scale
 */

/**
 * @param {string} text a rotor file: JSON with comments
 * @returns {Rotor}
 * @throws {Error} that names the field
 */
export function parseRotor(text) {
  let rotor;
  try {
    rotor = JSON.parse(stripComments(text));
  } catch (error) {
    throw new Error(`not valid JSON: ${error.message}`);
  }
  if (typeof rotor !== 'object' || rotor === null || Array.isArray(rotor)) {
    throw new Error('the whole must be an object');
  }
  const unknown = Object.keys(rotor).find((name) => !FIELDS.includes(name));
  if (unknown !== undefined) {
    throw new Error(`unknown field "${unknown}", known here: ${FIELDS.join(', ')}`);
  }
  const speed = rotor.speed_rpm ?? DEFAULT_SPEED;
  if (!(typeof speed === 'number' && speed >= 60 && speed <= 65535)) {
    throw new Error('speed_rpm must be a number from 60 to 65535');
  }
  const scales = listOf(rotor, 'scale', (value) => ['cw', 'ccw'].includes(value), 'cw or ccw');
  const holes = listOf(rotor, 'holes', (value) => isWhole(value, 1, MAX_HOLES), `a whole number from 1 to ${MAX_HOLES}`);
  const rings = Array.from({ length: PLANES }, (_, plane) => ({
    holes: holes[plane] ?? DEFAULT_HOLES,
    counterClockwise: scales[plane] === 'ccw',
  }));
  return { speed, rings };
}

/**
 * @param {string} [path] without one the built-in rotor
 * @returns {Rotor}
 */
export function readRotorFile(path) {
  if (path === undefined) {
    return parseRotor('{}');
  }
  let text;
  try {
    text = readFileSync(path, 'utf8');
  } catch {
    throw new Error(`${path}: can't be read; give the path of a rotor file`);
  }
  try {
    return parseRotor(text);
  } catch (error) {
    throw new Error(`${path}: ${error.message}`);
  }
}
