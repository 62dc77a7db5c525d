// What this folder uses of node-opcua. Required, not imported: the names of some of its packages can't be seen by
// import on Node.js 18.
import { createRequire } from 'node:module';

const require = createRequire(import.meta.url);
const client = require('node-opcua-client');

export const {
  AttributeIds,
  ClientMonitoredItem,
  ClientSubscription,
  DataType,
  MessageSecurityMode,
  MonitoringMode,
  OPCUAClient,
  SecurityPolicy,
  StatusCodes,
  TimestampsToReturn,
  UserTokenType,
  Variant,
  VariantArrayType,
  coerceNodeId,
} = client;
export const { PacketAssembler } = require('node-opcua-packet-assembler');
export const { OPCUACertificateManager } = require('node-opcua-certificate-manager');
