#include "console/isofigures.h"

#include <cmath>
#include <utility>

#include "archive/isoassessment.h"
#include "archive/report/reporttext.h"
#include "contract/units.h"
#include "platform/rvldb/gettext.h"

using ReportText::Digits;
using ReportText::General;
using ReportText::Say;

CIsoFigures::CIsoFigures(CRunSetup Setup) {
    m_Record.m_Setup = std::move(Setup);
}

std::string CIsoFigures::GetResult() const {
    const CIsoData& rData = m_Record.m_Setup.m_Iso;
    const CIso21940 Iso(rData, MakeIsoScale(m_Record));
    const std::optional<double> Permissible = Iso.GetPermissible();
    if (!Permissible) {
        return GetText("ISO_MISSING");
    }
    std::string Text = Say("ISO_PERMISSIBLE", {Digits(*Permissible)});
    const auto& rPlanes = m_Record.m_Setup.m_Planes;
    if (rPlanes[0] && rPlanes[1]) {
        Text += "\n" + Say("ISO_PER_PLANE", {Digits(*Iso.GetPermissible(0)), Digits(*Iso.GetPermissible(1))});
    }
    if (const auto Target = Iso.GetTarget(rData.m_Grade)) {
        Text += "\n" + Say("ISO_TARGET", {Digits(*Target), Units::UNBALANCE});
    } else {
        Text += "\n" + GetText("ISO_NO_TARGET");
    }
    return Text;
}

std::string CIsoFigures::GetTargetOfGrade() const {
    const CRunSetup& rSetup = m_Record.m_Setup;
    const CIso21940 Iso(rSetup.m_Iso, MakeIsoScale(m_Record));
    const std::optional<double> Target = Iso.GetTarget(rSetup.m_Iso.m_Grade);
    if (!Target) {
        return GetText(Iso.GetPermissible() ? "ISO_NO_TARGET" : "ISO_MISSING");
    }
    const std::optional<double> Present = Iso.GetGrade(rSetup.m_TargetUnbalance);
    const std::string PresentText = Say("ISO_PRESENT", {std::to_string(rSetup.m_TargetUnbalance),
                                                        Units::UNBALANCE, Digits(Present.value_or(0.0), 2)});
    // The target is a whole number: below 1 no setting of it proves the grade.
    if (*Target < 1.0) {
        return Say("ISO_TOO_FINE", {General(rSetup.m_Iso.m_Grade), Digits(*Target, 2), Units::UNBALANCE}) +
               "\n" + PresentText;
    }
    return Say("ISO_MEANS",
               {General(rSetup.m_Iso.m_Grade), ReportText::Fixed(std::floor(*Target), 0), Units::UNBALANCE}) +
           "\n" + PresentText;
}
