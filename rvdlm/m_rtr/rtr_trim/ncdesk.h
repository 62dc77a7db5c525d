#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

#include "rvdlm/m_rtr/rtr_trim/nc/prebalfromncinterface.h"
#include "rvdlm/m_rtr/rtr_trim/nc/prebalinterfacefromnc.h"
#include "rvdlm/m_rtr/rtr_trim/nc/prebalinterfacetonc.h"
#include "rvdlm/m_rtr/rtr_trim/nc/prebalinterfacetoncwarnings.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/prebalancing.h"
#include "rvdlm/m_rtr/rtr_trim/prebalnotification.h"

/// What the desk needs of the window to serve a request; none may be empty.
struct CNCDeskCallbacks {
    using StartOperation = int (CPreBalancing::*)(std::uint16_t wRPM, int NotLocked, int InvalidRPM);

    /// The running procedure, or null.
    std::function<CPreBalancing*()> m_GetProcedure;
    /// Whether there is a configuration to start with.
    std::function<bool()> m_HasConfiguration;
    std::function<bool()> m_IsCalibrated;
    /// Saves what was changed in the configuration shown.
    std::function<void()> m_SaveConfiguration;
    /// Starts a procedure by one of its two operations, with the speed and flags on hand; nonzero for
    /// success.
    std::function<int(StartOperation pStart)> m_Start;
    /// Ends the running procedure, and keeps its result if it has one; false if that couldn't be kept.
    std::function<bool()> m_End;
    /// Carries out what the NC has called for; no exception may leave it.
    std::function<void(const char* pName, const std::function<void()>& rOperation)> m_Guard;
};

/// The NC's counter: takes its requests and answers them in the same item, and tells it steps and warnings.
/// Each of the three items is there only if it is linked and the server in reach; without it nothing is sent
/// and nothing fails. A write that fails, at once or later, is an assertion. Window thread only.
class CNCDesk {
public:
    explicit CNCDesk(CNCDeskCallbacks Callbacks) : m_Callbacks(std::move(Callbacks)) {}

    /// Connects to the OPC server, if an item is linked, and makes those that are. Requests go to rTarget,
    /// which hands them to OnValueFromNCChanged.
    void Connect(CPreBalFromNCInterface& rTarget);

    /// A request; 0 is none. Answered when it has been carried out.
    void OnValueFromNCChanged(std::int32_t Value);
    /// Writes an answer (NcRequests::Answer), by which the item is ready for the next request.
    void ResetNotificationFromNC(std::int32_t nErrorCode);
    void PreBalNotification(const CPreBalNotification& rNotification);
    /// A step alone: unlike in a running procedure the unused values are 0 here.
    void SendStep(CPreBalNotification::Step Step);
    /// The number of the warning shown, 0 for none.
    void WarningModeChanged(std::uint32_t Mode);

    const CPreBalInterfaceFromNC* GetInterfaceFromNC() const { return m_pInterfaceFromNC.get(); }
    const CPreBalInterfaceToNC* GetInterfaceToNC() const { return m_pInterfaceToNC.get(); }
    const CPreBalInterfaceToNCWarnings* GetInterfaceToNCWarnings() const {
        return m_pInterfaceToNCWarnings.get();
    }

private:
    /// The handlers of the requests give the answer.
    using RequestHandler = std::int32_t (CNCDesk::*)();
    struct CRequest {
        std::int32_t m_Value;
        RequestHandler m_pHandler;
    };
    static const CRequest ms_Requests[];

    std::int32_t OnNCStartPreBalancing();
    std::int32_t OnNCStartReBalancing();
    std::int32_t OnNCNextStep();
    std::int32_t OnNCAbort();

    CNCDeskCallbacks m_Callbacks;
    std::unique_ptr<CPreBalInterfaceFromNC> m_pInterfaceFromNC;
    std::unique_ptr<CPreBalInterfaceToNC> m_pInterfaceToNC;
    std::unique_ptr<CPreBalInterfaceToNCWarnings> m_pInterfaceToNCWarnings;
};
