// The OPC UA client of the module: opc-gateway SOCKET.
process.exit(3);
