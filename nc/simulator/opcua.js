/**
 * The OPC UA library, loaded so that it keeps silent: it writes to the console as it loads and as it runs, and
 * standard output belongs to this program. NODEOPCUA_LOG_LEVEL lets it speak again.
 */
import { createRequire } from 'node:module';

process.env.NODEOPCUA_LOG_LEVEL ??= '0';
const require = createRequire(import.meta.url);

function loadSilently(...names) {
  const { log, warn } = console;
  console.log = console.warn = () => {};
  try {
    return Object.assign({}, ...names.map((name) => require(name)));
  } finally {
    Object.assign(console, { log, warn });
  }
}

/** Server, client, and what the two share, under the library's names. */
const opcua = loadSilently('node-opcua-crypto', 'node-opcua-nodesets', 'node-opcua-client', 'node-opcua-server');
export default opcua;
