#include "console/linkanalysis.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

#include "console/checkreport.h"
#include "console/linkfacts.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/storetexts.h"

namespace {

using Family = CModuleFacts::Family;
using Kind = CLinkFacts::Kind;
using PreBalDB::StoreTexts::Join;
using Trouble = CLinkFacts::Trouble;
using Texts = CCheckReport::Texts;

/// One frame may be cut in two when a line is opened in its middle.
constexpr std::uint64_t FIRST_DAMAGE = 1;
/// Of all frames; beyond it answers and reports are lost so often that a measurement doesn't come to its end.
constexpr double MUCH_DAMAGE = 0.1;
/// A sensor's readings scatter: as many alike are none.
constexpr std::uint64_t ALIKE = 8;
/// Readings in a second; a measurement takes a sample every 50 ms, and with fewer some count twice and more.
constexpr double FEW_READINGS = 10.0;
constexpr std::array<std::uint8_t, 2> KESTREL_ADDRESSES = {5, 6};
constexpr std::uint8_t LANNER_ADDRESS = 9;

const std::map<Trouble, const char*> TROUBLES = {
    {Trouble::eMissing, "link-missing"},         {Trouble::eNoPort, "link-no-port"},
    {Trouble::eNoRight, "link-no-right"},        {Trouble::eInUse, "link-in-use"},
    {Trouble::eRefused, "link-refused"},         {Trouble::eNoSuchHost, "link-no-such-host"},
    {Trouble::eUnreachable, "link-unreachable"}, {Trouble::eNoAnswer, "link-no-answer"},
    {Trouble::eClosed, "link-closed"},           {Trouble::eLost, "link-lost"},
    {Trouble::eOther, "link-not-opened"}};

std::string ToText(std::uint64_t Number) {
    return std::to_string(Number);
}

template <class Numbers>
std::string ToList(const Numbers& rNumbers) {
    Texts List;
    for (const auto Number : rNumbers) {
        List.push_back(ToText(Number));
    }
    return Join(List);
}

const char* GetFamilyName(const CModuleFacts& rModule) {
    switch (rModule.m_Family) {
        case Family::eKestrel:
            return "Kestrel";
        case Family::eLanner:
            return "Lanner";
        case Family::eUnknown:
            break;
    }
    return "?";
}

/// Bytes and frames, whoever sent them.
class CLineAnalysis {
public:
    CLineAnalysis(const CLinkFacts& rFacts, CCheckReport& rReport) : m_rFacts(rFacts), m_rReport(rReport) {}

    /// False if there is nothing more to look at.
    bool SayOpening() const {
        const auto Found = TROUBLES.find(m_rFacts.m_Trouble);
        if (Found == TROUBLES.end()) {
            m_rReport.AddOk("link-open");
            return true;
        }
        switch (m_rFacts.m_Trouble) {
            case Trouble::eNoRight:
                m_rReport.AddProblem(Found->second, {m_rFacts.m_TroubleText}, {GetGroup()});
                break;
            case Trouble::eInUse:
                m_rReport.AddProblem(
                    Found->second,
                    {m_rFacts.m_Holder.empty() ? GetText("CHECK_LINK_SOMEBODY") : m_rFacts.m_Holder});
                break;
            default:
                m_rReport.AddProblem(Found->second, {m_rFacts.m_TroubleText});
                break;
        }
        return false;
    }
    void SayFrames() const {
        if (m_rFacts.m_FittingBaud) {
            m_rReport.AddProblem("link-wrong-baud",
                                 {ToText(m_rFacts.m_Baud), ToText(*m_rFacts.m_FittingBaud)},
                                 {ToText(*m_rFacts.m_FittingBaud)});
        } else if (m_rFacts.m_nGood == 0) {
            return SayNoFrames();
        }
        m_rReport.AddOk("link-frames", {ToText(m_rFacts.m_nBytes), ToText(m_rFacts.m_nGood)});
        SayDamage();
        if (m_rFacts.m_nEchoes > 0) {
            m_rReport.AddNote("link-echo", {ToText(m_rFacts.m_nEchoes)});
        }
        if (m_rFacts.m_nOther > 0) {
            m_rReport.AddProblem("link-other-master",
                                 {ToText(m_rFacts.m_OtherAddress), ToText(m_rFacts.m_nOther)});
        }
    }

private:
    /// Nobody is to join the administrators for a port's sake.
    std::string GetGroup() const {
        return m_rFacts.m_Group.empty() || m_rFacts.m_Group == "root" ? "dialout" : m_rFacts.m_Group;
    }
    void SayNoFrames() const {
        if (m_rFacts.m_nEchoes > 0) {
            m_rReport.AddProblem("link-only-echo", {ToText(m_rFacts.m_nEchoes)});
        } else if (m_rFacts.m_nBytes == 0) {
            m_rReport.AddProblem("link-no-bytes", {}, {ToList(m_rFacts.m_Asked)});
        } else if (m_rFacts.m_nZeros == m_rFacts.m_nBytes) {
            m_rReport.AddProblem("link-only-zeros", {ToText(m_rFacts.m_nBytes)});
        } else if (m_rFacts.m_Kind == Kind::eSerial) {
            m_rReport.AddProblem("link-no-frames", {ToText(m_rFacts.m_nBytes), ToText(m_rFacts.m_Baud),
                                                    ToList(m_rFacts.m_Tried)});
        } else {
            m_rReport.AddProblem("link-no-frames-behind-server", {ToText(m_rFacts.m_nBytes)});
        }
    }
    void SayDamage() const {
        if (m_rFacts.m_nBad <= FIRST_DAMAGE) {
            return;
        }
        const double Share =
            static_cast<double>(m_rFacts.m_nBad) / static_cast<double>(m_rFacts.m_nBad + m_rFacts.m_nGood);
        const Texts Counts = {ToText(m_rFacts.m_nBad), ToText(m_rFacts.m_nBad + m_rFacts.m_nGood)};
        if (Share > MUCH_DAMAGE) {
            m_rReport.AddProblem("link-bad-frames", Counts);
        } else {
            m_rReport.AddNote("link-some-bad-frames", Counts);
        }
    }

    const CLinkFacts& m_rFacts;
    CCheckReport& m_rReport;
};

/// A module, from who it is to what it reads.
class CModuleAnalysis {
public:
    CModuleAnalysis(const CModuleFacts& rModule, CCheckReport& rReport)
        : m_rModule(rModule), m_rReport(rReport), m_Address(ToText(rModule.m_Address)) {}

    void Say() const {
        if (!m_rModule.m_bIdentified && !m_rModule.m_Set) {
            m_rReport.AddProblem("link-one-way", {m_Address});
        } else if (m_rModule.m_Family == Family::eUnknown) {
            m_rReport.AddProblem("link-unknown-family", {m_Address});
        } else {
            m_rReport.AddOk("link-module", {m_Address, GetFamilyName(m_rModule), m_rModule.m_Article,
                                            ToText(m_rModule.m_Serial), ToText(m_rModule.m_Software),
                                            m_rModule.m_Set ? ToText(*m_rModule.m_Set) : "?"});
        }
        if (m_rModule.m_Family != Family::eUnknown) {
            SayState();
            if (m_rModule.m_Measured.empty()) {
                m_rReport.AddProblem("link-no-plane", {m_Address});
            } else {
                SaySpeed();
            }
        }
    }

private:
    void SayState() const {
        if (m_rModule.m_bWrongState) {
            m_rReport.AddProblem("link-wrong-state", {m_Address, m_rModule.m_StateName});
        }
        if (m_rModule.m_RpmFactor != 1) {
            m_rReport.AddProblem("link-speed-factor", {m_Address, ToText(m_rModule.m_RpmFactor)});
        }
        if (m_rModule.m_bUiLocked) {
            m_rReport.AddNote("link-keys-locked", {m_Address});
        }
    }
    void SaySpeed() const {
        if (!m_rModule.m_SpeedRpm) {
            return m_rReport.AddProblem("link-no-speed", {m_Address});
        }
        const std::string Speed = ToText(*m_rModule.m_SpeedRpm);
        if (!m_rModule.IsTurning()) {
            return m_rReport.AddNote("link-standing", {m_Address, Speed});
        }
        if (!m_rModule.IsSteady()) {
            m_rReport.AddNote("link-speed-changes",
                              {m_Address, ToText(m_rModule.m_SlowestRpm), ToText(m_rModule.m_FastestRpm)});
        } else {
            m_rReport.AddOk("link-speed", {m_Address, Speed});
        }
        for (const std::size_t nPlane : m_rModule.m_Measured) {
            SayLock(nPlane);
            SayReadings(nPlane);
        }
    }
    void SayLock(std::size_t nPlane) const {
        const CModuleFacts::CPlane& rPlane = m_rModule.m_Planes.at(nPlane);
        const Texts Place = {m_Address, ToText(nPlane + 1)};
        if (!m_rModule.m_bStateHeard) {
            return m_rReport.AddProblem("link-no-state", {m_Address});
        }
        if (m_rModule.IsSteady()) {
            if (!rPlane.m_bWasInLock) {
                m_rReport.AddProblem("link-never-in-lock", Place);
            } else if (rPlane.m_bInvalidSpeed) {
                m_rReport.AddProblem("link-speed-invalid", Place);
            } else if (rPlane.m_nLockLost > 0) {
                m_rReport.AddNote("link-lock-lost", {Place[0], Place[1], ToText(rPlane.m_nLockLost)});
            } else {
                m_rReport.AddOk("link-in-lock", Place);
            }
        }
        if (rPlane.m_bSensorFailure) {
            m_rReport.AddProblem("link-sensor-failure", Place);
        }
        if (rPlane.m_bOveramplified) {
            m_rReport.AddProblem("link-overamplified", Place);
        }
    }
    void SayReadings(std::size_t nPlane) const {
        const CModuleFacts::CPlane& rPlane = m_rModule.m_Planes.at(nPlane);
        const Texts Place = {m_Address, ToText(nPlane + 1)};
        // One may be the answer to a question for all planes.
        if (rPlane.m_nReadings < 2) {
            return m_rReport.AddProblem("link-no-readings", Place);
        }
        if (rPlane.m_nReadings >= ALIKE && !rPlane.m_bChanges) {
            return m_rReport.AddProblem("link-readings-frozen",
                                        {Place[0], Place[1], ToText(rPlane.m_nReadings),
                                         std::to_string(rPlane.m_X), std::to_string(rPlane.m_Y)});
        }
        const double Rate = rPlane.GetRate();
        const std::string Rounded = ToText(static_cast<std::uint64_t>(std::lround(Rate * 10.0)) / 10) + "." +
                                    ToText(static_cast<std::uint64_t>(std::lround(Rate * 10.0)) % 10);
        if (Rate < FEW_READINGS) {
            m_rReport.AddNote("link-few-readings", {Place[0], Place[1], Rounded});
        } else {
            m_rReport.AddOk("link-readings", {Place[0], Place[1], Rounded});
        }
    }

    const CModuleFacts& m_rModule;
    CCheckReport& m_rReport;
    std::string m_Address;
};

/// Who should be there, and who is.
class CAddressAnalysis {
public:
    CAddressAnalysis(const CLinkFacts& rFacts, CCheckReport& rReport) : m_rFacts(rFacts), m_rReport(rReport) {
        for (const auto& [Address, rModule] : rFacts.m_Modules) {
            (IsExpected(rModule) ? m_Expected : m_Others).push_back(Address);
        }
    }

    void Say() const {
        for (const std::uint8_t Address : m_rFacts.m_Expected) {
            if (!m_rFacts.m_Modules.contains(Address)) {
                m_rReport.AddProblem("link-address-silent", {ToText(Address)});
            }
        }
        if (m_Others.empty()) {
            return;
        }
        const std::string Others = ToList(m_Others);
        if (!m_rFacts.m_Expected.empty() && m_Expected.size() < m_rFacts.m_Expected.size()) {
            m_rReport.AddProblem("link-other-address", {Others}, {Others});
        } else {
            m_rReport.AddNote("link-further-address", {Others}, {Others});
        }
    }
    /// How a run on this line begins.
    void SayStart() const {
        const std::vector<std::uint8_t>& rUsed = m_Expected.empty() ? m_Others : m_Expected;
        if (rUsed.empty() || !m_rReport.IsReady()) {
            return;
        }
        const Family First = m_rFacts.m_Modules.at(rUsed.front()).m_Family;
        const bool bLanner = First == Family::eLanner;
        std::vector<std::uint8_t> Addresses;
        for (const std::uint8_t Address : rUsed) {
            if (m_rFacts.m_Modules.at(Address).m_Family == First && Addresses.size() < (bLanner ? 1U : 2U)) {
                Addresses.push_back(Address);
            }
        }
        std::string List = ToList(Addresses);
        List.erase(std::remove(List.begin(), List.end(), ' '), List.end());
        m_rReport.AddOk("link-start",
                        {m_rFacts.m_Link,
                         bLanner ? "lanner" : (Addresses.size() > 1 ? "kestrel-pair" : "kestrel"), List});
    }

private:
    bool IsExpected(const CModuleFacts& rModule) const {
        if (!m_rFacts.m_Expected.empty()) {
            return std::ranges::count(m_rFacts.m_Expected, rModule.m_Address) != 0;
        }
        return rModule.m_Family == Family::eLanner
                   ? rModule.m_Address == LANNER_ADDRESS
                   : std::ranges::count(KESTREL_ADDRESSES, rModule.m_Address) != 0;
    }

    const CLinkFacts& m_rFacts;
    CCheckReport& m_rReport;
    std::vector<std::uint8_t> m_Expected;
    std::vector<std::uint8_t> m_Others;
};

}  // namespace

void AnalyseLink(const CLinkFacts& rFacts, CCheckReport& rReport) {
    const CLineAnalysis Line(rFacts, rReport);
    if (!Line.SayOpening()) {
        return;
    }
    Line.SayFrames();
    if (rFacts.m_nGood == 0) {
        return;
    }
    if (rFacts.m_Modules.empty()) {
        return rReport.AddProblem("link-no-module", {ToText(rFacts.m_nGood)});
    }
    const CAddressAnalysis Addresses(rFacts, rReport);
    Addresses.Say();
    for (const auto& [Address, rModule] : rFacts.m_Modules) {
        CModuleAnalysis(rModule, rReport).Say();
    }
    Addresses.SayStart();
}
