import { once } from 'node:events';
import { connect } from 'node:net';
import { setTimeout as sleep } from 'node:timers/promises';
import { readObjects, writeObject } from '../shared/jsonlines.js';

/** The machine refuses a request, or can't be reached any more. */
export class MachineError extends Error {}

const ANSWER_TIMEOUT = 10000;
const CONNECT_TIMEOUT = 5000;
/** Pauses between attempts to connect again, ms. */
const RETRY_PAUSES = [500, 1000, 2000, 4000];

/**
 * The control link of a machine: JSON lines over TCP, one answer to each request. A connection that is lost is made
 * again and the request repeated: all requests set something to a value, so that twice does no harm.
 */
export class MachineLink {
  #endpoint;
  #socket;
  #waiting = [];

  /**
   * @param {{host: string, port: number, name: string}} endpoint
   * @throws {MachineError}
   */
  static async connect(endpoint) {
    const link = new MachineLink();
    link.#endpoint = endpoint;
    await link.#open();
    return link;
  }

  async #open() {
    const socket = connect(this.#endpoint);
    socket.setNoDelay(true);
    try {
      await once(socket, 'connect', { signal: AbortSignal.timeout(CONNECT_TIMEOUT) });
    } catch (error) {
      socket.destroy();
      throw new MachineError(`the machine at ${this.#endpoint.name} can't be reached: ${error.code ?? error.message}`);
    }
    this.#socket = socket;
    const fail = () => {
      if (this.#socket === socket) {
        this.#socket = undefined;
      }
      socket.destroy();
      this.#waiting.splice(0).forEach(({ reject }) => reject(new MachineError('the connection to the machine is lost')));
    };
    socket.on('error', fail).on('close', fail);
    readObjects(socket, (answer) => this.#waiting.shift()?.resolve(answer), fail);
  }

  /**
   * @param {object} request such as {speed: 3000}
   * @returns {Promise<object>} the answer
   * @throws {MachineError} if the machine refuses it, or stays away
   */
  async request(request) {
    for (let attempt = 0; ; ++attempt) {
      try {
        if (!this.#socket) {
          await this.#open();
        }
        const answer = await this.#exchange(request);
        if (answer.error !== undefined) {
          throw Object.assign(new MachineError(`the machine refuses: ${answer.error}`), { isRefusal: true });
        }
        return answer;
      } catch (error) {
        if (error.isRefusal || attempt === RETRY_PAUSES.length) {
          throw error;
        }
        await sleep(RETRY_PAUSES[attempt]);
      }
    }
  }

  #exchange(request) {
    return new Promise((resolve, reject) => {
      const socket = this.#socket;
      // Answers come in order: one that is missing makes all later ones worthless.
      const timer = setTimeout(() => socket.destroy(), ANSWER_TIMEOUT);
      const settle = (how) => (value) => {
        clearTimeout(timer);
        how(value);
      };
      this.#waiting.push({ resolve: settle(resolve), reject: settle(reject) });
      writeObject(socket, request);
    });
  }

  close() {
    this.#socket?.destroy();
  }
}
