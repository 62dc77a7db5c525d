#include "console/figures.h"

#include <cmath>

#include "contract/units.h"
#include "platform/rvldb/gettext.h"

namespace Figures {

namespace {

constexpr double WITH_DECIMALS_BELOW = 99.95;
constexpr int MAX_DECIMALS = 4;

int CountDecimals(double Value) {
    return std::abs(Value) < WITH_DECIMALS_BELOW ? 1 : 0;
}

}  // namespace

QString WriteReading(double Value) {
    return QString::number(Value, 'f', CountDecimals(Value));
}

QString WriteReading(double Value, double Target) {
    for (int nDecimals = CountDecimals(Value); nDecimals < MAX_DECIMALS; ++nDecimals) {
        QString Text = QString::number(Value, 'f', nDecimals);
        if ((Text.toDouble() > Target) == (Value > Target)) {
            return Text;
        }
    }
    return QString::number(Value, 'f', MAX_DECIMALS);
}

QString WriteAngle(double Degrees) {
    return QString::number(static_cast<int>(std::lround(Degrees)) % 360) + "°";
}

QString WriteOfTarget(double Value, double Target) {
    return QString::fromStdString(GetText("CONSOLE_OF_TARGET"))
        .arg(WriteReading(Value, Target), QString::number(Target), QString::fromUtf8(Units::UNBALANCE));
}

}  // namespace Figures
