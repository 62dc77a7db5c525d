#pragma once
#include <QString>

/// Figures as sentences and plots of the console show them: with a point in every language, as the page.
namespace Figures {

/// A reading in its unit's number: "1.1", "120"; one decimal below 100. More of them where rounding would put
/// it on the other side of the target, or on it: "5.04" is over 5.
QString WriteReading(double Value, double Target);
/// The same beside nothing that it is compared with.
QString WriteReading(double Value);
/// "45°", 0 to 359.
QString WriteAngle(double Degrees);
/// "1.1 of 5 µm/s".
QString WriteOfTarget(double Value, double Target);

}  // namespace Figures
