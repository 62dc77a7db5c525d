#pragma once
#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "rvdlm/m_rtr/rtr_trim/communication/iffromcommunication.h"
#include "rvdlm/m_rtr/rtr_trim/communication/iftocommunication.h"
#include "rvdlm/m_rtr/rtr_trim/communication/iftokestrelsaker.h"

/// Shows one or two Kestrel modules, a plane each, as one module: asks both, and reports when both have
/// answered.
class CPlaneHandler : public IFToCommunication {
public:
    /// Slave address that means no slave.
    static constexpr std::uint8_t NO_SLAVE = 255;

    /// pIFFromCommunication must outlive the handler. A master address of 0 is refused with a message box;
    /// every operation then finds no master.
    CPlaneHandler(IFFromCommunication* pIFFromCommunication, std::uint8_t Master, std::uint8_t Slave);
    ~CPlaneHandler() override;
    CPlaneHandler(const CPlaneHandler&) = delete;
    CPlaneHandler& operator=(const CPlaneHandler&) = delete;

    /// Every frame goes to both modules' mappers, which filter by address. Nonzero if both took it.
    int PutReceivedModuleData(const std::uint8_t* pData, std::uint32_t nSize) override;
    /// Queries ask the master and, if that went well, the slave.
    int QueryModuleIdentification() override;
    int QueryActiveSet() override;
    int QueryModuleState() override;
    /// The master alone; nonzero without sending if there is none.
    int QueryRPMData() override;
    int QueryUnbalanceXYValues() override;

    /// Callbacks of the mappers, told apart by module address. Pointers are null in a failure.
    virtual void SendRawData(std::uint8_t Address, const std::uint8_t* pData, std::uint32_t nSize);
    virtual void OnQueryModuleIdentification(std::uint8_t Address, Reason Why, const std::string* pArticle,
                                             const std::uint32_t* pSerial);
    virtual void OnSetRequest(std::uint8_t Address, Reason Why, const CSet* pSet);
    /// pUnused1, pUnused2: a module that serves two planes would give the second plane's flags here.
    virtual void OnModuleState(std::uint8_t Address, Reason Why, const std::uint32_t* pUILocked,
                               const std::uint32_t* pOutOfLock, const std::uint32_t* pInvalidRPM,
                               const std::uint32_t* pUnused1, const std::uint32_t* pUnused2,
                               const std::uint32_t* pWrongState);
    virtual void OnRPMData(std::uint8_t Address, Reason Why, const std::uint32_t* pRPM);
    virtual void OnUnbalanceXYValues(std::uint8_t Address, Reason Why, const std::uint32_t* pX,
                                     const std::uint32_t* pY);

private:
    /// A query, as every mapper offers it.
    using Query = int (IFToCommunication::*)();

    bool HasSlave() const { return m_pIFToKestrelSaker[1] != nullptr; }
    /// Asks the master and, if that went well, the slave.
    int AskAll(Query pQuery);
    /// 0 for the master, 1 for the slave. Another address asserts and stays what it is.
    std::uint32_t GetPlane(std::uint8_t Address) const;

    IFFromCommunication* m_pIFFromCommunication;
    std::array<std::unique_ptr<IFToKestrelSaker>, 2> m_pIFToKestrelSaker;  ///< master, slave
    std::uint8_t m_MasterAddress;
    std::uint8_t m_SlaveAddress;
    std::string m_ArticleNumber;
    std::uint32_t m_SerialNumber = 0;
    CSet m_Set;
    std::array<std::uint32_t, 2> m_UILocked{};
    std::array<std::uint32_t, 2> m_OutOfLock{};
    std::array<std::uint32_t, 2> m_InvalidRPM{};
    bool m_bPlane1StateReceived = false;
    bool m_bPlane2StateReceived = false;
    std::array<std::uint32_t, 2> m_WrongState{};
};
