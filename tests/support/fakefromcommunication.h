#pragma once
#include <string>
#include <vector>

#include "rvdlm/m_rtr/rtr_trim/communication/iffromcommunication.h"
#include "tests/support/callrecord.h"

/// The main window as the communication sees it. Notes everything.
class CFakeFromCommunication : public IFFromCommunication, public CCallRecord {
public:
    void SendRawData(const std::uint8_t* pData, std::uint32_t nSize) override { NoteSent(pData, nSize); }
    void OnQueryModuleIdentification(Reason Why, const std::string* pArticle,
                                     const std::uint32_t* pSerial) override {
        Note("Identification", Why, (pArticle != nullptr ? *pArticle : "null") + Text(pSerial));
    }
    void OnSetRequest(Reason Why, const CSet* pSet) override {
        if (pSet != nullptr) {
            m_Sets.push_back(*pSet);
        }
        Note("Set", Why, pSet != nullptr ? std::to_string(pSet->Number) : "null");
    }
    void OnModuleState(Reason Why, const std::uint32_t* pUILocked, const std::uint32_t* pOutOfLockPlane1,
                       const std::uint32_t* pInvalidRPMPlane1, const std::uint32_t* pOutOfLockPlane2,
                       const std::uint32_t* pInvalidRPMPlane2, const std::uint32_t* pWrongState) override {
        Note("ModuleState", Why,
             "locked" + Text(pUILocked) + " lock" + Text(pOutOfLockPlane1) + Text(pOutOfLockPlane2) + " rpm" +
                 Text(pInvalidRPMPlane1) + Text(pInvalidRPMPlane2) + " wrong" + Text(pWrongState));
    }
    void OnRPMData(Reason Why, const std::uint32_t* pPlane, const std::uint32_t* pRPM) override {
        Note("RPM", Why, "plane" + Text(pPlane) + Text(pRPM));
    }
    void OnUnbalanceXYValues(Reason Why, const std::uint32_t* pPlane, const std::uint32_t* pX,
                             const std::uint32_t* pY) override {
        Note("XY", Why, "plane" + Text(pPlane) + Text(pX) + Text(pY));
    }

    std::vector<CSet> m_Sets;
};
