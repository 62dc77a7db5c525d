#include "rvlib/rvbas/base/object.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/logcapture.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class CCounted : public Base::CObject {
public:
    CCounted(bool bMayGo, int& rDestroyed)
        : CObject("COpcDatabase"), m_bMayGo(bMayGo), m_rDestroyed(rDestroyed) {}

    bool m_bMayGo;
    bool m_bDeletingWhenAsked = false;

private:
    bool MayBeDestroyed() override {
        m_bDeletingWhenAsked = IsDeleting();
        return m_bMayGo;
    }
    void Destroy() override { ++m_rDestroyed; }

    int& m_rDestroyed;
};

}  // namespace

TEST(CObject, LastReleaseDestroysOnce) {
    int nDestroyed = 0;
    CCounted Object(true, nDestroyed);
    Object.AddRef("CPreBalancingMainWnd");
    Object.AddRef("PreBalInterfaceFromNC");
    Object.Release("PreBalInterfaceFromNC");
    EXPECT_EQ(nDestroyed, 0);
    EXPECT_EQ(Object.GetRefCount(), 1U);
    Object.Release("CPreBalancingMainWnd");
    EXPECT_EQ(nDestroyed, 1);
    EXPECT_TRUE(Object.m_bDeletingWhenAsked);
}

TEST(CObject, ReleaseOnCountZeroAssertsAndStaysAtZero) {
    int nDestroyed = 0;
    CCounted Object(false, nDestroyed);
    Object.AddRef("holder");
    Object.Release("holder");
    const CLogCapture Log;
    Object.Release("holder");
    EXPECT_EQ(Object.GetRefCount(), 0U);
    EXPECT_THAT(Log.GetAssertions(),
                ElementsAre("Release makes only sense on a AddRefed object (COpcDatabase)!"));
    ASSERT_EQ(Log.GetRecords().size(), 1U);
    EXPECT_EQ(Log.GetRecords()[0].m_Expression, "m_RefCount > 0");
}

TEST(CObject, RefusedDestructionKeepsTheObjectUsable) {
    int nDestroyed = 0;
    CCounted Object(false, nDestroyed);
    Object.AddRef("holder");
    Object.Release("holder");
    EXPECT_EQ(nDestroyed, 0);
    EXPECT_FALSE(Object.IsDeleting());
    const CLogCapture Log;
    Object.AddRef("holder");
    EXPECT_EQ(Object.GetRefCount(), 1U);
    EXPECT_THAT(Log.GetAssertions(), IsEmpty());
}

// The assertion doesn't change the flow: the count moves all the same.
TEST(CObject, AddRefWhileDeletingAssertsAndCounts) {
    int nDestroyed = 0;
    CCounted Object(true, nDestroyed);
    Object.AddRef("holder");
    Object.Release("holder");
    const CLogCapture Log;
    Object.AddRef("late");
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("Invalid state"));
    EXPECT_EQ(Log.GetRecords().at(0).m_Expression, "!m_IsDeleting");
    EXPECT_EQ(Object.GetRefCount(), 1U);
}

TEST(CObject, LogsHolderAndNewCount) {
    int nDestroyed = 0;
    CCounted Object(true, nDestroyed);
    const CLogCapture Log(true);
    Object.AddRef("A");
    Object.AddRef("B");
    Object.Release("B");
    EXPECT_THAT(Log.GetTexts("RefCount"),
                ElementsAre("COpcDatabase->AddRef(A) called [1]", "COpcDatabase->AddRef(B) called [2]",
                            "COpcDatabase->Release(B) called [1]"));
}
