// What this folder uses of node-opcua beyond the client's part. Required for the reason told in shared/opcua.js.
import { createRequire } from 'node:module';

const require = createRequire(import.meta.url);

export {
  DataType,
  MessageSecurityMode,
  SecurityPolicy,
  StatusCodes,
  Variant,
  VariantArrayType,
} from '../shared/opcua.js';
export const { makeAccessLevelFlag } = require('node-opcua-data-model');
export const { nodesets } = require('node-opcua-nodesets');
export const { OPCUAServer } = require('node-opcua-server');
