#pragma once
#include <cstdint>
#include <functional>
#include <optional>
#include <span>

#include "contract/pages.h"
#include "contract/softkeymask.h"
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
    /// The page of the configuration on show (pages.h).
    std::uint32_t GetPage() const { return m_Page; }
    /// Which softkeys of the pages make sense (softkeymask.h).
    std::int32_t GetSoftkeyBits() const { return m_SoftkeyBits; }
    /// The module has found its configuration at least once.
    bool IsConfigured() const { return m_bConfigured; }
    /// The configuration on show is calibrated, so that a re-balancing is possible.
    bool IsCalibrated() const { return (m_SoftkeyBits & SoftkeyMask::eReBalancing) != 0; }
    /// The result that was to be saved last stands in the database; false before there was any.
    bool IsResultSaved() const { return m_ResultSaved.value_or(false); }
    /// The same; nothing before there was any.
    std::optional<bool> GetResultSaved() const { return m_ResultSaved; }
    /// Before the next run.
    void ForgetResult() { m_ResultSaved.reset(); }

    /// Called after any message of the module.
    std::function<void()> OnChanged;
    /// Called with the modules' frames, if the transport was asked to deliver them here too.
    std::function<void(std::span<const std::uint8_t>)> OnFrame;

protected:
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override;

private:
    LRESULT OnRawData(WPARAM wParam, LPARAM lParam);
    void SetSoftkeyBits(std::int32_t Mask, std::int32_t Values);

    std::int32_t m_Menu = -1;
    std::int32_t m_Activity = 0;
    std::uint32_t m_Page = Pages::eSettings;
    std::int32_t m_SoftkeyBits = 0;
    bool m_bConfigured = false;
    std::optional<bool> m_ResultSaved;
};
