#pragma once
#include <cstdint>
#include <functional>
#include <string>

#include "rvdlm/m_rtr/rtr_trim/methods/weightpositionstore.h"

/// The speed settings, and the weight positions that they travel with. Looks after the file of both: a
/// missing one comes into being, a damaged one is set aside, so that runs go on without the stored positions
/// and nothing writes over it.
class CSpeedControl {
public:
    /// Degrees, where no speed is known.
    static constexpr int INCREMENT_WITHOUT_SPEED = 30;

    const CWeightPositionStore& GetStore() const { return m_WeightPositions; }
    CWeightPositionStore& GetStore() { return m_WeightPositions; }

    /// Reads the store from its file. False if the file is damaged and could not be kept: it must not be
    /// written then.
    bool Load();
    /// Reads store and settings, and writes the store back with the numbers of today.
    void Read();
    /// Degrees by which the test position differs from the one before, for a module and the text of its set.
    int GetIncrement(std::uint32_t ModuleAddress, const std::string& rSetText) const;
    /// RtrTrim::Guarded, and a damaged file of weight positions, which any operation of a procedure may come
    /// upon, is set aside.
    bool Guarded(const char* pName, const std::function<void()>& rOperation);

private:
    /// Reads the three numbers of the test step.
    void ReadSettings();
    bool OnDamaged(const std::string& rReason);

    CWeightPositionStore m_WeightPositions;
};
