#pragma once
#include <stdexcept>
#include <string>
#include <vector>

#include "contract/prebalprogress.h"
#include "platform/window/dc.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/prebalancing.h"

/// What the tests see of a procedure: outlives the procedure, which the window owns.
struct CFakeSequenceRecord {
    /// The calls in order: "StartPreBalancing 3000 0 1", "KeyPressed eNext" and so on.
    std::vector<std::string> m_Calls;
    bool m_bAlive = false;
    /// What operations answer.
    int m_Started = 1;
    int m_KeyTaken = 1;
    bool m_bCommit = false;
    bool m_bFailureWithNoReturn = false;
    bool m_bDependsOnModuleState = true;
    /// Thrown by the next operation, if not empty.
    std::string m_Throw;
    /// Painted over the whole pane by Paint.
    COLORREF m_Color = RGB(1, 2, 3);
};

/// A procedure without steps: remembers what it was told.
class CFakeSequence : public CPreBalancing {
public:
    CFakeSequence(CFakeSequenceRecord& rRecord, CPreBalMainWndInterface* pMainWnd,
                  PreBalDB::CPreBalBaseTableEntry& rEntry, const std::string& rSetName)
        : CPreBalancing(pMainWnd, rEntry, rSetName), m_rRecord(rRecord), m_rEntry(rEntry) {
        m_rRecord.m_bAlive = true;
    }
    ~CFakeSequence() override { m_rRecord.m_bAlive = false; }

    void RestartMeasurement() override {}
    void OnMeasurementTick() override {}
    int StartPreBalancing(std::uint16_t wRPM, int NotLocked, int InvalidRPM) override {
        Note("StartPreBalancing " + Conditions(wRPM, NotLocked, InvalidRPM));
        return m_rRecord.m_Started;
    }
    int StartReBalancing(std::uint16_t wRPM, int NotLocked, int InvalidRPM) override {
        Note("StartReBalancing " + Conditions(wRPM, NotLocked, InvalidRPM));
        return m_rRecord.m_Started;
    }
    void AbortBalancing(std::uint32_t WarningMode) override {
        Note("AbortBalancing " + std::to_string(WarningMode));
    }
    int KeyPressed(KeyAction Action) override {
        Note(std::string("KeyPressed ") + KeyActionToString(Action));
        return m_rRecord.m_KeyTaken;
    }
    bool CommitChanges() override {
        Note("CommitChanges");
        if (m_rRecord.m_bCommit) {
            m_rEntry.SetIsCalibrated(1);
        }
        return m_rRecord.m_bCommit;
    }
    bool IsFailureWithNoReturn() const override { return m_rRecord.m_bFailureWithNoReturn; }
    bool DependsOnModuleState() const override { return m_rRecord.m_bDependsOnModuleState; }
    void Paint(CDC* pDC, const CRect& rRect, unsigned Mask) override {
        m_rRecord.m_Calls.push_back("Paint " + std::to_string(Mask));
        if (Mask == ePaintAll) {
            pDC->FillSolidRect(CRect(rRect.left, rRect.top, rRect.left + 10, rRect.top + 10),
                               m_rRecord.m_Color);
        }
    }
    void CurrentRPM(std::uint16_t wRPM) override { Note("CurrentRPM " + std::to_string(wRPM)); }
    void CurrentXYValuePlane1(std::int16_t x, std::int16_t y) override {
        Note("CurrentXYValuePlane1 " + std::to_string(x) + " " + std::to_string(y));
    }
    void CurrentXYValuePlane2(std::int16_t x, std::int16_t y) override {
        Note("CurrentXYValuePlane2 " + std::to_string(x) + " " + std::to_string(y));
    }
    void InvalidRPM(int bInvalid) override { Note("InvalidRPM " + std::to_string(bInvalid)); }
    void OutOfLock(int bNotLocked) override { Note("OutOfLock " + std::to_string(bNotLocked)); }
    void GetProgress(CPreBalProgress& rProgress) const override { rProgress.m_State = "eFake"; }

private:
    static std::string Conditions(std::uint16_t wRPM, int NotLocked, int InvalidRPM) {
        return std::to_string(wRPM) + " " + std::to_string(NotLocked) + " " + std::to_string(InvalidRPM);
    }
    void Note(std::string Call) {
        m_rRecord.m_Calls.push_back(std::move(Call));
        if (!m_rRecord.m_Throw.empty()) {
            throw std::runtime_error(std::exchange(m_rRecord.m_Throw, std::string()));
        }
    }

    CFakeSequenceRecord& m_rRecord;
    PreBalDB::CPreBalBaseTableEntry& m_rEntry;
};
