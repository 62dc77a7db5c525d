#include "console/modulelistener.h"

#include <algorithm>
#include <utility>

#include "console/framecodes.h"
#include "platform/system/eventloop.h"
#include "rvlib/rvprt/kestrel/statemachine/kestrelprotocol.h"
#include "rvlib/rvprt/lanner/statemachine/lannerprotocol.h"

using namespace FrameCodes;

namespace {

constexpr std::uint8_t AMPLITUDE = 0x1D;
constexpr std::uint8_t COORDINATES = 0x1E;
constexpr std::uint8_t DIAGNOSIS = 0x1F;
constexpr std::uint8_t IDENTIFICATION = 8;
constexpr std::uint8_t KESTREL_SET = 0;
constexpr std::uint8_t LANNER_SET = 2;

/// What both families have in common: the chain of questions, and how facts are kept.
template <class Protocol>
class CListener : public IFModuleListener, protected Protocol {
public:
    CListener(CModuleFacts& rFacts, FrameSender Send)
        : Protocol(rFacts.m_Address), m_rFacts(rFacts), m_Send(std::move(Send)) {}

    void PutFrame(std::span<const std::uint8_t> Frame) override {
        Protocol::PutReceivedModuleData(Frame.data(), static_cast<std::uint32_t>(Frame.size()));
    }
    void AskAll() override {
        m_nQuestion = 0;
        AskNext();
    }
    void AskState() override { Protocol::QueryModuleState(); }
    bool IsAsking() const override { return m_nQuestion < QUESTIONS; }

protected:
    /// In the order in which the page asks them.
    enum Question : std::uint8_t { eIdentification, eSet, eState, eSpeed, eReading, QUESTIONS };

    /// After an answer, or when it is given up.
    void OnAnswered(Reason Why, Question Asked) {
        if (Why != Reason::eIndication && m_nQuestion == Asked) {
            ++m_nQuestion;
            AskNext();
        }
    }
    void KeepIdentification(const Comm::CModuleIdentification* pModule) {
        if (pModule != nullptr) {
            m_rFacts.m_bIdentified = true;
            m_rFacts.m_Software = pModule->m_SoftwareVersion;
            m_rFacts.m_Article = pModule->m_ArticleNumber;
            m_rFacts.m_Serial = pModule->m_SerialNumber;
        }
    }
    void KeepLock(std::size_t nPlane, bool bOutOfLock) {
        CModuleFacts::CPlane& rPlane = m_rFacts.m_Planes.at(nPlane);
        rPlane.m_nLockLost += bOutOfLock && rPlane.m_bWasInLock && !rPlane.m_bOutOfLock ? 1U : 0U;
        rPlane.m_bOutOfLock = bOutOfLock;
        rPlane.m_bWasInLock = rPlane.m_bWasInLock || !bOutOfLock;
    }
    void KeepSpeed(std::uint32_t Speed) {
        m_rFacts.m_SlowestRpm = m_rFacts.m_SpeedRpm ? std::min(m_rFacts.m_SlowestRpm, Speed) : Speed;
        m_rFacts.m_FastestRpm = std::max(m_rFacts.m_FastestRpm, Speed);
        m_rFacts.m_SpeedRpm = Speed;
    }
    void KeepReading(Reason Why, std::size_t nPlane, std::uint32_t X, std::uint32_t Y) {
        if (Why != Reason::eIndication || nPlane >= m_rFacts.m_Planes.size()) {
            return;  // an answer says nothing of how often it reports
        }
        CModuleFacts::CPlane& rPlane = m_rFacts.m_Planes.at(nPlane);
        const auto SignedX = static_cast<std::int16_t>(X);
        const auto SignedY = static_cast<std::int16_t>(Y);
        const std::uint64_t Now = IFEventLoop::Current().Now();
        if (rPlane.m_nReadings++ == 0) {
            rPlane.m_FirstReading = Now;
        } else if (SignedX != rPlane.m_X || SignedY != rPlane.m_Y) {
            rPlane.m_bChanges = true;
        }
        rPlane.m_LastReading = Now;
        rPlane.m_X = SignedX;
        rPlane.m_Y = SignedY;
    }

    CModuleFacts& m_rFacts;

private:
    void SendRawData(const std::uint8_t* pData, std::uint32_t nSize) override { m_Send({pData, nSize}); }
    void AskNext() {
        if (IsAsking() && Ask() == 0) {
            m_nQuestion = QUESTIONS;  // it could not even be sent
        }
    }
    int Ask() {
        switch (m_nQuestion) {
            case eIdentification:
                return Protocol::QueryModuleIdentification();
            case eSet:
                return Protocol::QueryActiveSet();
            case eState:
                return Protocol::QueryModuleState();
            case eSpeed:
                return Protocol::QueryRPMData();
            default:
                return Protocol::QueryUnbalanceXYValues();
        }
    }

    FrameSender m_Send;
    std::uint8_t m_nQuestion = QUESTIONS;
};

class CKestrelListener : public CListener<Kestrel::CKestrelProtocol> {
public:
    using CListener::CListener;

private:
    void OnQueryModuleIdentification(Reason Why, const Kestrel::CModuleIdentification* pModule) override {
        KeepIdentification(pModule);
        OnAnswered(Why, eIdentification);
    }
    void OnSetRequest(Reason Why, const Kestrel::CSet* pSet) override {
        if (pSet != nullptr) {
            m_rFacts.m_Set = pSet->m_Set;
            m_rFacts.m_RpmFactor = pSet->m_RPMFactor;
        }
        OnAnswered(Why, eSet);
    }
    void OnModuleState(Reason Why, const Kestrel::CModuleStateResponse* pState) override {
        using State = Kestrel::CModuleStateRequest;
        if (pState != nullptr) {
            m_rFacts.m_bStateHeard = true;
            m_rFacts.m_State = pState->m_ModuleState;
            m_rFacts.m_StateName = State::ModuleStateToString(pState->m_ModuleState);
            m_rFacts.m_bWrongState = pState->m_ModuleState != State::ePrebalancingStart;
            m_rFacts.m_bUiLocked = pState->m_UILocked != 0;
            KeepLock(0, pState->m_OutOfLock != 0);
            m_rFacts.m_Planes[0].m_bInvalidSpeed = pState->m_InvalidRPM != 0;
        }
        OnAnswered(Why, eState);
    }
    void OnRPMData(Reason Why, const std::uint32_t* pRPM) override {
        CKestrelProtocol::OnRPMData(Why, pRPM);
        if (pRPM != nullptr) {
            KeepSpeed(*pRPM);
        }
        OnAnswered(Why, eSpeed);
    }
    void OnUnbalanceXYValues(Reason Why, const std::uint32_t* pX, const std::uint32_t* pY) override {
        CKestrelProtocol::OnUnbalanceXYValues(Why, pX, pY);
        if (pX != nullptr && pY != nullptr) {
            KeepReading(Why, 0, *pX, *pY);
        }
        OnAnswered(Why, eReading);
    }
};

class CLannerListener : public CListener<Lanner::CLannerProtocol> {
public:
    using CListener::CListener;

private:
    void OnQueryModuleIdentification(Reason Why, const Lanner::CModuleIdentification* pModule) override {
        CLannerProtocol::OnQueryModuleIdentification(Why, pModule);
        KeepIdentification(pModule);
        OnAnswered(Why, eIdentification);
    }
    void OnSetRequest(Reason Why, const Lanner::CSet* pSet) override {
        if (pSet != nullptr) {
            m_rFacts.m_Set = pSet->m_Set;
            if (const Lanner::CSetParams* const pParams = pSet->GetSetParams()) {
                m_rFacts.m_SetName = pParams->SetName;
                KeepMode(pParams->Mode);
            }
        }
        OnAnswered(Why, eSet);
    }
    void KeepMode(std::uint8_t Mode) {
        using Params = Lanner::CSetParams;
        m_rFacts.m_Measured.clear();
        if (Mode != Params::eNothing && Mode != Params::ePlane2) {
            m_rFacts.m_Measured.push_back(0);
        }
        if (Mode != Params::eNothing && Mode != Params::ePlane1) {
            m_rFacts.m_Measured.push_back(1);
        }
    }
    void OnModuleState(Reason Why, const Lanner::CModuleStateResponse* pState) override {
        if (pState != nullptr) {
            m_rFacts.m_bStateHeard = true;
            m_rFacts.m_State = pState->m_ModuleState;
            m_rFacts.m_StateName = "SupervisionMode";
            m_rFacts.m_bUiLocked = pState->UILocked != 0;
            auto& rPlanes = m_rFacts.m_Planes;
            KeepLock(0, pState->Plane1OutOfLock != 0);
            KeepLock(1, pState->Plane2OutOfLock != 0);
            rPlanes[0].m_bInvalidSpeed = pState->Plane1RotationToSlow != 0;
            rPlanes[1].m_bInvalidSpeed = pState->Plane2RotationToSlow != 0;
            rPlanes[0].m_bSensorFailure = pState->Plane1SensorFailure != 0;
            rPlanes[1].m_bSensorFailure = pState->Plane2SensorFailure != 0;
            rPlanes[0].m_bOveramplified = pState->Plane1Overamplify != 0;
            rPlanes[1].m_bOveramplified = pState->Plane2Overamplify != 0;
        } else if (Why == Reason::eError) {
            // Its decoder takes no other state than the one in which the module works.
            m_rFacts.m_bStateHeard = true;
            m_rFacts.m_bWrongState = true;
            m_rFacts.m_StateName = "InvalidState";
        }
        OnAnswered(Why, eState);
    }
    void OnRPMData(Reason Why, const std::uint32_t* pPlane, const std::uint32_t* pRPM) override {
        CLannerProtocol::OnRPMData(Why, pPlane, pRPM);
        if (pRPM != nullptr) {
            KeepSpeed(*pRPM);
        }
        OnAnswered(Why, eSpeed);
    }
    void OnUnbalanceXYValues(Reason Why, const std::uint32_t* pPlane, const std::uint32_t* pX,
                             const std::uint32_t* pY) override {
        CLannerProtocol::OnUnbalanceXYValues(Why, pPlane, pX, pY);
        if (pPlane != nullptr && pX != nullptr && pY != nullptr) {
            KeepReading(Why, *pPlane, *pX, *pY);
        }
        OnAnswered(Why, eReading);
    }
};

}  // namespace

std::unique_ptr<IFModuleListener> MakeModuleListener(CModuleFacts& rFacts, FrameSender Send) {
    switch (rFacts.m_Family) {
        case CModuleFacts::Family::eKestrel:
            rFacts.m_Measured = {0};
            return std::make_unique<CKestrelListener>(rFacts, std::move(Send));
        case CModuleFacts::Family::eLanner:
            rFacts.m_Measured = {0, 1};
            return std::make_unique<CLannerListener>(rFacts, std::move(Send));
        case CModuleFacts::Family::eUnknown:
            break;
    }
    return nullptr;
}

CModuleFacts::Family TellFamily(std::span<const std::uint8_t> Frame) {
    using Family = CModuleFacts::Family;
    const std::size_t nPayload = Frame.size() - std::min(Frame.size(), HEADER);
    // A frame of a Lanner module names its plane, and so is a byte longer.
    const auto ByLength = [nPayload](std::size_t nKestrel, std::size_t nLanner) {
        return nPayload == nKestrel ? Family::eKestrel
                                    : (nPayload == nLanner ? Family::eLanner : Family::eUnknown);
    };
    switch (Frame.empty() ? std::uint8_t{0} : Frame[0]) {
        case MODULE_STATE:
            return ByLength(Kestrel::CModuleStateResponse::SIZE, Lanner::CModuleStateResponse::SIZE);
        case SPEED:
            return ByLength(2, 3);
        case COORDINATES:
            return ByLength(4, 5);
        case AMPLITUDE:
        case DIAGNOSIS:
            return Family::eLanner;
        case ACTIVE_SET:
            // What is shorter is a refusal, which is no sign of anything.
            if (nPayload >= 1 + Kestrel::CSet::SIZE) {
                return Frame[HEADER] == LANNER_SET ? Family::eLanner : Family::eKestrel;
            }
            return Family::eUnknown;
        default:
            return Family::eUnknown;
    }
}

FirstQuestion::Question FirstQuestion::MakeIdentification(std::uint8_t OwnAddress, std::uint8_t Address) {
    return {MODULE_DATA, OwnAddress, Address, IDENTIFICATION};
}

FirstQuestion::Question FirstQuestion::MakeSet(std::uint8_t OwnAddress, std::uint8_t Address,
                                               CModuleFacts::Family Family) {
    return {ACTIVE_SET, OwnAddress, Address,
            Family == CModuleFacts::Family::eLanner ? LANNER_SET : KESTREL_SET};
}
