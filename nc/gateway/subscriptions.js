// Subscriptions that outlast connections. One OPC UA subscription per update rate carries the items of that rate.
import { AttributeIds, ClientMonitoredItem, ClientSubscription, MonitoringMode, TimestampsToReturn } from '../shared/opcua.js';
import { fromVariant } from './values.js';

/** Between two looks for items that the server doesn't have, ms. */
const RETRY_PERIOD = 5000;
/** A quick sequence of requests is to arrive whole. */
const QUEUE = 100;

class Item {
  constructor(id, node, rate) {
    Object.assign(this, { id, node, rate });
    this.monitored = null;
    this.error = null; // last one reported
  }
}

export class Subscriptions {
  /** @param {(object: object) => void} report takes the lines for the module */
  constructor(report) {
    this.report = report;
    this.items = new Map(); // by id
    this.session = null;
    this.byRate = new Map(); // Promise of a ClientSubscription, of this connection
    this.timer = null;
  }

  add(id, node, rate) {
    const item = new Item(id, node, rate);
    this.items.set(id, item);
    if (this.session !== null) {
      this.#monitor(item);
    }
  }

  remove(id) {
    const item = this.items.get(id);
    this.items.delete(id);
    this.#forget(item);
  }

  /** Makes all subscriptions on a new connection. */
  async attach(session) {
    this.session = session;
    this.timer = setInterval(() => this.#retry(), RETRY_PERIOD);
    await Promise.all([...this.items.values()].map((item) => this.#monitor(item)));
  }

  /** The connection has gone. */
  detach() {
    clearInterval(this.timer);
    this.session = null;
    this.byRate.clear();
    for (const item of this.items.values()) {
      item.monitored?.removeAllListeners();
      item.monitored = null;
      item.error = null;
    }
  }

  #retry() {
    for (const item of this.items.values()) {
      if (item.error !== null) {
        this.#forget(item);
        this.#monitor(item);
      }
    }
  }

  #forget(item) {
    item?.monitored?.removeAllListeners();
    item?.monitored?.terminate().catch(() => {}); // a lost connection has ended it already
    if (item) {
      item.monitored = null;
    }
  }

  #subscriptionOf(rate) {
    if (!this.byRate.has(rate)) {
      this.byRate.set(rate, this.session.createSubscription2({
        requestedPublishingInterval: rate,
        requestedLifetimeCount: Math.ceil(60000 / rate),
        requestedMaxKeepAliveCount: Math.ceil(5000 / rate),
        maxNotificationsPerPublish: 0,
        publishingEnabled: true,
        priority: 1,
      }));
    }
    return this.byRate.get(rate);
  }

  async #monitor(item) {
    const { session } = this;
    try {
      const subscription = await this.#subscriptionOf(item.rate);
      if (this.session !== session || this.items.get(item.id) !== item || item.monitored !== null) {
        return;
      }
      const monitored = ClientMonitoredItem.create(
        subscription,
        { nodeId: item.node, attributeId: AttributeIds.Value },
        { samplingInterval: 0, queueSize: QUEUE, discardOldest: true },
        TimestampsToReturn.Neither,
        MonitoringMode.Reporting,
      );
      item.monitored = monitored;
      monitored.on('changed', (dataValue) => this.#changed(item, dataValue));
      monitored.on('err', (text) => this.#failed(item, text));
    } catch (error) {
      if (this.session === session) {
        this.#failed(item, String(error.message).split('\n')[0]);
      }
    }
  }

  #changed(item, dataValue) {
    if (dataValue.statusCode.isNotGood()) {
      this.#failed(item, dataValue.statusCode.name);
      return;
    }
    try {
      const value = fromVariant(dataValue.value);
      item.error = null;
      this.report({ changed: { id: item.id, value } });
    } catch (error) {
      this.#failed(item, error.message);
    }
  }

  /** Told once; the item is looked for again by the clock. */
  #failed(item, text) {
    if (item.error !== text) {
      item.error = text;
      this.report({ changed: { id: item.id, error: text } });
    }
  }
}
