// Looks at a server as a run would use it, tells what it finds, and writes nothing: neither into a node, nor whom to
// trust. Rights are told by the server itself, in the attribute UserAccessLevel.
import { Connection } from './connection.js';
import { kindOf, reasonOf } from './reasons.js';
import { within } from '../shared/timing.js';

/** ms for all of it, whatever the server does. */
const LIMIT = 60000;
/** For a node's first value. */
const VALUE_LIMIT = 10000;
const CAN_READ = 1;
const CAN_WRITE = 2;
const NAMESPACES = 'i=2255';
const PRODUCT = 'i=2261';
const NODES_PER_READ = 'i=11705';

const describeError = (error) => ({ kind: kindOf(error), reason: reasonOf(error) });

/** The outcome, or why there is none. */
async function outcomeOf(promise) {
  try {
    return { value: await promise };
  } catch (error) {
    return { error: describeError(error) };
  }
}

/** Whether a node can be subscribed to: what it tells first, or why it tells nothing. */
async function subscribe(connection, node, rate) {
  let settle;
  const told = new Promise((resolve) => {
    settle = resolve;
  });
  const monitored = await outcomeOf(
    connection.monitor(node, rate, (value) => settle({ value }), (reason) => settle({ error: { kind: 'Value', reason } })),
  );
  return monitored.error ? monitored : await within(told, VALUE_LIMIT).catch((error) => ({ error: describeError(error) }));
}

/** Why values that a run writes don't fit; empty if they do. */
async function findMisfits(connection, node, values) {
  const outcomes = await Promise.all(values.map((value) => outcomeOf(connection.check(node, value))));
  return outcomes.filter(({ error }) => error).map(({ error }) => error.reason);
}

async function lookAtNode(connection, { key, node, rate, values }) {
  const rights = (await connection.look(node, 'UserAccessLevel')) ?? (await connection.look(node, 'AccessLevel'));
  const dimensions = await connection.look(node, 'ArrayDimensions');
  return {
    key,
    node,
    type: (await connection.typeOf(node)) ?? null,
    rank: (await connection.look(node, 'ValueRank')) ?? null,
    size: dimensions?.[0] ?? null,
    can_read: rights === undefined ? null : (rights & CAN_READ) !== 0,
    can_write: rights === undefined ? null : (rights & CAN_WRITE) !== 0,
    misfits: await findMisfits(connection, node, values),
    present: await outcomeOf(connection.read(node)),
    subscribed: rate === 0 ? null : await subscribe(connection, node, rate),
  };
}

async function lookAtServer(connection, tell) {
  const [namespaces, product, nodesPerRead] = [
    await outcomeOf(connection.look(NAMESPACES, 'Value')),
    await outcomeOf(connection.look(PRODUCT, 'Value')),
    await outcomeOf(connection.look(NODES_PER_READ, 'Value')),
  ];
  tell({
    server: {
      namespaces: namespaces.value ?? [],
      product: product.value ?? '',
      nodes_per_read: nodesPerRead.value ?? 0,
    },
  });
}

/**
 * @param {object} settings of a connection
 * @param {{key: string, node: string, rate: number, values: object[]}[]} nodes rate: to subscribe with, 0 for not at
 *   all; values that a run writes
 * @param {(fact: object) => void} tell
 */
export async function check(settings, nodes, tell) {
  const connection = new Connection();
  const all = async () => {
    await connection.open(settings, () => {}, { onFact: tell });
    await lookAtServer(connection, tell);
    for (const each of nodes) {
      const { value, error } = await outcomeOf(lookAtNode(connection, each));
      tell({ node: value ?? { key: each.key, node: each.node, error } });
    }
  };
  try {
    await within(all(), LIMIT);
  } catch (error) {
    tell({ failed: describeError(error) });
  }
  await connection.close();
  tell({ done: {} });
}
