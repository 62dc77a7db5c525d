// Prints docs/state-machines.md.
#include <iostream>

#include "tests/rvdlm/m_rtr/rtr_trim/prebalancing/statediagram.h"

int main() {
    std::cout << MakeStateMachinesPage();
}
