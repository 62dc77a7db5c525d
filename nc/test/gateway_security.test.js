// Whom the gateway trusts, how it logs in, and what it keeps to itself.
import assert from 'node:assert/strict';
import { chmod, readFile, rm, stat, writeFile } from 'node:fs/promises';
import { createRequire } from 'node:module';
import { join } from 'node:path';
import { after, before, describe, test } from 'node:test';
import { MessageSecurityMode, SecurityPolicy, StatusCodes } from '../shared/opcua.js';
import { fingerprintOf, openPki, readCertificate, thumbprintOf } from '../shared/pki.js';
import { provideCertificate } from './support/certificates.js';
import { GatewayProcess, isSettled } from './support/gatewayprocess.js';
import { startIntermediary, startRejecting } from './support/intermediary.js';
import { makeDirectory, removeDirectory } from './support/temporary.js';
import { TestServer } from './support/testserver.js';

const crypto = createRequire(import.meta.url)('node-opcua-crypto');

/** A directory and gateways of one test, and a server, of its own or not. */
class Context {
  #gateways = [];

  static async make(t, server) {
    const context = new Context();
    context.directory = await makeDirectory();
    context.server = server;
    t.after(async () => {
      await Promise.all(context.#gateways.map((gateway) => gateway.stop()));
      await removeDirectory(context.directory);
    });
    return context;
  }

  async connect(settings) {
    const gateway = await GatewayProcess.connect(this.directory, this.server.url, settings);
    this.#gateways.push(gateway);
    return gateway;
  }

  /** A gateway that has no certificate yet, nor a connection. */
  async start(environment) {
    const gateway = new GatewayProcess(this.directory);
    this.#gateways.push(gateway);
    await gateway.start(environment);
    return gateway;
  }

  /** Why a connection is refused. */
  async refusal(settings) {
    const { firstState } = await this.connect(settings);
    assert.equal(firstState.connected, false);
    return firstState.reason;
  }

  /** The fingerprint of the server's certificate. */
  async fingerprint() {
    return fingerprintOf(await readCertificate(this.server.certificateFile));
  }
}

/** Looks at what is said to somebody who has to make the server trust this application. */
async function checkUntrusted(t, context, url) {
  const gateway = await GatewayProcess.connect(context.directory, url);
  t.after(() => gateway.stop());
  const file = join(gateway.pki, 'own.pem');
  const certificate = await readCertificate(file);
  const { connected, reason } = gateway.firstState;
  assert.equal(connected, false);
  for (const words of ["doesn't trust", file, fingerprintOf(certificate), thumbprintOf(certificate), '"rejected"']) {
    assert.ok(reason.includes(words), `${words}: ${reason}`);
  }
}

/** Key and certificate that was valid in 2020, where ownCertificate() will find them. */
async function makeExpired(directory) {
  await openPki(directory);
  const privateKey = await crypto.generatePrivateKey(2048);
  await writeFile(join(directory, 'own-key.pem'), (await crypto.privateKeyToPEM(privateKey)).privPem, { mode: 0o600 });
  const { cert } = await crypto.createSelfSignedCertificate({
    privateKey,
    notBefore: new Date('2020-01-01'),
    validity: 366,
    subject: 'CN=test-nc',
    dns: ['localhost'],
    ip: ['127.0.0.1'],
    applicationUri: 'urn:test-nc',
    purpose: crypto.CertificatePurpose.ForApplication,
  });
  await writeFile(join(directory, 'own.pem'), cert);
}

const PASSWORD = 'correct horse battery';
const POLICIES = ['Basic256Sha256', 'Aes128_Sha256_RsaOaep', 'Aes256_Sha256_RsaPss'];

let home;
/** Servers that the tests share: one of all secure policies, one with logins, one of too little security. */
let strict;
let closed;
let weak;
/** Files of a user whom `closed` knows. */
let known;

async function startServer(name, options) {
  const server = new TestServer(join(home, name), options);
  await provideCertificate(server.directory, 'test-nc');
  await server.start();
  return server;
}

async function makeUser(name) {
  const directory = join(home, name);
  await provideCertificate(directory, name);
  return { user_certificate: join(directory, 'own.pem'), user_key: join(directory, 'own-key.pem') };
}

before(async () => {
  home = await makeDirectory();
  known = await makeUser('known');
  strict = await startServer('strict', { securityPolicies: POLICIES.map((policy) => SecurityPolicy[policy]) });
  closed = await startServer('closed', {
    users: { balancing: PASSWORD },
    userCertificate: await readCertificate(known.user_certificate),
  });
  weak = await startServer('weak', {
    securityModes: [MessageSecurityMode.None, MessageSecurityMode.Sign],
    securityPolicies: [SecurityPolicy.None, SecurityPolicy.Basic256Sha256],
  });
});

after(async () => {
  for (const server of [strict, closed, weak]) {
    await server?.stop();
  }
  await removeDirectory(home);
});

// One after the other: while a server is started the others of this process don't answer.
describe('security', () => {
  test('the first certificate is trusted with a warning, another one later is refused', async (t) => {
    const server = await startServer('changing');
    t.after(() => server.stop());
    const context = await Context.make(t, server);
    const gateway = await context.connect();
    const fingerprint = await context.fingerprint();
    const warnings = gateway.all('log').filter(({ level }) => level === 'warning');
    assert.equal(warnings.length, 1);
    assert.match(warnings[0].text, new RegExp(`certificate is trusted from now on; its fingerprint is ${fingerprint}`));
    const pinned = await readCertificate(join(gateway.pki, 'server.pem'));
    assert.equal(fingerprintOf(pinned), fingerprint);

    await server.stop();
    await rm(server.directory, { recursive: true });
    await server.start(); // makes itself a new certificate
    const other = await context.fingerprint();
    assert.notEqual(other, fingerprint);
    const { reason } = await gateway.next('state', (state) => /certificate/.test(state.reason));
    assert.match(reason, /certificate is refused/);
    assert.ok(reason.includes(other) && reason.includes(fingerprint) && reason.includes('remove server.pem'), reason);
    assert.ok(pinned.equals(await readCertificate(join(gateway.pki, 'server.pem'))));

    await rm(join(gateway.pki, 'server.pem'));
    await gateway.next('state', ({ connected }) => connected);
    assert.ok(gateway.all('log').at(-1).text.includes(other));
  });

  test('a fingerprint that is configured decides', async (t) => {
    const context = await Context.make(t, strict);
    const wrong = await context.refusal({ fingerprint: '00'.repeat(32) });
    assert.match(wrong, new RegExp(`fingerprint is ${await context.fingerprint()}, not the configured one`));
    await assert.rejects(stat(join(context.directory, 'pki', 'server.pem')), { code: 'ENOENT' });
    assert.match(await context.refusal({ fingerprint: 'abc' }), /fingerprint is not a SHA-256/);
    const colons = (await context.fingerprint()).toUpperCase().replace(/..(?=.)/g, '$&:');
    assert.deepEqual((await context.connect({ fingerprint: colons })).firstState, { connected: true });
  });

  test('user and password are checked, and the password is nowhere to be read', async (t) => {
    const context = await Context.make(t, closed);
    const gateways = [];
    for (const [user, given] of [['balancing', `${PASSWORD}!`], ['nobody', PASSWORD], ['balancing', PASSWORD]]) {
      const gateway = await context.connect({ user, password: given });
      gateways.push(gateway);
      assert.equal(gateway.firstState.connected, gateways.length === 3);
    }
    assert.match(gateways[0].firstState.reason, /rejects the login/);
    assert.match(await context.refusal(), /takes no login without a user/);
    assert.match(await context.refusal({ user: 'x', password: PASSWORD, security: 'None' }), /without security/);
    for (const gateway of gateways) {
      assert.ok(!gateway.everything.includes(PASSWORD), gateway.everything);
    }
  });

  test('the password is not to be read even if the environment asks the library to tell all', async (t) => {
    const context = await Context.make(t, closed);
    const gateway = await context.start({
      DEBUG: 'ALL',
      NODEOPCUADEBUG: 'TRANSPORT,HELACK,CHUNK,CLIENT{REQUEST},CLIENT{RESPONSE},CLIENT',
      NODEOPCUA_LOG_LEVEL: '7',
      NODEOPCUACHECKTIMEOUT: '1',
    });
    gateway.connect(context.server.url, { user: 'balancing', password: PASSWORD });
    assert.equal((await gateway.next('state', isSettled)).connected, true);
    gateway.socket.write(`{"connect": {"password": "${PASSWORD}"}}\n{"password": "${PASSWORD}"\n`);
    await gateway.next('log', ({ text }) => /wrong server/.test(text));
    await gateway.next('log', ({ text }) => /no JSON/.test(text));
    assert.equal(gateway.output, '');
    assert.ok(!gateway.everything.includes(PASSWORD));
  });

  test('a certificate of the user logs in, another one does not', async (t) => {
    const unknown = await makeUser('unknown');
    const context = await Context.make(t, closed);
    assert.deepEqual((await context.connect(known)).firstState, { connected: true });
    assert.match(await context.refusal(unknown), /rejects the login/);
    assert.match(await context.refusal({ ...known, user_key: unknown.user_key }), /key does not belong/);
    const missing = join(home, 'missing.pem');
    assert.match(await context.refusal({ ...known, user_certificate: missing }), /missing\.pem is missing/);
    assert.match(await context.refusal({ ...known, user_key: missing }), /missing\.pem: .*ENOENT/);
    const secret = 'MIIEvQ this is secret';
    await writeFile(join(home, 'broken.pem'), secret);
    const broken = await context.connect({ ...known, user_key: join(home, 'broken.pem') });
    assert.match(broken.firstState.reason, /broken\.pem holds no private key/);
    assert.ok(!broken.everything.includes(secret));
  });

  test('each policy that can be configured works, at a server that offers all', async (t) => {
    const context = await Context.make(t, strict);
    for (const security of POLICIES) {
      const gateway = await context.connect({ security });
      assert.deepEqual(gateway.firstState, { connected: true });
      assert.deepEqual(await gateway.write(context.server.node('Request'), { int32: 1 }), { id: 1 });
      const channels = strict.server.endpoints[0].getChannels();
      const { securityMode } = channels.find(({ securityPolicy }) => securityPolicy === SecurityPolicy[security]);
      assert.equal(securityMode, MessageSecurityMode.SignAndEncrypt);
      await gateway.stop();
    }
  });

  test('a weaker security than asked for is not taken', async (t) => {
    const context = await Context.make(t, weak);
    const reason = await context.refusal();
    assert.match(reason, /does not offer Basic256Sha256 with SignAndEncrypt, but .*\bNone\b/);
    assert.match(reason, /but .*Basic256Sha256 with Sign\b/);
    assert.match(await context.refusal({ security: 'Aes256_Sha256_RsaPss' }), /does not offer Aes256_Sha256_RsaPss/);
  });

  test('no security is taken only when asked for, with a warning at each start', async (t) => {
    const context = await Context.make(t, weak);
    const gateway = await context.connect({ security: 'None' });
    assert.deepEqual(gateway.firstState, { connected: true });
    assert.match(gateway.all('log')[0].text, /neither encrypted nor signed/);
    assert.equal(gateway.all('log')[0].level, 'warning');
    assert.deepEqual(await gateway.write(context.server.node('Request'), { int32: 1 }), { id: 1 });
  });

  test('a server that offers security is not used without when that is asked for', async (t) => {
    const context = await Context.make(t, strict);
    assert.match(await context.refusal({ security: 'None' }), /does not offer connections without security/);
  });

  test('somebody in between who answers without security in the place of the server is noticed', async (t) => {
    const context = await Context.make(t, strict);
    const intermediary = await startIntermediary(context.server.options.port);
    t.after(() => intermediary.stop());
    const gateway = await GatewayProcess.connect(context.directory, intermediary.url);
    t.after(() => gateway.stop());
    assert.match(gateway.firstState.reason, /answer came that is not the server's own/);
    assert.equal(intermediary.forged, 1);
    assert.deepEqual(intermediary.after.filter((type) => type !== 'CLO'), []);
    // Nothing is trusted on somebody else's word.
    await assert.rejects(stat(join(gateway.pki, 'server.pem')), { code: 'ENOENT' });
  });

  for (const [how, start] of [
    ['a status', (port) => startRejecting(port, StatusCodes.BadSecurityChecksFailed.value)],
    ['the very status', (port) => startRejecting(port, StatusCodes.BadCertificateUntrusted.value)],
    ['silence', (port) => startRejecting(port)],
  ]) {
    test(`a server that does not trust the application yet, and says so by ${how}, is told with what to do`, async (t) => {
      const context = await Context.make(t, strict);
      const rejecting = await start(strict.options.port);
      t.after(() => rejecting.stop());
      await checkUntrusted(t, context, rejecting.url);
    });
  }

  test('a server of the same make that does not trust the application yet is told with what to do', async (t) => {
    const server = await startServer('distrusting', { clientCertificate: Buffer.from('nobody') });
    t.after(() => server.stop());
    await checkUntrusted(t, await Context.make(t, server), server.url);
  });

  test('a certificate of the server that is out of its time is used with a warning', async (t) => {
    const server = new TestServer(join(home, 'expired'));
    await makeExpired(server.directory);
    await server.start();
    t.after(() => server.stop());
    const gateway = await (await Context.make(t, server)).connect();
    assert.deepEqual(gateway.firstState, { connected: true });
    assert.match(gateway.all('log').at(-1).text, /out of date since 2021-01-01; it is used all the same/);
  });

  test('certificates are for this user only, and stay over starts', async (t) => {
    const context = await Context.make(t, strict);
    const gateway = await context.start();
    gateway.connect(strict.url);
    assert.deepEqual(await gateway.next('state', isSettled), { connected: true });
    const mode = async (name) => (await stat(join(gateway.pki, name))).mode & 0o777;
    assert.equal(await mode('.'), 0o700);
    assert.equal(await mode('own-key.pem'), 0o600);
    assert.equal(await mode('server.pem'), 0o600);
    const own = await readFile(join(gateway.pki, 'own.pem'), 'utf8');
    assert.match(own, /BEGIN CERTIFICATE/);
    await gateway.stop();
    await chmod(gateway.pki, 0o755);
    await chmod(join(gateway.pki, 'own-key.pem'), 0o644);
    const again = await context.start();
    again.connect(strict.url);
    assert.deepEqual(await again.next('state', isSettled), { connected: true });
    assert.equal(await mode('.'), 0o700);
    assert.equal(await mode('own-key.pem'), 0o600);
    assert.equal(await readFile(join(gateway.pki, 'own.pem'), 'utf8'), own);
    assert.deepEqual(again.all('log'), []); // trusted before
  });
});
