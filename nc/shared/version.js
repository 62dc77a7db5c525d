import { readFileSync } from 'node:fs';

/** The version of the whole project, which all its programs tell. */
export const VERSION = JSON.parse(readFileSync(new URL('../package.json', import.meta.url), 'utf8')).version;
