// Subscriptions over one connection: values and their changes, whatever the server makes of the times asked for.
import { EventEmitter } from 'node:events';
import { SESSION_TIMEOUT } from './client.js';
import { reasonOf } from './reasons.js';
import { typedOf } from './values.js';
import { AttributeIds, ClientMonitoredItem, TimestampsToReturn } from '../shared/opcua.js';

/** How often the server tells that a subscription lives, when nothing changes. */
const KEEP_ALIVE = 2000;
/** The library asks for no fewer. */
const LEAST_KEEP_ALIVES = 3;
/** How long the server keeps a subscription of a gateway that died. */
const LIFETIME = 20000;
/** Longer than the shortest time in which an NC answers itself; changes that wait to be published are kept in order. */
const QUEUE_SIZE = 100;
/** Of a subscription that publishes less often than this nobody waits for the first value: it is read. */
const SLOW_INTERVAL = 1000;
/** How much later than agreed upon a sign of life may come. */
const GRACE = 5000;
const LONGEST_TIMER = 2 ** 31 - 1;

const isSame = (one, other) =>
  JSON.stringify([one.statusCode.value, one.value]) === JSON.stringify([other.statusCode.value, other.value]);

/**
 * Emits 'lost' with the reason when a subscription ends or falls silent, and 'granted' with what the server makes of
 * the times asked for.
 */
export class Subscriptions extends EventEmitter {
  #session;
  #ask;
  #look;
  #log;
  #isOver = false;
  #byRate = new Map();
  #timers = new Set();

  /**
   * @param {import('node-opcua-client').ClientSession} session
   * @param {(promise: Promise<unknown>) => Promise<unknown>} ask waits for an answer of the server
   * @param {(nodeId: object) => Promise<import('node-opcua-client').DataValue>} look reads a node's value
   * @param {(level: string, text: string) => void} log
   */
  constructor(session, ask, look, log) {
    super();
    this.#session = session;
    this.#ask = ask;
    this.#look = look;
    this.#log = log;
    if (session.timeout < SESSION_TIMEOUT) {
      log('information', `The server keeps a session for ${session.timeout} ms, not ${SESSION_TIMEOUT} as asked for.`);
    }
  }

  /** Nothing is told any more. */
  end() {
    this.#isOver = true;
    this.#timers.forEach(clearTimeout);
  }

  /**
   * Reports a node's value and its changes.
   * @param {import('node-opcua-client').NodeId} nodeId
   * @param {number} rate at most every so many ms
   * @param {(value: object) => void} onValue
   * @param {(reason: string) => void} onError the value can't be read; if onValue doesn't follow, try anew
   * @returns {Promise<() => void>} ends it
   */
  async monitor(nodeId, rate, onValue, onError) {
    const subscription = await this.#subscriptionOf(rate);
    // Read before the server begins to watch: what it tells first is never older than this.
    let first = subscription.publishingInterval > SLOW_INTERVAL ? await this.#look(nodeId) : undefined;
    const item = ClientMonitoredItem.create(
      subscription,
      { nodeId, attributeId: AttributeIds.Value },
      { samplingInterval: 0, queueSize: QUEUE_SIZE, discardOldest: true },
      TimestampsToReturn.Neither,
    );
    let isEnded = false;
    const tell = (dataValue) => {
      if (isEnded || this.#isOver) {
        return;
      }
      try {
        onValue(typedOf(dataValue));
      } catch (error) {
        onError(reasonOf(error));
      }
    };
    item.on('changed', (dataValue) => {
      const isRepeated = first !== undefined && isSame(first, dataValue);
      first = undefined;
      if (!isRepeated) {
        tell(dataValue);
      }
    });
    await this.#ask(
      new Promise((resolve, reject) => {
        item.on('initialized', resolve);
        item.on('err', (message) => {
          reject(new Error(message)); // without effect when it has begun well
          if (!isEnded && !this.#isOver) {
            onError(reasonOf(new Error(message)));
          }
        });
      }),
    );
    this.#tellSampling(nodeId, item.monitoringParameters.samplingInterval, rate);
    if (first !== undefined) {
      tell(first);
    }
    return () => {
      isEnded = true;
      if (!this.#isOver && item.monitoredItemId !== undefined) {
        this.#ask(item.terminate()).catch(() => {});
      }
    };
  }

  /** The server's subscription of a rate; items of the same rate share it. */
  #subscriptionOf(rate) {
    let made = this.#byRate.get(rate);
    if (!made) {
      made = this.#make(rate);
      this.#byRate.set(rate, made);
      made.catch(() => this.#byRate.delete(rate)); // the next item tries anew
    }
    return made;
  }

  async #make(rate) {
    const keepAlives = Math.max(LEAST_KEEP_ALIVES, Math.ceil(KEEP_ALIVE / rate));
    const subscription = await this.#ask(
      this.#session.createSubscription2({
        publishingEnabled: true,
        requestedPublishingInterval: rate,
        requestedMaxKeepAliveCount: keepAlives,
        requestedLifetimeCount: Math.max(3 * keepAlives, Math.ceil(LIFETIME / rate)),
      }),
    );
    this.#tellRevised(subscription, rate, keepAlives);
    const end = () => this.#lose('the server ended a subscription');
    subscription.on('error', end);
    subscription.on('internal_error', end);
    subscription.on('terminated', end);
    subscription.on('status_changed', (status) => status.isNotGood() && end());
    const silence = subscription.publishingInterval * subscription.maxKeepAliveCount + GRACE;
    const watchdog = setTimeout(
      () => this.#lose('the server reports no changes any more'),
      Math.min(silence, LONGEST_TIMER),
    );
    this.#timers.add(watchdog);
    subscription.on('raw_notification', () => this.#isOver || watchdog.refresh());
    return subscription;
  }

  /** A value that stands for less than that is never seen. */
  #tellSampling(nodeId, interval, rate) {
    this.emit('granted', { node: nodeId.toString(), sampling: interval });
    if (interval > rate) {
      this.#log(
        'warning',
        `The server looks at ${nodeId} every ${interval} ms, not every ${rate} ms as asked for: ` +
          'what stands there for less is missed.',
      );
    }
  }

  #tellRevised({ publishingInterval, maxKeepAliveCount }, rate, keepAlives) {
    this.emit('granted', { publishing: publishingInterval, asked: rate });
    if (publishingInterval > rate) {
      this.#log(
        'warning',
        `The server tells changes every ${publishingInterval} ms, not every ${rate} ms as asked for: ` +
          'a request of the NC may be seen that much later.',
      );
    }
    if (maxKeepAliveCount !== keepAlives) {
      const told = `The server tells after ${maxKeepAliveCount} updates without a change that it lives`;
      this.#log('information', `${told}, not after ${keepAlives} as asked for.`);
    }
  }

  #lose(reason) {
    if (!this.#isOver) {
      this.emit('lost', reason);
    }
  }
}
