#include "platform/window/moduleframework.h"

namespace {

class CModuleFramework : public IFModuleFramework {
public:
    bool InitExtensionModule() override { return true; }
    void TermExtensionModule() override {}
    bool HasInstanceHandle() const override { return true; }
    void SetInstanceHandle() override {}
    void EnableControlContainer() override {}
    bool InitializeComponents() override { return true; }
};

}  // namespace

IFModuleFramework& GetModuleFramework() {
    static CModuleFramework s_Framework;
    return s_Framework;
}
