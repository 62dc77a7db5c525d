// Waiting, with an end to it.

/** Something didn't come in time. */
export class TimeUp extends Error {}

/**
 * @template T
 * @param {Promise<T>} promise
 * @param {number} milliseconds
 * @returns {Promise<T>} the promise's outcome, or a TimeUp
 */
export async function within(promise, milliseconds) {
  let timer;
  const timeUp = new Promise((_, reject) => {
    timer = setTimeout(() => reject(new TimeUp('no answer in time')), milliseconds);
  });
  try {
    return await Promise.race([promise, timeUp]);
  } finally {
    clearTimeout(timer);
  }
}

/** For what is only a courtesy: its outcome doesn't matter. */
export const quietly = (promise, milliseconds) => within(promise, milliseconds).catch(() => {});

/** A pause that can be cut short. */
export class Pause {
  #end = () => {};

  /** @param {number} milliseconds */
  async wait(milliseconds) {
    await new Promise((resolve) => {
      const timer = setTimeout(resolve, milliseconds);
      this.#end = () => {
        clearTimeout(timer);
        resolve();
      };
    });
  }

  end() {
    this.#end();
  }
}
