#pragma once
#include "console/situation.h"

/// What somebody at the machine does next. Only from what page, menu and notification say.
enum class Deed {
    eWait,
    eStopSpindle,
    eStartSpindle,   ///< to the calibrated speed, or to the machine's own at the first measurement
    eFitAndConfirm,  ///< put the weights where the notification says, then press the softkey
    eConfirm,        ///< press the softkey
    eJudge,          ///< the verdict stands: end the run and keep its result
    eGiveUp          ///< the procedure has failed
};

/// The rules of a patient operator: do what the action of the notification says; confirm only when the menu
/// has the key; judge when the average of the final measurement is complete.
Deed ChooseDeed(const CSituation& rSituation);

/// Whether a step of a notification is the verdict at the end of a procedure.
bool IsVerdict(std::int32_t Step);

/// Whether that verdict stands on a measurement: on whole windows taken in lock and at speed in all planes.
bool IsMeasuredVerdict(const CSituation& rSituation);
