// Processes that tests start: each wait for them has an end, and they end with the tests, failed or not.
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import { readFileSync } from 'node:fs';
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

/** How long a process has waited for a processor so far, s; undefined when it has gone. */
function delayOf(pid) {
  try {
    return Number(readFileSync(`/proc/${pid}/schedstat`, 'utf8').split(' ')[1]) / 1e9;
  } catch {
    return undefined;
  }
}

/**
 * Time as a process could use it: what it promises in seconds it can't keep while others have the processor, so that
 * time doesn't count.
 */
export class Stopwatch {
  #pid;
  #start = performance.now();
  #delayAtStart;
  #delay;

  /** @param {number} [pid] of the process that is to keep a promise */
  constructor(pid = process.pid) {
    this.#pid = pid;
    this.#delay = this.#delayAtStart = delayOf(pid) ?? 0;
    setInterval(() => this.#look(), 20).unref(); // it may end meanwhile
  }

  #look() {
    this.#delay = delayOf(this.#pid) ?? this.#delay;
  }

  /** Seconds that the process could have used. */
  get usable() {
    this.#look();
    return this.passed - (this.#delay - this.#delayAtStart);
  }

  /** Seconds that have passed. */
  get passed() {
    return (performance.now() - this.#start) / 1000;
  }
}
