import { setTimeout as sleep } from 'node:timers/promises';
import { rotorHole } from './holering.js';
import { MachineError } from './machinelink.js';
import { ModuleInterface, Request, TIMES } from './moduleinterface.js';
import { Action, Step, Warning } from './notification.js';
import { wear } from './wear.js';

export const ExitStatus = Object.freeze({ ended: 0, overTarget: 1, failed: 2 });

const TRIES = 3;
/** A verdict that turns over and over is taken after that many times of a measurement. */
const FLIPPING = 5;
const POLL_PERIOD = 200;
const WRONG_SPEED = [Warning.wrongSpeed, Warning.wrongSpeedAndOutOfLock];

/** The run can't go on; the text says why. */
class RunError extends Error {}

/**
 * A part program for balancing. It acts on the notification that stands, never on what should come next: somebody at
 * the panel may press keys in between, and the module's connection may be lost and come back.
 */
export class PartProgram {
  #items;
  #module;
  #machine;
  #rotor;
  #plane;
  #testWeight;
  #target;
  #rotation;
  #rotorName;
  #say;
  #times;

  /**
   * @param {object} options
   * @param {import('./server.js').NcServer} options.items
   * @param {import('./machinelink.js').MachineLink} options.machine
   * @param {import('./rotorfile.js').Rotor} options.rotor
   * @param {number} [options.plane] of the rotor, that a single-plane procedure balances
   * @param {number} [options.testWeight] grams
   * @param {number} [options.target] unbalance to balance to
   * @param {number} [options.rotation] 0 clockwise, 1 counter-clockwise
   * @param {string} [options.rotorName] of the rotor on the machine
   * @param {(text: string) => void} options.say
   * @param {Partial<typeof TIMES>} [options.times] where they differ from the usual ones
   */
  constructor({ items, machine, rotor, plane = 1, testWeight, target, rotation, rotorName, say, times = {} }) {
    this.#items = items;
    this.#machine = machine;
    this.#rotor = rotor;
    this.#plane = plane;
    this.#testWeight = testWeight;
    this.#target = target;
    this.#rotation = rotation;
    this.#rotorName = rotorName;
    this.#say = say;
    this.#times = { ...TIMES, ...times };
    this.#module = new ModuleInterface(items, say, this.#times);
  }

  /**
   * @param {('prebalance' | 'rebalance')[]} procedures one after the other; the wheel wears in between
   * @returns {Promise<number>} exit status
   */
  async run(procedures) {
    let status = ExitStatus.ended;
    try {
      for (const [place, procedure] of procedures.entries()) {
        if (place > 0) {
          await wear(this.#machine, this.#say);
        }
        status = Math.max(status, await this.#runProcedure(procedure));
      }
      await this.#machine.request({ speed: 0 });
    } catch (error) {
      if (!(error instanceof RunError || error instanceof MachineError)) {
        throw error;
      }
      this.#say(error.message);
      await this.#leave();
      return ExitStatus.failed;
    }
    return status;
  }

  /** A run that can't be brought to its end doesn't stay on the panel. */
  async #leave() {
    const { isRunning, isVerdict } = this.#module.notification;
    if ((isRunning || isVerdict) && !this.#module.isSilent) {
      await this.#module.ask(Request.end);
    }
  }

  async #runProcedure(procedure) {
    await this.#untilReady();
    await this.#askForSettings();
    await this.#begin(procedure);
    const verdict = await this.#follow();
    this.#say(`${procedure}: ${verdict.isOverTarget ? 'over' : 'within'} the target`);
    return verdict.isOverTarget ? ExitStatus.overTarget : ExitStatus.ended;
  }

  /** What the page is to show before a run takes it over: the module sees it after the time that a value stands. */
  async #askForSettings() {
    const wishes = {
      TargetUnbalance: this.#target,
      RotationDirection: this.#rotation,
      RotorName: this.#rotorName,
    };
    const given = Object.entries(wishes).filter(([, value]) => value !== undefined);
    for (const [key, value] of given) {
      this.#items.write(key, value);
    }
    if (given.length > 0) {
      await sleep(this.#times.valueStands);
    }
  }

  async #untilReady() {
    if (!this.#module.notification.isReady) {
      this.#say('waiting for the module to be ready');
    }
    // As long as it takes: a module may be switched on any time after the NC.
    while (!(await this.#module.until(() => this.#module.notification.isReady, this.#times.silence))) {
      this.#say("the module still isn't ready: no module, no configuration, or a procedure on its panel");
    }
  }

  async #begin(procedure) {
    if (this.#testWeight !== undefined) {
      this.#items.write('TestWeight', this.#testWeight);
    }
    for (let attempt = 0; attempt < TRIES; ++attempt) {
      this.#say(`request ${Request[procedure]}: ${procedure}`);
      const answer = await this.#module.ask(Request[procedure]);
      if (answer === 'refused') {
        throw new RunError(`the module refuses to ${procedure}${this.#explainRefusal(procedure)}`);
      }
      if (answer === 'silent') {
        throw new RunError("the module doesn't answer");
      }
      if (await this.#module.until(() => !this.#module.notification.isReady, this.#times.again)) {
        return;
      }
      this.#say('the request was answered, but nothing has started');
    }
    throw new RunError(`the module doesn't start to ${procedure}`);
  }

  #explainRefusal(procedure) {
    const uncalibrated = procedure === 'rebalance' && this.#module.notification.step === Step.parameter;
    return uncalibrated ? ": the configuration isn't calibrated" : '';
  }

  /** From the first notification of a procedure to its end. Returns the verdict. */
  async #follow() {
    let verdict;
    let carriedOut = -1;
    let repeated = 0;
    for (;;) {
      const present = this.#module.notification;
      if (present.step === Step.failure) {
        await this.#module.ask(Request.end);
        throw new RunError(`the procedure has failed, warning ${this.#module.warning}`);
      }
      if (!present.isRunning && !present.isVerdict) {
        if (verdict) {
          return verdict;
        }
        throw new RunError('the procedure has ended without the NC: at the panel, or the module has started anew');
      }
      repeated = carriedOut === present.number ? repeated + 1 : 0;
      if (repeated > TRIES) {
        throw new RunError("the module takes the requests, but doesn't go on");
      }
      carriedOut = present.number;
      verdict = await (present.isVerdict ? this.#finish(present) : this.#carryOut(present));
    }
  }

  /** True if the notification isn't the present one any more. */
  #isPast(notification) {
    return this.#module.notification.number !== notification.number;
  }

  /** Does what a notification of a running procedure asks for. */
  async #carryOut(present) {
    switch (present.action) {
      case Action.spindleStop:
        await this.#bringTo(0, present);
        return this.#awaitNext(present);
      case Action.none:
      case Action.spindleStart:
        await this.#bringTo(this.#rotor.speed, present);
        return this.#awaitNext(present);
      case Action.setSpindleSpeed:
        await this.#bringTo(this.#rotor.speed, present);
        return this.#confirm(present);
      case Action.setWeights:
        await this.#bringTo(0, present);
        await this.#fit(present);
        return this.#confirm(present);
      case Action.measurementValuesOK:
        return this.#confirm(present);
      default:
        return this.#awaitNext(present);
    }
  }

  /** Waits for the next notification, and keeps the spindle at its speed. */
  async #awaitNext(present) {
    while (!this.#isPast(present)) {
      if (present.action === Action.measure && WRONG_SPEED.includes(this.#module.warning)) {
        await this.#bringTo(this.#rotor.speed, present);
      }
      const { changes } = this.#module;
      if (!(await this.#module.until(() => this.#module.changes !== changes, this.#times.again))) {
        this.#complainOfSilence();
      }
    }
  }

  #complainOfSilence() {
    if (this.#module.isSilent) {
      throw new RunError(`the module has said nothing for ${this.#times.silence / 1000} s`);
    }
  }

  async #confirm(present) {
    if (this.#isPast(present)) {
      return;
    }
    this.#say(`request ${Request.next}: next step`);
    const answer = await this.#module.ask(Request.next, () => !this.#isPast(present));
    if (answer === 'silent') {
      throw new RunError("the module doesn't answer");
    }
    if (answer === 'refused') {
      this.#say('the module refuses: no procedure runs');
    }
    // What is confirmed gives way to the next notification. If it doesn't, the confirmation went elsewhere, to a key
    // pressed at the panel meanwhile, say: then it's looked at again.
    await this.#module.until(() => this.#isPast(present), this.#times.again);
  }

  /** Brings the spindle to a speed and waits for it, unless the module asks for something else meanwhile. */
  async #bringTo(speed, present) {
    let told = false;
    for (let last; !this.#isPast(present); ) {
      const state = await this.#machine.request({ state: {} });
      if (Math.abs(state.speed - speed) < 0.5 && (speed === 0 || state.lock !== false)) {
        return;
      }
      if (!told && state.commanded !== speed) {
        this.#say(speed === 0 ? 'stops the spindle' : `runs the spindle at ${speed} rpm`);
        await this.#machine.request({ speed });
      }
      told = true;
      if (state.speed !== last) {
        this.#module.sign(); // a slow spindle isn't a silent module
        last = state.speed;
      }
      this.#complainOfSilence();
      await this.#module.until(() => this.#isPast(present), POLL_PERIOD);
    }
  }

  /** Sets weights and screws as the notification asks. */
  async #fit(present) {
    const filled = present.planes.filter(({ kind }) => kind !== 'none').length;
    for (const [column, fitting] of present.planes.entries()) {
      if (this.#isPast(present)) {
        return;
      }
      // The first columns belong to the only plane of a procedure, whichever of the rotor's it is.
      const plane = filled > 1 ? column + 1 : this.#plane;
      if (fitting.kind === 'weights') {
        this.#say(`sets the weights of plane ${plane} to ${fitting.angles.map((angle) => `${angle}°`).join(', ')}`);
        await this.#machine.request({ weights: { plane, angles: fitting.angles } });
      } else if (fitting.kind === 'screws') {
        const fitted = fitting.screws.map(({ angle, grams }) => ({
          hole: rotorHole(this.#rotor.rings[plane - 1], angle),
          grams,
        }));
        const words = fitted.map(({ hole, grams }) => `${grams} g in hole ${hole}`).join(', ') || 'none';
        this.#say(`fits the screws of plane ${plane}: ${words}`);
        await this.#machine.request({ screws: { plane, fitted } });
      }
    }
  }

  /**
   * Ends the procedure once its verdict stands. The module judges every sample of an average that is still filling,
   * and reports changes of the verdict only. So it counts when neither verdict nor warning has changed for as long as
   * a measurement takes, and the warning is the one that goes with the verdict: another one means that nothing is
   * being measured. An unbalance just at the target turns the verdict over and over; then the present one is taken.
   * Returns the verdict that was the last.
   */
  async #finish(first) {
    const time = this.#module.timeOfMeasurement;
    const begin = performance.now();
    let verdict = first;
    for (let present = first; present.isVerdict; present = this.#module.notification) {
      verdict = present;
      const { changes, warning } = this.#module;
      const isMeasured = warning === (present.isOverTarget ? Warning.overTarget : Warning.none);
      if (isMeasured && performance.now() - begin > FLIPPING * time) {
        return this.#end(present);
      }
      if (WRONG_SPEED.includes(warning)) {
        await this.#bringTo(this.#rotor.speed, present);
      }
      const isStanding = !(await this.#module.until(() => this.#module.changes !== changes, time));
      if (isStanding && isMeasured) {
        return this.#end(present);
      }
      if (isStanding) {
        this.#complainOfSilence();
      }
    }
    return verdict;
  }

  async #end(present) {
    this.#say(`request ${Request.end}: end`);
    const answer = await this.#module.ask(Request.end);
    if (answer === 'silent') {
      throw new RunError("the module doesn't answer");
    }
    await this.#module.until(() => this.#isPast(present), this.#times.again);
    return present;
  }
}
