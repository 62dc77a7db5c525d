// The module's side of the interface, played from a script of notifications.
import { EventEmitter } from 'node:events';

/** The items without a server: what the NC writes is emitted as 'written', what the client writes as 'changed'. */
export class FakeItems extends EventEmitter {
  #values = { Request: 0, Notification: new Array(14).fill(0), Warning: 0, TestWeight: 0 };

  read(key) {
    return this.#values[key];
  }

  write(key, value) {
    this.#values[key] = value;
    this.emit('written', key, value);
  }

  client(key, value) {
    this.#values[key] = value;
    this.emit('changed', key, value);
  }
}

/** Values of a notification; what is left out of the columns wasn't filled. */
export const notification = (step, action = 0, columns = []) =>
  Object.assign(new Array(14).fill(0), [step, action, ...columns]);

/**
 * Plays a script: an array of moves. A move is what has to happen, and what the module writes then:
 *   {on: 1..4, ...}        the NC writes this request; it is answered after everything else was written
 *   {on: 'stands', ...}    the spindle stands
 *   {on: 'turns', ...}     the spindle turns
 *   {on: 'soon', ...}      a moment later
 *   {warning, notify, answer, then}   writes, in this order; answer null gives none; then() is called last
 */
export class FakeModule {
  requests = [];
  unexpected = [];
  #items;
  #script;
  #place = 0;

  constructor(items, machine, script) {
    this.#items = items;
    this.#script = script;
    items.on('written', (key, value) => {
      if (key === 'Request' && value !== 0) {
        this.requests.push(value);
        setImmediate(() => this.#requested(value));
      }
    });
    machine.on('speed', (speed) => this.#happened(speed === 0 ? 'stands' : 'turns'));
    this.#happened('soon');
  }

  #requested(value) {
    if (!this.#happened(value)) {
      this.unexpected.push(value);
    }
  }

  #happened(what) {
    const move = this.#script[this.#place];
    if (move?.on !== what) {
      return false;
    }
    ++this.#place;
    if (move.warning !== undefined) {
      this.#items.client('Warning', move.warning);
    }
    if (move.notify) {
      this.#items.client('Notification', move.notify);
    }
    if (typeof what === 'number' && move.answer !== null) {
      this.#items.client('Request', move.answer ?? 0);
    }
    move.then?.();
    setTimeout(() => this.#happened('soon'), 15);
    return true;
  }

  /** Makes no more moves. */
  stop() {
    this.#script = this.#script.slice(0, this.#place);
  }

  /** Whether all moves were made. */
  get isOver() {
    return this.#place === this.#script.length;
  }
}
