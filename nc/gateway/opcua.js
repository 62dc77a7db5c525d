// The OPC UA library. Its forms for import don't load on every version of Node.js that it runs on otherwise.
import { createRequire } from 'node:module';

const require = createRequire(import.meta.url);
const opcua = require('node-opcua-client');
export default opcua;
