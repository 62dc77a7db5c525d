// Arbitrary frames into the mapper of a Lanner module with address 9.
#include "fuzz/conversation.h"
#include "rvdlm/m_rtr/rtr_trim/communication/lannermapper.h"

namespace {

class CWindow : public CFuzzWindow {
public:
    void OnSetRequest(Reason Why, const CSet* pSet) override {
        Require(pSet == nullptr || pSet->Swap <= 1);
        Require(pSet == nullptr || pSet->RPMFactorPlane1 == pSet->RPMFactorPlane2);
        CFuzzWindow::OnSetRequest(Why, pSet);
    }
    void OnModuleState(Reason Why, const std::uint32_t* p1, const std::uint32_t* p2, const std::uint32_t* p3,
                       const std::uint32_t* p4, const std::uint32_t* p5,
                       const std::uint32_t* pWrongState) override {
        Require(pWrongState == nullptr || *pWrongState == 0);
        CFuzzWindow::OnModuleState(Why, p1, p2, p3, p4, p5, pWrongState);
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    OpenAllTopics();
    CVirtualEventLoop Loop;
    CWindow Window;
    CLannerMapper Mapper(&Window, 9);
    Converse(Loop, Window, Mapper, {pData, nSize});
    return 0;
}
