#pragma once
#include <cstdint>

class CPreBalNotification;
class CWeightPositionStore;

/// The main window as the procedures and methods see it.
class CPreBalMainWndInterface {
public:
    virtual ~CPreBalMainWndInterface() = default;
    /// Remembers the menu, repaints all, posts message 1075 with it to the parent.
    virtual void SetMenu(std::int32_t Menu) = 0;
    /// The menu last given to SetMenu.
    virtual std::int32_t GetMenu() const = 0;
    /// Repaint with mask 15.
    virtual void RepaintAll() = 0;
    /// Repaint with mask 8.
    virtual void RepaintMeasurement() = 0;
    virtual void PleaseQueryXYValuesNOW() = 0;
    /// 1 pre-balancing and 2 re-balancing post message 1124 to the parent, 0 posts nothing.
    virtual void SetBalancingActivity(std::int32_t Activity) = 0;
    virtual void PreBalNotification(const CPreBalNotification& rNotification) = 0;
    virtual void WarningModeChanged(std::uint32_t Mode) = 0;
    /// The window's one store.
    virtual const CWeightPositionStore& GetWeightPositionStore() const = 0;
    virtual CWeightPositionStore& GetWeightPositionStore() = 0;
    /// Degrees by which the test position differs from the one before.
    virtual int GetSpeedIncrement() = 0;
    /// The module's address as given to OnInitWindow.
    virtual std::uint32_t GetModuleAddress() const = 0;
};
