#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "rvdlm/m_rtr/rtr_trim/methods/weightpositionstore.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/prebalmainwndinterface.h"
#include "rvdlm/m_rtr/rtr_trim/prebalnotification.h"

/// The main window as the procedures and methods see it, without a window: remembers what it was told, in
/// order, and answers what a test sets.
class CFakeMainWnd : public CPreBalMainWndInterface {
public:
    void SetMenu(std::int32_t Menu) override {
        m_Menus.push_back(Menu);
        Note("SetMenu " + std::to_string(Menu));
    }
    std::int32_t GetMenu() const override { return m_Menus.empty() ? -1 : m_Menus.back(); }
    void RepaintAll() override {
        ++m_nRepaintAll;
        Note("RepaintAll");
    }
    void RepaintMeasurement() override {
        ++m_nRepaintMeasurement;
        Note("RepaintMeasurement");
    }
    void PleaseQueryXYValuesNOW() override {
        ++m_nXYQueries;
        Note("PleaseQueryXYValuesNOW");
    }
    void SetBalancingActivity(std::int32_t Activity) override {
        m_Activities.push_back(Activity);
        Note("SetBalancingActivity " + std::to_string(Activity));
    }
    void PreBalNotification(const CPreBalNotification& rNotification) override {
        m_Notifications.push_back(rNotification);
        Note("PreBalNotification " + std::to_string(rNotification.m_Step) + " " +
             std::to_string(rNotification.m_Action));
    }
    void WarningModeChanged(std::uint32_t Mode) override {
        m_WarningModes.push_back(Mode);
        Note("WarningModeChanged " + std::to_string(Mode));
    }
    const CWeightPositionStore& GetWeightPositionStore() const override { return m_Store; }
    CWeightPositionStore& GetWeightPositionStore() override { return m_Store; }
    int GetSpeedIncrement() override { return m_SpeedIncrement; }
    std::uint32_t GetModuleAddress() const override { return m_ModuleAddress; }

    /// The menus shown so far, the last one on show.
    std::vector<std::int32_t> m_Menus;
    std::vector<std::int32_t> m_Activities;
    std::vector<std::uint32_t> m_WarningModes;
    std::vector<CPreBalNotification> m_Notifications;
    /// Every call that says something, in order: "SetMenu 4", "PreBalNotification 3 4" (step, action) and so
    /// on.
    std::vector<std::string> m_Calls;
    int m_nRepaintAll = 0;
    int m_nRepaintMeasurement = 0;
    int m_nXYQueries = 0;

    int m_SpeedIncrement = 30;
    std::uint32_t m_ModuleAddress = 5;
    CWeightPositionStore m_Store;

private:
    void Note(std::string Call) { m_Calls.push_back(std::move(Call)); }
};
