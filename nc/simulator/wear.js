/** A tenth of a weight to the side of where the unbalance was: enough to be measured, well within capacity. */
const FRACTION = 0.1;

/**
 * Changes the rotor a little, as grinding does between a pre-balancing and the re-balancing after it.
 * @param {import('./machinelink.js').MachineLink} machine
 * @param {(text: string) => void} say
 */
export async function wear(machine, say) {
  const { unbalance } = await machine.request({ state: {} });
  if (!Array.isArray(unbalance)) {
    say("the machine doesn't tell its rotor's unbalance, so the wheel stays as it is");
    return;
  }
  say('the wheel wears');
  for (const [index, { amount, angle_deg: angle }] of unbalance.entries()) {
    const turn = (Math.atan2(FRACTION, amount) * 180) / Math.PI;
    await machine.request({
      unbalance: { plane: index + 1, amount: Math.hypot(amount, FRACTION), angle_deg: (angle + turn) % 360 },
    });
  }
}
