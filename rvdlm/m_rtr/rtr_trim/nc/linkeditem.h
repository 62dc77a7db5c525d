#pragma once
#include <cstdint>
#include <memory>

#include "platform/rvopc/opcconnection.h"
#include "platform/rvopc/opcdatabase.h"

/// The item of class T, null if the NC offers none. There must be a connection.
template <typename T, typename... Arguments>
std::unique_ptr<T> MakeLinkedItem(const char* pName, Arguments... MoreArguments) {
    constexpr std::uint32_t UPDATE_RATE = 100;  // ms
    if (COpcDatabaseRef(T::KEY)->GetOpcLinkItem(T::KEY).empty()) {
        return nullptr;
    }
    return std::make_unique<T>(COPCConnection::CreateInstance()->CreateGroup(UPDATE_RATE, 0), pName,
                               MoreArguments...);
}

/// The same for the items of the settings page: also null without a connection.
template <typename T, typename... Arguments>
std::unique_ptr<T> LinkSetting(const char* pName, Arguments... MoreArguments) {
    const COpcDatabaseRef pDatabase("CBaseParamsTree");
    return COPCConnection::CreateInstance()->IsConnected() ? MakeLinkedItem<T>(pName, MoreArguments...)
                                                           : nullptr;
}
