// Processes that tests start: each wait for them has an end, and they end with the tests, failed or not.
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import { after } from 'node:test';
import { within } from '../../shared/timing.js';

/**
 * For whatever must come at all, ms. On a quiet machine the longest, a program that loads the library and makes itself
 * a key, takes 3 s; on one with twenty others at work it has taken more than a minute.
 */
export const PATIENCE = 240000;

const running = new Set();

// A child that is left would keep the test program from ending, and what it has found from being told.
after(() => running.forEach((child) => child.kill('SIGKILL')));
process.on('exit', () => running.forEach((child) => child.kill('SIGKILL')));

/** Starts a program as child_process.spawn() does. `ended` of the child is a promise of its status or signal. */
export function start(program, args, options) {
  const child = spawn(program, args, options);
  running.add(child);
  child.ended = once(child, 'close').then(([status, signal]) => {
    running.delete(child);
    return signal ?? status;
  });
  return child;
}

/**
 * Waits for the end of a child.
 * @returns {Promise<number | string>} status or signal; 'SIGKILL' if it had to be killed, which fails most expectations
 */
export async function finish(child) {
  try {
    return await within(child.ended, PATIENCE);
  } catch {
    child.kill('SIGKILL');
    return await child.ended;
  }
}

/**
 * Time as this machine could use it: counts only the moments in which a timer was served. What a program promises in
 * seconds it can't keep while others have the processor.
 */
export class Stopwatch {
  #ticks = 0;
  #start = performance.now();

  constructor() {
    setInterval(() => ++this.#ticks, 20).unref();
  }

  /** Seconds in which this process could have worked, at most the time that has passed. */
  get usable() {
    return (this.#ticks * 20) / 1000;
  }

  /** Seconds that have passed. */
  get passed() {
    return (performance.now() - this.#start) / 1000;
  }
}
