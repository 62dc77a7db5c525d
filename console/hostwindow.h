#pragma once
#include <cstdint>
#include <functional>
#include <span>

#include "platform/window/wnd.h"

/// The console's top-level window, parent of the module's window: takes the messages that the module sends to
/// its host.
class CHostWindow : public CWnd {
public:
    /// Title that the module's auto repeat looks for.
    static constexpr const char* TITLE = "Corvane Machine Console";

    /// Creates the window with that title in front, of the given client size.
    bool Open(CSize Size);

    /// The softkey menu that the module asked for last, -1 for the configuration.
    std::int32_t GetMenu() const { return m_Menu; }
    /// 0 in the configuration, 1 pre-balancing, 2 re-balancing.
    std::int32_t GetActivity() const { return m_Activity; }
    /// The module has found its configuration at least once.
    bool IsConfigured() const { return m_bConfigured; }
    /// The configuration on show is calibrated, so that a re-balancing is possible.
    bool IsCalibrated() const { return m_bCalibrated; }
    /// The result that was to be saved last stands in the database; false before there was any.
    bool IsResultSaved() const { return m_bResultSaved; }
    /// Before the next run.
    void ForgetResult() { m_bResultSaved = false; }

    /// Called after any message of the module.
    std::function<void()> OnChanged;
    /// Called with the modules' frames, if the transport was asked to deliver them here too.
    std::function<void(std::span<const std::uint8_t>)> OnFrame;

protected:
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override;

private:
    LRESULT OnRawData(WPARAM wParam, LPARAM lParam);

    std::int32_t m_Menu = -1;
    std::int32_t m_Activity = 0;
    bool m_bConfigured = false;
    bool m_bCalibrated = false;
    bool m_bResultSaved = false;
};
