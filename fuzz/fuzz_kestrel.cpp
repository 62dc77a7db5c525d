// Arbitrary frames into the plane handler with two Kestrel modules.
#include "fuzz/conversation.h"
#include "rvdlm/m_rtr/rtr_trim/communication/planehandler.h"

namespace {

class CWindow : public CFuzzWindow {
public:
    void OnSetRequest(Reason Why, const CSet* pSet) override {
        Require(HasValues(Why));  // failures take another road
        CFuzzWindow::OnSetRequest(Why, pSet);
    }
    void OnModuleState(Reason Why, const std::uint32_t* p1, const std::uint32_t* p2, const std::uint32_t* p3,
                       const std::uint32_t* p4, const std::uint32_t* p5, const std::uint32_t* p6) override {
        Require(HasValues(Why));
        CFuzzWindow::OnModuleState(Why, p1, p2, p3, p4, p5, p6);
    }
    void OnRPMData(Reason Why, const std::uint32_t* pPlane, const std::uint32_t* pRPM) override {
        Require(pPlane != nullptr);  // each module has its plane, in a failure too
        CFuzzWindow::OnRPMData(Why, pPlane, pRPM);
    }
    void OnUnbalanceXYValues(Reason Why, const std::uint32_t* pPlane, const std::uint32_t* pX,
                             const std::uint32_t* pY) override {
        Require(pPlane != nullptr);
        CFuzzWindow::OnUnbalanceXYValues(Why, pPlane, pX, pY);
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    OpenAllTopics();
    CVirtualEventLoop Loop;
    CWindow Window;
    CPlaneHandler Handler(&Window, 5, 6);
    Converse(Loop, Window, Handler, {pData, nSize});
    return 0;
}
