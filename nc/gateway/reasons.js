// Errors in words for the log of the module. A library's own texts never pass: they may repeat what was sent.
import { StatusCodes } from '../shared/opcua.js';
import { TimeUp } from '../shared/timing.js';

/** An error with a text of our own, which may be shown. */
export class Refusal extends Error {
  /**
   * @param {string} text
   * @param {string} [kind] for who tells it in another language: a status, or a word of ours
   */
  constructor(text, kind = 'Other') {
    super(text);
    this.kind = kind;
  }
}

const WORDS = {
  BadCertificateTimeInvalid: "a certificate is out of its time by the server's clock",
  BadIdentityTokenInvalid: 'the server rejects the login',
  BadIdentityTokenRejected: 'the server rejects the login',
  BadInvalidTimestamp: "the clocks of server and this computer differ too much for the server",
  BadNodeIdInvalid: 'the server has no such node',
  BadNodeIdUnknown: 'the server has no such node',
  BadNotReadable: 'the node may not be read',
  BadNotWritable: 'the node may not be written',
  BadSecurityChecksFailed: "the server rejects the application's certificate (own.pem) or the security settings",
  BadTooManyOperations: 'the server takes fewer operations a request',
  BadTooManySessions: 'the server has no session left',
  BadTypeMismatch: 'the node holds another type',
  BadUserAccessDenied: 'the server rejects the login, or the user may not do this',
  BadWaitingForInitialData: 'the node holds no value yet',
  BadUserSignatureInvalid: "the user's key does not belong to the user's certificate",
  EACCES: 'a file or directory may not be used',
  ECONNREFUSED: 'nothing listens at this address',
  ECONNRESET: 'the server ended the connection',
  EHOSTUNREACH: "the server's address can't be reached",
  ENETUNREACH: "the server's network can't be reached",
  ENOENT: 'a file or directory is missing',
  ENOTFOUND: "the server's name is unknown",
  ETIMEDOUT: "the server doesn't answer",
};

/** Answers of a server that has forgotten the session or the channel. */
const SESSION_GONE = /\bBad(Session|SecureChannel|Connection|Subscription|NoSubscription)/;

/** Whether there is no session with the server any more, by its own words. */
export const isSessionGone = (error) => SESSION_GONE.test(reasonOf(error));

/** Errors of our own files tell the file and nothing else: they may be shown. */
export async function shown(promise) {
  try {
    return await promise;
  } catch (error) {
    throw error.code ? error : new Refusal(error.message);
  }
}

/**
 * @param {unknown} error
 * @returns {string | undefined} the status or system code that it tells
 */
export function codeOf(error) {
  if (!(error instanceof Error)) {
    return undefined;
  }
  const serviceResult = error.response?.responseHeader?.serviceResult?.name;
  if (serviceResult) {
    return serviceResult;
  }
  if (/^E[A-Z]+$/.test(error.code ?? '')) {
    return error.code;
  }
  const found = String(error.message).match(/\bBad[A-Z]\w+|\bE[A-Z]{4,}\b/g) ?? [];
  return found.find((word) => word in StatusCodes || word in WORDS);
}

/**
 * @param {unknown} error of the library, of Node.js or a Refusal
 * @returns {string} what happened, without a word that the error's text might have from elsewhere
 */
export function reasonOf(error) {
  if (error instanceof Refusal) {
    return error.message;
  }
  if (error instanceof TimeUp) {
    return "the server doesn't answer in time";
  }
  if (!(error instanceof Error)) {
    return 'unknown failure';
  }
  const code = codeOf(error);
  if (code) {
    const text = code in WORDS ? `${WORDS[code]} (${code})` : code;
    return error.path ? `${error.path}: ${text}` : text;
  }
  if (/time(d )?\s?out/i.test(error.message)) {
    return "the server doesn't answer in time";
  }
  return 'the connection failed';
}

/** The status or code of an error, or what a Refusal is about: for who tells it in another language. */
export function kindOf(error) {
  if (error instanceof Refusal) {
    return error.kind;
  }
  return error instanceof TimeUp ? 'TimeUp' : (codeOf(error) ?? 'Other');
}

/**
 * @param {import('node-opcua-client').StatusCode} status that is not good
 * @returns {Refusal}
 */
export function badStatus({ name }) {
  return new Refusal(name in WORDS ? `${WORDS[name]} (${name})` : name, name);
}
