/**
 * The ring of holes of a plane, and its two numberings. The module counts holes clockwise as seen from the plane's end,
 * and so do the angles of its notifications; on the rotor the numbers are engraved in the sense of its scale. Hole 1 is
 * the same in both. The module's holering.h says the same.
 * @typedef {{holes: number, counterClockwise: boolean}} HoleRing
 */

/**
 * Module's number of the hole at an angle, which a notification rounds to whole degrees.
 * @param {HoleRing} ring
 */
export const moduleHole = (ring, angle) => (Math.round((angle * ring.holes) / 360) % ring.holes) + 1;

/**
 * Number engraved at the hole at an angle of a notification.
 * @param {HoleRing} ring
 */
export function rotorHole(ring, angle) {
  const hole = moduleHole(ring, angle);
  return ring.counterClockwise ? ((ring.holes - (hole - 1)) % ring.holes) + 1 : hole;
}
