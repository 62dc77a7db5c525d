#pragma once
#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// What was heard of a module. Times in ms of the event loop.
struct CModuleFacts {
    enum class Family : std::uint8_t { eUnknown, eKestrel, eLanner };
    struct CPlane {
        std::uint64_t m_nReadings = 0;  ///< that it sent by itself
        std::uint64_t m_FirstReading = 0;
        std::uint64_t m_LastReading = 0;
        std::int16_t m_X = 0;  ///< the last one
        std::int16_t m_Y = 0;
        bool m_bChanges = false;
        bool m_bOutOfLock = false;
        bool m_bWasInLock = false;
        std::uint32_t m_nLockLost = 0;
        bool m_bInvalidSpeed = false;  ///< or too slow
        bool m_bSensorFailure = false;
        bool m_bOveramplified = false;

        /// Readings in a second; 0 if there were too few to tell.
        double GetRate() const;
    };

    std::uint8_t m_Address = 0;
    Family m_Family = Family::eUnknown;
    std::uint64_t m_nFrames = 0;
    bool m_bIdentified = false;
    std::uint32_t m_Software = 0;
    std::string m_Article;
    std::uint32_t m_Serial = 0;
    std::optional<std::uint32_t> m_Set;
    std::string m_SetName;
    std::uint32_t m_RpmFactor = 1;
    bool m_bStateHeard = false;
    std::uint32_t m_State = 0;
    std::string m_StateName;
    bool m_bWrongState = false;
    bool m_bUiLocked = false;
    std::optional<std::uint32_t> m_SpeedRpm;  ///< the last one
    std::uint32_t m_SlowestRpm = 0;
    std::uint32_t m_FastestRpm = 0;
    std::array<CPlane, 2> m_Planes;
    std::vector<std::size_t> m_Measured;  ///< the planes that it serves, from 0

    bool IsTurning() const;
    /// Its speed stayed what it was.
    bool IsSteady() const;
};

/// What was seen of a line. Other: frames of somebody else who asks the modules.
struct CLinkFacts {
    enum class Kind : std::uint8_t { eSerial, eTcp, eSimulated };
    enum class Trouble : std::uint8_t {
        eNone,
        eMissing,      ///< there is no such device
        eNoPort,       ///< it is there, but is no serial port
        eNoRight,      ///< this user may not open it
        eInUse,        ///< by another program
        eRefused,      ///< nothing listens at that port
        eNoSuchHost,   ///< the name is unknown
        eUnreachable,  ///< no way through the network
        eNoAnswer,     ///< nothing came back
        eClosed,       ///< the other end has closed it
        eLost,         ///< it stood, and went
        eOther
    };

    std::string m_Link;  ///< as it is given on the command line
    Kind m_Kind = Kind::eSimulated;
    Trouble m_Trouble = Trouble::eNone;
    std::string m_TroubleText;  ///< the system's words
    std::string m_Group;        ///< that may open the port
    std::string m_Holder;       ///< the program that has it, as far as that can be told

    std::uint32_t m_Baud = 0;                    ///< asked for; 0 if the line has none
    std::vector<std::uint32_t> m_Tried;          ///< further ones, since at this one nothing was understood
    std::optional<std::uint32_t> m_FittingBaud;  ///< the one of these at which frames came

    std::uint64_t m_nBytes = 0;
    std::uint64_t m_nZeros = 0;  ///< bytes of value 0 among them
    std::uint64_t m_nGood = 0;   ///< frames of others
    std::uint64_t m_nBad = 0;
    std::uint64_t m_nEchoes = 0;  ///< frames of this computer that came back
    std::uint64_t m_nOther = 0;
    std::uint8_t m_OtherAddress = 0;

    std::uint8_t m_OwnAddress = 1;
    std::vector<std::uint8_t> m_Expected;  ///< addresses that were given; empty for the usual ones
    std::vector<std::uint8_t> m_Asked;
    bool m_bAllAsked = false;  ///< every address there is
    std::map<std::uint8_t, CModuleFacts> m_Modules;
    std::uint64_t m_Milliseconds = 0;  ///< that it took
};
