// The NC simulator: an OPC UA server with the items of the balancing interface, and a part program that drives the
// module through them.
import { VERSION } from '../shared/version.js';
import { ArgumentError, USAGE, readArguments } from './arguments.js';
import { setClockWrong } from './clock.js';

const EXIT_FAILED = 2;
const EXIT_BAD_ARGUMENTS = 3;

// The OPC UA library explains itself at length there, and standard output belongs to what this program tells.
for (const channel of ['log', 'info', 'warn', 'error']) {
  console[channel] = () => {};
}

async function main() {
  const options = readArguments(process.argv.slice(2));
  if (options.help) {
    process.stdout.write(USAGE);
    return 0;
  }
  if (options.version) {
    process.stdout.write(`nc-simulator ${VERSION}\n`);
    return 0;
  }
  if (options.clock !== 0) {
    setClockWrong(options.clock);
  }
  const { run } = await import('./program.js');
  return run(options);
}

try {
  process.exit(await main());
} catch (error) {
  const isArgument = error instanceof ArgumentError;
  process.stderr.write(`nc-simulator: ${isArgument ? error.message : error.stack}\n`);
  process.exit(isArgument ? EXIT_BAD_ARGUMENTS : EXIT_FAILED);
}
