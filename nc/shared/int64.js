// Whole numbers of 64 bits, which the OPC UA library holds as two halves.

/** Numbers beyond 2^53 lose their last digits; no item of the module is that large. */
export function joinHalves([high, low], isSigned) {
  return (isSigned ? high | 0 : high >>> 0) * 2 ** 32 + (low >>> 0);
}
