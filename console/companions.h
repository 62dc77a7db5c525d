#pragma once
#include <functional>
#include <memory>
#include <string>

#include "console/options.h"
#include "platform/system/temporarydirectory.h"
#include "simulator/rotorfile.h"

/// What runs beside the console so that an NC drives it, where nothing of the kind is there already: the
/// rotor simulator and the NC simulator, each a process of its own, on loopback. They end with this object,
/// or when this process dies.
class CCompanions {
public:
    /// Starts what the options leave open, and waits until it can be reached. Throws CSessionError,
    /// CBrokenOff.
    CCompanions(const COptions& rOptions, const CRotorFile* pRotor);
    ~CCompanions();
    CCompanions(const CCompanions&) = delete;
    CCompanions& operator=(const CCompanions&) = delete;

    /// The options with the links to what was started.
    COptions Complete(COptions Options) const;
    /// Why the NC simulator doesn't drive any more; empty while it does.
    std::string GetNcLoss() const;
    /// Takes what the NC simulator says to a person.
    std::function<void(const std::string&)> OnSay;

private:
    class CProcess;

    std::string WriteRotorFile(const COptions& rOptions) const;
    void StartMachine(const COptions& rOptions);
    void StartNc(const COptions& rOptions);
    void TakeNcLine(const std::string& rLine);

    CTemporaryDirectory m_Directory;
    std::string m_RotorFile;
    std::string m_Frames;
    std::string m_Machine;
    std::optional<COpcSetup> m_Opc;
    std::string m_Password;
    std::unique_ptr<CProcess> m_pMachine;
    std::unique_ptr<CProcess> m_pNc;
};
