// What the gateway does for the module over any number of connections: it connects again and again, keeps the
// subscriptions, and keeps the order of the writes.
import { Connection, NO_CONNECTION } from './connection.js';
import { Refusal, kindOf, reasonOf } from './reasons.js';
import { Pause, within } from '../shared/timing.js';

const FIRST_PAUSE = 500;
const LONGEST_PAUSE = 10000;
/** A connection that held so long was a good one: the next trouble is a new one. */
const SOUND = 5000;
const WRITE_LIMIT = 5000;
/** A subscription may be so slow, or so broken, that the others don't wait for it. */
const TELLING_LIMIT = 5000;
/** How often it is looked whether a node that was missing has come back. */
const RETRY_INTERVAL = 5000;

/** One subscription of the module. */
class Item {
  #id;
  #node;
  #rate;
  #tell;
  #error;
  #stop = () => {};
  #settle = () => {};
  #connection = null;

  constructor({ id, node, rate }, tell) {
    this.#id = id;
    this.#node = node;
    this.#rate = rate;
    this.#tell = tell;
  }

  /**
   * Begins anew over a connection; null ends it.
   * @returns {Promise<void>} settles when the value, or why it can't be read, has been told
   */
  async attach(connection) {
    this.#settle(); // nobody need wait for what ends here
    const told = new Promise((resolve) => {
      this.#settle = resolve;
    });
    this.#stop();
    this.#stop = () => {};
    this.#connection = connection;
    if (connection === null) {
      this.#error = undefined;
      return;
    }
    let isCurrent = true;
    this.#stop = () => {
      isCurrent = false;
    };
    const onValue = (value) => {
      if (isCurrent) {
        this.#error = undefined;
        this.#tell({ changed: { id: this.#id, value } });
        this.#settle();
      }
    };
    // The same trouble is told once, however often it is tried again.
    const onError = (error) => {
      if (isCurrent && error !== this.#error) {
        this.#error = error;
        this.#tell({ changed: { id: this.#id, error } });
        this.#settle();
      }
    };
    try {
      const stop = await connection.monitor(this.#node, this.#rate, onValue, onError);
      if (!isCurrent) {
        stop();
        return;
      }
      this.#stop = () => {
        isCurrent = false;
        stop();
      };
    } catch (error) {
      if (!connection.isLost) {
        onError(reasonOf(error));
      }
    }
    await told;
  }

  /** If the node can't be read, begins anew: the server may have one of this name again. */
  retry() {
    if (this.#error !== undefined && this.#connection !== null) {
      this.attach(this.#connection);
    }
  }
}

/** The module's session with the NC. */
export class Session {
  #tell;
  #items = new Map();
  #connection = null;
  #opening = null;
  #writes = Promise.resolve();
  #pause = new Pause();
  #isClosing = false;
  #running = Promise.resolve();

  /** @param {(line: object) => void} tell takes the lines for the module */
  constructor(tell) {
    this.#tell = tell;
  }

  /**
   * Begins to connect, and never ceases until close().
   * @param {object} settings of the connect line
   */
  start(settings) {
    if (settings.security === 'None') {
      this.#log('warning', 'Connections to the NC are neither encrypted nor signed: security is "None".');
    }
    this.#running = this.#run(settings);
  }

  subscribe(subscription) {
    this.unsubscribe(subscription.id);
    const item = new Item(subscription, this.#tell);
    this.#items.set(subscription.id, item);
    if (this.#connection) {
      item.attach(this.#connection);
    }
  }

  unsubscribe(id) {
    this.#items.get(id)?.attach(null);
    this.#items.delete(id);
  }

  /** Writes after all writes before have been answered. */
  async write({ id, node, value }) {
    const connection = this.#connection;
    const done = this.#writes.then(async () => {
      if (connection === null || connection !== this.#connection) {
        throw new Refusal(NO_CONNECTION);
      }
      await connection.write(node, value);
    });
    this.#writes = done.catch(() => {});
    try {
      await within(done, WRITE_LIMIT);
      this.#tell({ written: { id } });
    } catch (error) {
      this.#tell({ written: { id, error: reasonOf(error) } });
    }
  }

  async read({ id, node }) {
    try {
      if (this.#connection === null) {
        throw new Refusal(NO_CONNECTION);
      }
      this.#tell({ value: { id, value: await this.#connection.read(node) } });
    } catch (error) {
      this.#tell({ value: { id, error: reasonOf(error) } });
    }
  }

  /** Tells whether a value could be written, without writing it. */
  async check({ id, node, value }) {
    try {
      if (this.#connection === null) {
        throw new Refusal(NO_CONNECTION);
      }
      await this.#connection.check(node, value);
      this.#tell({ checked: { id } });
    } catch (error) {
      this.#tell({ checked: { id, error: reasonOf(error) } });
    }
  }

  /** Ends the session with the server, if it answers soon. */
  async close() {
    this.#isClosing = true;
    this.#pause.end();
    await (this.#connection ?? this.#opening)?.close();
    await this.#running;
  }

  #log(level, text) {
    this.#tell({ log: { level, text } });
  }

  async #run(settings) {
    let pause = FIRST_PAUSE;
    while (!this.#isClosing) {
      const connection = new Connection();
      this.#opening = connection;
      let reason;
      let kind = 'Lost';
      try {
        await connection.open(settings, (level, text) => this.#log(level, text));
        const start = performance.now();
        reason = await this.#use(connection);
        if (performance.now() - start >= SOUND) {
          pause = FIRST_PAUSE;
        }
      } catch (error) {
        reason = reasonOf(error);
        kind = kindOf(error);
      }
      if (!this.#isClosing) {
        this.#tell({ state: { connected: false, reason, kind } });
      }
      await connection.close();
      if (!this.#isClosing) {
        await this.#pause.wait(pause);
        pause = Math.min(2 * pause, LONGEST_PAUSE);
      }
    }
  }

  /** Serves the module over a connection until that is lost. */
  async #use(connection) {
    this.#connection = connection;
    // The module compares what it wrote last with what the NC holds now, before it writes anything.
    const told = Promise.all([...this.#items.values()].map((item) => item.attach(connection)));
    await Promise.race([within(told, TELLING_LIMIT).catch(() => {}), connection.lost]);
    if (!connection.isLost) {
      this.#tell({ state: { connected: true } });
    }
    const retry = setInterval(() => {
      for (const item of this.#items.values()) {
        item.retry();
      }
    }, RETRY_INTERVAL);
    const reason = await connection.lost;
    clearInterval(retry);
    this.#connection = null;
    for (const item of this.#items.values()) {
      item.attach(null);
    }
    return reason;
  }
}
