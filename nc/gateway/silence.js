// Keeps the OPC UA library silent: what it prints may hold what was sent, passwords too. Must be imported before it.

for (const name of Object.keys(process.env)) {
  if (/^NODEOPCUA/.test(name) || name === 'DEBUG') {
    delete process.env[name];
  }
}
process.env.NODEOPCUA_LOG_LEVEL = '0';

for (const method of ['debug', 'dir', 'error', 'info', 'log', 'trace', 'warn']) {
  console[method] = () => {};
}
