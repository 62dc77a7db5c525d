#include "tests/endurance/shift.h"

#include <algorithm>
#include <fstream>

#include "platform/rvmdb/directsql.h"
#include "rvlib/settings/installation.h"
#include "simulator/simulator.h"
#include "tests/endurance/nchand.h"
#include "tests/support/jsonschema.h"
#include "tests/support/testpaths.h"

using PreBalDB::CDirectSQL;

CShift::CShift(const CSettings& rSettings, CTally& rTally)
    : m_Settings(rSettings),
      m_rTally(rTally),
      m_Chance(rSettings.m_Seed),
      m_Kind(CRunKind::Draw(m_Chance)),
      m_bNc(m_Chance.Happens(0.3)) {
    Prepare();
}

void CShift::Prepare() {
    ResetInstallationRootForTest();  // that of the shift before
    if (m_Kind.NeedsConsistentOrder()) {
        std::ofstream(m_Installation.GetConfigDirectory() / "mcon.xdb")
            << "<Corvane><system_falconet "
               "PreBalancingConsistentWeightOrder=\"1\"></system_falconet></Corvane>";
    }
    m_Options.m_bHeadless = true;
    m_Options.m_ModuleLibrary = TestProgram("librtr_trim.so");
    m_Options.m_bShowPage = m_Settings.m_bTroubles && m_Chance.Happens(0.05);
    m_Options.m_bArchive = m_Chance.Happens(0.25);
    m_Options.m_Nc = m_bNc ? COptions::Nc::eOpcUa : COptions::Nc::ePanel;
    m_Kind.Choose(m_Options);
    if (m_bNc) {
        CNcHand::LinkItems();
    }
}

bool CShift::Open() {
    m_pSession = std::make_unique<CConsoleSession>(m_Options, &m_Kind.m_Rotor,
                                                   m_Installation.GetDatabaseFile().string());
    m_pSession->OnSay = [](const std::string&) {};
    m_pTroubles = std::make_unique<CTroubles>(*m_pSession, GetConnection(), m_Chance);
    m_pTroubles->OnStoreChanged = [this] { m_Stored = ReadStore(); };
    if (m_Settings.m_bTroubles && m_Chance.Happens(0.2)) {
        std::string How;
        CTroubles::StrikeLine(*m_pSession->GetSimulator(), m_Chance, How);
    }
    if (!m_pSession->Initialise()) {
        Break("the machine is not found");
        return false;
    }
    m_pTroubles->End();
    m_pSession->Commission();
    return true;
}

void CShift::Work(const std::function<void(int)>& rOnRun) {
    const int nRuns = m_Settings.m_nRuns > 0 ? m_Settings.m_nRuns : 1 + static_cast<int>(m_Chance.Draw(5));
    bool bGoesOn = Open();
    bool bCalibrated = false;
    for (int nRun = 0; nRun < nRuns && bGoesOn; ++nRun) {
        const bool bRebalance = bCalibrated && m_Chance.Happens(0.5);
        if (nRun > 0) {
            Wear();
        }
        bGoesOn = Run(bRebalance);
        bCalibrated = bCalibrated || !ReadCalibration().empty();
        if (rOnRun) {
            rOnRun(nRun + 1);
        }
    }
    m_pTroubles.reset();
    m_pSession.reset();
    m_rTally.m_VirtualMs += m_Loop.Now();
}

void CShift::Wear() {
    CSimulator& rSimulator = *m_pSession->GetSimulator();
    for (const std::size_t Plane : m_Kind.GetPlanes()) {
        const CRotorFile::CUnbalance& rAtFirst = m_Kind.m_Rotor.m_Planes[Plane].m_Unbalance;
        const double Angle = rAtFirst.m_AngleDeg + m_Chance.Between(0.0, 50.0);
        rSimulator.Carry({{"unbalance",
                           {{"plane", Plane + 1},
                            {"amount", rAtFirst.m_Amount * m_Chance.Between(0.8, 1.0)},
                            {"angle_deg", Angle < 360.0 ? Angle : Angle - 360.0}}}});
    }
}

ExitCode CShift::Drive(CHeadlessRun& rRun, bool bRebalance) {
    if (!m_bNc) {
        return rRun.Run();
    }
    // Where the means are is known from standstill only, after a run that saved nothing.
    if (!m_Kind.m_bStartTurning || (bRebalance && m_pSession->AreMeansElsewhere())) {
        m_pSession->GetSimulator()->Carry({{"speed", 0}});
        m_Loop.Advance(8000);
    }
    CNcHand Hand(*m_pSession);
    Hand.Start(bRebalance ? NcRequests::eReBalance : NcRequests::ePreBalance);
    return rRun.Run();
}

bool CShift::Run(bool bRebalance) {
    m_Options.m_Procedure = bRebalance ? COptions::Procedure::eRebalance : COptions::Procedure::ePrebalance;
    m_Machine = m_pSession->GetMachineName();
    m_Stored = ReadStore();
    m_Lines.clear();
    const CRotor& rRotor = m_pSession->GetSimulator()->GetRotor();
    m_Judge.BeginRun(rRotor, bRebalance);
    if (m_Settings.m_bTroubles) {
        m_pTroubles->Begin(m_bNc);
    }
    CHeadlessRun Headless(*m_pSession, m_Options);
    Headless.OnProgress = [this](const std::string& rLine) { m_Lines.push_back(rLine); };
    const ExitCode Result = Drive(Headless, bRebalance);
    Judge(Headless, Result, bRebalance);
    const bool bStopped = m_pSession->Look().m_bRunning || m_pTroubles->IsSetChanged();
    m_pTroubles->End();
    return !bStopped;
}

void CShift::Judge(CHeadlessRun& rRun, ExitCode Result, bool bRebalance) {
    const nlohmann::json Report = rRun.GetReport().ToJson();
    const std::set<CTroubles::Kind>& rHappened = m_pTroubles->GetHappened();
    for (const CTroubles::Kind What : rHappened) {
        ++m_rTally.m_Troubles[What];
    }
    CTally::CRuns& rRuns = m_rTally.m_Runs[m_Kind.GetName() + (bRebalance ? ", again" : "")];
    ++rRuns.m_nBegun;
    ++m_rTally.m_Results[Report.at("result").get<std::string>() + ", exit " + std::to_string(Result)];
    if (const std::string Wrong = CheckReport(Report); !Wrong.empty()) {
        Break("the report is not as it should be: " + Wrong);
    }
    const std::string Where = "seed " + std::to_string(m_Settings.m_Seed) + "\n" + m_pTroubles->GetHistory();
    for (const auto& rText : Report.at("assertions")) {
        m_rTally.TakeAssertion(rText.get<std::string>(), rHappened, Where);
    }
    const bool bVerdict = Result == eExitWithinTarget || Result == eExitOverTarget;
    rRuns.m_nSaved += bVerdict ? 1 : 0;
    rRuns.m_nTold += bVerdict ? 0 : 1;
    if (!bVerdict) {
        return JudgeEnd(Report);
    }
    const std::string Calibration = ReadCalibration();
    if (Calibration.empty()) {
        Break("a saved result is not in the store");
    }
    for (const std::string& rBroken :
         m_Judge.Judge(m_pSession->GetSimulator()->GetRotor(), Report, Calibration)) {
        Break(rBroken);
    }
}

// Told, and for a reason; and nothing was written.
void CShift::JudgeEnd(const nlohmann::json& rReport) {
    const std::set<CTroubles::Kind>& rHappened = m_pTroubles->GetHappened();
    if (std::ranges::none_of(rHappened, CTroubles::MayEndRun)) {
        Break("the run has no result: " + (m_Lines.empty() ? std::string() : m_Lines.back()));
    }
    if (m_Lines.empty() || m_Lines.back().empty()) {
        Break("nobody is told why the run has no result");
    }
    if (const std::string Stored = ReadStore(); rReport.at("saved") == false && Stored != m_Stored) {
        // A result that was kept in memory, or one whose final measurement was broken off: what its test runs
        // have found is as good as any.
        ++m_rTally.m_nKept;
        std::vector<std::string> Broken;
        m_Judge.JudgeCalibration(ReadCalibration(), Broken);
        for (const std::string& rBroken : Broken) {
            Break("the run was not saved, and the store has changed from\n" + m_Stored + "to\n" + Stored +
                  rBroken);
        }
    }
}

void CShift::Break(const std::string& rPromise) {
    m_rTally.Break(rPromise + " (" + m_Kind.GetName() + ")\n" + m_pTroubles->GetHistory(),
                   "seed " + std::to_string(m_Settings.m_Seed));
}

std::string CShift::ReadStore() const {
    CDirectSQL Store(GetConnection());
    std::string Dump;
    for (const std::string Table : {"configuration", "single_plane", "two_plane", "weight_compensation",
                                    "screw_compensation", "screw_table", "screw"}) {
        std::string Columns;
        // The beginning of a run counts as a change, and notes the plane.
        for (const auto& rRow : Store.Query("SELECT name FROM pragma_table_info('" + Table +
                                            "') WHERE name NOT IN ('revision', 'plane')")) {
            Columns += (Columns.empty() ? "quote(" : "||','||quote(") + rRow.GetText(0) + ")";
        }
        for (const auto& rRow : Store.Query(
                 "SELECT " + Columns + " FROM " + Table + " WHERE machine = ? ORDER BY 1", {m_Machine})) {
            Dump += Table + ": " + rRow.GetText(0) + "\n";
        }
    }
    return Dump;
}

std::string CShift::ReadCalibration() const {
    const auto Rows = CDirectSQL(GetConnection())
                          .Query(std::string("SELECT p.inv_a FROM ") +
                                     (m_Kind.IsTwoPlane() ? "two_plane" : "single_plane") +
                                     " p JOIN configuration c ON c.machine = p.machine AND c.name = "
                                     "p.configuration WHERE c.is_calibrated <> 0 AND c.machine = ?",
                                 {m_Machine});
    return Rows.empty() ? std::string() : Rows.front().GetText(0);
}
