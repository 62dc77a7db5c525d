// The NC simulator.
process.exit(3);
