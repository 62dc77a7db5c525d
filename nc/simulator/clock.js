/**
 * Puts this process's clock wrong, as a machine's is whose battery is empty: stamps of values, the server's time and
 * its look at certificates go by it. Must be called before the OPC UA library is loaded.
 * @param {number} seconds by which the clock is fast; negative if it is slow
 */
export function setClockWrong(seconds) {
  const Right = globalThis.Date;
  const now = () => Right.now() + seconds * 1000;
  globalThis.Date = class Date extends Right {
    constructor(...given) {
      super(...(given.length > 0 ? given : [now()]));
    }
    static now() {
      return now();
    }
    /** Those that were made before count, too. */
    static [Symbol.hasInstance](value) {
      return value instanceof Right;
    }
  };
}
