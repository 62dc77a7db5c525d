#pragma once
#include <cstdint>
#include <deque>
#include <memory>
#include <string>

#include "contract/ncitems.h"
#include "platform/rvopc/opcitem.h"
#include "rvdlm/m_rtr/rtr_trim/nc/prebalfromncinterface.h"

/// The request item: the NC writes a request, the module answers in the same item.
class CPreBalInterfaceFromNC : public COpcItem {
public:
    static constexpr const char* KEY = NcItems::REQUEST;

    /// Subscribes; pTarget gets every value that somebody else wrote, and a value that isn't a whole number
    /// as the unknown request 0x7FFFFFFF.
    CPreBalInterfaceFromNC(std::shared_ptr<COPCGroup> pGroup, std::string Name,
                           CPreBalFromNCInterface* pTarget);

    /// Writes an answer. Nonzero for success.
    int SetValueFromNC(std::int32_t Value);

private:
    void OnChange(const COpcValue* pValue);

    CPreBalFromNCInterface* m_pTarget;
    /// Our own answers, which the server reports back like any change: they must not count as requests. One
    /// that the NC overwrote before the server looked never comes back, and goes with the next that does.
    std::deque<std::int32_t> m_Echoes;
};
