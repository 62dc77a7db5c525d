import { setTimeout as sleep } from 'node:timers/promises';
import { Action, decode } from './notification.js';

/** Requests of the NC. */
export const Request = Object.freeze({ prebalance: 1, rebalance: 2, next: 3, end: 4 });

const DONE = 0;
const REFUSED = -1;

/** Times of the interface, ms. */
export const TIMES = Object.freeze({
  /** An answer usually takes some tenths of a second. */
  answer: 10000,
  /** The module looks at its request item every 100 ms: each value must stand longer for it to see the change. */
  valueStands: 300,
  /** After an answer the notification that goes with it is there, but for a connection just made again. */
  again: 2000,
  /** A module that says nothing at all for so long is gone. */
  silence: 120000,
  /** Settling, and the averaging times that can be configured. */
  settling: 3000,
  shortestAverage: 1500,
  longestAverage: 15000,
  /** Lock after a change of speed, and what the way of the values adds. */
  slack: 1000,
});

/** The NC's end of the items: requests with their answers, notifications and warnings as they change. */
export class ModuleInterface {
  #items;
  #say;
  #times;
  #wakers = new Set();
  #lastSign = performance.now();
  #shown;
  #warning;
  #number = 0;
  #changes = 0;
  #measureBegan;
  #longestMeasurement = 0;

  /**
   * @param {{read: (key: string) => any, write: (key: string, value: any) => void, on: Function}} items
   * @param {(text: string) => void} say
   * @param {typeof TIMES} times
   */
  constructor(items, say, times) {
    this.#items = items;
    this.#say = say;
    this.#times = times;
    this.#shown = items.read('Notification');
    this.#warning = items.read('Warning');
    items.on('changed', (key, value) => this.#onChanged(key, value));
  }

  #onChanged(key, value) {
    this.sign();
    if (key === 'Notification' && value.join() !== this.#shown.join()) {
      this.#timeMeasurement(decode(this.#shown), decode(value));
      this.#shown = value;
      ++this.#number;
      ++this.#changes;
    } else if (key === 'Warning' && value !== this.#warning) {
      this.#warning = value;
      ++this.#changes;
    }
    [...this.#wakers].forEach((wake) => wake());
  }

  #timeMeasurement(before, after) {
    const isMeasuring = ({ isRunning, action }) => isRunning && action === Action.measure;
    if (isMeasuring(after) && !isMeasuring(before)) {
      this.#measureBegan = performance.now();
    } else if (isMeasuring(before) && after.isRunning && after.action === Action.measurementValuesOK) {
      this.#longestMeasurement = Math.max(this.#longestMeasurement, performance.now() - this.#measureBegan);
    }
  }

  /** The present notification; number grows with each one that differs from the one before. */
  get notification() {
    return { ...decode(this.#shown), number: this.#number };
  }

  get warning() {
    return this.#warning;
  }

  /** Grows with every change of notification or warning. */
  get changes() {
    return this.#changes;
  }

  /**
   * How long a verdict has to stand until it is one over a complete average, even if the measurement began anew
   * meanwhile. The module doesn't tell its averaging time, but measurements of the same run have shown it.
   */
  get timeOfMeasurement() {
    const { settling, shortestAverage, longestAverage, slack } = this.#times;
    const measured = this.#longestMeasurement || settling + longestAverage;
    return Math.max(measured, settling + shortestAverage) + slack;
  }

  /** Something has moved: the module isn't silent. */
  sign() {
    this.#lastSign = performance.now();
  }

  get isSilent() {
    return performance.now() - this.#lastSign > this.#times.silence;
  }

  /** Waits until a client's write makes the predicate true. False if it didn't within the time. */
  until(predicate, time) {
    if (predicate()) {
      return Promise.resolve(true);
    }
    return new Promise((resolve) => {
      const finish = (result) => {
        clearTimeout(timer);
        this.#wakers.delete(wake);
        resolve(result);
      };
      const wake = () => predicate() && finish(true);
      const timer = setTimeout(() => finish(false), time);
      this.#wakers.add(wake);
    });
  }

  #isAnswered() {
    return [DONE, REFUSED].includes(this.#items.read('Request'));
  }

  /**
   * Writes a request once the item shows the answer to the last one, and waits for the answer. Without one the request
   * stands, for a module whose connection is lost: it is told the request, or gives the answer that was lost, when
   * the connection is back.
   * @param {number} request
   * @param {() => boolean} [isWanted] still, when the last one is answered
   * @returns {Promise<'done' | 'refused' | 'overtaken' | 'silent'>} overtaken: no answer came, but the module has gone
   *   on, by the request or by a key at the panel; the request has been taken back
   */
  async ask(request, isWanted = () => true) {
    while (!(await this.until(() => this.#isAnswered(), this.#times.answer))) {
      this.#say(`request ${this.#items.read('Request')} isn't answered yet; request ${request} has to wait`);
      if (this.isSilent) {
        return 'silent';
      }
    }
    if (!isWanted()) {
      return 'overtaken';
    }
    const before = this.#number;
    this.#items.write('Request', request);
    while (!(await this.until(() => this.#isAnswered(), this.#times.answer))) {
      const seconds = this.#times.answer / 1000;
      if (this.#number !== before) {
        this.#say(`no answer to request ${request} within ${seconds} s, but the module has gone on`);
        await this.#write(DONE);
        return 'overtaken';
      }
      if (this.isSilent) {
        await this.#write(DONE);
        return 'silent';
      }
      this.#say(`no answer to request ${request} within ${seconds} s; it stands, the connection may come back`);
    }
    const answer = this.#items.read('Request');
    await sleep(this.#times.valueStands);
    return answer === REFUSED ? 'refused' : 'done';
  }

  async #write(value) {
    this.#items.write('Request', value);
    await sleep(this.#times.valueStands);
  }
}
