#include "console/deletion.h"

#include "console/session.h"
#include "contract/hostmessages.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "platform/rvmdb/storetexts.h"

std::string DeleteShown(CConsoleSession& rSession, const CShownConfiguration& rShown, bool bTable) {
    try {
        PreBalDB::CPreBalDatabase Database(rShown.m_Machine);
        const int bDeleted = bTable ? Database.DeleteScrewTable(rShown.m_ScrewTable)
                                    : Database.DeleteConfiguration(rShown.m_Name);
        if (bDeleted == 0) {
            return PreBalDB::StoreTexts::GetDeletion(bTable ? rShown.m_ScrewTable : rShown.m_Name,
                                                     Database.GetOutcome());
        }
    } catch (const PreBalDB::CDatabaseError& rError) {
        return rError.what();
    }
    rSession.GetModule().SendMessage(WM_RV_STORECHANGED);
    return {};
}
