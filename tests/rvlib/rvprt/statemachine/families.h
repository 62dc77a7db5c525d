#pragma once
// Both families of modules as the tests of what they share see them.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "rvlib/rvprt/kestrel/statemachine/kestrelprotocol.h"
#include "rvlib/rvprt/lanner/statemachine/lannerprotocol.h"
#include "tests/rvlib/rvprt/decode.h"
#include "tests/support/callrecord.h"

/// A Kestrel protocol with module 5 that notes frames sent and callbacks.
class CTestKestrel : public Kestrel::CKestrelProtocol, public CCallRecord {
public:
    CTestKestrel() : CKestrelProtocol(5) {}

private:
    void SendRawData(const std::uint8_t* pData, std::uint32_t nSize) override { NoteSent(pData, nSize); }
    void OnModuleState(Reason Why, const Kestrel::CModuleStateResponse* p) override {
        Note("ModuleState", Why,
             p == nullptr ? "null"
                          : std::to_string(p->m_ModuleState) + " " + std::to_string(p->m_UILocked) +
                                std::to_string(p->m_OutOfLock) + std::to_string(p->m_InvalidRPM));
    }
    void OnSetRequest(Reason Why, const Kestrel::CSet* p) override {
        Note("Set", Why,
             p == nullptr ? "null"
                          : std::to_string(p->m_Set) + " " + std::to_string(p->m_RPMFactor) + " " +
                                std::to_string(p->m_SensorAdaption));
    }
    void OnQueryModuleIdentification(Reason Why, const Kestrel::CModuleIdentification* p) override {
        Note("Identification", Why,
             p == nullptr ? "null" : p->m_ArticleNumber + " " + std::to_string(p->m_SerialNumber));
    }
    void OnRPMData(Reason Why, const std::uint32_t* p) override {
        Note("RPM", Why, p == nullptr ? "null" : std::to_string(*p));
    }
    void OnUnbalanceXYValues(Reason Why, const std::uint32_t* pX, const std::uint32_t* pY) override {
        EXPECT_EQ(pX == nullptr, pY == nullptr);
        Note("XY", Why, pX == nullptr ? "null" : std::to_string(*pX) + " " + std::to_string(*pY));
    }
};

/// A Lanner protocol with module 9 that notes frames sent and callbacks.
class CTestLanner : public Lanner::CLannerProtocol, public CCallRecord {
public:
    CTestLanner() : CLannerProtocol(9) {}

private:
    static std::string Text(const Lanner::CSet* p) {
        if (p == nullptr) {
            return "null";
        }
        const Lanner::CSetParams* const pParams = p->GetSetParams();
        return std::to_string(p->m_Set) + (pParams != nullptr ? " " + pParams->SetName : " no params");
    }
    static std::string Text(const Lanner::CBalConfiguration* p) {
        return p == nullptr
                   ? "null"
                   : std::to_string(p->Plane1MaxXYDatarate) + " " + std::to_string(p->Plane2MaxXYDatarate);
    }
    static std::string Text(const Lanner::CModuleConfiguration* p) {
        return p == nullptr ? "null" : std::to_string(p->Baudrate);
    }
    /// Value by value, plane first.
    template <class... Values>
    void NoteValues(const char* pWhat, Reason Why, const std::uint32_t* pPlane, Values... Further) {
        EXPECT_TRUE((((Further == nullptr) == (pPlane == nullptr)) && ...));
        if (pPlane == nullptr) {
            Note(pWhat, Why, "null");
        } else {
            Note(pWhat, Why, ("plane " + std::to_string(*pPlane) + ... + CCallRecord::Text(Further)));
        }
    }

    void SendRawData(const std::uint8_t* pData, std::uint32_t nSize) override { NoteSent(pData, nSize); }
    void OnModuleState(Reason Why, const Lanner::CModuleStateResponse* p) override {
        Note("ModuleState", Why,
             p == nullptr ? "null"
                          : std::to_string(p->UILocked) + " " + std::to_string(p->Plane1OutOfLock) +
                                std::to_string(p->Plane2OutOfLock));
    }
    void OnSetRequest(Reason Why, const Lanner::CSet* p) override { Note("Set", Why, Text(p)); }
    void OnMinSetValues(Reason Why, const Lanner::CSet* p) override { Note("MinSet", Why, Text(p)); }
    void OnMaxSetValues(Reason Why, const Lanner::CSet* p) override { Note("MaxSet", Why, Text(p)); }
    void OnDefaultSetValues(Reason Why, const Lanner::CSet* p) override { Note("DefaultSet", Why, Text(p)); }
    void OnBalConfiguration(Reason Why, const Lanner::CBalConfiguration* p) override {
        Note("Bal", Why, Text(p));
    }
    void OnModuleConfiguration(Reason Why, const Lanner::CModuleConfiguration* p) override {
        Note("Module", Why, Text(p));
    }
    void OnModuleDiagnosisData(Reason Why, const Lanner::CModuleDiagnosisData* p) override {
        Note("DiagnosisData", Why, p == nullptr ? "null" : p->DiagText);
    }
    void OnQueryModuleIdentification(Reason Why, const Lanner::CModuleIdentification* p) override {
        Note("Identification", Why,
             p == nullptr ? "null" : p->m_ArticleNumber + " " + std::to_string(p->m_SerialNumber));
    }
    void OnRPMData(Reason Why, const std::uint32_t* pPlane, const std::uint32_t* pRPM) override {
        NoteValues("RPM", Why, pPlane, pRPM);
    }
    void OnUnbalanceAmplitude(Reason Why, const std::uint32_t* pPlane,
                              const std::uint32_t* pAmplitude) override {
        NoteValues("Amplitude", Why, pPlane, pAmplitude);
    }
    void OnUnbalanceXYValues(Reason Why, const std::uint32_t* pPlane, const std::uint32_t* pX,
                             const std::uint32_t* pY) override {
        NoteValues("XY", Why, pPlane, pX, pY);
    }
    void OnDiagnosis(Reason Why, const DiagnosisBlock* pBlock) override {
        Note("Diagnosis", Why, pBlock == nullptr ? "null" : Hex(*pBlock));
    }
};

/// A query, what must go over the line, and what must come of it.
template <class Protocol>
struct CExchange {
    int (*m_pQuery)(Protocol&);
    std::string m_Request;
    std::string m_Answer;
    std::string m_Unusable;  ///< answers the request too, but can't be decoded
    std::string m_Call;      ///< the callback that comes
    std::string m_Data;      ///< what it brings for m_Answer
    std::string m_State;     ///< of the machine meanwhile
    bool m_bIndication;      ///< without a request the answer is an indication; else it is dropped
};

/// An identification answer of nSize bytes by a module.
inline std::string Identification(std::uint8_t Address, std::size_t nSize) {
    const std::string Source = Hex(std::span(&Address, 1));
    return Cut("11 " + Source + " 01 08 02 18 0C 07 03 12 AB 0F 78 56 34 12 E8 03 00 00", nSize);
}

struct CKestrelFamily {
    using Protocol = CTestKestrel;
    using ModuleStates = Kestrel::CModuleStates;
    using SetStates = Kestrel::CSetStates;
    using CommonStates = Kestrel::CCommonStates;
    template <class Machine>
    using Completed = Machine;
    static constexpr const char* SENDING_SET = "<-- Sending QuerySet (0x10)";

    /// In the order of the main window's chain of queries.
    static std::vector<CExchange<Protocol>> GetExchanges() {
        return {{[](Protocol& r) { return r.QueryModuleIdentification(); }, "11 01 05 08",
                 Identification(5, 49), Identification(5, 48), "Identification", "12AB0F 305419896",
                 "eQueryModuleIdentification", false},
                {[](Protocol& r) { return r.QueryActiveSet(); }, "10 01 05 00", "10 05 01 00 02 01 00 00 01",
                 "10 05 01 00 02 07", "Set", "2 1 1", "eSet", true},
                {[](Protocol& r) { return r.QueryModuleState(); }, "08 01 05", "08 05 01 07 00 00 00 00",
                 "08 05 01 07 00 80 00", "ModuleState", "7 000", "eQueryModuleState", true},
                {[](Protocol& r) { return r.QueryRPMData(); }, "1C 01 05", "1C 05 01 B8 0B", "1C 05 01 B8",
                 "RPM", "3000", "eQueryRPMData", true},
                {[](Protocol& r) { return r.QueryUnbalanceXYValues(); }, "1E 01 05", "1E 05 01 20 01 80 FF",
                 "1E 05 01 20 01 80", "XY", "288 65408", "eQueryUnbalanceCoordinates", true}};
    }
};

struct CLannerFamily {
    using Protocol = CTestLanner;
    using ModuleStates = Lanner::CModuleStates;
    using SetStates = Lanner::CSetStates;
    using CommonStates = Lanner::CCommonStates;
    static constexpr const char* SENDING_SET = "<-- Sending ActiveSet (0x10)";
    /// The machines need to be told of swapped planes.
    template <class Machine>
    class Completed : public Machine {
    public:
        std::uint32_t GetSwap() const override { return m_Swap; }
        void SetSwap(std::uint32_t Swap) override { m_Swap = Swap; }

    private:
        std::uint32_t m_Swap = 0;
    };

    static std::vector<CExchange<Protocol>> GetExchanges() {
        return {
            {[](Protocol& r) { return r.QueryModuleIdentification(); }, "11 01 09 08", Identification(9, 49),
             Identification(9, 48), "Identification", "12AB0F 305419896", "eQueryModuleIdentification",
             false},
            {[](Protocol& r) { return r.QueryActiveSet(); }, "10 01 09 02",
             "10 09 01 02 02 01 08 00 00 04 01 01 41", "10 09 01 02 02 07", "Set", "2 A", "eSet", true},
            {[](Protocol& r) { return r.QueryModuleState(); }, "08 01 09", "08 09 01 01 00 00 00 00 08 00",
             "08 09 01 01 00 00 00 00 08", "ModuleState", "0 10", "eQueryModuleState", true},
            {[](Protocol& r) { return r.QueryRPMData(); }, "1C 01 09", "1C 09 01 00 B8 0B", "1C 09 01 00 B8",
             "RPM", "plane 0 3000", "eQueryRPMData", true},
            {[](Protocol& r) { return r.QueryUnbalanceXYValues(); }, "1E 01 09", "1E 09 01 01 20 01 80 FF",
             "1E 09 01 01 20 01 80", "XY", "plane 1 288 65408", "eQueryUnbalanceCoordinates", true}};
    }
};

using BothFamilies = testing::Types<CKestrelFamily, CLannerFamily>;
