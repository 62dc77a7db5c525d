import { writeObject } from '../shared/jsonlines.js';

/** What the program tells: lines for a person, or JSON lines for a program. */
export class Output {
  #json;
  #stream;
  #begin = performance.now();

  /**
   * @param {boolean} json
   * @param {NodeJS.WritableStream} [stream]
   */
  constructor(json, stream = process.stdout) {
    this.#json = json;
    this.#stream = stream;
  }

  /** An event in words. */
  say(text) {
    if (this.#json) {
      writeObject(this.#stream, { said: text });
    } else {
      const seconds = ((performance.now() - this.#begin) / 1000).toFixed(1);
      this.#stream.write(`${seconds.padStart(8)} s  ${text}\n`);
    }
  }

  /** An event for programs; a person gets the words, if there are any. */
  tell(event, words) {
    if (this.#json) {
      writeObject(this.#stream, event);
    } else if (words !== undefined) {
      this.say(words);
    }
  }
}
